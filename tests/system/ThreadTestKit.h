// Thread bodies for the worker-thread tests, with gates instead of sleeps.
#pragma once

#include "kwcore/system/CKWThread.h"

#include <condition_variable>
#include <mutex>
#include <vector>

#if defined(_WIN32)
#include <windows.h>
#else
#include <sys/syscall.h>
#include <unistd.h>
#endif

namespace kwThreadTest {

// Opens once; everyone waiting goes on.
class CGate {
public:
    void Open() {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_bOpen = true;
        m_opened.notify_all();
    }
    void Wait() {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_opened.wait(lock, [this] { return m_bOpen; });
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_opened;
    bool m_bOpen = false;
};

inline DWORD OwnThreadId() {
#if defined(_WIN32)
    return ::GetCurrentThreadId();
#else
    return static_cast<DWORD>(::syscall(SYS_gettid));
#endif
}

// Waits at the gate, then records every command until CMD_STOP (exit code
// 42) or, when timeouts end it, until CMD_TIMEOUT (exit code 7).
class CRecordingThread : public CKWThread {
public:
    explicit CRecordingThread(DWORD timeout = INFINITE) : m_timeout(timeout) {
        m_bSupportCommands = TRUE;
    }
    ~CRecordingThread() override {
        gate.Open();
        DWORD exitCode = 0;
        Stop(exitCode);
    }

    std::vector<int> Received() {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_received;
    }
    DWORD SeenThreadId() {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_seenThreadId;
    }
    int PushToFront(int command) { return HandleCommandImmediately(command); }

    CGate gate;
    // Put at the front when the start command arrives, when non-zero.
    int frontOnStart = 0;

protected:
    DWORD ThreadHandler() override {
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_seenThreadId = OwnThreadId();
        }
        gate.Wait();
        for (int command = 0;;) {
            WaitForNotification(command, m_timeout);
            {
                std::lock_guard<std::mutex> lock(m_mutex);
                m_received.push_back(command);
            }
            if (command == CMD_START && frontOnStart)
                HandleCommandImmediately(frontOnStart);
            if (command == CMD_STOP)
                return 42;
            if (command == CMD_TIMEOUT || command == 0)
                return 7;
        }
    }

private:
    DWORD m_timeout;
    std::mutex m_mutex;
    std::vector<int> m_received;
    DWORD m_seenThreadId = 0;
};

// Ignores commands: ends with its exit code once its gate opens.
class CStubbornThread : public CKWThread {
public:
    explicit CStubbornThread(DWORD exitCode = 9) : m_exitCode(exitCode) {
        m_bSupportCommands = TRUE;
    }
    ~CStubbornThread() override {
        gate.Open();
        DWORD exitCode = 0;
        Stop(exitCode);
    }

    CGate gate;
    int kills = 0;

protected:
    DWORD ThreadHandler() override {
        gate.Wait();
        return m_exitCode;
    }
    void OnKill() override { ++kills; }

private:
    DWORD m_exitCode;
};

// Waits for commands for ever and ignores every one: only Kill ends it.
class CEndlessThread : public CKWThread {
public:
    CEndlessThread() { m_bSupportCommands = TRUE; }

protected:
    DWORD ThreadHandler() override {
        SetActivityStatus(STATUS_RUNNING);  // tells the test the body is entered
        for (int command = 0;;)
            WaitForNotification(command, INFINITE);
    }
};

}  // namespace kwThreadTest
