// CKWXMLFileDocument: a document of an XML file archive, one element under
// the root named after the document's instance ID.
//
// Made by CKWXMLFileArchive::CreateNewDocument, which hands it its archive;
// it makes CKWXMLFileTypeManifest manifests. The element belongs to the
// archive's DOM and is forgotten when the archive closes.
//
//   CKWDocument* document = archive->CreateNewDocument(CKWGuid(), nullptr);
//   IKWObject* root = document->GetObjectA(rootTypeID, rootInstanceID);
#pragma once

#include "kwcore/serial/CKWDocument.h"
#include "kwcore/serial/xml/KWXercesForward.h"

class CKWXMLFileArchive;

class KWCORE_API CKWXMLFileDocument : public CKWDocument {
    KW_DECLARE_TYPE(CKWXMLFileDocument, CKWObjectTypeImpl)

public:
    // In write mode also adds the document's element to the archive's root.
    void SetArchive(CKWXMLFileArchive* archive);
    CKWXMLFileArchive* GetArchive() const { return m_pArchive; }
    XERCES_CPP_NAMESPACE::DOMElement* GetDocumentElement() const { return m_pDocumentElement; }

    CKWTypeManifest* CreateTypeManifest(CKWGuid typeID, IKWObjectType* storedType) override;
    // Takes element as the document's and makes a manifest for each child
    // named after a GUID (others are skipped).
    int LoadTypeManifests(XERCES_CPP_NAMESPACE::DOMElement* element);
    // Forgets every element of the document and its manifests and streams.
    void DetachDOM();

protected:
    CKWXMLFileDocument() = default;

    IKWObjectType* GetTypeManifestType() const override;

private:
    CKWXMLFileArchive* m_pArchive = nullptr;
    XERCES_CPP_NAMESPACE::DOMElement* m_pDocumentElement = nullptr;
};
