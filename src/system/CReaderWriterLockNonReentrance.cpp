#include "kwcore/system/CReaderWriterLockNonReentrance.h"

#include <cassert>

#if !defined(_WIN32)
#include <atomic>
#include <condition_variable>
#include <mutex>

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif

namespace {

// How often a reader that found a writer looks again before it waits. A
// few times only: when threads outnumber cores, a spinning thread keeps the
// core from the very holder it waits for.
constexpr int READER_SPINS = 4;

void CpuRelax() {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#endif
}

#if defined(_WIN32)

HANDLE CreateLockEvent(bool bManualReset) {
    return ::CreateEventA(nullptr, bManualReset ? TRUE : FALSE, FALSE, nullptr);
}
void SetLockEvent(HANDLE hEvent) {
    ::SetEvent(hEvent);
}
void ResetLockEvent(HANDLE hEvent) {
    ::ResetEvent(hEvent);
}
void WaitLockEvent(HANDLE hEvent) {
    ::WaitForSingleObject(hEvent, INFINITE);
}
void CloseLockEvent(HANDLE hEvent) {
    ::CloseHandle(hEvent);
}

#else

// Looks at a taken guard, or at an event not yet signalled, a few times
// before sleeping: the holders keep the lock for a short while only, but a
// longer spin starves them of the core when threads outnumber cores.
constexpr int SPINS = 4;

// The word the kernel sleeps on: the guard's own.
int* GuardWord(std::atomic<int>& guard) {
    static_assert(sizeof(std::atomic<int>) == sizeof(int), "the guard is one plain int");
    return reinterpret_cast<int*>(&guard);
}

// An event as the lock uses it: auto-reset events let one waiter through
// per signal, manual-reset ones stay signalled until reset.
struct SKWLockEvent {
    std::mutex mutex;
    std::condition_variable signalled;
    std::atomic<bool> bSignalled{false};
    bool bManualReset = false;

    // Passes a waiter when signalled, taking the signal of an auto-reset
    // event.
    bool TryPass() {
        if (bManualReset)
            return bSignalled.load(std::memory_order_acquire);
        bool bExpected = true;
        return bSignalled.compare_exchange_strong(bExpected, false, std::memory_order_acquire);
    }
};

SKWLockEvent* AsEvent(HANDLE hEvent) {
    return static_cast<SKWLockEvent*>(hEvent);
}

HANDLE CreateLockEvent(bool bManualReset) {
    SKWLockEvent* pEvent = new SKWLockEvent;
    pEvent->bManualReset = bManualReset;
    return pEvent;
}

void SetLockEvent(HANDLE hEvent) {
    SKWLockEvent* pEvent = AsEvent(hEvent);
    {
        std::lock_guard<std::mutex> lock(pEvent->mutex);
        pEvent->bSignalled.store(true, std::memory_order_release);
    }
    if (pEvent->bManualReset)
        pEvent->signalled.notify_all();
    else
        pEvent->signalled.notify_one();
}

void ResetLockEvent(HANDLE hEvent) {
    SKWLockEvent* pEvent = AsEvent(hEvent);
    std::lock_guard<std::mutex> lock(pEvent->mutex);
    pEvent->bSignalled.store(false, std::memory_order_relaxed);
}

void WaitLockEvent(HANDLE hEvent) {
    SKWLockEvent* pEvent = AsEvent(hEvent);
    for (int iSpin = 0; iSpin < SPINS; ++iSpin) {
        if (pEvent->TryPass())
            return;
        CpuRelax();
    }
    std::unique_lock<std::mutex> lock(pEvent->mutex);
    pEvent->signalled.wait(lock, [pEvent] { return pEvent->TryPass(); });
}

void CloseLockEvent(HANDLE hEvent) {
    delete AsEvent(hEvent);
}

#endif

}  // namespace

CReaderWriterLockNonReentrance::CReaderWriterLockNonReentrance()
    : m_hWriterEvent(nullptr),
      m_hReaderEvent(nullptr),
      m_uWriters(0),
      m_uReaderWord(0),
      m_uWaitingReaders(0) {
#if defined(_WIN32)
    ::InitializeCriticalSection(&m_csGuard);
#endif
}

CReaderWriterLockNonReentrance::CReaderWriterLockNonReentrance(
    const CReaderWriterLockNonReentrance& other)
    : CReaderWriterLockNonReentrance() {
    CopyCounters(other);
}

