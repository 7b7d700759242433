// The Xerces-C classes named by the XML archive's interface, declared without
// their definitions: hosts need Xerces' headers only to use the DOM itself.
//
//   XERCES_CPP_NAMESPACE::DOMElement* element = document->GetDocumentElement();
#pragma once

#include <xercesc/util/XercesDefs.hpp>

XERCES_CPP_NAMESPACE_BEGIN
class DOMDocument;
class DOMElement;
class DOMError;
class XercesDOMParser;
XERCES_CPP_NAMESPACE_END
