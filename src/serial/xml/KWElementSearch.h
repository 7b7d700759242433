// Finding elements below an element of a DOM tree by name, skipping every
// other kind of node (whitespace, comments).
#pragma once

#include <vector>
#include <xercesc/dom/DOMElement.hpp>

namespace kwElementSearch {

// The descendant elements of root named name, in document order; the search
// stops once it holds limit of them. Unlike getElementsByTagName it leaves no
// node list cached in the document, which would slow a large load down as it
// goes.
std::vector<XERCES_CPP_NAMESPACE::DOMElement*> FindDescendants(
    XERCES_CPP_NAMESPACE::DOMElement* root, const XMLCh* name, std::size_t limit);
// The one descendant of root named name; null when there is none or more.
XERCES_CPP_NAMESPACE::DOMElement* FindSingleDescendant(XERCES_CPP_NAMESPACE::DOMElement* root,
                                                       const XMLCh* name);

}  // namespace kwElementSearch
