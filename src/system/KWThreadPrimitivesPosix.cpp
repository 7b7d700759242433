// The worker threads' services on POSIX systems: pthreads behaving as the
// Win32 calls do. Handles are reference-counted records, so a thread that
// ends after its owner let go never touches freed memory.
#if !defined(_WIN32)

#include "KWThreadPrimitives.h"

#include <cassert>
#include <cerrno>
#include <climits>
#include <cstring>
#include <ctime>

#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace kwThread {

namespace {

thread_local DWORD t_lastError = ERROR_SUCCESS;

// Win32 codes of the errors the pthread calls report, and back for the text.
const struct {
    int errnoValue;
    DWORD error;
} kErrorPairs[] = {
    {EAGAIN, ERROR_MAX_THRDS_REACHED}, {ENOMEM, ERROR_NOT_ENOUGH_MEMORY},
    {EINVAL, ERROR_INVALID_PARAMETER}, {EPERM, ERROR_ACCESS_DENIED},
    {ESRCH, ERROR_INVALID_HANDLE},
};

BOOL Fail(int errnoValue) {
    t_lastError = ERROR_INVALID_FUNCTION;
    for (const auto& pair : kErrorPairs)
        if (pair.errnoValue == errnoValue)
            t_lastError = pair.error;
    return FALSE;
}

// A record shared by its handles and, for threads, the running thread.
struct SShared {
    std::atomic<int> references{1};
    pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
    pthread_cond_t changed;

