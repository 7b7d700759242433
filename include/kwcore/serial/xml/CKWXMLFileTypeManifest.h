// CKWXMLFileTypeManifest: the objects of one type in an XML file document,
// one element under the document's named after the type ID.
//
// Made by CKWXMLFileDocument::CreateTypeManifest; it makes
// CKWXMLFileFieldStream streams. The element belongs to the archive's DOM.
//
//   CKWTypeManifest* manifest = document->CreateTypeManifest(typeID, nullptr);
//   manifest->WriteTypeHeader(type);   // adds the type's element
#pragma once

#include "kwcore/serial/CKWTypeManifest.h"
#include "kwcore/serial/xml/KWXercesForward.h"

class CKWXMLFileArchive;
class CKWXMLFileDocument;

class KWCORE_API CKWXMLFileTypeManifest : public CKWTypeManifest {
    KW_DECLARE_TYPE(CKWXMLFileTypeManifest, CKWObjectTypeImpl)

public:
    using CKWTypeManifest::SetDocument;
    void SetArchive(CKWXMLFileArchive* archive) { m_pArchive = archive; }
    void SetDocument(CKWXMLFileDocument* document) { m_pXMLDocument = document; }
    CKWXMLFileArchive* GetArchive() const { return m_pArchive; }
    XERCES_CPP_NAMESPACE::DOMElement* GetManifestElement() const { return m_pManifestElement; }

    // kept: adds a new element for the type, as WriteTypeHeader does, even
    // when reading (a read DOM is never written back).
    int ReadTypeHeader(IKWObjectType* type) override;
    int WriteTypeHeader(IKWObjectType* type) override;
    CKWFieldStream* CreateFieldStream(CKWGuid instanceID, IKWObjectType* objectType) override;
    // Takes element as the manifest's and makes a stream for each child named
    // after a GUID (others are skipped).
    int LoadFieldStreams(XERCES_CPP_NAMESPACE::DOMElement* element);
    // Forgets every element of the manifest and its streams.
    void DetachDOM();

protected:
    CKWXMLFileTypeManifest() = default;

    IKWObjectType* GetFieldStreamType() const override;

private:
    // The new element for the type, appended to the document's; null when it fails.
    XERCES_CPP_NAMESPACE::DOMElement* AppendTypeElement(IKWObjectType* type);

    CKWXMLFileArchive* m_pArchive = nullptr;
    CKWXMLFileDocument* m_pXMLDocument = nullptr;
    XERCES_CPP_NAMESPACE::DOMElement* m_pManifestElement = nullptr;
};
