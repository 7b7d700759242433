#include "KWWriterErrorHandler.h"

#include "kwcore/serial/xml/CKWXMLFileArchive.h"

namespace kwXerces {

bool WriterErrorHandler::handleError(const XERCES_CPP_NAMESPACE::DOMError& error) {
    return m_pArchive->handleError(error);
}

}  // namespace kwXerces
