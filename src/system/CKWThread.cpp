#include "kwcore/system/CKWThread.h"

#include "KWThreadPrimitives.h"

#include <climits>

IMPLEMENT_DYNAMIC(CKWThread, CObject)

CList<LPTHREAD_SYNCHRONICITY, LPTHREAD_SYNCHRONICITY> CKWThread::s_synchronicityList;
KWThreadCriticalSection* CKWThread::s_pProcessLockObject = nullptr;
CKWThread::CInternalSynchronization CKWThread::s_InternalThreadSynchronization;

namespace {

const DWORD kNotStartedExitCode = 0xFFFFFFFE;
const DWORD kPollMilliseconds = 100;

// The number of 100 ms polls a time-out allows, in the signed arithmetic the
// thread objects have always used; INFINITE means no limit.
long long PollLimit(DWORD timeout) {
    return timeout == INFINITE ? LLONG_MAX
                               : static_cast<long long>(static_cast<int>(timeout * 100) / 100);
}

// Forced termination leaves the thread a little time to unwind on POSIX
// systems before its owner goes on.
const DWORD kKillGraceMilliseconds = 5000;

}  // namespace

// --- the library-wide lock

CKWThread::CInternalSynchronization::CInternalSynchronization()
    : m_pCriticalSection(kwThread::NewCriticalSection()) {}

CKWThread::CInternalSynchronization::~CInternalSynchronization() {
    kwThread::DeleteCriticalSection(m_pCriticalSection);
}

void CKWThread::CInternalSynchronization::Lock() {
    kwThread::Enter(m_pCriticalSection);
}

void CKWThread::CInternalSynchronization::Unlock() {
    kwThread::Leave(m_pCriticalSection);
}

namespace {

// Holds the library-wide lock for a scope, or until Release.
class CLibraryLock {
public:
    explicit CLibraryLock(CKWThread::CInternalSynchronization& lock) : m_lock(lock) {
        m_lock.Lock();
    }
    ~CLibraryLock() { Release(); }
    CLibraryLock(const CLibraryLock&) = delete;
    CLibraryLock& operator=(const CLibraryLock&) = delete;
    void Release() {
        if (m_bHeld) {
            m_bHeld = false;
            m_lock.Unlock();
        }
    }

private:
    CKWThread::CInternalSynchronization& m_lock;
    bool m_bHeld = true;
};

}  // namespace

// --- construction

CKWThread::CKWThread(void* ownerParam1, long ownerParam2)
    : m_bSupportCommands(FALSE),
      m_bSupportSynchronization(FALSE),
      m_pSynchronicity(nullptr),
      m_saAttributes{0, nullptr, FALSE},
      m_pAttributes(nullptr),
      m_hThread(nullptr),
      m_hNotificationEvent(nullptr),
      m_dwThreadID(0),
      m_dwStackSize(0),
      m_dwExitCode(kNotStartedExitCode),
      m_nActivityStatus(STATUS_NO_THREAD),
      m_pOwnerParam1(ownerParam1),
      m_lOwnerParam2(ownerParam2) {}

CKWThread::~CKWThread() {
    if (IsAlive()) {
        try {
            Kill(0, TRUE);
        } catch (CKWThreadException* pException) {
            pException->Delete();
        }
    }
    CLibraryLock lock(s_InternalThreadSynchronization);
    if (m_hNotificationEvent)
        kwThread::CloseEvent(m_hNotificationEvent);
    m_hNotificationEvent = nullptr;
    if (m_hThread) {
        kwThread::CloseThread(m_hThread);
        UnregisterRuntimeSynchronization();
    }
    ClearRuntimeData();
}

void CKWThread::ClearRuntimeData() {
    m_hThread = nullptr;
    m_dwThreadID = 0;
    m_nActivityStatus = STATUS_NO_THREAD;
    m_pSynchronicity = nullptr;
    m_arrCommands.RemoveAll();
}

// --- the life of the thread

