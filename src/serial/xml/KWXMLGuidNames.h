// GUIDs in the XML archive: element names ("_" and the 22-character base 64
// form) and the "T"/"I" attribute pair of a link.
#pragma once

#include <xercesc/dom/DOMElement.hpp>

#include "kwcore/object/CKWGuid.h"

class IKWObject;

namespace kwXMLGuidNames {

// The element name of guid, as the DOM's text.
void ElementName(const CKWGuid& guid, XMLCh (&name)[CKWGuid::XML_ELEMENT_TEXT_SIZE]);
// A new element named after guid, appended to parent; null without a
// document or parent, or when the DOM refuses it.
XERCES_CPP_NAMESPACE::DOMElement* AppendElement(XERCES_CPP_NAMESPACE::DOMDocument* document,
                                                XERCES_CPP_NAMESPACE::DOMElement* parent,
                                                const CKWGuid& guid);
// The GUID an element's name gives; empty for any other name.
CKWGuid FromElementName(const XERCES_CPP_NAMESPACE::DOMElement* element);
// Sets "T" to the object's type ID, then "I" to its instance ID.
void SetLinkAttributes(XERCES_CPP_NAMESPACE::DOMElement* element, IKWObject* object);
// The (type ID, instance ID) of a link element; empty where missing or bad.
CKWGuid LinkTypeID(const XERCES_CPP_NAMESPACE::DOMElement* element);
CKWGuid LinkInstanceID(const XERCES_CPP_NAMESPACE::DOMElement* element);

// Calls visit(guid, child) with each child element of parent named after a
// GUID, in document order; other elements are skipped.
template <class Visit>
void ForEachNamedChild(XERCES_CPP_NAMESPACE::DOMElement* parent, Visit&& visit) {
    for (auto* child = parent ? parent->getFirstElementChild() : nullptr; child;
         child = child->getNextElementSibling()) {
        const CKWGuid guid = FromElementName(child);
        if (guid.IsValid()) {
            visit(guid, child);
        }
    }
}

}  // namespace kwXMLGuidNames
