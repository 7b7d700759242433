#include "kwcore/system/CKWProgressObserverList.h"

#include <algorithm>

int CKWProgressObserverList::Add(IKWProgressTaskObserver* observer) {
    if (!observer ||
        std::find(m_observers.begin(), m_observers.end(), observer) != m_observers.end()) {
        return 0;
    }
    m_observers.push_back(observer);
    return 1;
}

int CKWProgressObserverList::Remove(IKWProgressTaskObserver* observer) {
    auto found = std::find(m_observers.begin(), m_observers.end(), observer);
    if (found == m_observers.end()) {
        return 0;
    }
    m_observers.erase(found);
    return 1;
}

int CKWProgressObserverList::GetCount() const {
    return static_cast<int>(m_observers.size());
}

void CKWProgressObserverList::OnStart(CString taskName, int steps) {
    for (IKWProgressTaskObserver* observer : m_observers) {
        observer->OnStart(taskName, steps);
    }
}

void CKWProgressObserverList::OnStartNextTask(CString taskName, int subSteps) {
    for (IKWProgressTaskObserver* observer : m_observers) {
        observer->OnStartNextTask(taskName, subSteps);
    }
}

void CKWProgressObserverList::OnStartNextSubTask(CString subTaskName) {
    for (IKWProgressTaskObserver* observer : m_observers) {
        observer->OnStartNextSubTask(subTaskName);
    }
}

void CKWProgressObserverList::OnTaskNameChange(CString taskName) {
    for (IKWProgressTaskObserver* observer : m_observers) {
        observer->OnTaskNameChange(taskName);
    }
}

void CKWProgressObserverList::OnSubTaskNameChange(CString subTaskName) {
    for (IKWProgressTaskObserver* observer : m_observers) {
        observer->OnSubTaskNameChange(subTaskName);
    }
}

void CKWProgressObserverList::OnFinish() {
    for (IKWProgressTaskObserver* observer : m_observers) {
        observer->OnFinish();
    }
}

int CKWProgressObserverList::IsCanceled() {
    for (IKWProgressTaskObserver* observer : m_observers) {
        if (observer->IsCanceled()) {
            return 1;
        }
    }
    return 0;
}

void CKWProgressObserverList::OnError(CString message) {
    for (IKWProgressTaskObserver* observer : m_observers) {
        observer->OnError(message);
    }
}