void CKWThread::Start() {
    CLibraryLock lock(s_InternalThreadSynchronization);
    DWORD exitCode = 0;
    if (m_hThread && kwThread::GetExitCodeThread(m_hThread, &exitCode) &&
        exitCode == STILL_ACTIVE) {
        lock.Release();
        throw new CKWThreadException(this,
                                     CString(CKWThreadException::s_strERROR_THREAD_ALREADY_STARTED),
                                     CKWThreadException::ALREADY_STARTED);
    }
    if (m_hThread)
        kwThread::CloseThread(m_hThread);
    ClearRuntimeData();
    if (m_bSupportCommands && !m_hNotificationEvent) {
        m_hNotificationEvent = kwThread::CreateEvent();
        if (!m_hNotificationEvent) {
            CString text = CKWThreadException::GetLastSystemErrorMsg(kwThread::LastError());
            lock.Release();
            throw new CKWThreadException(this, text, CKWThreadException::CREATE_EVENT_FAILED);
        }
    }
    RegisterRuntimeSynchronization();
    m_hThread = kwThread::CreateThread(m_pAttributes, m_dwStackSize, ControllingFunction, this,
                                       &m_dwThreadID);
    if (!m_hThread) {
        CString text = CKWThreadException::GetLastSystemErrorMsg(kwThread::LastError());
        UnregisterRuntimeSynchronization();
        ClearRuntimeData();
        lock.Release();
        throw new CKWThreadException(this, text, CKWThreadException::CREATE_THREAD_FAILED);
    }
    CString error;
    if (!PostThreadCommand(CMD_START, error)) {
        kwThread::TerminateThread(m_hThread, static_cast<DWORD>(-1));
        kwThread::CloseThread(m_hThread);
        UnregisterRuntimeSynchronization();
        ClearRuntimeData();
        lock.Release();
        throw new CKWThreadException(this, error, CKWThreadException::POST_COMMAND_FAILED);
    }
    m_nActivityStatus = STATUS_STARTED;
}

DWORD CKWThread::ControllingFunction(void* pThis) {
    CKWThread* pThread = static_cast<CKWThread*>(pThis);
    DWORD exitCode = pThread->ThreadHandler();
    pThread->ResetThreadObject(exitCode);
    return exitCode;
}

void CKWThread::ResetThreadObject(DWORD exitCode) {
    CLibraryLock lock(s_InternalThreadSynchronization);
    UnregisterRuntimeSynchronization();
    if (m_hThread)
        kwThread::CloseThread(m_hThread);
    ClearRuntimeData();
    m_dwExitCode = exitCode;
}

int CKWThread::Stop(DWORD& exitCode, DWORD timeout) {
    CLibraryLock lock(s_InternalThreadSynchronization);
    DWORD liveCode = 0;
    if (m_hThread && kwThread::GetExitCodeThread(m_hThread, &liveCode) &&
        liveCode == STILL_ACTIVE) {
        long long limit = PollLimit(timeout);
        CString error;
        if (!PostThreadCommand(CMD_STOP, error)) {
            exitCode = m_dwExitCode;
            lock.Release();
            throw new CKWThreadException(this, error, CKWThreadException::POST_COMMAND_FAILED);
        }
        lock.Release();
        for (long long polls = 0; IsAlive() && polls < limit; ++polls)
            kwThread::Sleep(kPollMilliseconds);
        CLibraryLock again(s_InternalThreadSynchronization);
        exitCode = m_dwExitCode;
        return m_dwExitCode == STILL_ACTIVE ? 0 : 1;
    }
    if (m_hThread) {
        kwThread::GetExitCodeThread(m_hThread, &m_dwExitCode);
        kwThread::CloseThread(m_hThread);
        UnregisterRuntimeSynchronization();
    }
    exitCode = m_dwExitCode;
    ClearRuntimeData();
    return 1;
}

void CKWThread::Kill(DWORD exitCode, int noThrow) {
    CLibraryLock lock(s_InternalThreadSynchronization);
    if (!m_hThread) {
        m_dwExitCode = exitCode;
        ClearRuntimeData();
        return;
    }
    HANDLE hEnding = kwThread::RetainThread(m_hThread);
    DWORD error = ERROR_SUCCESS;
    BOOL terminated = kwThread::TerminateThread(m_hThread, exitCode);
    if (!terminated)
        error = kwThread::LastError();
    kwThread::GetExitCodeThread(m_hThread, &m_dwExitCode);
    if (!terminated && !noThrow) {
        lock.Release();
        kwThread::CloseThread(hEnding);
        throw new CKWThreadException(this, CKWThreadException::GetLastSystemErrorMsg(error),
                                     CKWThreadException::KILL_FAILED);
    }
    if (!terminated || noThrow)
        m_dwExitCode = exitCode;
    kwThread::CloseThread(m_hThread);
    UnregisterRuntimeSynchronization();
    ClearRuntimeData();
    OnKill();
    lock.Release();
    kwThread::AwaitEnd(hEnding, kKillGraceMilliseconds);
}

void CKWThread::OnKill() {}

// --- commands

void CKWThread::Run() {
    PostCommand(CMD_RUN);
}

void CKWThread::Pause() {
    PostCommand(CMD_PAUSE);
}

void CKWThread::Continue() {
    PostCommand(CMD_CONTINUE);
}

void CKWThread::Reset() {
    PostCommand(CMD_RESET);
}