    SShared() {
        pthread_condattr_t attributes;
        pthread_condattr_init(&attributes);
        pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
        pthread_cond_init(&changed, &attributes);
        pthread_condattr_destroy(&attributes);
    }
    virtual ~SShared() {
        pthread_cond_destroy(&changed);
        pthread_mutex_destroy(&mutex);
    }
    void Retain() { references.fetch_add(1, std::memory_order_relaxed); }
    void Release() {
        if (references.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete this;
    }
};

// Holds the record's mutex; releases it also when a cancelled thread
// unwinds out of a wait.
class CHeld {
public:
    explicit CHeld(SShared* pShared) : m_pShared(pShared) { pthread_mutex_lock(&pShared->mutex); }
    ~CHeld() { pthread_mutex_unlock(&m_pShared->mutex); }
    CHeld(const CHeld&) = delete;
    CHeld& operator=(const CHeld&) = delete;

private:
    SShared* m_pShared;
};

// Keeps a record alive for a scope, also when a cancelled thread unwinds.
class CReference {
public:
    explicit CReference(SShared* pShared) : m_pShared(pShared) { pShared->Retain(); }
    ~CReference() { m_pShared->Release(); }
    CReference(const CReference&) = delete;
    CReference& operator=(const CReference&) = delete;

private:
    SShared* m_pShared;
};

struct SEvent : SShared {
    bool signalled = false;
};

struct SThread : SShared {
    pthread_t thread{};
    DWORD threadId = 0;
    bool idKnown = false;
    bool ended = false;  // by returning or by TerminateThread
    bool left = false;   // the thread has left its stack
    DWORD exitCode = STILL_ACTIVE;
    int priority = THREAD_PRIORITY_NORMAL;
    ThreadFunction function = nullptr;
    void* pParameter = nullptr;
};

SEvent* AsEvent(HANDLE hEvent) {
    return static_cast<SEvent*>(hEvent);
}

SThread* AsThread(HANDLE hThread) {
    return static_cast<SThread*>(hThread);
}

timespec DeadlineAfter(DWORD milliseconds) {
    timespec deadline;
    clock_gettime(CLOCK_MONOTONIC, &deadline);
    deadline.tv_sec += milliseconds / 1000;
    deadline.tv_nsec += static_cast<long>(milliseconds % 1000) * 1000000L;
    if (deadline.tv_nsec >= 1000000000L) {
        deadline.tv_sec += 1;
        deadline.tv_nsec -= 1000000000L;
    }
    return deadline;
}

// Waits on the record's condition until done() or the time runs out; the
// caller holds the mutex. pthread_cond_timedwait is a cancellation point.
template <class Done>
bool WaitUntil(SShared* pShared, DWORD milliseconds, Done done) {
    timespec deadline = DeadlineAfter(milliseconds);
    while (!done()) {
        if (milliseconds == INFINITE)
            pthread_cond_wait(&pShared->changed, &pShared->mutex);
        else if (pthread_cond_timedwait(&pShared->changed, &pShared->mutex, &deadline) == ETIMEDOUT)
            return done();
    }
    return true;
}

// Marks the thread ended however it leaves: by returning or, after a
// forced termination, by unwinding.
class CEndMarker {
public:
    explicit CEndMarker(SThread* pThread) : m_pThread(pThread) {}
    ~CEndMarker() {
        {
            CHeld held(m_pThread);
            if (!m_pThread->ended) {
                m_pThread->ended = true;
                m_pThread->exitCode = m_exitCode;
            }
            m_pThread->left = true;
            pthread_cond_broadcast(&m_pThread->changed);
        }
        m_pThread->Release();
    }
    CEndMarker(const CEndMarker&) = delete;
    CEndMarker& operator=(const CEndMarker&) = delete;
    void SetExitCode(DWORD exitCode) { m_exitCode = exitCode; }

private:
    SThread* m_pThread;
    DWORD m_exitCode = 0;
};

void* StartRoutine(void* pRecord) {
    SThread* pThread = AsThread(pRecord);
    {
        CHeld held(pThread);
        pThread->threadId = static_cast<DWORD>(::syscall(SYS_gettid));
        pThread->idKnown = true;
        pthread_cond_broadcast(&pThread->changed);
    }
    CEndMarker marker(pThread);
    marker.SetExitCode(pThread->function(pThread->pParameter));
    return nullptr;
}

bool ValidPriority(int priority) {
    return priority == THREAD_PRIORITY_IDLE || priority == THREAD_PRIORITY_TIME_CRITICAL ||
           (priority >= THREAD_PRIORITY_LOWEST && priority <= THREAD_PRIORITY_HIGHEST);
}

size_t UsableStackSize(DWORD stackSize) {
    size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    size_t size = stackSize < PTHREAD_STACK_MIN ? PTHREAD_STACK_MIN : stackSize;
    return (size + page - 1) / page * page;
}

}  // namespace

KWThreadCriticalSection* NewCriticalSection() {
    return new KWThreadCriticalSection;
}

void DeleteCriticalSection(KWThreadCriticalSection* pSection) {
    delete pSection;
}

void Enter(KWThreadCriticalSection* pSection) {
    pSection->mutex.lock();
    pSection->owner.store(CurrentThreadId(), std::memory_order_relaxed);
    ++pSection->depth;
}

void Leave(KWThreadCriticalSection* pSection) {
    if (pSection->owner.load(std::memory_order_relaxed) != CurrentThreadId() ||
        pSection->depth == 0) {
        assert(!"a lock was released by a thread that does not hold it");
        return;
    }
    if (--pSection->depth == 0)
        pSection->owner.store(0, std::memory_order_relaxed);
    pSection->mutex.unlock();
}

DWORD CurrentThreadId() {
    static thread_local DWORD t_id = static_cast<DWORD>(::syscall(SYS_gettid));
    return t_id;
}

DWORD LastError() {
    return t_lastError;
}

void Sleep(DWORD milliseconds) {
    timespec rest = {static_cast<time_t>(milliseconds / 1000),
                     static_cast<long>(milliseconds % 1000) * 1000000L};
    // nanosleep is a cancellation point, as the waits are.
    while (nanosleep(&rest, &rest) == -1 && errno == EINTR) {
    }
}

HANDLE CreateEvent() {
    return new SEvent;
}

BOOL SetEvent(HANDLE hEvent) {
    if (!hEvent)
        return Fail(ESRCH);
    SEvent* pEvent = AsEvent(hEvent);
    CHeld held(pEvent);
    pEvent->signalled = true;
    pthread_cond_signal(&pEvent->changed);
    return TRUE;
}

DWORD WaitForEvent(HANDLE hEvent, DWORD milliseconds) {
    if (!hEvent) {
        Fail(ESRCH);
        return WAIT_FAILED;
    }
    SEvent* pEvent = AsEvent(hEvent);
    CReference reference(pEvent);
    CHeld held(pEvent);
    if (!WaitUntil(pEvent, milliseconds, [pEvent] { return pEvent->signalled; }))
        return WAIT_TIMEOUT;
    pEvent->signalled = false;
    return WAIT_OBJECT_0;
}

void CloseEvent(HANDLE hEvent) {
    if (hEvent)
        AsEvent(hEvent)->Release();
}

HANDLE CreateThread(LPSECURITY_ATTRIBUTES, DWORD stackSize, ThreadFunction function,
                    void* pParameter, DWORD* pThreadId) {
    SThread* pThread = new SThread;
    pThread->function = function;
    pThread->pParameter = pParameter;
    pThread->Retain();  // the running thread's reference
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    int error = stackSize ? pthread_attr_setstacksize(&attributes, UsableStackSize(stackSize)) : 0;
    if (!error)
        error = pthread_create(&pThread->thread, &attributes, StartRoutine, pThread);
    pthread_attr_destroy(&attributes);
    if (error) {
        delete pThread;
        Fail(error);
        return nullptr;
    }
    // The id is the kernel's, as the thread itself sees it.
    CHeld held(pThread);
    WaitUntil(pThread, INFINITE, [pThread] { return pThread->idKnown; });
    if (pThreadId)
        *pThreadId = pThread->threadId;
    return pThread;
}

BOOL GetExitCodeThread(HANDLE hThread, DWORD* pExitCode) {
    if (!hThread || !pExitCode)
        return Fail(hThread ? EINVAL : ESRCH);
    SThread* pThread = AsThread(hThread);
    CHeld held(pThread);
    *pExitCode = pThread->exitCode;
    return TRUE;
}

BOOL TerminateThread(HANDLE hThread, DWORD exitCode) {
    if (!hThread)
        return Fail(ESRCH);
    SThread* pThread = AsThread(hThread);
    CHeld held(pThread);
    if (pThread->ended)
        return TRUE;
    // The thread counts as ended from here on; it leaves at its next wait or
    // sleep, unwinding its stack.
    pThread->ended = true;
    pThread->exitCode = exitCode;
    int error = pthread_cancel(pThread->thread);
    return error && error != ESRCH ? Fail(error) : TRUE;
}

int GetThreadPriority(HANDLE hThread) {
    if (!hThread) {
        Fail(ESRCH);
        return 0x7FFFFFFF;
    }
    SThread* pThread = AsThread(hThread);
    CHeld held(pThread);
    return pThread->priority;
}

BOOL SetThreadPriority(HANDLE hThread, int priority) {
    if (!hThread)
        return Fail(ESRCH);
    if (!ValidPriority(priority))
        return Fail(EINVAL);
    SThread* pThread = AsThread(hThread);
    CHeld held(pThread);
    pThread->priority = priority;
    return TRUE;
}

void CloseThread(HANDLE hThread) {
    if (hThread)
        AsThread(hThread)->Release();
}

HANDLE RetainThread(HANDLE hThread) {
    if (hThread)
        AsThread(hThread)->Retain();
    return hThread;
}

void AwaitEnd(HANDLE hRetained, DWORD milliseconds) {
    if (!hRetained)
        return;
    SThread* pThread = AsThread(hRetained);
    {
        CHeld held(pThread);
        // Ended by Kill, the thread still unwinds: wait for the marker's
        // signal, which comes only when it has left.
        WaitUntil(pThread, milliseconds, [pThread] { return pThread->left; });
    }
    pThread->Release();
}

CString SystemErrorText(DWORD error) {
    for (const auto& pair : kErrorPairs)
        if (pair.error == error)
            return CString(std::strerror(pair.errnoValue));
    return CString();
}

}  // namespace kwThread

#endif  // !_WIN32
