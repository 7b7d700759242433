// CKWObserverAdapter: an observer that forwards to an IKWObservationListener.
//
// The adapter does not own its listener; the listener usually owns the
// adapter and releases it when it goes.
//
//   auto* adapter = static_cast<CKWObserverAdapter*>(
//       CKWObserverAdapter::GetCKWObserverAdapterType()->CreateInstance(CKWGuid()));
//   adapter->SetListener(this);
//   router->AddObserver(adapter, CKWGuid(KW_BASE_OBSERVATION_TYPE_ID));
#pragma once

#include "kwcore/framework/CKWObserver.h"
#include "kwcore/framework/IKWObservationListener.h"

class KWCORE_API CKWObserverAdapter : public CKWObserver {
    KW_DECLARE_TYPE(CKWObserverAdapter, CKWObjectTypeImpl)

public:
    // Null stops the forwarding.
    void SetListener(IKWObservationListener* listener) { m_pListener = listener; }
    IKWObservationListener* GetListener() const { return m_pListener; }
    // Passes the observation to the listener, if there is one.
    void OnUpdate(CKWObservation* observation) override;

protected:
    CKWObserverAdapter() = default;
    ~CKWObserverAdapter() override = default;

    // Forgets the listener and agrees to go.
    int OnBeforeRelease() override;

private:
    IKWObservationListener* m_pListener = nullptr;
};
