// The DOMErrorHandler that passes the DOM writer's errors on to its
// archive's handleError, which hosts may override.
#pragma once

#include <xercesc/dom/DOMErrorHandler.hpp>

class CKWXMLFileArchive;

namespace kwXerces {

class WriterErrorHandler : public XERCES_CPP_NAMESPACE::DOMErrorHandler {
public:
    explicit WriterErrorHandler(CKWXMLFileArchive* archive) : m_pArchive(archive) {}

    bool handleError(const XERCES_CPP_NAMESPACE::DOMError& error) override;

private:
    CKWXMLFileArchive* m_pArchive;
};

}  // namespace kwXerces
