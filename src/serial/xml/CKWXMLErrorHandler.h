// CKWXMLErrorHandler: the DOMErrorHandler that passes the DOM writer's
// errors on to its archive's handleError.
#pragma once

#include <xercesc/dom/DOMErrorHandler.hpp>

class CKWXMLFileArchive;

class CKWXMLErrorHandler : public XERCES_CPP_NAMESPACE::DOMErrorHandler {
public:
    explicit CKWXMLErrorHandler(CKWXMLFileArchive* archive) : m_pArchive(archive) {}

    bool handleError(const XERCES_CPP_NAMESPACE::DOMError& error) override;

private:
    CKWXMLFileArchive* m_pArchive;
};
