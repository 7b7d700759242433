// CKWTypeManifest: the stored objects of one type in a document, one field
// stream per object, keyed by instance GUID.
//
// The manifest owns its field streams (DeleteFieldStream,
// DeleteAllFieldStreams and its own release free them); its document is not
// owned. A back-end names its stream class by overriding GetFieldStreamType.
//
//   CKWFieldStream* stream = manifest->CreateFieldStream(object->GetInstanceID(), nullptr);
#pragma once

#include "kwcore/object/CKWObjGuidPtrMap.h"
#include "kwcore/object/CKWObjectImpl.h"

class CKWDocument;
class CKWFieldStream;

class KWCORE_API CKWTypeManifest : public CKWObjectImpl {
    KW_DECLARE_TYPE(CKWTypeManifest, CKWObjectTypeImpl)

public:
    virtual int Open() { return 1; }
    virtual int Close() { return 1; }
    // 1 here; back-ends check the stored header against the type.
    virtual int ReadTypeHeader(IKWObjectType*) { return 1; }
    virtual int TypeHeaderIsWritten() { return m_bTypeHeaderWritten ? 1 : 0; }
    // Marks the header written; 0 for a null type.
    virtual int WriteTypeHeader(IKWObjectType* type);
    virtual IKWReadOnlyCollection* GetInstanceFieldStreamCollection() { return &m_streams; }
    virtual CKWObjGuidPtrMap<CKWFieldStream>::Iterator GetInstanceFieldStreamIterator() {
        return m_streams.GetIterator();
    }
    // Makes a stream of the manifest's stream class for the stored object
    // instanceID and enters it; null for an empty or taken ID. objectType is
    // for back-ends; the base ignores it.
    virtual CKWFieldStream* CreateFieldStream(CKWGuid instanceID, IKWObjectType* objectType);
    virtual int DeleteFieldStream(CKWGuid instanceID);
    virtual int DeleteAllFieldStreams();
    virtual CKWDocument* GetDocument() { return m_pDocument; }
    virtual void SetDocument(CKWDocument* document) { m_pDocument = document; }
    virtual CKWGuid GetStoredTypeID() { return m_storedTypeID; }
    virtual void SetStoredTypeID(CKWGuid typeID) { m_storedTypeID = typeID; }

protected:
    CKWTypeManifest() = default;

    // The class of the streams this manifest makes. CKWFieldStream is
    // abstract, so the base makes none: back-ends override this.
    virtual IKWObjectType* GetFieldStreamType() const;
    int OnBeforeRelease() override;

private:
    CKWDocument* m_pDocument = nullptr;
    CKWGuid m_storedTypeID;
    bool m_bTypeHeaderWritten = false;
    CKWObjGuidPtrMap<CKWFieldStream> m_streams;
};
