// The worker threads' services on Windows: kernel32 itself.
#if defined(_WIN32)

#include "KWThreadPrimitives.h"

#include <cassert>

namespace kwThread {

namespace {

// The DWORD the thread function returns is the thread's exit code already.
struct SStart {
    ThreadFunction function;
    void* pParameter;
};

DWORD WINAPI StartRoutine(LPVOID pStart) {
    SStart start = *static_cast<SStart*>(pStart);
    delete static_cast<SStart*>(pStart);
    return start.function(start.pParameter);
}

}  // namespace

KWThreadCriticalSection* NewCriticalSection() {
    KWThreadCriticalSection* pSection = new KWThreadCriticalSection;
    ::InitializeCriticalSection(&pSection->section);
    return pSection;
}

void DeleteCriticalSection(KWThreadCriticalSection* pSection) {
    if (!pSection)
        return;
    ::DeleteCriticalSection(&pSection->section);
    delete pSection;
}

void Enter(KWThreadCriticalSection* pSection) {
    ::EnterCriticalSection(&pSection->section);
    pSection->owner.store(::GetCurrentThreadId(), std::memory_order_relaxed);
    ++pSection->depth;
}

void Leave(KWThreadCriticalSection* pSection) {
    if (pSection->owner.load(std::memory_order_relaxed) != ::GetCurrentThreadId() ||
        pSection->depth == 0) {
        assert(!"a lock was released by a thread that does not hold it");
        return;
    }
    if (--pSection->depth == 0)
        pSection->owner.store(0, std::memory_order_relaxed);
    ::LeaveCriticalSection(&pSection->section);
}

DWORD CurrentThreadId() {
    return ::GetCurrentThreadId();
}

DWORD LastError() {
    return ::GetLastError();
}

void Sleep(DWORD milliseconds) {
    ::Sleep(milliseconds);
}

HANDLE CreateEvent() {
    return ::CreateEventA(nullptr, FALSE, FALSE, nullptr);
}

BOOL SetEvent(HANDLE hEvent) {
    return ::SetEvent(hEvent);
}

DWORD WaitForEvent(HANDLE hEvent, DWORD milliseconds) {
    return ::WaitForSingleObject(hEvent, milliseconds);
}

void CloseEvent(HANDLE hEvent) {
    ::CloseHandle(hEvent);
}

HANDLE CreateThread(LPSECURITY_ATTRIBUTES pAttributes, DWORD stackSize, ThreadFunction function,
                    void* pParameter, DWORD* pThreadId) {
    SStart* pStart = new SStart{function, pParameter};
    HANDLE hThread = ::CreateThread(pAttributes, stackSize, StartRoutine, pStart, 0, pThreadId);
    if (!hThread) {
        DWORD error = ::GetLastError();
        delete pStart;
        ::SetLastError(error);
    }
    return hThread;
}

BOOL GetExitCodeThread(HANDLE hThread, DWORD* pExitCode) {
    return ::GetExitCodeThread(hThread, pExitCode);
}

BOOL TerminateThread(HANDLE hThread, DWORD exitCode) {
    return ::TerminateThread(hThread, exitCode);
}

int GetThreadPriority(HANDLE hThread) {
    return ::GetThreadPriority(hThread);
}

BOOL SetThreadPriority(HANDLE hThread, int priority) {
    return ::SetThreadPriority(hThread, priority);
}

void CloseThread(HANDLE hThread) {
    ::CloseHandle(hThread);
}

HANDLE RetainThread(HANDLE hThread) {
    HANDLE hCopy = nullptr;
    HANDLE hProcess = ::GetCurrentProcess();
    if (!::DuplicateHandle(hProcess, hThread, hProcess, &hCopy, SYNCHRONIZE, FALSE, 0))
        return nullptr;
    return hCopy;
}

void AwaitEnd(HANDLE hRetained, DWORD milliseconds) {
    if (!hRetained)
        return;
    ::WaitForSingleObject(hRetained, milliseconds);
    ::CloseHandle(hRetained);
}

CString SystemErrorText(DWORD error) {
    char* pBuffer = nullptr;
    DWORD length = ::FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM,
                                    nullptr, error, MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT),
                                    reinterpret_cast<LPSTR>(&pBuffer), 0, nullptr);
    CString text;
    if (length && pBuffer)
        text = pBuffer;
    if (pBuffer)
        ::LocalFree(pBuffer);
    return text;
}

}  // namespace kwThread

#endif  // _WIN32
