#include "KWXMLGuidNames.h"

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/util/XMLString.hpp>

#include "kwcore/object/IKWObject.h"
#include "kwcore/object/IKWObjectType.h"

XERCES_CPP_NAMESPACE_USE

namespace kwXMLGuidNames {
namespace {
const XMLCh kTypeAttribute[] = {u'T', 0};
const XMLCh kInstanceAttribute[] = {u'I', 0};
// The longest GUID text an attribute may hold (the XML form).
constexpr XMLSize_t kLongestGuidText = 41;

// GUID texts are ASCII, so they widen and narrow character by character.
template <std::size_t N>
void Widen(const char (&text)[N], XMLCh (&wide)[N]) {
    for (std::size_t i = 0; i < N; ++i) {
        wide[i] = static_cast<unsigned char>(text[i]);
    }
}

// Empty for text longer than maxLength; other characters than ASCII become
// ones no GUID form accepts.
std::string NarrowGuidText(const XMLCh* text, XMLSize_t maxLength) {
    const XMLSize_t length = text ? XMLString::stringLen(text) : 0;
    if (length > maxLength) {
        return std::string();
    }
    std::string narrow(length, '\0');
    for (XMLSize_t i = 0; i < length; ++i) {
        narrow[i] = text[i] < 0x80 ? static_cast<char>(text[i]) : '\x01';
    }
    return narrow;
}

void SetGuidAttribute(DOMElement* element, const XMLCh* name, const CKWGuid& guid) {
    char text[CKWGuid::XML64_TEXT_SIZE];
    guid.WriteCStringXML64(text);
    XMLCh wide[CKWGuid::XML64_TEXT_SIZE];
    Widen(text, wide);
    element->setAttribute(name, wide);
}

CKWGuid GuidFromAttribute(const DOMElement* element, const XMLCh* name) {
    CKWGuid guid;
    if (element) {
        guid.SetCStringXML64(NarrowGuidText(element->getAttribute(name), kLongestGuidText).c_str());
    }
    return guid;
}
}  // namespace

void ElementName(const CKWGuid& guid, XMLCh (&name)[CKWGuid::XML_ELEMENT_TEXT_SIZE]) {
    char text[CKWGuid::XML_ELEMENT_TEXT_SIZE];
    guid.WriteCStringXMLElement(text);
    Widen(text, name);
}

DOMElement* AppendElement(DOMDocument* document, DOMElement* parent, const CKWGuid& guid) {
    if (!document || !parent) {
        return nullptr;
    }
    XMLCh name[CKWGuid::XML_ELEMENT_TEXT_SIZE];
    ElementName(guid, name);
    DOMElement* element = document->createElement(name);
    if (element) {
        parent->appendChild(element);
    }
    return element;
}

CKWGuid FromElementName(const DOMElement* element) {
    CKWGuid guid;
    if (element) {
        const XMLSize_t nameLength = CKWGuid::XML_ELEMENT_TEXT_SIZE - 1;
        guid.SetCStringXMLElement(NarrowGuidText(element->getTagName(), nameLength).c_str());
    }
    return guid;
}

void SetLinkAttributes(DOMElement* element, IKWObject* object) {
    if (!element || !object || !object->GetType()) {
        return;
    }
    SetGuidAttribute(element, kTypeAttribute, object->GetType()->GetID());
    SetGuidAttribute(element, kInstanceAttribute, object->GetInstanceID());
}

CKWGuid LinkTypeID(const DOMElement* element) {
    return GuidFromAttribute(element, kTypeAttribute);
}

CKWGuid LinkInstanceID(const DOMElement* element) {
    return GuidFromAttribute(element, kInstanceAttribute);
}

}  // namespace kwXMLGuidNames
