// CKWProgressObserverList: one observer that reports to several.
//
// Each notification goes to every listed observer in the order they were
// added; the task counts as cancelled as soon as any of them says so. The
// list owns none of them.
//
//   CKWTerminalProgressObserver bar;
//   CKWQueuedProgressObserver dialog;
//   CKWProgressObserverList observers;
//   observers.Add(&bar);
//   observers.Add(&dialog);
//   CKWProgressTaskThread thread(&task, &observers);
//
// Fill the list before the task starts: it is read on the task's thread
// without a lock.
#pragma once

#include <vector>

#include "kwcore/system/IKWProgressTaskObserver.h"

class KWCORE_API CKWProgressObserverList : public IKWProgressTaskObserver {
public:
    CKWProgressObserverList() = default;
    virtual ~CKWProgressObserverList() = default;

    // 1 when added; 0 for null or an observer already listed.
    int Add(IKWProgressTaskObserver* observer);
    // 1 when it was listed.
    int Remove(IKWProgressTaskObserver* observer);
    int GetCount() const;

    void OnStart(CString taskName, int steps) override;
    void OnStartNextTask(CString taskName, int subSteps) override;
    void OnStartNextSubTask(CString subTaskName) override;
    void OnTaskNameChange(CString taskName) override;
    void OnSubTaskNameChange(CString subTaskName) override;
    void OnFinish() override;
    int IsCanceled() override;
    void OnError(CString message) override;

private:
    std::vector<IKWProgressTaskObserver*> m_observers;
};
