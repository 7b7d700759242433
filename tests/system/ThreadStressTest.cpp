// Many threads driving shared thread objects at once: starting, pausing,
// continuing, running and stopping them, while the bodies take a named lock
// around unguarded shared data. Run under ThreadSanitizer, any race in the
// bookkeeping or a named lock that fails to exclude shows up as a report.
#include <gtest/gtest.h>

#include "kwcore/system/CKWThread.h"

#include <atomic>
#include <memory>
#include <random>
#include <thread>
#include <vector>

namespace {

// Moves through the statuses as commanded; each run adds to a counter that
// only the named lock guards.
class CWorker : public CKWThread {
public:
    explicit CWorker(long* pSharedCounter) : m_pSharedCounter(pSharedCounter) {
        m_bSupportCommands = TRUE;
        m_bSupportSynchronization = TRUE;
        m_strName = "stress";
    }
    ~CWorker() override {
        DWORD exitCode = 0;
        Stop(exitCode);
    }

    std::atomic<int> badStatus{0};

protected:
    DWORD ThreadHandler() override {
        for (int command = 0;;) {
            WaitForNotification(command, INFINITE);
            switch (command) {
                case CMD_RUN:
                    SetActivityStatus(STATUS_RUNNING);
                    Lock();
                    ++*m_pSharedCounter;
                    Unlock();
                    break;
                case CMD_PAUSE:
                    SetActivityStatus(STATUS_PAUSED);
                    break;
                case CMD_CONTINUE:
                    SetActivityStatus(STATUS_CONTINUED);
                    break;
                case CMD_STOP:
                    return 0;
                default:
                    break;
            }
            int status = GetActivityStatus();
            if (status < STATUS_STARTED || status > STATUS_CONTINUED)
                ++badStatus;
        }
    }

private:
    long* m_pSharedCounter;
};

void Drive(std::vector<std::unique_ptr<CWorker>>& workers, unsigned seed, int steps) {
    std::mt19937 random(seed);
    for (int step = 0; step < steps; ++step) {
        CWorker& worker = *workers[random() % workers.size()];
        try {
            switch (random() % 6) {
                case 0:
                    worker.Start();
                    break;
                case 1:
                    worker.Pause();
                    break;
                case 2:
                    worker.Continue();
                    break;
                case 3:
                    worker.Run();
                    break;
                case 4: {
                    // One poll only: another driver may start the worker again
                    // while this one waits for it to end.
                    DWORD exitCode = 0;
                    int stopped = worker.Stop(exitCode, 1);
                    if (stopped ? exitCode == STILL_ACTIVE : exitCode != STILL_ACTIVE)
                        ADD_FAILURE() << "Stop gave " << stopped << " with exit code " << exitCode;
                    break;
                }
                default:
                    worker.IsAlive();
                    worker.GetExitCode();
                    break;
            }
        } catch (CKWThreadException* pException) {
            // Two drivers may start the same worker: one of them is refused.
            EXPECT_EQ(pException->GetType(), CKWThreadException::ALREADY_STARTED);
            pException->Delete();
        }
    }
}

}  // namespace

TEST(ThreadStress, DriversSharingWorkersKeepTheBookkeepingSound) {
    long sharedCounter = 0;
    std::vector<std::unique_ptr<CWorker>> workers;
    for (int i = 0; i < 6; ++i)
        workers.push_back(std::make_unique<CWorker>(&sharedCounter));
    std::vector<std::thread> drivers;
    for (unsigned seed = 1; seed <= 4; ++seed)
        drivers.emplace_back(Drive, std::ref(workers), seed, 200);
    for (std::thread& driver : drivers)
        driver.join();
    for (auto& worker : workers) {
        DWORD exitCode = 0;
        EXPECT_EQ(worker->Stop(exitCode), 1);
        EXPECT_EQ(worker->GetActivityStatus(), CKWThread::STATUS_NO_THREAD);
        EXPECT_EQ(worker->badStatus.load(), 0);
    }
    workers.clear();
    EXPECT_GE(sharedCounter, 0);
}
