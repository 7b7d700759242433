// IKWProgressTaskObserver: where a progress task reports.
//
// A task announces its work as a number of steps (OnStart), starts each step
// with the number of its sub-steps (OnStartNextTask) and each sub-step
// (OnStartNextSubTask), may rename either on the way, reports errors, and
// ends with OnFinish. It polls IsCanceled to learn that the user gave up.
//
// Every call comes on the task's thread. An observer must not block it: one
// that drives a user interface hands the notification over to the interface's
// thread (CKWQueuedProgressObserver) instead of drawing itself.
//
//   observer->OnStart("Meshing", 3);
//   observer->OnStartNextTask("Surface", 100);
//   observer->OnStartNextSubTask("Patch 1");
//   ...
//   if (observer->IsCanceled()) return;
//   observer->OnFinish();
#pragma once

#include "kwcore/platform/CString.h"
#include "kwcore/platform/Export.h"

class KWCORE_API IKWProgressTaskObserver {
public:
    // The task starts; it has `steps` steps.
    virtual void OnStart(CString taskName, int steps) = 0;
    // The next step starts; it has `subSteps` sub-steps (0: none).
    virtual void OnStartNextTask(CString taskName, int subSteps) = 0;
    // The next sub-step of the current step starts.
    virtual void OnStartNextSubTask(CString subTaskName) = 0;
    virtual void OnTaskNameChange(CString taskName) = 0;
    virtual void OnSubTaskNameChange(CString subTaskName) = 0;
    virtual void OnFinish() = 0;
    // Non-zero once the user asked the task to stop.
    virtual int IsCanceled() = 0;
    virtual void OnError(CString message) = 0;

protected:
    ~IKWProgressTaskObserver() = default;
};
