#include "CStoredXmlArchive.h"

#include <filesystem>
#include <fstream>
#include <map>
#include <system_error>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/util/TransService.hpp>

#include "kwcore/serial/IKWSerializableAdaptor.h"
#include "kwcore/serial/xml/CKWXMLFileDocument.h"
#include "kwcore/serial/xml/CKWXMLFileFieldStream.h"
#include "kwcore/serial/xml/CKWXMLFileTypeManifest.h"

XERCES_CPP_NAMESPACE_USE

namespace {
const XMLCh kValueAttribute[] = {u'V', 0};
const XMLCh kTypeAttribute[] = {u'T', 0};
const XMLCh kInstanceAttribute[] = {u'I', 0};
const XMLCh kLinkElement[] = {u'L', 0};

// GUID texts are ASCII: any other character leaves a text no GUID form reads.
std::string AsciiText(const XMLCh* text) {
    std::string ascii;
    for (; text && *text; ++text) {
        if (*text >= 0x80) {
            return std::string();
        }
        ascii += static_cast<char>(*text);
    }
    return ascii;
}

std::string Utf8Text(const XMLCh* text) {
    try {
        TranscodeToStr utf8(text, "UTF-8");
        return std::string(reinterpret_cast<const char*>(utf8.str()), utf8.length());
    } catch (...) {
        return "(text that is not UTF-16)";
    }
}

// The GUID named by an element: "_" and 22 characters of base 64.
CKWGuid GuidFromElementName(const DOMElement* element) {
    const std::string name = AsciiText(element->getTagName());
    CKWGuid guid;
    if (name.size() == CKWGuid::XML_ELEMENT_TEXT_SIZE - 1) {
        guid.SetCStringXMLElement(name.c_str());
    }
    return guid;
}

SStoredLink ReadLink(const DOMElement* element) {
    SStoredLink link;
    link.typeText = Utf8Text(element->getAttribute(kTypeAttribute));
    link.instanceText = Utf8Text(element->getAttribute(kInstanceAttribute));
    link.typeID.SetCStringXML64(AsciiText(element->getAttribute(kTypeAttribute)).c_str());
    link.instanceID.SetCStringXML64(AsciiText(element->getAttribute(kInstanceAttribute)).c_str());
    return link;
}

SStoredField ReadField(const CKWGuid& fieldID, const DOMElement* element) {
    SStoredField field;
    field.fieldID = fieldID;
    if (element->hasAttribute(kValueAttribute)) {
        field.kind = SStoredField::Kind::Value;
        field.value = Utf8Text(element->getAttribute(kValueAttribute));
        return field;
    }
    if (element->hasAttribute(kTypeAttribute) || element->hasAttribute(kInstanceAttribute)) {
        field.kind = SStoredField::Kind::Link;
        field.links.push_back(ReadLink(element));
        return field;
    }
    for (const DOMElement* child = element->getFirstElementChild(); child;
         child = child->getNextElementSibling()) {
        if (XMLString::equals(child->getTagName(), kLinkElement)) {
            field.links.push_back(ReadLink(child));
        }
    }
    field.kind = field.links.empty() ? SStoredField::Kind::Empty : SStoredField::Kind::Links;
    return field;
}

// Children not named after a GUID are never read by the loader either.
SStoredObject ReadObject(const CKWGuid& instanceID, const DOMElement* element) {
    SStoredObject object{instanceID, {}};
    for (const DOMElement* child = element ? element->getFirstElementChild() : nullptr; child;
         child = child->getNextElementSibling()) {
        const CKWGuid fieldID = GuidFromElementName(child);
        if (fieldID.IsValid()) {
            object.fields.push_back(ReadField(fieldID, child));
        }
    }
    return object;
}

// The items of a level of the hierarchy in the order of their elements below
// parent. The library keeps them by GUID; the file order is the save order,
// which puts the object a save started from first.
template <class Item, class Iterator, class ElementOf>
std::vector<Item*> InFileOrder(Iterator iterator, const DOMElement* parent, ElementOf elementOf) {
    std::map<const DOMElement*, Item*> byElement;
    for (auto* each = iterator.GetNext(1); each; each = iterator.GetNext(0)) {
        if (auto* item = dynamic_cast<Item*>(each)) {
            byElement.emplace(elementOf(item), item);
        }
    }
    std::vector<Item*> items;
    for (const DOMElement* child = parent ? parent->getFirstElementChild() : nullptr; child;
         child = child->getNextElementSibling()) {
        auto found = byElement.find(child);
        if (found != byElement.end()) {
            items.push_back(found->second);
        }
    }
    return items;
}

// Why path cannot be read as a file, or empty when it can.
std::string WhyUnreadable(const std::string& path) {
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (error) {
        return error.message();
    }
    if (std::filesystem::is_directory(status)) {
        return "it is a directory";
    }
    if (!std::ifstream(path, std::ios::binary)) {
        return "it cannot be opened for reading";
    }
    return std::string();
}
}  // namespace

