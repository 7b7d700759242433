// IKWProgressTask: a long piece of work that reports its progress.
//
// A CKWProgressTaskThread calls Run on its worker thread with the observer it
// was given; the task reports through the observer and polls its IsCanceled
// now and then, returning early once it is set. Cancel is called from another
// thread (the owner's) when the thread is stopped or cancelled: it only asks
// the task to stop, Run returns on its own.
//
//   class CCopyTask : public IKWProgressTask {
//   public:
//       void Run(IKWProgressTaskObserver* observer) override {
//           observer->OnStart("Copying", fileCount);
//           for (int i = 0; i < fileCount && !observer->IsCanceled() && !m_bStop; ++i) {
//               observer->OnStartNextTask(names[i], 0);
//               // ... copy file i ...
//           }
//           observer->OnFinish();
//       }
//       void Cancel() override { m_bStop = true; }  // an atomic flag
//   };
//
// The thread neither owns nor releases the task.
#pragma once

#include "kwcore/platform/Export.h"

class IKWProgressTaskObserver;

class KWCORE_API IKWProgressTask {
public:
    // Does the work on the calling (worker) thread; observer may be null.
    virtual void Run(IKWProgressTaskObserver* observer) = 0;
    // Asks a running task to return soon; called from another thread.
    virtual void Cancel() = 0;
    // Makes the task ready to run again after it ran or was cancelled. The
    // library never calls it: a host that reuses a task does, before starting
    // the thread again. Does nothing by default.
    virtual void Reset() {}

protected:
    ~IKWProgressTask() = default;
};
