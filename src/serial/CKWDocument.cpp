#include "kwcore/serial/CKWDocument.h"

#include "KWGraphSerialization.h"
#include "KWStoredHierarchy.h"
#include "kwcore/serial/CKWTypeManifest.h"

KW_IMPLEMENT_TYPE(CKWDocument, "{4F87AD20-AE52-43A7-882C-599156B30828}",
                  "{3719246B-C3B0-4AE9-9723-6E998C42484A}")

IKWObject* CKWDocument::GetObjectA(CKWGuid typeID, CKWGuid instanceID) {
    return kwGraphSerialization::GetStoredObject(this, typeID, instanceID);
}

CKWTypeManifest* CKWDocument::CreateTypeManifest(CKWGuid typeID, IKWObjectType*) {
    CKWTypeManifest* manifest =
        kwStoredHierarchy::CreateChild(GetTypeManifestType(), typeID, false, m_manifests);
    if (manifest) {
        manifest->SetDocument(this);
        manifest->SetStoredTypeID(typeID);
    }
    return manifest;
}

int CKWDocument::DeleteTypeManifest(CKWGuid typeID) {
    return kwStoredHierarchy::DeleteChild(typeID, m_manifests);
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
