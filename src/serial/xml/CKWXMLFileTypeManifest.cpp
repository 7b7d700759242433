#include "kwcore/serial/xml/CKWXMLFileTypeManifest.h"

#include <xercesc/dom/DOM.hpp>

#include "KWForEachAs.h"
#include "KWXMLGuidNames.h"
#include "KWXercesGuard.h"
#include "kwcore/object/IKWObjectType.h"
#include "kwcore/serial/xml/CKWXMLFileArchive.h"
#include "kwcore/serial/xml/CKWXMLFileDocument.h"
#include "kwcore/serial/xml/CKWXMLFileFieldStream.h"

XERCES_CPP_NAMESPACE_USE

KW_IMPLEMENT_TYPE(CKWXMLFileTypeManifest, "{320B405E-56FE-442E-AF44-D64092E45411}",
                  "{D13AE1B6-424A-436C-91C7-982A72F0B631}")

int CKWXMLFileTypeManifest::ReadTypeHeader(IKWObjectType* type) {
    m_pManifestElement = AppendTypeElement(type);
    return m_pManifestElement ? 1 : 0;
}

int CKWXMLFileTypeManifest::WriteTypeHeader(IKWObjectType* type) {
    m_pManifestElement = AppendTypeElement(type);
    return m_pManifestElement ? CKWTypeManifest::WriteTypeHeader(type) : 0;
}

DOMElement* CKWXMLFileTypeManifest::AppendTypeElement(IKWObjectType* type) {
    DOMElement* parent = m_pXMLDocument ? m_pXMLDocument->GetDocumentElement() : nullptr;
    if (!type || !parent || !m_pArchive) {
        return nullptr;
    }
    return kwXerces::Guarded<DOMElement*>(nullptr, [&] {
        return kwXMLGuidNames::AppendElement(m_pArchive->GetDOMDocument(), parent, type->GetID());
    });
}

CKWFieldStream* CKWXMLFileTypeManifest::CreateFieldStream(CKWGuid instanceID,
                                                          IKWObjectType* objectType) {
    CKWFieldStream* stream = CKWTypeManifest::CreateFieldStream(instanceID, objectType);
    if (auto* xmlStream = dynamic_cast<CKWXMLFileFieldStream*>(stream)) {
        xmlStream->SetManifest(this);
        xmlStream->SetArchive(m_pArchive);
        xmlStream->SetDOMDocument(m_pArchive ? m_pArchive->GetDOMDocument() : nullptr);
    }
    return stream;
}

int CKWXMLFileTypeManifest::LoadFieldStreams(DOMElement* element) {
    m_pManifestElement = element;
    kwXMLGuidNames::ForEachNamedChild(element, [&](const CKWGuid& instanceID, DOMElement* child) {
        auto* stream = dynamic_cast<CKWXMLFileFieldStream*>(CreateFieldStream(instanceID, nullptr));
        if (stream) {
            stream->SetObjectElement(child);
        }
    });
    return 1;
}

void CKWXMLFileTypeManifest::DetachDOM() {
    m_pManifestElement = nullptr;
    kwIteration::ForEachAs<CKWXMLFileFieldStream>(GetInstanceFieldStreamIterator(),
                                                  [](CKWXMLFileFieldStream* stream) {
                                                      stream->SetObjectElement(nullptr);
                                                      stream->SetDOMDocument(nullptr);
                                                  });
}

IKWObjectType* CKWXMLFileTypeManifest::GetFieldStreamType() const {
    return CKWXMLFileFieldStream::GetCKWXMLFileFieldStreamType();
}
