#include "kwcore/system/CKWReaderWriterLock.h"

#include "KWHeldLocks.h"

#include <cassert>

CKWReaderWriterLock::CKWReaderWriterLock() = default;

CKWReaderWriterLock::CKWReaderWriterLock(const CKWReaderWriterLock& other)
    : CReaderWriterLockNonReentrance(other) {
    CopyHoldsOf(other);
}

CKWReaderWriterLock& CKWReaderWriterLock::operator=(const CKWReaderWriterLock& other) {
    if (this != &other) {
        CReaderWriterLockNonReentrance::operator=(other);
        CopyHoldsOf(other);
    }
    return *this;
}

void CKWReaderWriterLock::CopyHoldsOf(const CKWReaderWriterLock& other) {
    const DWORD* pCount = kwHeldLocks::Find(kwHeldLocks::LockID(&other));
    const DWORD dwCount = pCount ? *pCount : 0;
    if (dwCount != 0)
        kwHeldLocks::Add(kwHeldLocks::LockID(this)) = dwCount;
    else
        kwHeldLocks::Remove(kwHeldLocks::LockID(this));
}

CKWReaderWriterLock::~CKWReaderWriterLock() {
    kwHeldLocks::Remove(kwHeldLocks::LockID(this));
}

DWORD CKWReaderWriterLock::GetThreadHoldCount() const {
    const DWORD* pCount = kwHeldLocks::Find(kwHeldLocks::LockID(this));
    return pCount ? *pCount : 0;
}

void CKWReaderWriterLock::AcquireReaderLock() {
    DWORD& dwCount = kwHeldLocks::Add(kwHeldLocks::LockID(this));
    // A thread that holds the lock in any way never waits for it again.
    if (dwCount == 0)
        CReaderWriterLockNonReentrance::AcquireReaderLock();
    dwCount += 1;
}

void CKWReaderWriterLock::AcquireWriterLock() {
    DWORD& dwCount = kwHeldLocks::Add(kwHeldLocks::LockID(this));
    if (dwCount == 0) {
        CReaderWriterLockNonReentrance::AcquireWriterLock();
    } else if (dwCount < WRITER_HOLD) {
        EnterGuard();
        _UpgradeToWriterLock();
    }
    dwCount += WRITER_HOLD;
}

void CKWReaderWriterLock::ReleaseReaderLock() {
    DWORD* pCount = kwHeldLocks::Find(kwHeldLocks::LockID(this));
    const bool bHeld = pCount && (*pCount & (WRITER_HOLD - 1)) != 0;
    assert(bHeld && "read lock released but not held by this thread");
    if (!bHeld || --*pCount != 0)
        return;
    kwHeldLocks::Emptied(kwHeldLocks::LockID(this), pCount);
    // Held, as the count says: no need to look at the reader word first.
    if (CountReaderOut())
        HandOverToWriter();
}

void CKWReaderWriterLock::ReleaseWriterLock() {
    DWORD* pCount = kwHeldLocks::Find(kwHeldLocks::LockID(this));
    const bool bHeld = pCount && *pCount >= WRITER_HOLD;
    assert(bHeld && "write lock released but not held by this thread");
    if (!bHeld)
        return;
    *pCount -= WRITER_HOLD;
    if (*pCount == 0) {
        kwHeldLocks::Emptied(kwHeldLocks::LockID(this), pCount);
        CReaderWriterLockNonReentrance::ReleaseWriterLock();
    } else if (*pCount < WRITER_HOLD) {
        EnterGuard();
        _DowngradeToReaderLock();
        LeaveGuard();
    }
}
