#include "kwcore/system/CKWProgressTaskThread.h"

#include <gtest/gtest.h>

#include <atomic>

#include "ThreadTestKit.h"
#include "kwcore/system/CKWQueuedProgressObserver.h"

namespace {

using kwThreadTest::CGate;

// Announces that it runs, then waits until it is released or cancelled.
class CGatedTask : public IKWProgressTask {
public:
    void Run(IKWProgressTaskObserver* observer) override {
        m_pObserver = observer;
        ++m_nRuns;
        m_started.Open();
        m_release.Wait();
    }
    void Cancel() override {
        ++m_nCancels;
        m_release.Open();
    }

    CGate m_started;
    CGate m_release;
    std::atomic<IKWProgressTaskObserver*> m_pObserver{nullptr};
    std::atomic<int> m_nRuns{0};
    std::atomic<int> m_nCancels{0};
};

// A task that is done at once.
class CCountingTask : public IKWProgressTask {
public:
    void Run(IKWProgressTaskObserver*) override { ++m_nRuns; }
    void Cancel() override { ++m_nCancels; }

    std::atomic<int> m_nRuns{0};
    std::atomic<int> m_nCancels{0};
};

// Takes the start command itself, so the task waits for an explicit Run: the
// owner's commands then reach the body before it runs the task, in the order
// they were posted.
class CHeldTaskThread : public CKWProgressTaskThread {
public:
    using CKWProgressTaskThread::CKWProgressTaskThread;

protected:
    DWORD ThreadHandler() override {
        int command = 0;
        WaitForNotification(command, INFINITE);
        return CKWProgressTaskThread::ThreadHandler();
    }
};

// Waits for the thread to end; its exit code.
DWORD StopAndWait(CKWThread& thread) {
    DWORD exitCode = 0xDEADBEEF;
    EXPECT_EQ(1, thread.Stop(exitCode, INFINITE));
    EXPECT_EQ(CKWThread::STATUS_NO_THREAD, thread.GetActivityStatus());
    return exitCode;
}

const DWORD kPatience = 600;  // polls of 100 ms: a minute

TEST(ProgressTaskThread, StartRunsTheTaskWithItsObserverAndEndsWithZero) {
    CGatedTask task;
    CKWQueuedProgressObserver observer;
    CKWProgressTaskThread thread(&task, &observer);
    thread.Start();
    task.m_started.Wait();
    EXPECT_EQ(CKWThread::STATUS_RUNNING, thread.GetActivityStatus());
    EXPECT_EQ(&observer, task.m_pObserver.load());
    EXPECT_TRUE(thread.IsAlive());
    task.m_release.Open();
    EXPECT_EQ(0u, StopAndWait(thread));
    EXPECT_EQ(1, task.m_nRuns.load());
    // The task ended by itself: the stop found nothing to cancel.
    EXPECT_EQ(0, task.m_nCancels.load());
}

TEST(ProgressTaskThread, RunsAgainWhenStartedAfterItEnded) {
    CCountingTask task;
    CKWProgressTaskThread thread(&task, nullptr);
    for (int round = 1; round <= 3; ++round) {
        thread.Start();
        EXPECT_EQ(0u, StopAndWait(thread));
        EXPECT_EQ(round, task.m_nRuns.load());
    }
    EXPECT_EQ(0, task.m_nCancels.load());
}

TEST(ProgressTaskThread, WithoutATaskEndsWithZero) {
    CKWProgressTaskThread thread(nullptr, nullptr);
    thread.Start();
    EXPECT_EQ(0u, StopAndWait(thread));
    EXPECT_EQ(1, thread.Cancel());

    CHeldTaskThread held(nullptr, nullptr);
    held.Start();
    EXPECT_EQ(0u, StopAndWait(held));
}

TEST(ProgressTaskThread, CancelAsksTheTaskAndReturnsOne) {
    CGatedTask task;
    CKWProgressTaskThread thread(&task, nullptr);
    EXPECT_EQ(1, thread.Cancel());
    EXPECT_EQ(1, task.m_nCancels.load());

    CGatedTask running;
    CKWProgressTaskThread worker(&running, nullptr);
    worker.Start();
    running.m_started.Wait();
    EXPECT_EQ(1, worker.Cancel());
    EXPECT_EQ(0u, StopAndWait(worker));
    EXPECT_EQ(1, running.m_nRuns.load());
    EXPECT_EQ(1, running.m_nCancels.load());
}

// Holds the task back with Pause, then sends a Run that must be ignored.
void PauseThenRun(CHeldTaskThread& thread) {
    thread.Start();
    thread.Pause();
    ASSERT_EQ(1, thread.WaitForActivityStatus(CKWThread::STATUS_PAUSED, kPatience));
    thread.Run();
}

TEST(ProgressTaskThread, PausedBeforeRunningIgnoresRunUntilContinue) {
    CGatedTask task;
    CHeldTaskThread thread(&task, nullptr);
    PauseThenRun(thread);
    EXPECT_EQ(0, task.m_nRuns.load());
    thread.Continue();
    task.m_started.Wait();
    EXPECT_EQ(CKWThread::STATUS_RUNNING, thread.GetActivityStatus());
    task.m_release.Open();
    EXPECT_EQ(0u, StopAndWait(thread));
    EXPECT_EQ(1, task.m_nRuns.load());
    EXPECT_EQ(0, task.m_nCancels.load());
}

TEST(ProgressTaskThread, StoppedWhilePausedCancelsTheTaskWithoutRunningIt) {
    CGatedTask task;
    CHeldTaskThread thread(&task, nullptr);
    PauseThenRun(thread);
    // The Run was taken before the stop, in order: had it run the task, the
    // task would count a run.
    EXPECT_EQ(0u, StopAndWait(thread));
    EXPECT_EQ(0, task.m_nRuns.load());
    EXPECT_EQ(1, task.m_nCancels.load());
}

TEST(ProgressTaskThread, StoppedBeforeRunningCancelsTheTaskInstead) {
    CGatedTask task;
    CHeldTaskThread thread(&task, nullptr);
    thread.Start();
    EXPECT_EQ(0u, StopAndWait(thread));
    EXPECT_EQ(0, task.m_nRuns.load());
    EXPECT_EQ(1, task.m_nCancels.load());
}

TEST(ProgressTaskThread, IgnoresContinueWhenNotPausedAndReset) {
    CGatedTask task;
    CHeldTaskThread thread(&task, nullptr);
    thread.Start();
    thread.Continue();
    thread.Reset();
    thread.Pause();
    ASSERT_EQ(1, thread.WaitForActivityStatus(CKWThread::STATUS_PAUSED, kPatience));
    // A second pause changes nothing; Continue then runs the task once.
    thread.PostCommand(CKWThread::CMD_RESET);
    thread.Pause();
    thread.Continue();
    task.m_started.Wait();
    task.m_release.Open();
    EXPECT_EQ(0u, StopAndWait(thread));
    EXPECT_EQ(1, task.m_nRuns.load());
}

}  // namespace
