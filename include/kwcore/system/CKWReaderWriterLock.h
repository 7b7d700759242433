// Reader-writer lock that a thread may take again while it holds it.
//
// A thread holding read locks may take the write lock (waiting only for the
// other readers), and a writer keeps its read locks when it releases the
// write lock. Hold counts are kept per thread.
#pragma once

#include "kwcore/system/CKWThreadHoldCounts.h"
#include "kwcore/system/CReaderWriterLockNonReentrance.h"

class KWCORE_API CKWReaderWriterLock : public CReaderWriterLockNonReentrance {
public:
    CKWReaderWriterLock() = default;
    CKWReaderWriterLock(const CKWReaderWriterLock& other);
    CKWReaderWriterLock& operator=(const CKWReaderWriterLock& other);
    ~CKWReaderWriterLock() override = default;

    void AcquireReaderLock();
    void ReleaseReaderLock();
    void AcquireWriterLock();
    void ReleaseWriterLock();

    // Each write hold adds this to a thread's count; read holds count 1.
    static constexpr DWORD WRITER_HOLD = 0x10000;

protected:
    static DWORD CurrentThreadID();

    // Per thread: read holds in the low 16 bits, write holds above them.
    // A thread without locks has no entry.
    CKWThreadHoldCounts m_holdCounts;
};
