#include "FrameworkTestTypes.h"

#include "KWTestObjects.h"

KW_IMPLEMENT_TYPE(CObservationA, kObservationATypeID, KW_BASE_OBSERVATION_TYPE_ID)
KW_IMPLEMENT_TYPE(CObservationB, kObservationBTypeID, kObservationATypeID)
KW_IMPLEMENT_TYPE(CObservationC, kObservationCTypeID, kObservationBTypeID)
KW_IMPLEMENT_TYPE(CRecordingObserver, "{90528ED7-6F81-43A4-825B-ED0719FB2536}",
                  "{A3E1639E-0C4D-4A7E-B48C-990F2D031F4E}")
KW_IMPLEMENT_TYPE(CRecordingView, "{A1639FE8-7092-44B5-936C-FE182A0C3647}",
                  "{DCC62E4B-249A-470F-87E1-DEB9E4E976DD}")

void CRecordingObserver::OnUpdate(CKWObservation* observation) {
    if (m_pLog) {
        m_pLog->push_back({m_name, observation});
    }
    if (m_action) {
        m_action(observation);
    }
}

namespace {

const SCollectTypes s_collectFrameworkTestTypes(kFrameworkTestRepositoryID);

}  // namespace
