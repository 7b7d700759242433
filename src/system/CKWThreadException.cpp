#include "kwcore/system/CKWThread.h"

#include "KWThreadPrimitives.h"

#include <cstdio>
#include <cstring>

IMPLEMENT_DYNAMIC(CKWThreadException, CException)

const char* const CKWThreadException::s_strERROR_THREAD_ALREADY_STARTED =
    "Thread is already started!";

namespace {

// The string resource of the executable; the POSIX build has no resources.
CString LoadResourceString(UINT messageId) {
#if defined(_WIN32)
    char buffer[1024] = "";
    if (::LoadStringA(::GetModuleHandleA(nullptr), messageId, buffer, sizeof buffer) > 0)
        return CString(buffer);
#else
    (void)messageId;
#endif
    return CString();
}

}  // namespace

CKWThreadException::CKWThreadException(CKWThread* pThread) : m_pThread(pThread), m_nType(0) {}

CKWThreadException::CKWThreadException(CKWThread* pThread, UINT messageId, int type)
    : m_pThread(pThread), m_strErrorMsg(LoadResourceString(messageId)), m_nType(type) {}

CKWThreadException::CKWThreadException(CKWThread* pThread, CString message, int type)
    : m_pThread(pThread), m_strErrorMsg(message), m_nType(type) {}

CKWThreadException::~CKWThreadException() = default;

CKWThread* CKWThreadException::GetThread() {
    return m_pThread;
}

int CKWThreadException::GetType() {
    return m_nType;
}

CString CKWThreadException::GetErrorMsg() {
    return m_strErrorMsg;
}

BOOL CKWThreadException::GetErrorMessage(char* buffer, UINT maxChars, UINT* helpContext) const {
    if (helpContext)
        *helpContext = 0;
    if (!buffer || maxChars == 0)
        return FALSE;
    std::snprintf(buffer, maxChars, "%s", static_cast<const char*>(m_strErrorMsg));
    return TRUE;
}

int CKWThreadException::ReportError(UINT type, UINT messageId) {
    CString text = messageId ? LoadResourceString(messageId) : m_strErrorMsg;
#if defined(_WIN32)
    return ::MessageBoxA(nullptr, text, nullptr, type);
#else
    (void)type;
    std::fprintf(stderr, "%s\n", static_cast<const char*>(text));
    return 0;
#endif
}

CString CKWThreadException::GetLastSystemErrorMsg(DWORD error) {
    return kwThread::SystemErrorText(error);
}

void CKWThreadException::SetThread(CKWThread* pThread) {
    m_pThread = pThread;
}

void CKWThreadException::SetType(int type) {
    m_nType = type;
}

void CKWThreadException::SetErrorMsg(UINT messageId) {
    m_strErrorMsg = LoadResourceString(messageId);
}

void CKWThreadException::SetErrorMsg(CString message) {
    m_strErrorMsg = message;
}
