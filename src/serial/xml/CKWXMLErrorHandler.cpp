#include "CKWXMLErrorHandler.h"

#include "kwcore/serial/xml/CKWXMLFileArchive.h"

bool CKWXMLErrorHandler::handleError(const XERCES_CPP_NAMESPACE::DOMError& error) {
    return m_pArchive->handleError(error);
}
