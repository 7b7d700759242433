#include "kwcore/serial/CKWSerialObject.h"

#include "KWSerializableSide.h"
#include "kwcore/object/CKWTypeSystem.h"

KW_IMPLEMENT_SERIAL_TYPE(CKWSerialObject, "{23F18565-85A5-4649-AEC0-DF55D8C3CDAB}",
                         "{3719246B-C3B0-4AE9-9723-6E998C42484A}")
KW_BEGIN_FIELDS(CKWSerialObject)
KW_END_FIELDS()

namespace {

// The serializable root is re-added by every Initialize when it went missing.
struct SerialRootTypeRegistration {
    SerialRootTypeRegistration() {
        CKWTypeSystem::AddRootType(CKWSerialObject::GetCKWSerialObjectType());
    }
};

// Right after the type object above (same priority, later in this file).
SerialRootTypeRegistration s_serialRootTypeRegistration KW_TYPE_OBJECT_STORAGE;

}  // namespace

void* CKWSerialObject::GetInterface(CKWGuid interfaceID) {
    return kwSerializableSide::AnswerInterface(CKWObjectImpl::GetInterface(interfaceID),
                                               interfaceID, this);
}

int CKWSerialObject::OnInitialize() {
    return kwSerializableSide::AfterInitialize(CKWObjectImpl::OnInitialize(), *this);
}

int CKWSerialObject::OnBeforeRelease() {
    return kwSerializableSide::BeforeRelease(CKWObjectImpl::OnBeforeRelease(), *this);
}
