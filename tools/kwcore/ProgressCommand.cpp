// kwcore progress: progress tasks on worker threads, paused, continued,
// finished and cancelled, with the terminal progress bar.
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <thread>

#include "Commands.h"
#include "kwcore/system/CKWProgressObserverList.h"
#include "kwcore/system/CKWProgressTaskThread.h"
#include "kwcore/system/CKWQueuedProgressObserver.h"
#include "kwcore/system/CKWTerminalProgressObserver.h"

namespace kwCommands {
namespace {

const char kHelp[] =
    "usage: kwcore progress\n"
    "\n"
    "Runs three tasks of 40 steps on progress task threads and tells, on\n"
    "standard output, the threads' statuses and exit codes, with a progress bar\n"
    "(plain lines when the output is not a terminal):\n"
    "  1. started held back, paused before it runs (a Run is then ignored),\n"
    "     continued, and left to finish;\n"
    "  2. cancelled midway by a watcher that drains the task's reports from a\n"
    "     queue, as a user interface would;\n"
    "  3. stopped before it ran: the stop cancels it instead.\n";

const int kSteps = 40;
const int kStepMilliseconds = 40;
const int kCancelAtStep = 20;
const DWORD kPatience = 600;  // polls of 100 ms

// Counts steps, each a short sleep standing in for real work; reports every
// step and polls for cancellation before each.
class CCountingTask : public IKWProgressTask {
public:
    void Run(IKWProgressTaskObserver* observer) override {
        observer->OnStart("Counting", kSteps);
        for (int step = 1; step <= kSteps; ++step) {
            if (m_bCancel || observer->IsCanceled()) {
                observer->OnError("cancelled");
                break;
            }
            CString name;
            name.Format("step %d", step);
            observer->OnStartNextTask(name, 2);
            observer->OnStartNextSubTask("reading");
            std::this_thread::sleep_for(std::chrono::milliseconds(kStepMilliseconds / 2));
            observer->OnStartNextSubTask("writing");
            std::this_thread::sleep_for(std::chrono::milliseconds(kStepMilliseconds / 2));
            m_nDone = step;
        }
        observer->OnFinish();
    }
    void Cancel() override { m_bCancel = true; }
    void Reset() override {
        m_bCancel = false;
        m_nDone = 0;
    }

