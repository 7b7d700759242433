// The serializable side that a framework class adds to its object base
// (CKWSerialObject to CKWObjectImpl, CKWModel to CKWObservable), written
// once: each step takes over where the base class's own step ends.
//
//   int CMyObject::OnInitialize() {
//       return kwSerializableSide::AfterInitialize(CMyBase::OnInitialize(), *this);
//   }
#pragma once

#include "kwcore/serial/IKWSerializableAdaptor.h"

namespace kwSerializableSide {

// The base's answer, else the adaptor for IID_IKWSerializableAdaptor, else null.
inline void* AnswerInterface(void* baseAnswer, const CKWGuid& interfaceID,
                             IKWSerializableAdaptor* adaptor) {
    if (baseAnswer) {
        return baseAnswer;
    }
    if (interfaceID.IsValid() && interfaceID == CKWGuid(IID_IKWSerializableAdaptor)) {
        return adaptor;
    }
    return nullptr;
}

// Once the base is initialized, the object gets field data for its type's fields.
inline int AfterInitialize(int baseInitialized, IKWSerializableAdaptor& adaptor) {
    if (!baseInitialized) {
        return 0;
    }
    adaptor.InitFieldData();
    return 1;
}

// Once the base agreed to the release, the field data are freed.
inline int BeforeRelease(int baseAgreed, IKWSerializableAdaptor& adaptor) {
    if (!baseAgreed) {
        return 0;
    }
    adaptor.ReleaseFieldData();
    return 1;
}

}  // namespace kwSerializableSide
