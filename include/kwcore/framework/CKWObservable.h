// CKWObservable: publishes typed observations to registered observers.
//
// Observers register under an observation type ID. NotifyObservers delivers
// an observation to the observers of its own type first, then to those of
// each ancestor type in turn, last to those of the base observation type
// (KW_BASE_OBSERVATION_TYPE_ID); an observer registered under two of these
// types receives it twice. Observations are delivered one at a time, in the
// order they were published. The observable owns neither its observers nor,
// beyond their delivery, its observations.
//
// Re-entrant use from inside an observer's OnUpdate:
// - NotifyObservers is supported: the observation is queued behind the one
//   being delivered and delivered by the running delivery, never nested.
// - AddObserver and RemoveObserver are supported but deferred to the end of
//   the delivery, and then applied under the base observation type whatever
//   type ID was passed: a deferred add receives every observation, a
//   deferred remove leaves the observer's other registrations in place.
//   AddObserver of an already registered observer cancels its deferred
//   removes (and gives 0).
// - GetObserver is supported and sees the registrations as they were when
//   the delivery began.
// - Releasing the observable is refused (Release gives 0) while it delivers.
// - Releasing an observer that is still registered is not supported: remove
//   it outside a delivery first, or release it only after the delivery.
// OnUpdate must not throw.
//
//   router->AddObserver(observer, CKWGuid(KW_BASE_OBSERVATION_TYPE_ID));
//   router->NotifyObservers(observation);
#pragma once

#include <deque>
#include <map>
#include <vector>

#include "kwcore/framework/CKWObservation.h"
#include "kwcore/framework/CKWObserver.h"
#include "kwcore/object/CKWObjPtrList.h"
#include "kwcore/object/CKWObjectImpl.h"

class KWCORE_API CKWObservable : public CKWObjectImpl {
    KW_DECLARE_ABSTRACT_TYPE(CKWObservable, CKWObjectTypeImpl)

public:
    // Queues the observation and, unless a delivery is running, delivers the
    // queue. A null observation ends the running delivery when it is reached;
    // what is queued behind it waits for the next NotifyObservers.
    virtual void NotifyObservers(CKWObservation* observation);
    // 1 when registered (or deferred, during a delivery); 0 for null or an
    // observer already registered under that type ID.
    virtual int AddObserver(CKWObserver* observer, CKWGuid observationTypeID);
    // The first observer registered under the type ID with that instance ID, or null.
    virtual CKWObserver* GetObserver(CKWGuid observationTypeID, CKWGuid instanceID);
    // Always 1; deferred during a delivery.
    virtual int RemoveObserver(CKWObserver* observer, CKWGuid observationTypeID);

    // 1 while a delivery runs.
    int IsLocked() const { return m_iLocked; }
    // Observations queued and not yet delivered.
    int GetPendingCount() const { return static_cast<int>(m_pending.size()); }
    // The number of observers registered under the type ID.
    int GetObserverCount(const CKWGuid& observationTypeID) const;

protected:
    CKWObservable() = default;
    ~CKWObservable() override = default;

    int OnInitialize() override;
    // Refuses during a delivery; otherwise releases the queued observations
    // that are set to auto-release and forgets the observers.
    int OnBeforeRelease() override;
    // Stores the flag; clearing it applies the deferred adds, then the
    // deferred removes, under the base observation type.
    void SetObserversLocked(int locked);

private:
    using ObserverList = CKWObjPtrList<CKWObserver>;

    void Deliver(CKWObservation* observation);

    int m_iLocked = 0;
    std::deque<CKWObservation*> m_pending;
    std::map<CKWGuid, ObserverList> m_observers;
    std::vector<CKWObserver*> m_pendingAdds;
    std::vector<CKWObserver*> m_pendingRemoves;
};