void CKWThread::PostCommand(int command) {
    CLibraryLock lock(s_InternalThreadSynchronization);
    CString error;
    if (m_hThread && !PostThreadCommand(command, error)) {
        lock.Release();
        throw new CKWThreadException(this, error, CKWThreadException::POST_COMMAND_FAILED);
    }
}

void CKWThread::ResetCommands() {
    CLibraryLock lock(s_InternalThreadSynchronization);
    m_arrCommands.RemoveAll();
}

int CKWThread::PostThreadCommand(int command, CString& error) {
    error.Empty();
    if (!m_bSupportCommands || !m_hNotificationEvent || command == 0)
        return 1;
    INT_PTR count = m_arrCommands.GetSize();
    if (count > 0 && m_arrCommands[count - 1] == static_cast<UINT>(command))
        return 1;
    m_arrCommands.Add(static_cast<UINT>(command));
    if (!kwThread::SetEvent(m_hNotificationEvent)) {
        error = CKWThreadException::GetLastSystemErrorMsg(kwThread::LastError());
        return 0;
    }
    return 1;
}

int CKWThread::HandleCommandImmediately(int command) {
    CLibraryLock lock(s_InternalThreadSynchronization);
    if (!m_hThread || !m_bSupportCommands || command == 0)
        return 0;
    m_arrCommands.InsertAt(0, static_cast<UINT>(command));
    return 1;
}

int CKWThread::ReceiveCommand(int& command) {
    CLibraryLock lock(s_InternalThreadSynchronization);
    command = 0;
    if (!m_bSupportCommands || !m_hNotificationEvent || m_arrCommands.GetSize() == 0)
        return 0;
    command = static_cast<int>(m_arrCommands[0]);
    m_arrCommands.RemoveAt(0);
    return 1;
}

void CKWThread::WaitForNotification(int& command, DWORD timeout) {
    HANDLE hEvent;
    {
        CLibraryLock lock(s_InternalThreadSynchronization);
        hEvent = m_bSupportCommands ? m_hNotificationEvent : nullptr;
    }
    if (!hEvent) {
        command = 0;
        return;
    }
    while (!ReceiveCommand(command)) {
        if (kwThread::WaitForEvent(hEvent, timeout) == WAIT_TIMEOUT) {
            command = CMD_TIMEOUT;
            return;
        }
    }
}

// --- status and properties

void CKWThread::SetActivityStatus(int status) {
    CLibraryLock lock(s_InternalThreadSynchronization);
    // Without a thread the status stays "no thread": a killed body that has
    // not yet reached its next wait must not bring it back.
    if (m_hThread)
        m_nActivityStatus = status;
}

int CKWThread::GetActivityStatus() {
    CLibraryLock lock(s_InternalThreadSynchronization);
    return m_nActivityStatus;
}

int CKWThread::WaitForActivityStatus(int status, DWORD timeout) {
    if (GetActivityStatus() == status)
        return 1;
    DWORD limit = timeout * 100 / 100;
    for (DWORD polls = 0; GetHandle() && GetActivityStatus() != status; ++polls) {
        if (timeout != INFINITE && polls >= limit)
            break;
        kwThread::Sleep(kPollMilliseconds);
    }
    return GetActivityStatus() == status ? 1 : 0;
}

int CKWThread::IsAlive() {
    CLibraryLock lock(s_InternalThreadSynchronization);
    DWORD exitCode = 0;
    if (!m_hThread || !kwThread::GetExitCodeThread(m_hThread, &exitCode))
        return 0;
    m_dwExitCode = exitCode;
    return exitCode == STILL_ACTIVE ? 1 : 0;
}

DWORD CKWThread::GetExitCode() {
    CLibraryLock lock(s_InternalThreadSynchronization);
    DWORD exitCode = 0;
    if (m_hThread && kwThread::GetExitCodeThread(m_hThread, &exitCode))
        return exitCode;
    return m_dwExitCode;
}

int CKWThread::SetPriority(int priority) {
    CLibraryLock lock(s_InternalThreadSynchronization);
    return m_hThread && kwThread::SetThreadPriority(m_hThread, priority) ? 1 : 0;
}

int CKWThread::GetPriority() {
    CLibraryLock lock(s_InternalThreadSynchronization);
    return m_hThread ? kwThread::GetThreadPriority(m_hThread) : NO_PRIORITY;
}

HANDLE CKWThread::GetHandle() {
    CLibraryLock lock(s_InternalThreadSynchronization);
    return m_hThread;
}

DWORD CKWThread::GetID() {
    CLibraryLock lock(s_InternalThreadSynchronization);
    return m_dwThreadID;
}

void CKWThread::SetStackSize(DWORD stackSize) {
    CLibraryLock lock(s_InternalThreadSynchronization);
    m_dwStackSize = stackSize;
}

