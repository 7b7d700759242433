// Worker threads: the command protocol, the life of a thread, exceptions,
// named locks and the process lock.
#include <gtest/gtest.h>

#include "ThreadTestKit.h"

#include <cstring>
#include <memory>
#include <string>

using kwThreadTest::CEndlessThread;
using kwThreadTest::CRecordingThread;
using kwThreadTest::CStubbornThread;

namespace {

const DWORD kNotStarted = 0xFFFFFFFE;

// Runs f, which must throw a CKWThreadException, and gives its type and text.
template <class F>
std::pair<int, CString> ThreadExceptionOf(F f) {
    try {
        f();
    } catch (CKWThreadException* pException) {
        std::pair<int, CString> result(pException->GetType(), pException->GetErrorMsg());
        pException->Delete();
        return result;
    }
    return {0, CString("nothing was thrown")};
}

// Exposes the named-lock entry of a thread object.
class CNamedThread : public CStubbornThread {
public:
    explicit CNamedThread(const char* name) {
        m_strName = name;
        m_bSupportSynchronization = TRUE;
    }
    LPTHREAD_SYNCHRONICITY Entry() { return m_pSynchronicity; }
    static INT_PTR EntryCount() { return s_synchronicityList.GetCount(); }
    void EnterNamedLock() { Lock(); }
    void LeaveNamedLock() { Unlock(); }
};

}  // namespace

TEST(ThreadCommands, QueueInOrderAndCollapseOnlyConsecutiveRepeats) {
    CRecordingThread thread;
    thread.Start();
    EXPECT_EQ(thread.GetActivityStatus(), CKWThread::STATUS_STARTED);
    thread.Pause();
    thread.Pause();
    thread.Continue();
    thread.Pause();
    thread.PostCommand(0);
    thread.Run();
    thread.gate.Open();
    DWORD exitCode = 0;
    EXPECT_EQ(thread.Stop(exitCode), 1);
    EXPECT_EQ(exitCode, 42u);
    EXPECT_EQ(thread.Received(), (std::vector<int>{2, 4, 5, 4, 3, 7}));
    EXPECT_EQ(thread.GetActivityStatus(), CKWThread::STATUS_NO_THREAD);
    EXPECT_EQ(thread.GetExitCode(), 42u);
    EXPECT_EQ(thread.IsAlive(), 0);
}

TEST(ThreadCommands, TheBodyPutsItsOwnCommandsAtTheFront) {
    CRecordingThread thread;
    thread.frontOnStart = CKWThread::CMD_RESET;
    EXPECT_EQ(thread.PushToFront(CKWThread::CMD_RESET), 0) << "no thread yet";
    thread.Start();
    thread.Run();
    EXPECT_EQ(thread.PushToFront(0), 0);
    thread.gate.Open();
    DWORD exitCode = 0;
    thread.Stop(exitCode);
    EXPECT_EQ(thread.Received(), (std::vector<int>{2, 6, 3, 7}));
}

TEST(ThreadCommands, AWaitThatTimesOutReportsCommandOne) {
    CRecordingThread thread(10);
    thread.Start();
    thread.gate.Open();
    EXPECT_EQ(thread.WaitForActivityStatus(CKWThread::STATUS_NO_THREAD, INFINITE), 1);
    EXPECT_EQ(thread.Received(), (std::vector<int>{2, 1}));
    EXPECT_EQ(thread.GetExitCode(), 7u);
}

TEST(ThreadCommands, AThreadWithoutCommandsIsToldNothing) {
    // Commands off: the body's wait returns 0 at once and it ends.
    struct CWithoutCommands : CRecordingThread {
        CWithoutCommands() { m_bSupportCommands = FALSE; }
    } silent;
    silent.gate.Open();
    silent.Start();
    silent.Run();
    DWORD exitCode = 0;
    EXPECT_EQ(silent.Stop(exitCode), 1);
    EXPECT_EQ(exitCode, 7u);
    EXPECT_EQ(silent.Received(), (std::vector<int>{0}));
}

TEST(ThreadLife, ObjectsWithoutAThreadAnswerWithTheirDefaults) {
    CStubbornThread thread;
    EXPECT_EQ(thread.GetExitCode(), kNotStarted);
    EXPECT_EQ(thread.GetPriority(), 0x7FFFFFFF);
    EXPECT_EQ(thread.SetPriority(THREAD_PRIORITY_HIGHEST), 0);
    EXPECT_EQ(thread.GetHandle(), nullptr);
    EXPECT_EQ(thread.IsAlive(), 0);
    thread.Run();  // accepted: there is no thread to tell
    DWORD exitCode = 0;
    EXPECT_EQ(thread.Stop(exitCode), 1);
    EXPECT_EQ(exitCode, kNotStarted);
    thread.Kill(5);
    EXPECT_EQ(thread.GetExitCode(), 5u);
    EXPECT_EQ(thread.kills, 0);
    EXPECT_EQ(thread.WaitForActivityStatus(CKWThread::STATUS_RUNNING, INFINITE), 0);
}

