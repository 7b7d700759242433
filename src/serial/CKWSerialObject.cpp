#include "kwcore/serial/CKWSerialObject.h"

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

void* CKWSerialObject::GetInterface(const CKWGuid& interfaceID) {
    if (void* answer = CKWObjectImpl::GetInterface(interfaceID)) {
        return answer;
    }
    if (interfaceID.IsValid() && interfaceID == CKWGuid(IID_IKWSerializableAdaptor)) {
        return static_cast<IKWSerializableAdaptor*>(this);
    }
    return nullptr;
}

int CKWSerialObject::OnInitialize() {
    if (!CKWObjectImpl::OnInitialize()) {
        return 0;
    }
    InitFieldData();
    return 1;
}

int CKWSerialObject::OnBeforeRelease() {
    if (!CKWObjectImpl::OnBeforeRelease()) {
        return 0;
    }
    ReleaseFieldData();
    return 1;
}
