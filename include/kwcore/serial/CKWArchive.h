// CKWArchive: the top of the stored hierarchy, a storage medium holding
// documents keyed by document GUID.
//
// The archive owns its documents: DeleteDocument and DeleteAllDocuments
// release them, and so does releasing the archive. A back-end derives from
// it, overrides Open, Save and Close for its medium, and names its own
// document class by overriding GetDocumentType, so CreateNewDocument makes
// the back-end's documents.
//
//   CKWArchive* archive = ...;                       // a back-end's archive
//   archive->Open(CKWArchive::modeWrite);
//   CKWDocument* doc = archive->CreateNewDocument(CKWGuid(), nullptr);
//   adaptor->SerializeTo(doc);
//   archive->Close();
//   archive->Release();
#pragma once

#include "kwcore/object/CKWObjGuidPtrMap.h"
#include "kwcore/object/CKWObjectImpl.h"
#include "kwcore/serial/CKWBOOL.h"

class CKWDocument;

class KWCORE_API CKWArchive : public CKWObjectImpl {
    KW_DECLARE_TYPE(CKWArchive, CKWObjectTypeImpl)

public:
    // A bit set; only modeWrite has a meaning here.
    enum AccessMode { modeNone = 0, modeRead = 1, modeWrite = 2, modeReadWrite = 3 };

    // The interactive forms; back-ends with a user interface override them.
    virtual CKWBOOL OpenWithUI(AccessMode mode) { return Open(mode); }
    // Stores the mode; succeeds.
    virtual CKWBOOL Open(AccessMode mode);
    virtual CKWBOOL SaveWithUI() { return Save(); }
    // Fails with "Archive Not Open in Write Mode" without the write bit.
    virtual CKWBOOL Save();
    virtual CKWBOOL CloseWithUI() { return Close(); }
    // Forgets the mode; succeeds.
    virtual CKWBOOL Close();
    virtual IKWReadOnlyCollection* GetDocumentCollection() { return &m_documents; }
    virtual CKWObjGuidPtrMap<CKWDocument>::Iterator GetDocumentIterator() {
        return m_documents.GetIterator();
    }
    // Makes a document of the archive's document class (GetDocumentType)
    // under documentID (a new GUID when empty) and enters it; null when that
    // ID is taken or the document cannot be made. contentType is for
    // back-ends; the base ignores it.
    virtual CKWDocument* CreateNewDocument(CKWGuid documentID, IKWObjectType* contentType);
    virtual CKWBOOL DeleteDocument(CKWGuid documentID);
    virtual CKWBOOL DeleteAllDocuments();

    AccessMode GetAccessMode() const { return m_accessMode; }

protected:
    CKWArchive() = default;

    // The class of the documents this archive makes: CKWDocument's type here.
    virtual IKWObjectType* GetDocumentType() const;
    int OnBeforeRelease() override;

private:
    AccessMode m_accessMode = modeNone;
    CKWObjGuidPtrMap<CKWDocument> m_documents;
};
