#include "kwcore/serial/registry/CKWRegistryTypeManifest.h"

#include "kwcore/object/IKWObjectType.h"
#include "kwcore/serial/registry/CKWRegistryFieldStream.h"
#include "kwcore/serial/registry/CKWRegistrySerializer.h"

KW_IMPLEMENT_TYPE(CKWRegistryTypeManifest, "{9A07311E-341F-4022-AAFC-F1BBF96EA76A}",
                  "{D13AE1B6-424A-436C-91C7-982A72F0B631}")

namespace {
const char kTypeManifestName[] = "Type Manifest Name";
}  // namespace

int CKWRegistryTypeManifest::WriteTypeHeader(IKWObjectType* type) {
    CKWRegistrySerializer* serializer = GetSerializer();
    if (!type || !serializer ||
        !serializer->OpenRegistry(serializer->GetRootKey(),
                                  serializer->TypeKeyPath(GetStoredTypeID()))) {
        return 0;
    }
    if (!serializer->Write(kTypeManifestName, static_cast<const char*>(type->GetName()))) {
        return 0;
    }
    return CKWTypeManifest::WriteTypeHeader(type);
}

CKWFieldStream* CKWRegistryTypeManifest::CreateFieldStream(CKWGuid instanceID,
                                                           IKWObjectType* objectType) {
    CKWFieldStream* stream = CKWTypeManifest::CreateFieldStream(instanceID, objectType);
    if (auto* registryStream = dynamic_cast<CKWRegistryFieldStream*>(stream)) {
        registryStream->SetTypeID(GetStoredTypeID());
    }
    return stream;
}

int CKWRegistryTypeManifest::LoadFieldStreams() {
    CKWRegistrySerializer* serializer = GetSerializer();
    CStringList names;
    if (!serializer || !serializer->VerifyKey(serializer->TypeKeyPath(GetStoredTypeID())) ||
        !serializer->EnumerateSubKeys(names)) {
        return 0;
    }
    for (POSITION position = names.GetHeadPosition(); position;) {
        CKWGuid instanceID;
        instanceID.SetCString(names.GetNext(position));
        if (instanceID.IsValid()) {
            CreateFieldStream(instanceID, nullptr);
        }
    }
    return 1;
}

IKWObjectType* CKWRegistryTypeManifest::GetFieldStreamType() const {
    return CKWRegistryFieldStream::GetCKWRegistryFieldStreamType();
}

CKWRegistrySerializer* CKWRegistryTypeManifest::GetSerializer() {
    return dynamic_cast<CKWRegistrySerializer*>(GetDocument());
}
