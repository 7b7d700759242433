#include "kwcore/system/CKWProgressTaskThread.h"

IMPLEMENT_DYNAMIC(CKWProgressTaskThread, CKWThread)

CKWProgressTaskThread::CKWProgressTaskThread(IKWProgressTask* task,
                                             IKWProgressTaskObserver* observer)
    : CKWThread(task, 0), m_pTask(task), m_pObserver(observer) {
    m_strName = "CKWProgressTaskThread";
    m_bSupportCommands = TRUE;
    m_bSupportSynchronization = TRUE;
}

int CKWProgressTaskThread::Cancel() {
    if (m_pTask) {
        m_pTask->Cancel();
    }
    return 1;
}

DWORD CKWProgressTaskThread::ThreadHandler() {
    for (;;) {
        int command = 0;
        WaitForNotification(command, INFINITE);
        if (HandleCommand(command)) {
            return 0;
        }
    }
}

int CKWProgressTaskThread::HandleCommand(int command) {
    switch (command) {
        case CMD_TIMEOUT:
            if (!IsPaused()) {
                HandleCommandImmediately(CMD_RUN);
            }
            return 0;
        case CMD_START:
            HandleCommandImmediately(CMD_RUN);
            return 0;
        case CMD_RUN:
            if (IsPaused()) {
                return 0;
            }
            SetActivityStatus(STATUS_RUNNING);
            if (m_pTask) {
                m_pTask->Run(m_pObserver);
            }
            return 1;
        case CMD_PAUSE:
            if (!IsPaused()) {
                SetActivityStatus(STATUS_PAUSED);
            }
            return 0;
        case CMD_CONTINUE:
            if (IsPaused()) {
                SetActivityStatus(STATUS_CONTINUED);
                HandleCommandImmediately(CMD_RUN);
            }
            return 0;
        case CMD_STOP:
            if (m_pTask) {
                m_pTask->Cancel();
            }
            return 1;
        default:  // CMD_RESET and anything unknown
            return 0;
    }
}

int CKWProgressTaskThread::IsPaused() {
    return GetActivityStatus() == STATUS_PAUSED;
}
