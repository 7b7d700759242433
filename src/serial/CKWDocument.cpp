#include "kwcore/serial/CKWDocument.h"

#include "KWChildMap.h"
#include "KWSerialRoads.h"
#include "kwcore/object/CKWTypeSystem.h"
#include "kwcore/serial/IKWSerializableAdaptor.h"

KW_IMPLEMENT_TYPE(CKWDocument, "{4F87AD20-AE52-43A7-882C-599156B30828}",
                  "{3719246B-C3B0-4AE9-9723-6E998C42484A}")

IKWObject* CKWDocument::GetObjectA(const CKWGuid& typeID, const CKWGuid& instanceID) {
    if (!typeID.IsValid() || !instanceID.IsValid()) {
        return nullptr;
    }
    CKWTypeManifest* manifest = FindOrCreateManifest(typeID);
    if (!manifest) {
        return nullptr;
    }
    IKWFieldStream* stream = KWFindStream(manifest, instanceID);
    if (!stream) {
        manifest->CreateFieldStream(instanceID, CKWTypeSystem::FindType(typeID));
        stream = KWFindStream(manifest, instanceID);
    }
    if (!stream) {
        return nullptr;
    }
    if (IKWObject* loaded = stream->GetResult()) {
        if (m_reading.count(loaded)) {
            m_linkedWhileReading.insert(loaded);
        }
        return loaded;
    }
    IKWObjectType* type = CKWTypeSystem::FindType(typeID);
    return type ? ReadObject(type, manifest, stream, instanceID) : nullptr;
}

CKWTypeManifest* CKWDocument::FindOrCreateManifest(const CKWGuid& typeID) {
    CKWTypeManifest* manifest = KWFindManifest(this, typeID);
    return manifest ? manifest : CreateTypeManifest(typeID, CKWTypeSystem::FindType(typeID));
}

// The object is recorded as the stream's result before its fields are read,
// so links back to it (cycles) resolve to it and it is read once. When the
// read fails it is released, unless an object read meanwhile already links
// to it: then it stays, half read, as the result, so no link dangles.
IKWObject* CKWDocument::ReadObject(IKWObjectType* type, CKWTypeManifest* manifest,
                                   IKWFieldStream* stream, const CKWGuid& instanceID) {
    IKWObject* object = type->CreateInstance(instanceID);
    if (!object) {
        return nullptr;
    }
    auto* adaptor =
        static_cast<IKWSerializableAdaptor*>(object->GetInterface(IID_IKWSerializableAdaptor));
    if (!adaptor) {
        object->Release();
        return nullptr;
    }
    stream->SetResult(object);
    m_reading.insert(object);
    adaptor->OnBeforeLoad(this, manifest, stream);
    const bool read = stream->ReadObjectHeader(object) && adaptor->SerializeFieldDataFrom(stream);
    m_reading.erase(object);
    const bool linked = m_linkedWhileReading.erase(object) > 0;
    if (read) {
        adaptor->OnAfterLoad(this);
        return object;
    }
    if (!linked) {
        stream->SetResult(nullptr);
        object->Release();
    }
    return nullptr;
}

CKWTypeManifest* CKWDocument::CreateTypeManifest(const CKWGuid& typeID, IKWObjectType*) {
    CKWTypeManifest* manifest = KWCreateChild(GetTypeManifestType(), typeID, false, m_manifests);
    if (manifest) {
        manifest->SetDocument(this);
        manifest->SetStoredTypeID(typeID);
    }
    return manifest;
}

int CKWDocument::DeleteTypeManifest(const CKWGuid& typeID) {
    return KWDeleteChild(typeID, m_manifests);
}

void CKWDocument::AdvanceSerialSessionID() {
    m_sessionID = CKWGuid::CreateNewGUID();
}

int CKWDocument::DeleteAllTypeManifests() {
    return m_manifests.ReleaseAll();
}

IKWObjectType* CKWDocument::GetTypeManifestType() const {
    return CKWTypeManifest::GetCKWTypeManifestType();
}

int CKWDocument::OnInitialize() {
    if (!CKWObjectImpl::OnInitialize()) {
        return 0;
    }
    AdvanceSerialSessionID();
    return 1;
}

int CKWDocument::OnBeforeRelease() {
    DeleteAllTypeManifests();
    return CKWObjectImpl::OnBeforeRelease();
}
