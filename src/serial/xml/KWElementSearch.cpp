#include "KWElementSearch.h"

#include <xercesc/util/XMLString.hpp>

XERCES_CPP_NAMESPACE_USE

namespace kwElementSearch {
namespace {
// The element after element in a depth-first walk below root, or null.
DOMElement* NextDescendant(DOMElement* root, DOMElement* element) {
    if (DOMElement* child = element->getFirstElementChild()) {
        return child;
    }
    for (; element != root; element = static_cast<DOMElement*>(element->getParentNode())) {
        if (DOMElement* sibling = element->getNextElementSibling()) {
            return sibling;
        }
    }
    return nullptr;
}
}  // namespace

std::vector<DOMElement*> FindDescendants(DOMElement* root, const XMLCh* name, std::size_t limit) {
    std::vector<DOMElement*> found;
    for (DOMElement* element = root ? NextDescendant(root, root) : nullptr;
         element && found.size() < limit; element = NextDescendant(root, element)) {
        if (XMLString::equals(element->getTagName(), name)) {
            found.push_back(element);
        }
    }
    return found;
}

// Called for every field read, so it counts instead of collecting.
DOMElement* FindSingleDescendant(DOMElement* root, const XMLCh* name) {
    DOMElement* single = nullptr;
    for (DOMElement* element = root ? NextDescendant(root, root) : nullptr; element;
         element = NextDescendant(root, element)) {
        if (XMLString::equals(element->getTagName(), name)) {
            if (single) {
                return nullptr;
            }
            single = element;
        }
    }
    return single;
}

}  // namespace kwElementSearch
