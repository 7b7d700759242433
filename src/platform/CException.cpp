#include "kwcore/platform/CException.h"

#include <cstdio>

IMPLEMENT_DYNAMIC(CException, CObject)

CException::~CException() = default;

void CException::Delete() {
    if (m_bAutoDelete) {
        delete this;
    }
}

BOOL CException::GetErrorMessage(char* buffer, UINT maxChars, UINT* helpContext) const {
    if (buffer && maxChars > 0) {
        buffer[0] = '\0';
    }
    if (helpContext) {
        *helpContext = 0;
    }
    return FALSE;
}

BOOL CException::GetErrorMessage(char* buffer, UINT maxChars, UINT* helpContext) {
    return static_cast<const CException*>(this)->GetErrorMessage(buffer, maxChars, helpContext);
}

int CException::ReportError(UINT, UINT) {
    char message[1024];
    if (!GetErrorMessage(message, sizeof message) || message[0] == '\0') {
        std::fputs("No error message is available.\n", stderr);
        return 0;
    }
    std::fprintf(stderr, "%s\n", message);
    return 0;
}