CReaderWriterLockNonReentrance& CReaderWriterLockNonReentrance::operator=(
    const CReaderWriterLockNonReentrance& other) {
    if (this != &other) {
        EnterGuard();
        CloseEvents();
        CopyCounters(other);
        LeaveGuard();
    }
    return *this;
}

CReaderWriterLockNonReentrance::~CReaderWriterLockNonReentrance() {
    CloseEvents();
#if defined(_WIN32)
    ::DeleteCriticalSection(&m_csGuard);
#endif
}

void CReaderWriterLockNonReentrance::CopyCounters(const CReaderWriterLockNonReentrance& other) {
    other.EnterGuard();
    m_uWriters = other.m_uWriters;
    m_uReaderWord.store(other.m_uReaderWord.load(std::memory_order_relaxed),
                        std::memory_order_relaxed);
    // Waiting readers belong to the other lock's event; none wait on this one.
    m_uWaitingReaders = 0;
    other.LeaveGuard();
}

void CReaderWriterLockNonReentrance::CloseEvents() {
    if (m_hWriterEvent)
        CloseLockEvent(m_hWriterEvent);
    if (m_hReaderEvent)
        CloseLockEvent(m_hReaderEvent);
    m_hWriterEvent = nullptr;
    m_hReaderEvent = nullptr;
}

#if !defined(_WIN32)
void CReaderWriterLockNonReentrance::WaitForGuard() const {
    for (int iSpin = 0; iSpin < SPINS; ++iSpin) {
        // Watch the guard and try only when it looks free, so waiters do
        // not take the line from the holder for nothing.
        int iFree = GUARD_FREE;
        if (m_csGuard.load(std::memory_order_relaxed) == GUARD_FREE &&
            m_csGuard.compare_exchange_strong(iFree, GUARD_TAKEN, std::memory_order_acquire))
            return;
        CpuRelax();
    }
    // Marked contended, so the holder wakes a sleeper when it leaves.
    while (m_csGuard.exchange(GUARD_CONTENDED, std::memory_order_acquire) != GUARD_FREE)
        ::syscall(SYS_futex, GuardWord(m_csGuard), FUTEX_WAIT_PRIVATE, GUARD_CONTENDED, nullptr,
                  nullptr, 0);
}

