#include "kwcore/framework/CKWObservable.h"

#include <algorithm>
#include <unordered_set>

KW_IMPLEMENT_ABSTRACT_TYPE(CKWObservable, "{D265DD01-767A-4ACB-BCF6-02720CB234E1}",
                           "{3719246B-C3B0-4AE9-9723-6E998C42484A}")

namespace {

const CKWGuid& BaseObservationTypeID() {
    static const CKWGuid id(KW_BASE_OBSERVATION_TYPE_ID);
    return id;
}

}  // namespace

void CKWObservable::NotifyObservers(CKWObservation* observation) {
    m_pending.push_back(observation);
    if (m_iLocked) {
        return;  // the running delivery reaches it
    }
    m_iLocked = 1;
    while (!m_pending.empty()) {
        CKWObservation* next = m_pending.front();
        m_pending.pop_front();
        if (!next) {
            break;
        }
        Deliver(next);
        if (next->CanAutoRelease()) {
            next->Release();
        }
    }
    SetObserversLocked(0);
}

// Lists are not changed while locked (changes are deferred), so walking them
// while observers run is safe; new map entries leave the others in place.
void CKWObservable::Deliver(CKWObservation* observation) {
    IKWObjectType* stop = CKWObservation::GetCKWObservationType()->GetParentType();
    for (IKWObjectType* type = observation->GetType(); type && type != stop;
         type = type->GetParentType()) {
        auto entry = m_observers.find(type->GetID());
        if (entry == m_observers.end()) {
            continue;
        }
        for (CKWObserver* observer : entry->second) {
            observer->OnUpdate(observation);
        }
    }
}

int CKWObservable::AddObserver(CKWObserver* observer, CKWGuid observationTypeID) {
    if (!observer) {
        return 0;
    }
    ObserverList& list = m_observers[observationTypeID];
    if (list.FindObject(observer->GetInstanceID())) {
        m_pendingRemoves.erase(
            std::remove(m_pendingRemoves.begin(), m_pendingRemoves.end(), observer),
            m_pendingRemoves.end());
        return 0;
    }
    if (m_iLocked) {
        m_pendingAdds.push_back(observer);
    } else {
        list.Add(observer);
    }
    return 1;
}

CKWObserver* CKWObservable::GetObserver(CKWGuid observationTypeID, CKWGuid instanceID) {
    auto entry = m_observers.find(observationTypeID);
    return entry == m_observers.end() ? nullptr : entry->second.FindObject(instanceID);
}

int CKWObservable::RemoveObserver(CKWObserver* observer, CKWGuid observationTypeID) {
    auto entry = m_observers.find(observationTypeID);
    if (entry == m_observers.end()) {
        return 1;
    }
    if (m_iLocked) {
        m_pendingRemoves.push_back(observer);
    } else {
        entry->second.Remove(observer);
    }
    // Only an empty list goes, so never the one a delivery is walking.
    if (entry->second.GetCount() == 0) {
        m_observers.erase(entry);
    }
    return 1;
}

int CKWObservable::GetObserverCount(const CKWGuid& observationTypeID) const {
    auto entry = m_observers.find(observationTypeID);
    return entry == m_observers.end() ? 0 : entry->second.GetCount();
}

int CKWObservable::OnInitialize() {
    m_iLocked = 0;
    return CKWObjectImpl::OnInitialize();
}

int CKWObservable::OnBeforeRelease() {
    if (m_iLocked) {
        return 0;
    }
    // An observation queued twice is released once.
    std::unordered_set<CKWObservation*> released;
    for (CKWObservation* observation : m_pending) {
        if (observation && released.insert(observation).second && observation->CanAutoRelease()) {
            observation->Release();
        }
    }
    m_pending.clear();
    m_observers.clear();
    m_pendingAdds.clear();
    m_pendingRemoves.clear();
    return CKWObjectImpl::OnBeforeRelease();
}

// The deferred requests are applied under the base observation type, whatever
// type ID they were made with: a deliberate rule that hosts rely on.
void CKWObservable::SetObserversLocked(int locked) {
    m_iLocked = locked;
    if (locked) {
        return;
    }
    std::vector<CKWObserver*> adds;
    adds.swap(m_pendingAdds);
    for (CKWObserver* observer : adds) {
        AddObserver(observer, BaseObservationTypeID());
    }
    std::vector<CKWObserver*> removes;
    removes.swap(m_pendingRemoves);
    for (CKWObserver* observer : removes) {
        RemoveObserver(observer, BaseObservationTypeID());
    }
}
