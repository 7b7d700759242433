// Observation and observer classes declared the way a host declares them, for
// the observer, model and tool tests.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "KWTestObjects.h"
#include "kwcore/framework/CKWObservation.h"
#include "kwcore/framework/CKWObserver.h"
#include "kwcore/framework/CKWView.h"

inline constexpr const char* kFrameworkTestRepositoryID = "{5C1E7A93-2B4D-4F60-8E17-A9C3D5B7E1F2}";
inline constexpr const char* kObservationATypeID = "{6D2F8BA4-3C5E-4071-9F28-BAD4E6C8F203}";
inline constexpr const char* kObservationBTypeID = "{7E309CB5-4D6F-4182-A039-CBE5F7D90314}";
inline constexpr const char* kObservationCTypeID = "{8F41ADC6-5E70-4293-B14A-DCF608EA1425}";

// A three-level observation chain below the base: A, B derived from A, C from B.
class CObservationA : public CKWObservation {
    KW_DECLARE_TYPE(CObservationA, CKWObjectTypeImpl)

protected:
    CObservationA() = default;
};

class CObservationB : public CObservationA {
    KW_DECLARE_TYPE(CObservationB, CKWObjectTypeImpl)

protected:
    CObservationB() = default;
};

class CObservationC : public CObservationB {
    KW_DECLARE_TYPE(CObservationC, CKWObjectTypeImpl)

protected:
    CObservationC() = default;
};

// One received observation: who got it, and which one.
struct SReceipt {
    std::string observer;
    CKWObservation* observation;
    bool operator==(const SReceipt& other) const {
        return observer == other.observer && observation == other.observation;
    }
};

// Records what it receives into a shared log, then runs its action.
class CRecordingObserver : public CKWObserver {
    KW_DECLARE_TYPE(CRecordingObserver, CKWObjectTypeImpl)

public:
    std::string m_name;
    std::vector<SReceipt>* m_pLog = nullptr;
    std::function<void(CKWObservation*)> m_action;

    void OnUpdate(CKWObservation* observation) override;

protected:
    CRecordingObserver() = default;
};

class CRecordingView : public CKWView {
    KW_DECLARE_TYPE(CRecordingView, CKWObjectTypeImpl)

public:
    std::vector<CKWObservation*> m_received;
    void OnUpdate(CKWObservation* observation) override { m_received.push_back(observation); }

protected:
    CRecordingView() = default;
};
