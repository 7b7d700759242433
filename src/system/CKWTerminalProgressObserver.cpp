#include "kwcore/system/CKWTerminalProgressObserver.h"

#include <algorithm>

#if defined(_WIN32)
#include <io.h>
#else
#include <sys/ioctl.h>
#include <unistd.h>
#endif

namespace {

const int kDefaultColumns = 80;

bool IsTerminalStream(std::FILE* out) {
#if defined(_WIN32)
    return _isatty(_fileno(out)) != 0;
#else
    return ::isatty(::fileno(out)) != 0;
#endif
}

int TerminalColumns(std::FILE* out) {
#if !defined(_WIN32)
    struct winsize size = {};
    if (::ioctl(::fileno(out), TIOCGWINSZ, &size) == 0 && size.ws_col > 0) {
        return size.ws_col;
    }
#endif
    (void)out;
    return kDefaultColumns;
}

// Names come from the task; a line break or escape in one would tear the
// line apart, so control characters become spaces.
std::string Printable(const CString& text) {
    std::string printable = text.GetStdString();
    for (char& ch : printable) {
        const unsigned char byte = static_cast<unsigned char>(ch);
        if (byte < 0x20 || byte == 0x7F) {
            ch = ' ';
        }
    }
    return printable;
}

// At most `bytes` bytes of text, cut before a UTF-8 sequence rather than in it.
std::string Fit(const std::string& text, std::size_t bytes) {
    if (text.size() <= bytes) {
        return text;
    }
    while (bytes > 0 && (static_cast<unsigned char>(text[bytes]) & 0xC0) == 0x80) {
        --bytes;
    }
    return text.substr(0, bytes);
}

std::string Counted(int index, int count) {
    CString text;
    if (count > 0) {
        text.Format("%d/%d", index, count);
    } else {
        text.Format("%d", index);
    }
    return text.GetStdString();
}

}  // namespace

CKWTerminalProgressObserver::CKWTerminalProgressObserver(std::FILE* out)
    : m_pOut(out ? out : stderr),
      m_bTerminal(IsTerminalStream(m_pOut)),
      m_nSteps(0),
      m_nStep(0),
      m_nSubSteps(0),
      m_nSubStep(0),
      m_bFinished(false),
      m_nDrawnLength(0),
      m_start(Clock::now()),
      m_lastDraw(m_start),
      m_nCanceled(0) {}

CKWTerminalProgressObserver::~CKWTerminalProgressObserver() {
    std::lock_guard<std::mutex> lock(m_mutex);
    EndLine();
}

void CKWTerminalProgressObserver::OnStart(CString taskName, int steps) {
    std::lock_guard<std::mutex> lock(m_mutex);
    EndLine();
    m_strTask = Printable(taskName);
    m_strSubTask.clear();
    m_nSteps = std::max(steps, 0);
    m_nStep = 0;
    m_nSubSteps = 0;
    m_nSubStep = 0;
    m_bFinished = false;
    m_start = Clock::now();
    CString line;
    line.Format("start: %s (%d steps)", m_strTask.c_str(), m_nSteps);
    Report(line.GetStdString(), true);
}

void CKWTerminalProgressObserver::OnStartNextTask(CString taskName, int subSteps) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_strTask = Printable(taskName);
    m_strSubTask.clear();
    ++m_nStep;
    m_nSubSteps = std::max(subSteps, 0);
    m_nSubStep = 0;
    std::string line = "step " + Counted(m_nStep, m_nSteps) + ": " + m_strTask;
    if (m_nSubSteps > 0) {
        line += " (" + std::to_string(m_nSubSteps) + " sub-steps)";
    }
    Report(line, true);
}

void CKWTerminalProgressObserver::OnStartNextSubTask(CString subTaskName) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_strSubTask = Printable(subTaskName);
    ++m_nSubStep;
    Report("sub-step " + Counted(m_nSubStep, m_nSubSteps) + ": " + m_strSubTask, false);
}

void CKWTerminalProgressObserver::OnTaskNameChange(CString taskName) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_strTask = Printable(taskName);
    Report("task: " + m_strTask, false);
}

void CKWTerminalProgressObserver::OnSubTaskNameChange(CString subTaskName) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_strSubTask = Printable(subTaskName);
    Report("sub-task: " + m_strSubTask, false);
}

