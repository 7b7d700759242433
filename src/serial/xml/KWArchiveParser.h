// The XML archive's DOM parser. It keeps the name pool of the document it
// builds fitted to the number of elements parsed so far (see
// KWXMLNamePool.h), so parsing stays linear in the number of objects, and it
// leaves out the whitespace between elements: archives keep everything in
// elements and attributes, so those text nodes would only cost memory and time.
#pragma once

#include <xercesc/parsers/XercesDOMParser.hpp>

namespace kwXerces {

class ArchiveParser : public XERCES_CPP_NAMESPACE::XercesDOMParser {
public:
    void startElement(
        const XERCES_CPP_NAMESPACE::XMLElementDecl& elemDecl, unsigned int urlId,
        const XMLCh* elemPrefix,
        const XERCES_CPP_NAMESPACE::RefVectorOf<XERCES_CPP_NAMESPACE::XMLAttr>& attrList,
        XMLSize_t attrCount, bool isEmpty, bool isRoot) override;
    void startDocument() override;
    void docCharacters(const XMLCh* chars, XMLSize_t length, bool cdataSection) override;

private:
    XMLSize_t m_elements = 0;
};

}  // namespace kwXerces
