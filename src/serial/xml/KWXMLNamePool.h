// Xerces keeps every name of a DOM (element and attribute names) in one pool
// per document: a hash table of 257 chains that never grows. The archive names
// an element after each stored object, so creating or parsing N objects would
// walk chains of N/257 names each time: quadratic. This grows the table as the
// names come in.
#pragma once

#include <xercesc/dom/DOMDocument.hpp>

namespace kwXMLNamePool {

// Rehashes the pool of document into a table of twice as many chains as names
// when it has fewer chains than names. Cheap unless names is a power of two,
// so callers pass a running count (an upper bound of the distinct names); no
// effect on a DOM that is not Xerces' own.
void Fit(XERCES_CPP_NAMESPACE::DOMDocument* document, XMLSize_t names);

}  // namespace kwXMLNamePool
