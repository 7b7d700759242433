#include "kwcore/serial/CKWArchive.h"

#include "KWStoredHierarchy.h"
#include "kwcore/serial/CKWDocument.h"

KW_IMPLEMENT_TYPE(CKWArchive, "{5493CC7D-6A62-4A33-B7D1-1DDBD2FB7EA4}",
                  "{3719246B-C3B0-4AE9-9723-6E998C42484A}")

CKWBOOL CKWArchive::Open(AccessMode mode) {
    m_accessMode = mode;
    return CKWBOOL(true);
}

CKWBOOL CKWArchive::Save() {
    if (!(m_accessMode & modeWrite)) {
        return CKWBOOL(false, "Archive Not Open in Write Mode");
    }
    return CKWBOOL(true);
}

CKWBOOL CKWArchive::Close() {
    m_accessMode = modeNone;
    return CKWBOOL(true);
}

CKWDocument* CKWArchive::CreateNewDocument(CKWGuid documentID, IKWObjectType*) {
    return kwStoredHierarchy::CreateChild(GetDocumentType(), documentID, true, m_documents);
}

CKWBOOL CKWArchive::DeleteDocument(CKWGuid documentID) {
    return CKWBOOL(kwStoredHierarchy::DeleteChild(documentID, m_documents) != 0);
}

CKWBOOL CKWArchive::DeleteAllDocuments() {
    return CKWBOOL(m_documents.ReleaseAll() != 0);
}

IKWObjectType* CKWArchive::GetDocumentType() const {
    return CKWDocument::GetCKWDocumentType();
}

int CKWArchive::OnBeforeRelease() {
    DeleteAllDocuments();
    return CKWObjectImpl::OnBeforeRelease();
}
