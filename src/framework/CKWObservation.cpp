#include "kwcore/framework/CKWObservation.h"

KW_IMPLEMENT_TYPE(CKWObservation, KW_BASE_OBSERVATION_TYPE_ID,
                  "{3719246B-C3B0-4AE9-9723-6E998C42484A}")

CKWObservation::CKWObservation(const CKWObservation& other)
    : CKWObjectImpl(other),
      m_iAutoRelease(other.m_iAutoRelease),
      m_sourceID(other.m_sourceID),
      m_bCopy(true) {}

// The target stays what it was made as. A tracked target is re-filed under
// its new ID, so its type never holds it under a stale one.
CKWObservation& CKWObservation::operator=(const CKWObservation& other) {
    if (this != &other) {
        if (m_bCopy) {
            SetInstanceID(other.GetInstanceID());
        } else {
            CKWObjectTypeImpl::ChangeInstanceID(this, other.GetInstanceID());
        }
        m_iAutoRelease = other.m_iAutoRelease;
        m_sourceID = other.m_sourceID;
    }
    return *this;
}

int CKWObservation::OnInitialize() {
    m_iAutoRelease = 1;
    return CKWObjectImpl::OnInitialize();
}
