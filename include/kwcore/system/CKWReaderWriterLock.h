// Reader-writer lock that a thread may take again while it holds it.
//
// A thread holding read locks may take the write lock (waiting only for the
// other readers), and a writer keeps its read locks when it releases the
// write lock. Each thread keeps its own hold counts, by lock, so a thread
// that takes the lock again touches nothing other threads share.
#pragma once

#include "kwcore/system/CReaderWriterLockNonReentrance.h"

class KWCORE_API CKWReaderWriterLock : public CReaderWriterLockNonReentrance {
public:
    CKWReaderWriterLock();
    // The copy carries the copying thread's holds of the original; other
    // threads hold nothing of it.
    CKWReaderWriterLock(const CKWReaderWriterLock& other);
    CKWReaderWriterLock& operator=(const CKWReaderWriterLock& other);
    ~CKWReaderWriterLock() override;

    void AcquireReaderLock();
    void ReleaseReaderLock();
    void AcquireWriterLock();
    void ReleaseWriterLock();

    // Each write hold adds this to a thread's count; read holds count 1.
    enum : DWORD { WRITER_HOLD = 0x10000 };

protected:
    // The calling thread's count: read holds in the low 16 bits, write holds
    // above them; 0 when the thread holds nothing of this lock.
    DWORD GetThreadHoldCount() const;

private:
    // Gives the calling thread the same holds of this lock as of the other.
    void CopyHoldsOf(const CKWReaderWriterLock& other);
};