DWORD CKWThread::GetStackSize() {
    CLibraryLock lock(s_InternalThreadSynchronization);
    return m_dwStackSize;
}

void CKWThread::SetAttributes(SECURITY_ATTRIBUTES* pAttributes) {
    CLibraryLock lock(s_InternalThreadSynchronization);
    if (pAttributes) {
        m_saAttributes = *pAttributes;
        m_pAttributes = &m_saAttributes;
    } else {
        m_saAttributes = SECURITY_ATTRIBUTES{0, nullptr, FALSE};
        m_pAttributes = nullptr;
    }
}

SECURITY_ATTRIBUTES CKWThread::GetAttributes() {
    CLibraryLock lock(s_InternalThreadSynchronization);
    return m_saAttributes;
}

void CKWThread::SetOwnerParams(void* ownerParam1, long ownerParam2) {
    CLibraryLock lock(s_InternalThreadSynchronization);
    m_pOwnerParam1 = ownerParam1;
    m_lOwnerParam2 = ownerParam2;
}

void CKWThread::GetOwnerParams(void*& ownerParam1, long& ownerParam2) {
    CLibraryLock lock(s_InternalThreadSynchronization);
    ownerParam1 = m_pOwnerParam1;
    ownerParam2 = m_lOwnerParam2;
}

// --- named locks

void CKWThread::RegisterRuntimeSynchronization() {
    if (!m_bSupportSynchronization)
        return;
    for (POSITION pos = s_synchronicityList.GetHeadPosition(); pos;) {
        LPTHREAD_SYNCHRONICITY pEntry = s_synchronicityList.GetNext(pos);
        if (pEntry->strName == m_strName) {
            ++pEntry->nRefCount;
            m_pSynchronicity = pEntry;
            return;
        }
    }
    m_pSynchronicity = new THREAD_SYNCHRONICITY{m_strName, kwThread::NewCriticalSection(), 1};
    s_synchronicityList.AddTail(m_pSynchronicity);
}

void CKWThread::UnregisterRuntimeSynchronization() {
    LPTHREAD_SYNCHRONICITY pEntry = m_pSynchronicity;
    m_pSynchronicity = nullptr;
    if (!pEntry)
        return;
    if (pEntry->nRefCount >= 2) {
        --pEntry->nRefCount;
        return;
    }
    POSITION pos = s_synchronicityList.Find(pEntry);
    if (pos)
        s_synchronicityList.RemoveAt(pos);
    kwThread::DeleteCriticalSection(pEntry->pCriticalSection);
    delete pEntry;
}

void CKWThread::ResetSynchronizationList() {
    CLibraryLock lock(s_InternalThreadSynchronization);
    while (!s_synchronicityList.IsEmpty()) {
        LPTHREAD_SYNCHRONICITY pEntry = s_synchronicityList.RemoveHead();
        kwThread::DeleteCriticalSection(pEntry->pCriticalSection);
        delete pEntry;
    }
}

void CKWThread::Lock() {
    KWThreadCriticalSection* pSection = nullptr;
    {
        CLibraryLock lock(s_InternalThreadSynchronization);
        if (m_bSupportSynchronization && m_pSynchronicity)
            pSection = m_pSynchronicity->pCriticalSection;
    }
    if (pSection)
        kwThread::Enter(pSection);
}

void CKWThread::Unlock() {
    KWThreadCriticalSection* pSection = nullptr;
    {
        CLibraryLock lock(s_InternalThreadSynchronization);
        if (m_bSupportSynchronization && m_pSynchronicity)
            pSection = m_pSynchronicity->pCriticalSection;
    }
    if (pSection)
        kwThread::Leave(pSection);
}

// --- the process lock

void CKWThread::OpenProcessLocking() {
    CLibraryLock lock(s_InternalThreadSynchronization);
    if (!s_pProcessLockObject)
        s_pProcessLockObject = kwThread::NewCriticalSection();
}

void CKWThread::ProcessLock() {
    KWThreadCriticalSection* pSection = nullptr;
    {
        CLibraryLock lock(s_InternalThreadSynchronization);
        pSection = s_pProcessLockObject;
    }
    if (pSection)
        kwThread::Enter(pSection);
}

void CKWThread::ProcessUnlock() {
    KWThreadCriticalSection* pSection = nullptr;
    {
        CLibraryLock lock(s_InternalThreadSynchronization);
        pSection = s_pProcessLockObject;
    }
    if (pSection)
        kwThread::Leave(pSection);
}

void CKWThread::CloseProcessLocking() {
    CLibraryLock lock(s_InternalThreadSynchronization);
    kwThread::DeleteCriticalSection(s_pProcessLockObject);
    s_pProcessLockObject = nullptr;
}
