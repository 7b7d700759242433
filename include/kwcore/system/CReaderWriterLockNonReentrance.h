// Reader-writer lock: many readers or one writer, writers preferred.
//
// One guard protects the counters; the two events a thread may wait on are
// created only while someone has to wait. No thread may take the lock twice.
#pragma once

#include "kwcore/platform/Export.h"
#include "kwcore/platform/Win32Types.h"

#if !defined(_WIN32)
#include <atomic>
#endif

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
    // Writers holding or waiting, readers holding, readers waiting.
    unsigned m_uWriters;
    unsigned m_uReaders;
    unsigned m_uWaitingReaders;

private:
#if !defined(_WIN32)
    void WaitForGuard() const;
    void WakeGuardWaiter() const;
#endif
    void CopyCounters(const CReaderWriterLockNonReentrance& other);
    void EnsureWriterEvent();
    void CloseWriterEventAndWakeReaders();
    void CloseEvents();
};

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
