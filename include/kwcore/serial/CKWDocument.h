// CKWDocument: one stored graph of objects, holding one type manifest per
// stored type, keyed by type GUID, and the current serial session.
//
// The document owns its manifests (DeleteTypeManifest, DeleteAllTypeManifests
// and its own release free them), not the objects loaded from it: those
// belong to the caller of GetObjectA. Within one session (AdvanceSerialSessionID
// starts a new one) each object is saved at most once. A back-end names its
// manifest class by overriding GetTypeManifestType.
//
//   IKWObject* root = document->GetObjectA(rootTypeID, rootInstanceID);
//   // ... every object reachable from root was loaded with it
#pragma once

#include "kwcore/object/CKWObjGuidPtrMap.h"
#include "kwcore/object/CKWObjectImpl.h"

class CKWTypeManifest;
class IKWFieldStream;
class IKWSerializableAdaptor;

namespace kwGraphSerialization {
struct DocumentWork;
struct LoadWork;
struct SaveWork;
}  // namespace kwGraphSerialization

class KWCORE_API CKWDocument : public CKWObjectImpl {
    KW_DECLARE_TYPE(CKWDocument, CKWObjectTypeImpl)

public:
    virtual int Open() { return 1; }
    virtual int Close() { return 1; }
    virtual IKWReadOnlyCollection* GetTypeManifestCollection() { return &m_manifests; }
    virtual CKWObjGuidPtrMap<CKWTypeManifest>::Iterator GetTypeManifestIterator() {
        return m_manifests.GetIterator();
    }
    // The stored object with that type and instance ID, loaded on first
    // request (with everything it links to); null when it is not stored, its
    // type is unknown or it cannot be read.
    virtual IKWObject* GetObjectA(CKWGuid typeID, CKWGuid instanceID);
    // Makes a manifest of the document's manifest class for the stored type
    // typeID and enters it; null for an empty or taken ID. storedType is for
    // back-ends; the base ignores it.
    virtual CKWTypeManifest* CreateTypeManifest(CKWGuid typeID, IKWObjectType* storedType);
    virtual int DeleteTypeManifest(CKWGuid typeID);
    // Begins a new serial session (a new GUID).
    virtual void AdvanceSerialSessionID();
    virtual CKWGuid GetSerialSessionID() { return m_sessionID; }
    virtual int DeleteAllTypeManifests();

protected:
    CKWDocument() = default;

    // The class of the manifests this document makes: CKWTypeManifest's type here.
    virtual IKWObjectType* GetTypeManifestType() const;
    // Starts the first session.
    int OnInitialize() override;
    int OnBeforeRelease() override;

private:
    friend struct kwGraphSerialization::DocumentWork;

    CKWObjGuidPtrMap<CKWTypeManifest> m_manifests;
    CKWGuid m_sessionID;
    // The save and the load under way on this document, if any: the objects
    // they still have to follow, kept off the call stack.
    kwGraphSerialization::SaveWork* m_pSaveWork = nullptr;
    kwGraphSerialization::LoadWork* m_pLoadWork = nullptr;
};
