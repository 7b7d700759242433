#include "kwcore/framework/CKWObserverAdapter.h"

KW_IMPLEMENT_TYPE(CKWObserverAdapter, "{D8D3E17D-9A46-4602-B39B-C4FD95399463}",
                  "{A3E1639E-0C4D-4A7E-B48C-990F2D031F4E}")

void CKWObserverAdapter::OnUpdate(CKWObservation* observation) {
    if (m_pListener) {
        m_pListener->OnUpdate(observation);
    }
}

int CKWObserverAdapter::OnBeforeRelease() {
    m_pListener = nullptr;
    return CKWObserver::OnBeforeRelease();
}
