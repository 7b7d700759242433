// CKWQueuedProgressObserver: hands a task's progress to the user-interface
// thread without ever making the task wait for it.
//
// Each notification becomes a record (a message number, a count and a text)
// appended to a queue that the interface thread drains when it likes; a
// wake-up hook, when set, is called after each append (on the task's thread)
// to poke the interface's event loop. On Windows the observer can instead be
// given a window: it then posts the records to it as window messages, the
// count in WPARAM and the text as a CString made with new in LPARAM (null for
// OnFinish), which the receiver takes back with TakeMessage.
//
//   CKWQueuedProgressObserver observer;
//   observer.SetWakeUpHook([&] { loop.Wake(); });
//   CKWProgressTaskThread thread(&task, &observer);
//   thread.Start();
//   // on the interface thread, when woken:
//   observer.Drain([&](const SKWProgressNotification& n) {
//       if (n.nMessage == CKWQueuedProgressObserver::MSG_FINISH) dialog.Close();
//   });
//   // the Cancel button:
//   thread.Cancel();
//   observer.SetCanceled();
#pragma once

#include <atomic>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

#include "kwcore/platform/Win32Types.h"
#include "kwcore/system/IKWProgressTaskObserver.h"

// One notification: which one (a MSG_ number), its count (the steps of
// OnStart, the sub-steps of OnStartNextTask, else 0) and its text (empty for
// OnFinish).
struct SKWProgressNotification {
    UINT nMessage;
    int nCount;
    CString strText;
};

class KWCORE_API CKWQueuedProgressObserver : public IKWProgressTaskObserver {
public:
    // The message numbers, in the order of the observer's operations.
    enum : UINT {
        MSG_START = WM_USER + 1,
        MSG_NEXT_TASK = WM_USER + 2,
        MSG_NEXT_SUBTASK = WM_USER + 3,
        MSG_TASK_NAME = WM_USER + 4,
        MSG_SUBTASK_NAME = WM_USER + 5,
        MSG_FINISH = WM_USER + 6,
        MSG_ERROR = WM_USER + 7
    };

    typedef std::function<void()> WakeUpHook;
    typedef std::function<void(const SKWProgressNotification&)> Handler;

    // Queues the notifications.
    CKWQueuedProgressObserver();
#if defined(_WIN32)
    // Posts the notifications to `window` (queues them when it is null).
    explicit CKWQueuedProgressObserver(HWND window);
#endif
    virtual ~CKWQueuedProgressObserver();

    CKWQueuedProgressObserver(const CKWQueuedProgressObserver&) = delete;
    CKWQueuedProgressObserver& operator=(const CKWQueuedProgressObserver&) = delete;

    void OnStart(CString taskName, int steps) override;
    void OnStartNextTask(CString taskName, int subSteps) override;
    void OnStartNextSubTask(CString subTaskName) override;
    void OnTaskNameChange(CString taskName) override;
    void OnSubTaskNameChange(CString subTaskName) override;
    void OnFinish() override;
    int IsCanceled() override;
    void OnError(CString message) override;

    void SetCanceled(int canceled = 1);
    // Called on the task's thread after each queued notification; an empty
    // hook removes it. The hook must not wait for the interface thread.
    void SetWakeUpHook(WakeUpHook hook);

    // Takes the oldest notification; 0 when there is none.
    int PopNotification(SKWProgressNotification& notification);
    // Hands every queued notification to `handle`, oldest first, and returns
    // how many. Notifications queued meanwhile wait for the next drain.
    int Drain(const Handler& handle);
    int GetPendingCount();

    // Turns a received window message into a notification and frees its text.
    // 0 (and nothing freed) for a message that is not one of MSG_START to
    // MSG_ERROR.
    static int TakeMessage(UINT message, WPARAM wParam, LPARAM lParam,
                           SKWProgressNotification& notification);

private:
    void Notify(UINT message, int count, const CString& text);

    std::mutex m_mutex;
    std::deque<SKWProgressNotification> m_queue;
    std::shared_ptr<const WakeUpHook> m_spWakeUp;
    std::atomic<int> m_nCanceled;
#if defined(_WIN32)
    HWND m_hWnd = nullptr;  // null: queue instead of posting
#endif
};
