#include "KWArchiveParser.h"

#include <xercesc/util/XMLChar.hpp>

#include "KWXMLNamePool.h"

XERCES_CPP_NAMESPACE_USE

namespace kwXerces {

void ArchiveParser::startDocument() {
    m_elements = 0;
    XercesDOMParser::startDocument();
}

void ArchiveParser::startElement(const XMLElementDecl& elemDecl, unsigned int urlId,
                                 const XMLCh* elemPrefix, const RefVectorOf<XMLAttr>& attrList,
                                 XMLSize_t attrCount, bool isEmpty, bool isRoot) {
    XercesDOMParser::startElement(elemDecl, urlId, elemPrefix, attrList, attrCount, isEmpty,
                                  isRoot);
    kwXMLNamePool::Fit(getDocument(), ++m_elements);
}

void ArchiveParser::docCharacters(const XMLCh* chars, XMLSize_t length, bool cdataSection) {
    if (!cdataSection && XMLChar1_0::isAllSpaces(chars, length)) {
        return;
    }
    XercesDOMParser::docCharacters(chars, length, cdataSection);
}

}  // namespace kwXerces
