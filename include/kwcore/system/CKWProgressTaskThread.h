// CKWProgressTaskThread: runs one IKWProgressTask on a worker thread.
//
// Start creates the thread, which runs the task at once and ends when Run
// returns (exit code 0). Pause sent before the task runs holds it back: the
// run is ignored until Continue. Stop asks the task to cancel (while it runs,
// or instead of running it) and waits for the thread to end; Cancel only
// asks the task. The thread owns neither the task nor the observer; both must
// outlive it, and the thread must have ended (Stop) before it is destroyed.
//
//   CKWTerminalProgressObserver bar;            // or a CKWQueuedProgressObserver
//   CKWProgressTaskThread thread(&task, &bar);
//   thread.Start();
//   ...
//   DWORD exitCode = 0;
//   thread.Stop(exitCode);                       // cancels a task still running
//
// The activity status reads STATUS_STARTED after Start, STATUS_RUNNING while
// the task runs, STATUS_PAUSED while held back, STATUS_CONTINUED for the
// moment between Continue and the run, and STATUS_NO_THREAD once it ended.
#pragma once

#include "kwcore/system/CKWThread.h"
#include "kwcore/system/IKWProgressTask.h"
#include "kwcore/system/IKWProgressTaskObserver.h"

class KWCORE_API CKWProgressTaskThread : public CKWThread {
    DECLARE_DYNAMIC(CKWProgressTaskThread)

public:
    // The task is also the thread's first owner parameter. Either may be null:
    // without a task the thread ends as soon as it would run it.
    CKWProgressTaskThread(IKWProgressTask* task, IKWProgressTaskObserver* observer);

    // Asks the task to stop (nothing without a task); 1.
    virtual int Cancel();

protected:
    DWORD ThreadHandler() override;

    IKWProgressTask* m_pTask;
    IKWProgressTaskObserver* m_pObserver;

private:
    // Reacts to one command; 1 when the thread body is done.
    int HandleCommand(int command);
    int IsPaused();
};
