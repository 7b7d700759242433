// CKWTerminalProgressObserver: shows a progress task on a text stream.
//
// On a terminal it keeps one line up to date: a bar, the step k of n, the
// task and sub-task names and the time since the start. On anything else (a
// file, a pipe) it writes one plain line per notification, without control
// characters, so logs stay readable. Errors, and lines the host prints
// through the observer, get a line of their own above the bar.
//
//   CKWTerminalProgressObserver bar;            // standard error
//   CKWProgressTaskThread thread(&task, &bar);
//   thread.Start();
//   ...
//   bar.SetCanceled();                           // the task sees IsCanceled()
//
// The notifications come on the task's thread; SetCanceled may be called from
// any thread. The stream is not owned.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdio>
#include <mutex>
#include <string>

#include "kwcore/system/IKWProgressTaskObserver.h"

class KWCORE_API CKWTerminalProgressObserver : public IKWProgressTaskObserver {
public:
    explicit CKWTerminalProgressObserver(std::FILE* out = stderr);
    virtual ~CKWTerminalProgressObserver();

    CKWTerminalProgressObserver(const CKWTerminalProgressObserver&) = delete;
    CKWTerminalProgressObserver& operator=(const CKWTerminalProgressObserver&) = delete;

    void OnStart(CString taskName, int steps) override;
    void OnStartNextTask(CString taskName, int subSteps) override;
    void OnStartNextSubTask(CString subTaskName) override;
    void OnTaskNameChange(CString taskName) override;
    void OnSubTaskNameChange(CString subTaskName) override;
    void OnFinish() override;
    int IsCanceled() override;
    void OnError(CString message) override;

    // Writes a line of the host's own: on a terminal above the bar, which is
    // drawn again below it, so the two do not run into each other.
    void Print(CString line);

    void SetCanceled(int canceled = 1);
    // Non-zero when the stream is a terminal and the line is redrawn in place.
    int IsTerminal() const;

    // The bar's width in characters, and the shortest time between two
    // redraws within one step.
    static constexpr int BAR_WIDTH = 24;
    static constexpr int REDRAW_INTERVAL_MS = 100;

private:
    typedef std::chrono::steady_clock Clock;

    // Writes the plain line, or redraws the bar (always when `force`, else at
    // most once per REDRAW_INTERVAL_MS), under the lock.
    void Report(const std::string& plainLine, bool force);
    void Redraw(bool force);
    void WriteAbove(const std::string& line);
    void EndLine();
    std::string BarLine() const;
    double Progress() const;
    double Seconds() const;

    std::FILE* m_pOut;
    bool m_bTerminal;
    std::mutex m_mutex;
    std::string m_strTask;
    std::string m_strSubTask;
    int m_nSteps;
    int m_nStep;
    int m_nSubSteps;
    int m_nSubStep;
    bool m_bFinished;
    int m_nDrawnLength;
    Clock::time_point m_start;
    Clock::time_point m_lastDraw;
    std::atomic<int> m_nCanceled;
};
