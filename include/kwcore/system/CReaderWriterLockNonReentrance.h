// Reader-writer lock: many readers or one writer, writers preferred.
//
// A reader comes and goes with one atomic operation on the reader word
// while no writer holds or waits. Everything else (writers, waiting readers,
// the two events, created only while someone has to wait) is kept under one
// guard. No thread may take the lock twice.
#pragma once

#include "kwcore/platform/Export.h"
#include "kwcore/platform/Win32Types.h"

#include <atomic>

class KWCORE_API CReaderWriterLockNonReentrance {
public:
    CReaderWriterLockNonReentrance();
    // A copy takes the counters as they are but gets a guard and events of
    // its own, so the two locks never share or close each other's handles.
    CReaderWriterLockNonReentrance(const CReaderWriterLockNonReentrance& other);
    CReaderWriterLockNonReentrance& operator=(const CReaderWriterLockNonReentrance& other);
    virtual ~CReaderWriterLockNonReentrance();

    void AcquireReaderLock();
    void ReleaseReaderLock();
    void AcquireWriterLock();
    void ReleaseWriterLock();

protected:
    void EnterGuard() const;
    void LeaveGuard() const;

    // Readers holding the lock.
    unsigned GetReaders() const;

    // Counts out a reader known to hold the lock; true when the caller
    // must then wake the writer that drains the count (HandOverToWriter).
    bool CountReaderOut();
    void HandOverToWriter();

    // The forms below expect the guard to be held by the caller.
    void _AcquireReaderLock();
    void _ReleaseReaderLock();
    // Leaves the guard; waits for the lock afterwards when it is busy.
    void _AcquireWriterLock();
    void _ReleaseWriterLock();
    // Counts this thread as a writer once the readers have gone, giving up
    // its own reader slot first: used to turn a read lock into a write lock.
    // Leaves the guard before waiting.
    void _UpgradeToWriterLock();
    // Turns the calling writer back into a reader.
    void _DowngradeToReaderLock();

    static void WaitForEvent(HANDLE hEvent);
    static void SignalEvent(HANDLE hEvent);

#if defined(_WIN32)
    mutable CRITICAL_SECTION m_csGuard;
#else
    // GUARD_FREE, GUARD_TAKEN or GUARD_CONTENDED (taken, and a thread may
    // sleep on it). The guard is held for a few instructions of
    // bookkeeping, so a thread that finds it taken spins a little before it
    // sleeps: sleeping and waking cost a system call each, more than the
    // whole uncontended lock.
    enum { GUARD_FREE, GUARD_TAKEN, GUARD_CONTENDED };
    mutable std::atomic<int> m_csGuard{GUARD_FREE};
#endif
    // Auto-reset; made when a writer has to wait, closed when the last
    // writer leaves.
    HANDLE m_hWriterEvent;
    // Manual-reset; exists while readers wait for the writers to leave.
    HANDLE m_hReaderEvent;
    // Writers holding or waiting; changed under the guard only.
    unsigned m_uWriters;
    // Readers holding, counted in the low bits; WRITERS_PRESENT while
    // m_uWriters is not 0; WRITER_DRAINS while a writer waits for the count
    // to fall to 0. Both bits are set under the guard. A reader counts
    // itself in with one atomic add and, when it finds a writer present,
    // counts itself out again at once: such a passing count is waited for
    // like any other, and the thread that brings the count to 0 while a
    // writer drains it clears WRITER_DRAINS and wakes the writer.
    std::atomic<unsigned> m_uReaderWord;
    // Readers blocked on the reader event.
    unsigned m_uWaitingReaders;

    static constexpr unsigned WRITERS_PRESENT = 0x80000000u;
    static constexpr unsigned WRITER_DRAINS = 0x40000000u;
    static constexpr unsigned READER_COUNT = WRITER_DRAINS - 1;

private:
#if !defined(_WIN32)
    void WaitForGuard() const;
    void WakeGuardWaiter() const;
#endif
    // Counts back out a reader that found a writer, and waits its turn.
    void AcquireReaderLockSlow();
    // After the count fell to 0 while a writer drained it: true for the one
    // thread that clears WRITER_DRAINS and so must wake the writer.
    bool ClaimHandOver();
    static void RefuseUnheldRelease();
    // Claims the reader word for a writer that counts uOwnReaders readers
    // of its own; true when other readers are left to wait for.
    bool ClaimReaderWord(unsigned uOwnReaders);
    void CopyCounters(const CReaderWriterLockNonReentrance& other);
    void EnsureWriterEvent();
    void CloseWriterEventAndWakeReaders();
    void CloseEvents();
};

// The reader paths are inline: while no writer holds or waits they are one
// atomic operation each.
inline bool CReaderWriterLockNonReentrance::CountReaderOut() {
    const unsigned uWord = m_uReaderWord.fetch_sub(1, std::memory_order_release);
    return (uWord & (WRITER_DRAINS | READER_COUNT)) == (WRITER_DRAINS | 1) && ClaimHandOver();
}

inline void CReaderWriterLockNonReentrance::AcquireReaderLock() {
    if (m_uReaderWord.fetch_add(1, std::memory_order_acquire) & WRITERS_PRESENT)
        AcquireReaderLockSlow();
}

inline void CReaderWriterLockNonReentrance::ReleaseReaderLock() {
    if ((m_uReaderWord.load(std::memory_order_relaxed) & READER_COUNT) == 0)
        return RefuseUnheldRelease();
    if (CountReaderOut())
        HandOverToWriter();
}

inline void CReaderWriterLockNonReentrance::EnterGuard() const {
#if defined(_WIN32)
    ::EnterCriticalSection(&m_csGuard);
#else
    int iFree = GUARD_FREE;
    if (!m_csGuard.compare_exchange_strong(iFree, GUARD_TAKEN, std::memory_order_acquire))
        WaitForGuard();
#endif
}

inline void CReaderWriterLockNonReentrance::LeaveGuard() const {
#if defined(_WIN32)
    ::LeaveCriticalSection(&m_csGuard);
#else
    if (m_csGuard.exchange(GUARD_FREE, std::memory_order_release) == GUARD_CONTENDED)
        WakeGuardWaiter();
#endif
}
