// CKWXMLFileFieldStream: the fields of one object in an XML file, one element
// under its manifest's named after the instance ID, one child per field.
//
// A value field is an element with its text in attribute "V"; a link is an
// element with the type ID in "T" and the instance ID in "I" (none when
// unset); a link collection holds one "L" child per link. Made by
// CKWXMLFileTypeManifest::CreateFieldStream; its elements belong to the
// archive's DOM.
//
//   stream->WriteObjectHeader(object);   // the object's element, once
//   stream->Write(nameData);             // <_field V="..."/>
#pragma once

#include "kwcore/serial/CKWFieldStream.h"
#include "kwcore/serial/xml/KWXercesForward.h"

class CKWXMLFileArchive;
class CKWXMLFileTypeManifest;

class KWCORE_API CKWXMLFileFieldStream : public CKWFieldStream {
    KW_DECLARE_TYPE(CKWXMLFileFieldStream, CKWObjectTypeImpl)

public:
    // 0 when the stream already holds an object: a stream writes one object.
    int WriteObjectHeader(IKWObject* object) override;
    int Write(IKWFieldData* fieldData) override;
    // Gives the object the instance ID stored in the element's name.
    int ReadObjectHeader(IKWObject* object) override;
    // 0 unless exactly one element of the field is below the object's.
    int Read(IKWFieldData* fieldData) override;
    IKWObject* ReadLink(IKWFieldData* fieldData) override;
    // kept: a link that does not resolve is added as a null entry.
    int ReadLinks(IKWFieldData* fieldData, IKWCollection<IKWObject>* collection) override;
    int WriteLink(IKWFieldData* fieldData, IKWObject* object) override;
    int WriteLinks(IKWFieldData* fieldData, IKWIterator<IKWObject>* iterator) override;
    // A stream has nothing to open or close of its own: both give 1.
    virtual int Open() { return 1; }

    void SetManifest(CKWXMLFileTypeManifest* manifest) { m_pManifest = manifest; }
    void SetArchive(CKWXMLFileArchive* archive) { m_pArchive = archive; }
    void SetDOMDocument(XERCES_CPP_NAMESPACE::DOMDocument* document) { m_pDOMDocument = document; }
    void SetObjectElement(XERCES_CPP_NAMESPACE::DOMElement* element) { m_pObjectElement = element; }
    CKWXMLFileTypeManifest* GetManifest() const { return m_pManifest; }
    CKWXMLFileArchive* GetArchive() const { return m_pArchive; }
    XERCES_CPP_NAMESPACE::DOMElement* GetObjectElement() const { return m_pObjectElement; }

protected:
    CKWXMLFileFieldStream() = default;

private:
    // The field's new element, appended to the object's; null when it fails.
    XERCES_CPP_NAMESPACE::DOMElement* AppendFieldElement(IKWFieldData* fieldData);
    // The one element of the field below the object's, or null.
    XERCES_CPP_NAMESPACE::DOMElement* FindFieldElement(IKWFieldData* fieldData) const;
    // The stored object an element with "T" and "I" links to, or null.
    IKWObject* ResolveLink(const XERCES_CPP_NAMESPACE::DOMElement* element);

    CKWXMLFileTypeManifest* m_pManifest = nullptr;
    CKWXMLFileArchive* m_pArchive = nullptr;
    XERCES_CPP_NAMESPACE::DOMElement* m_pObjectElement = nullptr;
    XERCES_CPP_NAMESPACE::DOMDocument* m_pDOMDocument = nullptr;
};
