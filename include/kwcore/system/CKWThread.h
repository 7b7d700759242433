// CKWThread: a worker thread wrapped in an object.
//
// The object owns the thread's handle, a queue of small integer commands the
// owner posts to the thread, an auto-reset event that wakes the thread when a
// command arrives, and an activity status the thread publishes. A derived
// class supplies the thread body; the body waits for commands with
// WaitForNotification and reacts to them. Thread objects of the same name
// can share a lock (Lock/Unlock) when the named lock is enabled.
//
// Failures of Start, Stop, Kill and PostCommand throw a CKWThreadException
// made with new; the catcher ends it with Delete().
//
//   class CCounter : public CKWThread {
//   protected:
//       DWORD ThreadHandler() override {
//           for (int command = 0;;) {
//               WaitForNotification(command, INFINITE);
//               if (command == CMD_STOP) return 0;
//               // ... react to the command ...
//           }
//       }
//   public:
//       CCounter() { m_bSupportCommands = TRUE; }
//   };
//
// One library-wide lock guards every thread object's fields and the
// named-lock list; it is never held while waiting.
#pragma once

#include "kwcore/platform/Arrays.h"
#include "kwcore/platform/CException.h"
#include "kwcore/platform/CList.h"
#include "kwcore/platform/CObject.h"
#include "kwcore/platform/CString.h"
#include "kwcore/platform/Export.h"
#include "kwcore/platform/Win32Types.h"

class CKWThread;

// The lock behind a thread name, the process lock and the library-wide lock:
// recursive, like a Win32 critical section, and refusing (a debug assertion)
// to be left by a thread that does not hold it. Private to the library.
struct KWThreadCriticalSection;

// One entry of the named-lock list: the lock shared by every thread object
// of this name, and how many of them use it.
typedef struct _THREAD_SYNCHRONICITY_TAG {
    CString strName;
    KWThreadCriticalSection* pCriticalSection;
    int nRefCount;
} THREAD_SYNCHRONICITY, *LPTHREAD_SYNCHRONICITY;

class KWCORE_API CKWThreadException : public CException {
    DECLARE_DYNAMIC(CKWThreadException)

public:
    // The exception types, by the operation that failed.
    enum {
        CREATE_THREAD_FAILED = 1,  // Start: the thread could not be created
        ALREADY_STARTED = 2,       // Start: the thread is running
        KILL_FAILED = 3,           // Kill: the thread could not be terminated
        CREATE_EVENT_FAILED = 4,   // Start: the notification event could not be made
        POST_COMMAND_FAILED = 5    // Start, Stop, PostCommand: a command could not be posted
    };

    explicit CKWThreadException(CKWThread* pThread);
    // The message is the string resource messageId (empty when the module
    // has no such string).
    CKWThreadException(CKWThread* pThread, UINT messageId, int type);
    CKWThreadException(CKWThread* pThread, CString message, int type);
    ~CKWThreadException() override;

    CKWThread* GetThread();
    int GetType();
    CString GetErrorMsg();

    BOOL GetErrorMessage(char* buffer, UINT maxChars, UINT* helpContext = nullptr) const override;
    using CException::GetErrorMessage;

    // Shows the message (the string resource messageId instead, when it is
    // non-zero) in a message box of the given type; the box's answer.
    // Without a user interface the message goes to standard error and the
    // answer is 0.
    int ReportError(UINT type = 0, UINT messageId = 0) override;

    // The system's text for an error code; empty when it has none.
    static CString GetLastSystemErrorMsg(DWORD error);

    static const char* const s_strERROR_THREAD_ALREADY_STARTED;

protected:
    void SetThread(CKWThread* pThread);
    void SetType(int type);
    void SetErrorMsg(UINT messageId);
    void SetErrorMsg(CString message);

    CKWThread* m_pThread;
    CString m_strErrorMsg;
    int m_nType;
};

class KWCORE_API CKWThread : public CObject {
    DECLARE_DYNAMIC(CKWThread)

public:
    // The commands. CMD_TIMEOUT is what WaitForNotification reports when
    // nothing arrived in time; the library never queues it.
    enum {
        CMD_TIMEOUT = 1,
        CMD_START = 2,
        CMD_RUN = 3,
        CMD_PAUSE = 4,
        CMD_CONTINUE = 5,
        CMD_RESET = 6,
        CMD_STOP = 7
    };
    // The activity statuses. Only the thread body moves between STARTED,
    // RUNNING, PAUSED and CONTINUED; every end of the thread returns the
    // object to NO_THREAD.
    enum {
        STATUS_STARTED = 0,
        STATUS_NO_THREAD = 1,
        STATUS_RUNNING = 2,
        STATUS_PAUSED = 3,
        STATUS_CONTINUED = 4
    };
    // GetPriority without a thread.
    static const int NO_PRIORITY = 0x7FFFFFFF;