TEST(ThreadLife, StartingARunningThreadThrowsAndLeavesItRunning) {
    CRecordingThread thread;
    thread.Start();
    std::pair<int, CString> thrown = ThreadExceptionOf([&] { thread.Start(); });
    EXPECT_EQ(thrown.first, CKWThreadException::ALREADY_STARTED);
    EXPECT_STREQ(thrown.second, "Thread is already started!");
    EXPECT_EQ(thread.IsAlive(), 1);
    EXPECT_EQ(thread.GetExitCode(), static_cast<DWORD>(STILL_ACTIVE));
    thread.gate.Open();
    DWORD exitCode = 0;
    EXPECT_EQ(thread.Stop(exitCode), 1);
    EXPECT_EQ(exitCode, 42u);
}

TEST(ThreadLife, StopCountsHundredMillisecondPollsAndReportsAThreadThatOutlivesThem) {
    CStubbornThread thread(9);
    thread.Start();
    DWORD exitCode = 0;
    EXPECT_EQ(thread.Stop(exitCode, 3), 0);
    EXPECT_EQ(exitCode, static_cast<DWORD>(STILL_ACTIVE));
    thread.gate.Open();
    EXPECT_EQ(thread.Stop(exitCode, INFINITE), 1);
    EXPECT_EQ(exitCode, 9u);
}

TEST(ThreadLife, AnEndedThreadStartsAgainWithAFreshQueue) {
    CRecordingThread thread;
    thread.gate.Open();
    for (int round = 0; round < 3; ++round) {
        thread.Start();
        thread.Run();
        DWORD exitCode = 0;
        EXPECT_EQ(thread.Stop(exitCode), 1);
        EXPECT_EQ(exitCode, 42u);
    }
    EXPECT_EQ(thread.Received(), (std::vector<int>{2, 3, 7, 2, 3, 7, 2, 3, 7}));
}

TEST(ThreadLife, KillEndsAWaitingThreadAndTellsTheObject) {
    struct CCountedEndless : CEndlessThread {
        int kills = 0;
        void OnKill() override { ++kills; }
    } thread;
    thread.Start();
    ASSERT_EQ(thread.IsAlive(), 1);
    thread.Kill(77);
    EXPECT_EQ(thread.IsAlive(), 0);
    EXPECT_EQ(thread.GetExitCode(), 77u);
    EXPECT_EQ(thread.GetActivityStatus(), CKWThread::STATUS_NO_THREAD);
    EXPECT_EQ(thread.kills, 1);
    thread.Start();
    EXPECT_EQ(thread.IsAlive(), 1);
    thread.Kill(78, TRUE);
    EXPECT_EQ(thread.GetExitCode(), 78u);
}

TEST(ThreadLife, DestroyingALiveThreadObjectEndsItsThread) {
    auto thread = std::make_unique<CEndlessThread>();
    thread->Start();
    thread->Run();
    // Once the body runs, the object may go: the thread is killed, nothing is
    // thrown or leaked. (Destroying it before its body is entered races with
    // the thread's call into the body, as destroying any derived object in
    // use does.)
    ASSERT_EQ(thread->WaitForActivityStatus(CKWThread::STATUS_RUNNING, INFINITE), 1);
    thread.reset();
    SUCCEED();
}

TEST(ThreadLife, TheThreadKnowsItsIdAndPriority) {
    CRecordingThread thread;
    thread.Start();
    EXPECT_NE(thread.GetID(), 0u);
    EXPECT_NE(thread.GetHandle(), nullptr);
    EXPECT_EQ(thread.SetPriority(THREAD_PRIORITY_ABOVE_NORMAL), 1);
    EXPECT_EQ(thread.GetPriority(), THREAD_PRIORITY_ABOVE_NORMAL);
    EXPECT_EQ(thread.SetPriority(12345), 0);
    DWORD id = thread.GetID();
    thread.gate.Open();
    DWORD exitCode = 0;
    thread.Stop(exitCode);
    EXPECT_EQ(thread.SeenThreadId(), id);
    EXPECT_EQ(thread.GetID(), 0u);
}

