#include "kwcore/system/CKWReaderWriterLock.h"

#include <cassert>

#if !defined(_WIN32)
#include <sys/syscall.h>
#include <unistd.h>
#endif

CKWReaderWriterLock::CKWReaderWriterLock(const CKWReaderWriterLock& other)
    : CReaderWriterLockNonReentrance(other) {
    other.EnterGuard();
    m_mapThreadCounts = other.m_mapThreadCounts;
    other.LeaveGuard();
}

CKWReaderWriterLock& CKWReaderWriterLock::operator=(const CKWReaderWriterLock& other) {
    if (this != &other) {
        CReaderWriterLockNonReentrance::operator=(other);
        other.EnterGuard();
        std::map<DWORD, DWORD> mapCounts = other.m_mapThreadCounts;
        other.LeaveGuard();
        EnterGuard();
        m_mapThreadCounts.swap(mapCounts);
        LeaveGuard();
    }
    return *this;
}

DWORD CKWReaderWriterLock::CurrentThreadID() {
#if defined(_WIN32)
    return ::GetCurrentThreadId();
#else
    return static_cast<DWORD>(::syscall(SYS_gettid));
#endif
}

void CKWReaderWriterLock::AcquireReaderLock() {
    EnterGuard();
    // The entry's node stays put while other threads change the map, and
    // only this thread touches its value.
    DWORD& dwCount = m_mapThreadCounts[CurrentThreadID()];
    if (dwCount == 0)
        _AcquireReaderLock();
    LeaveGuard();
    dwCount += 1;
}

void CKWReaderWriterLock::AcquireWriterLock() {
    EnterGuard();
    DWORD& dwCount = m_mapThreadCounts[CurrentThreadID()];
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
    auto it = m_mapThreadCounts.find(CurrentThreadID());
    const bool bHeld = it != m_mapThreadCounts.end() && (it->second & (WRITER_HOLD - 1)) != 0;
    assert(bHeld && "read lock released but not held by this thread");
    if (bHeld && --it->second == 0) {
        m_mapThreadCounts.erase(it);
        _ReleaseReaderLock();
    }
    LeaveGuard();
}

void CKWReaderWriterLock::ReleaseWriterLock() {
    EnterGuard();
    auto it = m_mapThreadCounts.find(CurrentThreadID());
    const bool bHeld = it != m_mapThreadCounts.end() && it->second >= WRITER_HOLD;
    assert(bHeld && "write lock released but not held by this thread");
    if (bHeld) {
        it->second -= WRITER_HOLD;
        if (it->second == 0) {
            m_mapThreadCounts.erase(it);
            _ReleaseWriterLock();
        } else if (it->second < WRITER_HOLD) {
            _DowngradeToReaderLock();
        }
    }
    LeaveGuard();
}
