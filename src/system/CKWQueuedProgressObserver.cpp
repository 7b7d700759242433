#include "kwcore/system/CKWQueuedProgressObserver.h"

#include <utility>

CKWQueuedProgressObserver::CKWQueuedProgressObserver() : m_nCanceled(0) {}

#if defined(_WIN32)
CKWQueuedProgressObserver::CKWQueuedProgressObserver(HWND window)
    : m_nCanceled(0), m_hWnd(window) {}
#endif

CKWQueuedProgressObserver::~CKWQueuedProgressObserver() = default;

void CKWQueuedProgressObserver::OnStart(CString taskName, int steps) {
    Notify(MSG_START, steps, taskName);
}

void CKWQueuedProgressObserver::OnStartNextTask(CString taskName, int subSteps) {
    Notify(MSG_NEXT_TASK, subSteps, taskName);
}

void CKWQueuedProgressObserver::OnStartNextSubTask(CString subTaskName) {
    Notify(MSG_NEXT_SUBTASK, 0, subTaskName);
}

void CKWQueuedProgressObserver::OnTaskNameChange(CString taskName) {
    Notify(MSG_TASK_NAME, 0, taskName);
}

void CKWQueuedProgressObserver::OnSubTaskNameChange(CString subTaskName) {
    Notify(MSG_SUBTASK_NAME, 0, subTaskName);
}

void CKWQueuedProgressObserver::OnFinish() {
    Notify(MSG_FINISH, 0, CString());
}

int CKWQueuedProgressObserver::IsCanceled() {
    return m_nCanceled.load();
}

void CKWQueuedProgressObserver::OnError(CString message) {
    Notify(MSG_ERROR, 0, message);
}

void CKWQueuedProgressObserver::SetCanceled(int canceled) {
    m_nCanceled.store(canceled);
}

void CKWQueuedProgressObserver::SetWakeUpHook(WakeUpHook hook) {
    std::shared_ptr<const WakeUpHook> spHook;
    if (hook) {
        spHook = std::make_shared<const WakeUpHook>(std::move(hook));
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    m_spWakeUp.swap(spHook);
}

int CKWQueuedProgressObserver::PopNotification(SKWProgressNotification& notification) {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_queue.empty()) {
        return 0;
    }
    notification = std::move(m_queue.front());
    m_queue.pop_front();
    return 1;
}

int CKWQueuedProgressObserver::Drain(const Handler& handle) {
    std::deque<SKWProgressNotification> taken;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        taken.swap(m_queue);
    }
    // The handler runs without the lock: the task goes on queueing meanwhile.
    if (handle) {
        for (const SKWProgressNotification& notification : taken) {
            handle(notification);
        }
    }
    return static_cast<int>(taken.size());
}

int CKWQueuedProgressObserver::GetPendingCount() {
    std::lock_guard<std::mutex> lock(m_mutex);
    return static_cast<int>(m_queue.size());
}

int CKWQueuedProgressObserver::TakeMessage(UINT message, WPARAM wParam, LPARAM lParam,
                                           SKWProgressNotification& notification) {
    if (message < MSG_START || message > MSG_ERROR) {
        return 0;
    }
    CString* pText = reinterpret_cast<CString*>(lParam);
    notification.nMessage = message;
    notification.nCount = static_cast<int>(wParam);
    notification.strText = pText ? *pText : CString();
    delete pText;
    return 1;
}

void CKWQueuedProgressObserver::Notify(UINT message, int count, const CString& text) {
#if defined(_WIN32)
    if (m_hWnd) {
        CString* pText = message == MSG_FINISH ? nullptr : new CString(text);
        if (!::PostMessageA(m_hWnd, message, static_cast<WPARAM>(count),
                            reinterpret_cast<LPARAM>(pText))) {
            delete pText;  // the window is gone: nobody will take it
        }
        return;
    }
#endif
    std::shared_ptr<const WakeUpHook> spWakeUp;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_queue.push_back(SKWProgressNotification{message, count, text});
        spWakeUp = m_spWakeUp;
    }
    if (spWakeUp) {
        (*spWakeUp)();
    }
}