void CKWTerminalProgressObserver::OnFinish() {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_bFinished = true;
    CString line;
    line.Format("finished: %s steps in %.1f s", Counted(m_nStep, m_nSteps).c_str(), Seconds());
    Report(line.GetStdString(), true);
    EndLine();
}

int CKWTerminalProgressObserver::IsCanceled() {
    return m_nCanceled.load();
}

void CKWTerminalProgressObserver::OnError(CString message) {
    std::lock_guard<std::mutex> lock(m_mutex);
    WriteAbove("error: " + Printable(message));
}

void CKWTerminalProgressObserver::Print(CString line) {
    std::lock_guard<std::mutex> lock(m_mutex);
    WriteAbove(Printable(line));
}

void CKWTerminalProgressObserver::SetCanceled(int canceled) {
    m_nCanceled.store(canceled);
}

int CKWTerminalProgressObserver::IsTerminal() const {
    return m_bTerminal ? 1 : 0;
}

void CKWTerminalProgressObserver::Report(const std::string& plainLine, bool force) {
    if (m_bTerminal) {
        Redraw(force);
    } else {
        std::fprintf(m_pOut, "%s\n", plainLine.c_str());
    }
    std::fflush(m_pOut);
}

void CKWTerminalProgressObserver::Redraw(bool force) {
    const Clock::time_point now = Clock::now();
    if (!force && now - m_lastDraw < std::chrono::milliseconds(REDRAW_INTERVAL_MS)) {
        return;
    }
    m_lastDraw = now;
    const std::string line = BarLine();
    const int length = static_cast<int>(line.size());
    // Spaces wipe what is left of a longer line drawn before.
    std::fprintf(m_pOut, "\r%s%*s", line.c_str(), std::max(m_nDrawnLength - length, 0), "");
    m_nDrawnLength = length;
}

void CKWTerminalProgressObserver::WriteAbove(const std::string& line) {
    if (!m_bTerminal) {
        Report(line, true);
        return;
    }
    const int length = static_cast<int>(line.size());
    std::fprintf(m_pOut, "\r%s%*s\n", line.c_str(), std::max(m_nDrawnLength - length, 0), "");
    if (m_nDrawnLength > 0) {
        m_nDrawnLength = 0;
        Redraw(true);
    }
    std::fflush(m_pOut);
}

// Ends a bar line on screen, so that what follows starts on a line of its own.
void CKWTerminalProgressObserver::EndLine() {
    if (m_bTerminal && m_nDrawnLength > 0) {
        std::fputc('\n', m_pOut);
        std::fflush(m_pOut);
    }
    m_nDrawnLength = 0;
}

// "[#########---------------] 12/40 Task: sub-task  0:03", cut to the width
// of the terminal.
std::string CKWTerminalProgressObserver::BarLine() const {
    const int filled = static_cast<int>(Progress() * BAR_WIDTH + 0.5);
    std::string line = "[" + std::string(filled, '#') + std::string(BAR_WIDTH - filled, '-') + "] ";
    line += Counted(m_nStep, m_nSteps) + " ";
    CString time;
    const int seconds = static_cast<int>(Seconds());
    time.Format("  %d:%02d", seconds / 60, seconds % 60);
    std::string names = m_strTask;
    if (!m_strSubTask.empty()) {
        names += ": " + m_strSubTask;
    }
    const int columns = TerminalColumns(m_pOut) - 1;
    const int room = columns - static_cast<int>(line.size()) - time.GetLength();
    line += Fit(names, static_cast<std::size_t>(std::max(room, 0)));
    return Fit(line + time.GetStdString(), static_cast<std::size_t>(std::max(columns, 0)));
}

// Done steps, and the done part of the current one, as a fraction of all.
double CKWTerminalProgressObserver::Progress() const {
    if (m_nSteps <= 0) {
        return m_bFinished ? 1.0 : 0.0;
    }
    double done = m_nStep;
    if (!m_bFinished && m_nStep > 0) {
        done -= 1.0;
        if (m_nSubSteps > 0) {
            done += static_cast<double>(std::max(m_nSubStep - 1, 0)) / m_nSubSteps;
        }
    }
    return std::min(std::max(done / m_nSteps, 0.0), 1.0);
}

double CKWTerminalProgressObserver::Seconds() const {
    return std::chrono::duration<double>(Clock::now() - m_start).count();
}
