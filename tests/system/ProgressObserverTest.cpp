#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "kwcore/system/CKWProgressObserverList.h"
#include "kwcore/system/CKWQueuedProgressObserver.h"
#include "kwcore/system/CKWTerminalProgressObserver.h"

#if !defined(_WIN32)
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>
#endif

namespace {

// Every notification of a short task with two steps.
void ReportTwoSteps(IKWProgressTaskObserver& observer) {
    observer.OnStart("Copy", 2);
    observer.OnStartNextTask("First", 3);
    observer.OnStartNextSubTask("a");
    observer.OnSubTaskNameChange("a'");
    observer.OnStartNextSubTask("b");
    observer.OnTaskNameChange("First, renamed");
    observer.OnError("disk full");
    observer.OnStartNextTask("Second", 0);
    observer.OnFinish();
}

std::string ReadAll(std::FILE* file) {
    std::rewind(file);
    std::string text;
    for (int ch = std::fgetc(file); ch != EOF; ch = std::fgetc(file)) {
        text += static_cast<char>(ch);
    }
    return text;
}

TEST(TerminalProgressObserver, WritesOnePlainLinePerNotificationToAFile) {
    std::FILE* file = std::tmpfile();
    ASSERT_NE(nullptr, file);
    {
        CKWTerminalProgressObserver observer(file);
        EXPECT_EQ(0, observer.IsTerminal());
        ReportTwoSteps(observer);
    }
    const std::string text = ReadAll(file);
    std::fclose(file);
    const std::string expected =
        "start: Copy (2 steps)\n"
        "step 1/2: First (3 sub-steps)\n"
        "sub-step 1/3: a\n"
        "sub-task: a'\n"
        "sub-step 2/3: b\n"
        "task: First, renamed\n"
        "error: disk full\n"
        "step 2/2: Second\n"
        "finished: 2/2 steps in ";
    EXPECT_EQ(expected, text.substr(0, expected.size()));
    EXPECT_EQ(" s\n", text.substr(text.size() - 3));
    EXPECT_EQ(9, std::count(text.begin(), text.end(), '\n'));
}

TEST(TerminalProgressObserver, KeepsControlCharactersOutOfPlainLines) {
    std::FILE* file = std::tmpfile();
    ASSERT_NE(nullptr, file);
    {
        CKWTerminalProgressObserver observer(file);
        observer.OnStart("two\nlines\r\x1b[2J", 0);
        observer.OnStartNextTask("tab\there", 0);
        observer.OnError("bell\a");
        observer.Print("the host's\nown line");
    }
    const std::string text = ReadAll(file);
    std::fclose(file);
    EXPECT_EQ(
        "start: two lines  [2J (0 steps)\nstep 1: tab here\nerror: bell \n"
        "the host's own line\n",
        text);
}

#if !defined(_WIN32)
// The far end of a pseudo-terminal: what a terminal would show.
class CPseudoTerminal {
public:
    CPseudoTerminal() {
        m_master = ::posix_openpt(O_RDWR | O_NOCTTY);
        if (m_master >= 0 && ::grantpt(m_master) == 0 && ::unlockpt(m_master) == 0) {
            m_pSlave = std::fopen(::ptsname(m_master), "w");
        }
    }
    ~CPseudoTerminal() {
        if (m_pSlave) {
            std::fclose(m_pSlave);
        }
        if (m_master >= 0) {
            ::close(m_master);
        }
    }
    std::FILE* Slave() { return m_pSlave; }
    // Everything written so far (the writes are flushed, so it is there).
    std::string Screen() {
        std::string text;
        char buffer[4096];
        pollfd ready = {m_master, POLLIN, 0};
        while (::poll(&ready, 1, 0) > 0 && (ready.revents & POLLIN)) {
            const ssize_t count = ::read(m_master, buffer, sizeof buffer);
            if (count <= 0) {
                break;
            }
            text.append(buffer, static_cast<std::size_t>(count));
        }
        return text;
    }

private:
    int m_master = -1;
    std::FILE* m_pSlave = nullptr;
};

TEST(TerminalProgressObserver, RedrawsOneBarLineOnATerminal) {
    CPseudoTerminal terminal;
    if (!terminal.Slave()) {
        GTEST_SKIP() << "no pseudo-terminal here";
    }
    CKWTerminalProgressObserver observer(terminal.Slave());
    ASSERT_EQ(1, observer.IsTerminal());
    observer.OnStart("Copy", 2);
    observer.OnStartNextTask("First file with a long name", 0);
    std::string screen = terminal.Screen();
    EXPECT_NE(std::string::npos, screen.find("\r[------------------------] 0/2"));
    EXPECT_NE(std::string::npos, screen.find("\r[------------------------] 1/2 First file with"));
    EXPECT_EQ(std::string::npos, screen.find('\n'));

    // A shorter line wipes the rest of the longer one.
    observer.OnStartNextTask("B", 0);
    screen = terminal.Screen();
    const std::size_t bar = screen.rfind('\r');
    ASSERT_NE(std::string::npos, bar);
    EXPECT_EQ(0u, screen.find("\r[############------------] 2/2 B  0:0"));
    EXPECT_EQ(screen.size() - bar, std::string("\r[------------------------] 1/2 ").size() +
                                       std::string("First file with a long name  0:00").size());

    // Errors and the host's lines go above the bar, which is drawn again;
    // the finished bar is full and ends its line.
    observer.OnError("oops");
    observer.Print("note");
    screen = terminal.Screen();
    EXPECT_EQ(0u, screen.find("\rerror: oops   "));
    const std::size_t note = screen.find("\rnote   ");
    ASSERT_NE(std::string::npos, note);
    EXPECT_NE(std::string::npos, screen.find("\r\n\r[############------------] 2/2 B", note));
    observer.OnFinish();
    screen = terminal.Screen();
    EXPECT_NE(std::string::npos, screen.find("[########################] 2/2 B"));
    EXPECT_EQ('\n', screen.back());
}
#endif

// A notification as text: the message's offset from WM_USER, the count, the text.
std::string Record(const SKWProgressNotification& notification) {
    return std::to_string(notification.nMessage - WM_USER) + " " +
           std::to_string(notification.nCount) + " " + notification.strText.GetStdString();
}

// The records drained from a queued observer.
std::vector<std::string> DrainAll(CKWQueuedProgressObserver& observer) {
    std::vector<std::string> records;
    observer.Drain([&](const SKWProgressNotification& n) { records.push_back(Record(n)); });
    return records;
}

const std::vector<std::string> kTwoStepRecords = {
    "1 2 Copy",           "2 3 First",     "3 0 a",      "5 0 a'", "3 0 b",
    "4 0 First, renamed", "7 0 disk full", "2 0 Second", "6 0 "};

TEST(QueuedProgressObserver, QueuesEveryNotificationInOrder) {
    CKWQueuedProgressObserver observer;
    ReportTwoSteps(observer);
    EXPECT_EQ(9, observer.GetPendingCount());
    SKWProgressNotification notification;
    ASSERT_EQ(1, observer.PopNotification(notification));
    EXPECT_EQ(UINT(CKWQueuedProgressObserver::MSG_START), notification.nMessage);
    EXPECT_EQ(2, notification.nCount);
    EXPECT_STREQ("Copy", notification.strText);
    EXPECT_EQ(std::vector<std::string>(kTwoStepRecords.begin() + 1, kTwoStepRecords.end()),
              DrainAll(observer));
    EXPECT_EQ(0, observer.GetPendingCount());
    EXPECT_EQ(0, observer.PopNotification(notification));
    EXPECT_EQ(0, observer.Drain(nullptr));
}

TEST(QueuedProgressObserver, HandlersAndHooksMayCallBackWithoutDeadlock) {
    CKWQueuedProgressObserver observer;
    int woken = 0;
    observer.SetWakeUpHook([&] { ++woken; });
    observer.OnStart("Copy", 1);
    // A handler that reports again: the new record waits for the next drain.
    EXPECT_EQ(1, observer.Drain([&](const SKWProgressNotification&) { observer.OnFinish(); }));
    EXPECT_EQ(2, woken);
    // A hook that takes the record it was woken for.
    std::vector<UINT> taken;
    observer.SetWakeUpHook([&] {
        SKWProgressNotification notification;
        while (observer.PopNotification(notification)) {
            taken.push_back(notification.nMessage);
        }
    });
    observer.OnError("late");
    EXPECT_EQ((std::vector<UINT>{WM_USER + 6, WM_USER + 7}), taken);
    observer.SetWakeUpHook(nullptr);
    observer.OnFinish();
    EXPECT_EQ(1, observer.GetPendingCount());
}

TEST(QueuedProgressObserver, CarriesATaskThreadsReportsToAnotherInOrder) {
    CKWQueuedProgressObserver observer;
    const int count = 2000;
    std::thread task([&] {
        observer.OnStart("Count", count);
        for (int i = 0; i < count; ++i) {
            observer.OnStartNextTask(CString(std::to_string(i)), i);
        }
        observer.OnFinish();
    });
    std::vector<SKWProgressNotification> received;
    while (received.empty() || received.back().nMessage != UINT(WM_USER + 6)) {
        observer.Drain([&](const SKWProgressNotification& n) { received.push_back(n); });
        std::this_thread::yield();
    }
    task.join();
    ASSERT_EQ(std::size_t(count + 2), received.size());
    for (int i = 0; i < count; ++i) {
        EXPECT_EQ(i, received[i + 1].nCount);
        EXPECT_EQ(std::to_string(i), received[i + 1].strText.GetStdString());
    }
}

TEST(QueuedProgressObserver, TakeMessageFreesTheTextOfItsOwnMessagesOnly) {
    SKWProgressNotification notification{0, 0, CString("untouched")};
    EXPECT_EQ(0, CKWQueuedProgressObserver::TakeMessage(WM_USER, 1, 0, notification));
    EXPECT_EQ(0, CKWQueuedProgressObserver::TakeMessage(WM_USER + 8, 1, 0, notification));
    EXPECT_STREQ("untouched", notification.strText);

    CString* pText = new CString("Meshing");
    ASSERT_EQ(1, CKWQueuedProgressObserver::TakeMessage(
                     WM_USER + 1, 12, reinterpret_cast<LPARAM>(pText), notification));
    EXPECT_EQ(UINT(WM_USER + 1), notification.nMessage);
    EXPECT_EQ(12, notification.nCount);
    EXPECT_STREQ("Meshing", notification.strText);
    ASSERT_EQ(1, CKWQueuedProgressObserver::TakeMessage(WM_USER + 6, 0, 0, notification));
    EXPECT_TRUE(notification.strText.IsEmpty());
}

#if defined(_WIN32)
TEST(QueuedProgressObserver, PostsWindowMessagesFromTheTaskThread) {
    HWND window = ::CreateWindowExA(0, "STATIC", "progress", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                    nullptr, nullptr);
    ASSERT_NE(nullptr, window);
    CKWQueuedProgressObserver observer(window);
    std::thread([&] { ReportTwoSteps(observer); }).join();
    EXPECT_EQ(0, observer.GetPendingCount());
    std::vector<std::string> records;
    MSG message;
    while (::PeekMessageA(&message, window, 0, 0, PM_REMOVE)) {
        SKWProgressNotification notification;
        if (CKWQueuedProgressObserver::TakeMessage(message.message, message.wParam, message.lParam,
                                                   notification)) {
            records.push_back(Record(notification));
        }
    }
    EXPECT_EQ(kTwoStepRecords, records);
    ::DestroyWindow(window);
}
#endif

TEST(ProgressObserverList, ForwardsEachNotificationToEveryObserverInOrder) {
    CKWQueuedProgressObserver first;
    CKWQueuedProgressObserver second;
    std::string order;
    first.SetWakeUpHook([&] { order += '1'; });
    second.SetWakeUpHook([&] { order += '2'; });
    CKWProgressObserverList list;
    EXPECT_EQ(1, list.Add(&first));
    EXPECT_EQ(1, list.Add(&second));
    EXPECT_EQ(0, list.Add(&first));
    EXPECT_EQ(0, list.Add(nullptr));
    EXPECT_EQ(2, list.GetCount());
    ReportTwoSteps(list);
    EXPECT_EQ(kTwoStepRecords, DrainAll(first));
    EXPECT_EQ(kTwoStepRecords, DrainAll(second));
    EXPECT_EQ("121212121212121212", order);

    EXPECT_EQ(1, list.Remove(&first));
    EXPECT_EQ(0, list.Remove(&first));
    list.OnFinish();
    EXPECT_EQ(0, first.GetPendingCount());
    EXPECT_EQ(1, second.GetPendingCount());
}

TEST(ProgressObserverList, IsCanceledWhenAnyObserverIs) {
    CKWTerminalProgressObserver bar;
    CKWQueuedProgressObserver queue;
    CKWProgressObserverList list;
    EXPECT_EQ(0, list.IsCanceled());
    list.Add(&bar);
    list.Add(&queue);
    EXPECT_EQ(0, list.IsCanceled());
    queue.SetCanceled();
    EXPECT_EQ(1, list.IsCanceled());
    queue.SetCanceled(0);
    std::thread([&] { bar.SetCanceled(); }).join();
    EXPECT_EQ(1, list.IsCanceled());
    EXPECT_EQ(0, queue.IsCanceled());
    bar.SetCanceled(0);
    EXPECT_EQ(0, list.IsCanceled());
}

}  // namespace
