#include "kwcore/system/CKWReaderWriterLock.h"

#include <cassert>

#if !defined(_WIN32)
#include <sys/syscall.h>
#include <unistd.h>
#endif

CKWReaderWriterLock::CKWReaderWriterLock(const CKWReaderWriterLock& other)
    : CReaderWriterLockNonReentrance(other) {
    other.EnterGuard();
    m_holdCounts = other.m_holdCounts;
    other.LeaveGuard();
}

CKWReaderWriterLock& CKWReaderWriterLock::operator=(const CKWReaderWriterLock& other) {
    if (this != &other) {
        CReaderWriterLockNonReentrance::operator=(other);
        other.EnterGuard();
        CKWThreadHoldCounts counts = other.m_holdCounts;
        other.LeaveGuard();
        EnterGuard();
        m_holdCounts.Swap(counts);
        LeaveGuard();
    }
    return *this;
}

DWORD CKWReaderWriterLock::CurrentThreadID() {
#if defined(_WIN32)
    return ::GetCurrentThreadId();
#else
    // Asked once per thread: a system call costs more than the whole
    // uncontended lock.
    thread_local const DWORD dwThreadID = static_cast<DWORD>(::syscall(SYS_gettid));
    return dwThreadID;
#endif
}

void CKWReaderWriterLock::AcquireReaderLock() {
    EnterGuard();
    // The slot stays put while other threads change the table, and only
    // this thread touches its count.
    DWORD& dwCount = m_holdCounts[CurrentThreadID()];
    if (dwCount == 0)
        _AcquireReaderLock();
    LeaveGuard();
    dwCount += 1;
}

void CKWReaderWriterLock::AcquireWriterLock() {
    EnterGuard();
    DWORD& dwCount = m_holdCounts[CurrentThreadID()];
    if (dwCount == 0)
        _AcquireWriterLock();
    else if (dwCount < WRITER_HOLD)
        _UpgradeToWriterLock();
    else
        LeaveGuard();
    dwCount += WRITER_HOLD;
}

void CKWReaderWriterLock::ReleaseReaderLock() {
    EnterGuard();
    SKWHoldSlot* pSlot = m_holdCounts.Find(CurrentThreadID());
    const bool bHeld = pSlot && (pSlot->dwCount & (WRITER_HOLD - 1)) != 0;
    assert(bHeld && "read lock released but not held by this thread");
    if (bHeld && --pSlot->dwCount == 0) {
        m_holdCounts.Remove(*pSlot);
        _ReleaseReaderLock();
    }
    LeaveGuard();
}

void CKWReaderWriterLock::ReleaseWriterLock() {
    EnterGuard();
    SKWHoldSlot* pSlot = m_holdCounts.Find(CurrentThreadID());
    const bool bHeld = pSlot && pSlot->dwCount >= WRITER_HOLD;
    assert(bHeld && "write lock released but not held by this thread");
    if (bHeld) {
        pSlot->dwCount -= WRITER_HOLD;
        if (pSlot->dwCount == 0) {
            m_holdCounts.Remove(*pSlot);
            _ReleaseWriterLock();
        } else if (pSlot->dwCount < WRITER_HOLD) {
            _DowngradeToReaderLock();
        }
    }
    LeaveGuard();
}