    int Done() const { return m_nDone; }
    bool WasCanceled() const { return m_bCancel; }

private:
    std::atomic<bool> m_bCancel{false};
    std::atomic<int> m_nDone{0};
};

// A progress task thread that does not run its task on start, but waits for
// an explicit Run: the thread is up, and the task can still be paused before
// it runs or stopped instead.
class CHeldProgressTaskThread : public CKWProgressTaskThread {
public:
    using CKWProgressTaskThread::CKWProgressTaskThread;

protected:
    DWORD ThreadHandler() override {
        int command = 0;
        WaitForNotification(command, INFINITE);  // the start: not a run here
        return CKWProgressTaskThread::ThreadHandler();
    }
};

const char* StatusName(int status) {
    switch (status) {
        case CKWThread::STATUS_STARTED:
            return "started";
        case CKWThread::STATUS_NO_THREAD:
            return "no thread";
        case CKWThread::STATUS_RUNNING:
            return "running";
        case CKWThread::STATUS_PAUSED:
            return "paused";
        case CKWThread::STATUS_CONTINUED:
            return "continued";
        default:
            return "unknown";
    }
}

// The story and the progress share standard output; the story's lines go
// through the bar, which keeps them off its own line on a terminal.
void Say(CKWTerminalProgressObserver& bar, const char* what, CKWThread& thread) {
    const int status = thread.GetActivityStatus();
    CString line;
    line.Format("%-36s status %d (%s)", what, status, StatusName(status));
    bar.Print(line);
}

void SayStopped(CKWTerminalProgressObserver& bar, CKWThread& thread, const CCountingTask& task) {
    DWORD exitCode = 0;
    const int gone = thread.Stop(exitCode, kPatience);
    CString line;
    line.Format("stopped: Stop gave %d, exit code %u, %d of %d steps done", gone,
                static_cast<unsigned>(exitCode), task.Done(), kSteps);
    bar.Print(line);
    Say(bar, "after the stop:", thread);
}

int PauseContinueFinish() {
    CKWTerminalProgressObserver bar(stdout);
    bar.Print("== 1. A task paused before it runs, continued, finished ==");
    CCountingTask task;
    CHeldProgressTaskThread thread(&task, &bar);
    thread.Start();
    Say(bar, "started, the task held back:", thread);
    thread.Pause();
    thread.WaitForActivityStatus(CKWThread::STATUS_PAUSED, kPatience);
    Say(bar, "paused before it ran:", thread);
    thread.Run();
    Say(bar, "Run while paused is ignored:", thread);
    thread.Continue();
    thread.WaitForActivityStatus(CKWThread::STATUS_RUNNING, kPatience);
    Say(bar, "continued, the task runs:", thread);
    SayStopped(bar, thread, task);
    return task.Done() == kSteps ? 0 : 1;
}

// The watcher plays the user interface: it waits to be woken by the queue,
// drains it, and presses Cancel once enough steps were reported.
int CancelMidway() {
    CKWTerminalProgressObserver bar(stdout);
    bar.Print("== 2. A task cancelled midway by a watcher of its reports ==");
    CCountingTask task;
    CKWQueuedProgressObserver queue;
    CKWProgressObserverList observers;
    observers.Add(&bar);
    observers.Add(&queue);
    std::mutex mutex;
    std::condition_variable woken;
    queue.SetWakeUpHook([&] {
        std::lock_guard<std::mutex> lock(mutex);
        woken.notify_one();
    });

    CKWProgressTaskThread thread(&task, &observers);
    thread.Start();
    int steps = 0;
    bool finished = false;
    while (!finished) {
        {
            std::unique_lock<std::mutex> lock(mutex);
            woken.wait_for(lock, std::chrono::milliseconds(100),
                           [&] { return queue.GetPendingCount() > 0; });
        }
        queue.Drain([&](const SKWProgressNotification& notification) {
            steps += notification.nMessage == CKWQueuedProgressObserver::MSG_NEXT_TASK;
            finished = finished || notification.nMessage == CKWQueuedProgressObserver::MSG_FINISH;
            if (steps == kCancelAtStep && !queue.IsCanceled()) {
                Say(bar, "the watcher saw step 20 and cancels:", thread);
                CString line;
                line.Format("Cancel gave %d", thread.Cancel());
                bar.Print(line);
                queue.SetCanceled();
            }
        });
    }
    SayStopped(bar, thread, task);
    return task.WasCanceled() && task.Done() < kSteps ? 0 : 1;
}

int StopBeforeRunning() {
    CKWTerminalProgressObserver bar(stdout);
    bar.Print("== 3. A task stopped before it ran ==");
    CCountingTask task;
    CHeldProgressTaskThread thread(&task, &bar);
    thread.Start();
    Say(bar, "started, the task held back:", thread);
    SayStopped(bar, thread, task);
    bar.Print(task.WasCanceled() ? "the stop cancelled the task" : "the stop missed the task");
    return task.WasCanceled() ? 0 : 1;
}

}  // namespace

int RunProgressCommand(const Arguments& args) {
    if (WantsHelp(args)) {
        std::fputs(kHelp, stdout);
        return 0;
    }
    if (!args.empty()) {
        std::fputs("kwcore progress: takes no arguments\n", stderr);
        return 2;
    }
    int failures = PauseContinueFinish();
    failures += CancelMidway();
    failures += StopBeforeRunning();
    return failures ? 1 : 0;
}

}  // namespace kwCommands