namespace kwXmlArchives {

Ptr New(const std::string& path) {
    Ptr archive(dynamic_cast<CKWXMLFileArchive*>(
        CKWXMLFileArchive::GetCKWXMLFileArchiveType()->CreateInstance(CKWGuid())));
    if (archive) {
        archive->SetFile(path.c_str());
    }
    return archive;
}

bool Save(const std::string& path, const CKWGuid& documentID, IKWSerializableAdaptor* root) {
    Ptr archive = New(path);
    if (!archive || !archive->Open(CKWArchive::modeWrite)) {
        return false;
    }
    CKWDocument* document = archive->CreateNewDocument(documentID, nullptr);
    const bool saved = document && root->SerializeTo(document);
    return archive->Close() && saved;
}

IKWObject* Load(const std::string& path, const CKWGuid& documentID, const CKWGuid& typeID,
                const CKWGuid& instanceID) {
    Ptr archive = New(path);
    if (!archive || !archive->Open(CKWArchive::modeRead)) {
        return nullptr;
    }
    auto* document = static_cast<CKWDocument*>(archive->GetDocumentCollection()->Find(documentID));
    IKWObject* loaded = document ? document->GetObjectA(typeID, instanceID) : nullptr;
    archive->Close();
    return loaded;
}

}  // namespace kwXmlArchives

CStoredXmlArchive::~CStoredXmlArchive() {
    if (m_pArchive) {
        m_pArchive->Close();
    }
}

bool CStoredXmlArchive::Open(const std::string& path, std::string& error) {
    const std::string unreadable = WhyUnreadable(path);
    if (!unreadable.empty()) {
        error = "cannot read '" + path + "': " + unreadable;
        return false;
    }
    m_pArchive = kwXmlArchives::New(path);
    if (!m_pArchive || !m_pArchive->Open(CKWArchive::modeRead)) {
        error = "'" + path + "' is not an XML archive: it is empty, truncated or not XML";
        return false;
    }
    ReadDocuments();
    return true;
}

void CStoredXmlArchive::ReadDocuments() {
    const DOMDocument* dom = m_pArchive->GetDOMDocument();
    const auto documents = InFileOrder<CKWXMLFileDocument>(
        m_pArchive->GetDocumentIterator(), dom ? dom->getDocumentElement() : nullptr,
        [](const CKWXMLFileDocument* document) { return document->GetDocumentElement(); });
    for (CKWXMLFileDocument* document : documents) {
        SStoredDocument stored;
        stored.document = document;
        const auto manifests = InFileOrder<CKWXMLFileTypeManifest>(
            document->GetTypeManifestIterator(), document->GetDocumentElement(),
            [](const CKWXMLFileTypeManifest* manifest) { return manifest->GetManifestElement(); });
        for (CKWXMLFileTypeManifest* manifest : manifests) {
            SStoredType type{manifest->GetStoredTypeID(), {}};
            const auto streams = InFileOrder<CKWXMLFileFieldStream>(
                manifest->GetInstanceFieldStreamIterator(), manifest->GetManifestElement(),
                [](const CKWXMLFileFieldStream* stream) { return stream->GetObjectElement(); });
            for (CKWXMLFileFieldStream* stream : streams) {
                type.objects.push_back(
                    ReadObject(stream->GetInstanceID(), stream->GetObjectElement()));
                stored.held.emplace(type.typeID, stream->GetInstanceID());
            }
            stored.types.push_back(std::move(type));
        }
        m_documents.push_back(std::move(stored));
    }
}