TEST(ThreadLife, StartsWithAStackSizeThatIsNoWholeNumberOfPages) {
    CStubbornThread thread;
    thread.SetStackSize(256 * 1024 + 1);
    thread.Start();
    thread.gate.Open();
    DWORD exitCode = 0;
    EXPECT_EQ(thread.Stop(exitCode), 1);
    EXPECT_EQ(exitCode, 9u);
}

TEST(ThreadExceptions, CarryTheirThreadTypeAndText) {
    CStubbornThread thread;
    CKWThreadException* pException =
        new CKWThreadException(&thread, CString("text"), CKWThreadException::KILL_FAILED);
    EXPECT_EQ(pException->GetThread(), &thread);
    EXPECT_TRUE(pException->IsKindOf(RUNTIME_CLASS(CException)));
    char buffer[3];
    EXPECT_TRUE(pException->GetErrorMessage(buffer, sizeof buffer));
    EXPECT_STREQ(buffer, "te");
    UINT helpContext = 7;
    EXPECT_FALSE(pException->GetErrorMessage(nullptr, 10, &helpContext));
    EXPECT_EQ(helpContext, 0u);
    pException->Delete();
    EXPECT_FALSE(CKWThreadException::GetLastSystemErrorMsg(ERROR_NOT_ENOUGH_MEMORY).IsEmpty());
}

// A host's own exception, filled in after construction.
class CHostThreadException : public CKWThreadException {
public:
    CHostThreadException() : CKWThreadException(nullptr) {}
    void Fill(CKWThread* pThread, int type, CString message) {
        SetThread(pThread);
        SetType(type);
        SetErrorMsg(message);
    }
    void FillFromResource(UINT messageId) { SetErrorMsg(messageId); }
};

#if !defined(_WIN32)
// This build has no string resources, and no message box.
TEST(ThreadExceptions, ResourceTextsAreEmptyAndReportsGoToStandardError) {
    CKWThreadException* pException =
        new CKWThreadException(nullptr, 101u, CKWThreadException::KILL_FAILED);
    EXPECT_TRUE(pException->GetErrorMsg().IsEmpty());
    EXPECT_EQ(pException->GetType(), CKWThreadException::KILL_FAILED);
    pException->Delete();

    CHostThreadException* pHost = new CHostThreadException;
    pHost->Fill(nullptr, CKWThreadException::KILL_FAILED, "not stopped");
    testing::internal::CaptureStderr();
    EXPECT_EQ(pHost->ReportError(), 0);
    EXPECT_EQ(pHost->ReportError(0, 101u), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "not stopped\n\n");
    pHost->FillFromResource(101u);
    EXPECT_TRUE(pHost->GetErrorMsg().IsEmpty());
    pHost->Delete();
}
#endif

TEST(ThreadNamedLocks, ObjectsOfOneNameShareAnEntryFreedWithTheLastUser) {
    INT_PTR before = CNamedThread::EntryCount();
    CNamedThread first("shared"), second("shared"), other("other");
    first.Start();
    second.Start();
    other.Start();
    ASSERT_NE(first.Entry(), nullptr);
    EXPECT_EQ(first.Entry(), second.Entry());
    EXPECT_NE(first.Entry(), other.Entry());
    EXPECT_EQ(first.Entry()->nRefCount, 2);
    EXPECT_EQ(CNamedThread::EntryCount(), before + 2);
    first.EnterNamedLock();
    first.EnterNamedLock();  // recursive
    first.LeaveNamedLock();
    first.LeaveNamedLock();
    DWORD exitCode = 0;
    first.gate.Open();
    first.Stop(exitCode);
    EXPECT_EQ(second.Entry()->nRefCount, 1);
    second.gate.Open();
    second.Stop(exitCode);
    EXPECT_EQ(second.Entry(), nullptr);
    EXPECT_EQ(CNamedThread::EntryCount(), before + 1);
    other.gate.Open();
    other.Stop(exitCode);
    EXPECT_EQ(CNamedThread::EntryCount(), before);
}

TEST(ThreadProcessLock, IsRecursiveAndDoesNothingWhileClosed) {
    CKWThread::ProcessLock();  // not open: nothing happens
    CKWThread::ProcessUnlock();
    CKWThread::OpenProcessLocking();
    CKWThread::OpenProcessLocking();  // once is enough
    CKWThread::ProcessLock();
    CKWThread::ProcessLock();
    CKWThread::ProcessUnlock();
    CKWThread::ProcessUnlock();
    CKWThread::CloseProcessLocking();
    SUCCEED();
}
