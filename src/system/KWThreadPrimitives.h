// The operating-system services the worker threads stand on, with one
// Win32-shaped face for both builds: Windows calls kernel32 directly, the
// POSIX build keeps the same observable behaviour on pthreads.
#pragma once

#include "kwcore/platform/CString.h"
#include "kwcore/platform/Win32Types.h"

#include <atomic>
#if !defined(_WIN32)
#include <mutex>
#endif

// Recursive; remembers its holder so that a release by any other thread is
// caught (asserted in debug builds, ignored in release builds) instead of
// corrupting the lock.
struct KWThreadCriticalSection {
#if defined(_WIN32)
    CRITICAL_SECTION section;
#else
    std::recursive_mutex mutex;
#endif
    std::atomic<DWORD> owner{0};
    int depth = 0;
};

namespace kwThread {

KWThreadCriticalSection* NewCriticalSection();
void DeleteCriticalSection(KWThreadCriticalSection* pSection);
void Enter(KWThreadCriticalSection* pSection);
void Leave(KWThreadCriticalSection* pSection);

DWORD CurrentThreadId();
// Win32 error code of the last failed call of this namespace on this thread.
DWORD LastError();
void Sleep(DWORD milliseconds);

// Auto-reset, initially non-signalled events.
HANDLE CreateEvent();
BOOL SetEvent(HANDLE hEvent);
// WAIT_OBJECT_0 when signalled, WAIT_TIMEOUT when the time ran out.
DWORD WaitForEvent(HANDLE hEvent, DWORD milliseconds);
void CloseEvent(HANDLE hEvent);

typedef DWORD (*ThreadFunction)(void* pParameter);
HANDLE CreateThread(LPSECURITY_ATTRIBUTES pAttributes, DWORD stackSize, ThreadFunction function,
                    void* pParameter, DWORD* pThreadId);
BOOL GetExitCodeThread(HANDLE hThread, DWORD* pExitCode);
BOOL TerminateThread(HANDLE hThread, DWORD exitCode);
int GetThreadPriority(HANDLE hThread);
BOOL SetThreadPriority(HANDLE hThread, int priority);
void CloseThread(HANDLE hThread);
// A second reference to a thread, for waiting on its end after the first
// was closed. AwaitEnd waits at most the given time and drops the reference.
HANDLE RetainThread(HANDLE hThread);
void AwaitEnd(HANDLE hRetained, DWORD milliseconds);

// The system's text for a Win32 error code; empty when it has none.
CString SystemErrorText(DWORD error);

}  // namespace kwThread