void CReaderWriterLockNonReentrance::WakeGuardWaiter() const {
    ::syscall(SYS_futex, GuardWord(m_csGuard), FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
}
#endif

void CReaderWriterLockNonReentrance::WaitForEvent(HANDLE hEvent) {
    WaitLockEvent(hEvent);
}

void CReaderWriterLockNonReentrance::SignalEvent(HANDLE hEvent) {
    if (hEvent)
        SetLockEvent(hEvent);
}

unsigned CReaderWriterLockNonReentrance::GetReaders() const {
    return m_uReaderWord.load(std::memory_order_relaxed) & READER_COUNT;
}

void CReaderWriterLockNonReentrance::AcquireReaderLockSlow() {
    if (CountReaderOut())
        HandOverToWriter();
    // Writers hold the lock briefly as a rule: a look or two at the
    // writers' bit may spare a sleep and the event it needs.
    for (int iSpin = 0; iSpin < READER_SPINS; ++iSpin) {
        CpuRelax();
        if (m_uReaderWord.load(std::memory_order_relaxed) & WRITERS_PRESENT)
            continue;
        if (!(m_uReaderWord.fetch_add(1, std::memory_order_acquire) & WRITERS_PRESENT))
            return;
        if (CountReaderOut())
            HandOverToWriter();
    }
    EnterGuard();
    _AcquireReaderLock();
    LeaveGuard();
}

bool CReaderWriterLockNonReentrance::ClaimHandOver() {
    unsigned uDrained = WRITERS_PRESENT | WRITER_DRAINS;
    return m_uReaderWord.compare_exchange_strong(uDrained, WRITERS_PRESENT,
                                                 std::memory_order_acq_rel);
}

void CReaderWriterLockNonReentrance::HandOverToWriter() {
    // The writer made its event under the guard before it set its bit.
    EnterGuard();
    SignalEvent(m_hWriterEvent);
    LeaveGuard();
}

void CReaderWriterLockNonReentrance::RefuseUnheldRelease() {
    assert(false && "read lock released but not held");
}

void CReaderWriterLockNonReentrance::AcquireWriterLock() {
    EnterGuard();
    _AcquireWriterLock();
}

void CReaderWriterLockNonReentrance::ReleaseWriterLock() {
    EnterGuard();
    _ReleaseWriterLock();
    LeaveGuard();
}

void CReaderWriterLockNonReentrance::_AcquireReaderLock() {
    if (m_uWriters != 0) {
        if (!m_hReaderEvent)
            m_hReaderEvent = CreateLockEvent(true);
        ++m_uWaitingReaders;
        // The event is manual-reset: every wake-up re-checks the writers.
        do {
            HANDLE hEvent = m_hReaderEvent;
            LeaveGuard();
            WaitForEvent(hEvent);
            EnterGuard();
        } while (m_uWriters != 0);
        if (--m_uWaitingReaders == 0) {
            CloseLockEvent(m_hReaderEvent);
            m_hReaderEvent = nullptr;
        }
    }
    // No writer can set its bit meanwhile: that takes the guard.
    m_uReaderWord.fetch_add(1, std::memory_order_acquire);
}

void CReaderWriterLockNonReentrance::_ReleaseReaderLock() {
    if ((m_uReaderWord.load(std::memory_order_relaxed) & READER_COUNT) == 0)
        return RefuseUnheldRelease();
    if (CountReaderOut())
        SignalEvent(m_hWriterEvent);
}

void CReaderWriterLockNonReentrance::EnsureWriterEvent() {
    if (!m_hWriterEvent)
        m_hWriterEvent = CreateLockEvent(false);
}

void CReaderWriterLockNonReentrance::_AcquireWriterLock() {
    // The first writer waits for the readers, later ones for the writer
    // before them, who hands the lock over.
    const bool bBusy = m_uWriters != 0 || ClaimReaderWord(0);
    if (bBusy)
        EnsureWriterEvent();
    if (++m_uWriters == 1 && m_hReaderEvent)
        ResetLockEvent(m_hReaderEvent);
    HANDLE hEvent = m_hWriterEvent;
    LeaveGuard();
    if (bBusy)
        WaitForEvent(hEvent);
}

bool CReaderWriterLockNonReentrance::ClaimReaderWord(unsigned uOwnReaders) {
    // Sets the writers' bit and, in the same step, marks the count drained
    // when readers other than the caller are counted in it.
    unsigned uWord = m_uReaderWord.load(std::memory_order_relaxed);
    unsigned uClaimed;
    do {
        uClaimed = (uWord | WRITERS_PRESENT) - uOwnReaders;
        if (uClaimed & READER_COUNT)
            uClaimed |= WRITER_DRAINS;
        else
            uClaimed &= ~WRITER_DRAINS;
    } while (!m_uReaderWord.compare_exchange_weak(uWord, uClaimed, std::memory_order_acq_rel,
                                                  std::memory_order_relaxed));
    return (uClaimed & READER_COUNT) != 0;
}

void CReaderWriterLockNonReentrance::_UpgradeToWriterLock() {
    // This thread's own reader slot goes, without the hand-over a last
    // reader makes: the upgrade waits for the other readers only, even when
    // a writer already waits for them too.
    const bool bReadersLeft = ClaimReaderWord(1);
    if (bReadersLeft)
        EnsureWriterEvent();
    if (++m_uWriters == 1 && m_hReaderEvent)
        ResetLockEvent(m_hReaderEvent);
    HANDLE hEvent = m_hWriterEvent;
    LeaveGuard();
    if (bReadersLeft)
        WaitForEvent(hEvent);
}

void CReaderWriterLockNonReentrance::CloseWriterEventAndWakeReaders() {
    m_uReaderWord.fetch_and(READER_COUNT, std::memory_order_release);
    if (m_hWriterEvent)
        CloseLockEvent(m_hWriterEvent);
    m_hWriterEvent = nullptr;
    SignalEvent(m_hReaderEvent);
}

void CReaderWriterLockNonReentrance::_ReleaseWriterLock() {
    assert(m_uWriters != 0 && "write lock released but not held");
    if (m_uWriters == 0)
        return;
    if (--m_uWriters != 0)
        SignalEvent(m_hWriterEvent);
    else
        CloseWriterEventAndWakeReaders();
}

void CReaderWriterLockNonReentrance::_DowngradeToReaderLock() {
    if (--m_uWriters == 0) {
        m_uReaderWord.fetch_add(1, std::memory_order_relaxed);
        CloseWriterEventAndWakeReaders();
    } else {
        // The next writer waits for this reader now.
        m_uReaderWord.fetch_add(1 | WRITER_DRAINS, std::memory_order_relaxed);
    }
}
