// CKWObservation: a notification published through an observable.
//
// Observation types form a type chain below this class; observers register
// for one type and receive it and every type derived from it. The publisher
// creates an observation through its type and hands it to
// CKWObservable::NotifyObservers. With auto-release on (the default) the
// observable releases it right after its delivery, so it is published once;
// with auto-release off the publisher keeps it and may publish it again. An
// observation stays alive until its delivery is over: observers never release it.
//
//   auto* o = static_cast<CKWObservation*>(
//       CKWObservation::GetCKWObservationType()->CreateInstance(CKWGuid()));
//   o->SetSourceID(model->GetInstanceID());
//   model->NotifyObservers(o);   // delivered, then released
#pragma once

#include "kwcore/object/CKWObjectImpl.h"

// {060C1069-68A0-400F-B3F4-45E9A33A1204}: the base observation type.
inline constexpr GUID KW_BASE_OBSERVATION_TYPE_ID = {
    0x060C1069, 0x68A0, 0x400F, {0xB3, 0xF4, 0x45, 0xE9, 0xA3, 0x3A, 0x12, 0x04}};

class KWCORE_API CKWObservation : public CKWObjectImpl {
    KW_DECLARE_TYPE(CKWObservation, CKWObjectTypeImpl)

public:
    // Copies carry the original's instance ID, source ID and auto-release
    // flag. A copy is not tracked by its type and never released through it:
    // publish copies with auto-release off.
    CKWObservation(const CKWObservation& other);
    CKWObservation& operator=(const CKWObservation& other);
    // Public for copies, which live as plain values; made ones go by Release.
    ~CKWObservation() override = default;

    void SetAutoRelease(int autoRelease) { m_iAutoRelease = autoRelease; }
    int CanAutoRelease() const { return m_iAutoRelease; }
    // The instance ID of whatever raised the observation.
    void SetSourceID(CKWGuid sourceID) { m_sourceID = sourceID; }
    CKWGuid GetSourceID() const { return m_sourceID; }

protected:
    CKWObservation() = default;

    int OnInitialize() override;
    // Refuses for a copy, which its type did not make: a copy published with
    // auto-release on is left alone instead of freed.
    int OnBeforeRelease() override { return m_bCopy ? 0 : 1; }

private:
    int m_iAutoRelease = 0;
    CKWGuid m_sourceID;
    bool m_bCopy = false;
};