    // Owns the library-wide lock for as long as the library is loaded.
    class KWCORE_API CInternalSynchronization {
    public:
        CInternalSynchronization();
        ~CInternalSynchronization();
        CInternalSynchronization(const CInternalSynchronization&) = delete;
        CInternalSynchronization& operator=(const CInternalSynchronization&) = delete;
        void Lock();
        void Unlock();

    private:
        KWThreadCriticalSection* m_pCriticalSection;
    };

    CKWThread(void* ownerParam1 = nullptr, long ownerParam2 = 0);
    // Kills a thread that is still alive (exit code 0, nothing thrown), then
    // closes the event.
    ~CKWThread() override;

    CKWThread(const CKWThread&) = delete;
    CKWThread& operator=(const CKWThread&) = delete;

    // Creates the thread and queues CMD_START for it.
    void Start();
    // Queues CMD_STOP and waits while the thread lives, polling every 100 ms
    // at most timeout times (INFINITE: until it ends). 1 when the thread is
    // gone, 0 when it still runs (exitCode is then STILL_ACTIVE).
    int Stop(DWORD& exitCode, DWORD timeout = INFINITE);
    // Ends the thread at once; a last resort (see the threads page of the
    // documentation for what that means on POSIX systems).
    void Kill(DWORD exitCode = 0, int noThrow = 0);

    void Run();       // posts CMD_RUN
    void Pause();     // posts CMD_PAUSE
    void Continue();  // posts CMD_CONTINUE
    void Reset();     // posts CMD_RESET
    // Queues a command for the thread. A repeat of the last queued command,
    // a command 0 and any command to a thread without commands are accepted
    // and dropped.
    void PostCommand(int command);
    void ResetCommands();

    int IsAlive();
    int GetActivityStatus();
    // Polls every 100 ms, at most timeout times (INFINITE: without limit),
    // while a thread exists; whether the status was reached.
    int WaitForActivityStatus(int status, DWORD timeout);

    int SetPriority(int priority);
    int GetPriority();
    // STILL_ACTIVE while the thread lives; then its exit code.
    DWORD GetExitCode();
    HANDLE GetHandle();
    DWORD GetID();
    void SetStackSize(DWORD stackSize);
    DWORD GetStackSize();
    void SetAttributes(SECURITY_ATTRIBUTES* pAttributes);
    SECURITY_ATTRIBUTES GetAttributes();
    void SetOwnerParams(void* ownerParam1, long ownerParam2);
    void GetOwnerParams(void*& ownerParam1, long& ownerParam2);

    // One lock for the whole process, independent of the thread objects.
    static void OpenProcessLocking();
    static void ProcessLock();
    static void ProcessUnlock();
    static void CloseProcessLocking();
    // Frees every named lock; only for when no thread object uses one.
    static void ResetSynchronizationList();

protected:
    // The thread body; its result is the thread's exit code.
    virtual DWORD ThreadHandler() = 0;
    // Called by Kill after the thread was ended by force.
    virtual void OnKill();

    // Waits for the next command; CMD_TIMEOUT when none came within timeout
    // milliseconds, 0 at once when the thread has no commands.
    void WaitForNotification(int& command, DWORD timeout);
    // Puts a command at the front of the queue without waking anyone: for
    // the body itself. 1 when queued.
    int HandleCommandImmediately(int command);
    void SetActivityStatus(int status);
    // Enter and leave the lock shared by the thread objects of this name.
    void Lock();
    void Unlock();

    BOOL m_bSupportCommands;
    BOOL m_bSupportSynchronization;
    CString m_strName;
    LPTHREAD_SYNCHRONICITY m_pSynchronicity;
    SECURITY_ATTRIBUTES m_saAttributes;
    LPSECURITY_ATTRIBUTES m_pAttributes;
    HANDLE m_hThread;
    HANDLE m_hNotificationEvent;
    DWORD m_dwThreadID;
    DWORD m_dwStackSize;
    DWORD m_dwExitCode;
    int m_nActivityStatus;
    void* m_pOwnerParam1;
    long m_lOwnerParam2;
    CUIntArray m_arrCommands;

    static CList<LPTHREAD_SYNCHRONICITY, LPTHREAD_SYNCHRONICITY> s_synchronicityList;
    static KWThreadCriticalSection* s_pProcessLockObject;

    static CInternalSynchronization s_InternalThreadSynchronization;

private:
    static DWORD ControllingFunction(void* pThis);
    int PostThreadCommand(int command, CString& error);
    int ReceiveCommand(int& command);
    void ResetThreadObject(DWORD exitCode);
    void ClearRuntimeData();
    void RegisterRuntimeSynchronization();
    void UnregisterRuntimeSynchronization();
};
