#include "kwcore/serial/xml/CKWXMLFileDocument.h"

#include <xercesc/dom/DOM.hpp>

#include "KWForEachAs.h"
#include "KWXMLGuidNames.h"
#include "KWXercesGuard.h"
#include "kwcore/serial/xml/CKWXMLFileArchive.h"
#include "kwcore/serial/xml/CKWXMLFileTypeManifest.h"

XERCES_CPP_NAMESPACE_USE

KW_IMPLEMENT_TYPE(CKWXMLFileDocument, "{9B4DB7C7-29CA-4F6D-A78B-D2825148CE30}",
                  "{4F87AD20-AE52-43A7-882C-599156B30828}")

void CKWXMLFileDocument::SetArchive(CKWXMLFileArchive* archive) {
    m_pArchive = archive;
    if (!archive || archive->GetAccessMode() != CKWArchive::modeWrite) {
        return;
    }
    DOMDocument* dom = archive->GetDOMDocument();
    m_pDocumentElement = kwXerces::Guarded<DOMElement*>(nullptr, [&] {
        DOMElement* root = dom ? dom->getDocumentElement() : nullptr;
        return kwXMLGuidNames::AppendElement(dom, root, GetInstanceID());
    });
}

CKWTypeManifest* CKWXMLFileDocument::CreateTypeManifest(CKWGuid typeID, IKWObjectType* storedType) {
    CKWTypeManifest* manifest = CKWDocument::CreateTypeManifest(typeID, storedType);
    if (auto* xmlManifest = dynamic_cast<CKWXMLFileTypeManifest*>(manifest)) {
        xmlManifest->SetArchive(m_pArchive);
        xmlManifest->SetDocument(this);
    }
    return manifest;
}

int CKWXMLFileDocument::LoadTypeManifests(DOMElement* element) {
    m_pDocumentElement = element;
    kwXMLGuidNames::ForEachNamedChild(element, [&](const CKWGuid& typeID, DOMElement* child) {
        auto* manifest = dynamic_cast<CKWXMLFileTypeManifest*>(CreateTypeManifest(typeID, nullptr));
        if (manifest) {
            manifest->LoadFieldStreams(child);
        }
    });
    return 1;
}

void CKWXMLFileDocument::DetachDOM() {
    m_pDocumentElement = nullptr;
    kwIteration::ForEachAs<CKWXMLFileTypeManifest>(
        GetTypeManifestIterator(), [](CKWXMLFileTypeManifest* manifest) { manifest->DetachDOM(); });
}

IKWObjectType* CKWXMLFileDocument::GetTypeManifestType() const {
    return CKWXMLFileTypeManifest::GetCKWXMLFileTypeManifestType();
}
