// CKWRegistryBatch: groups the calling thread's registry writes into one
// transaction of the registry store, committed when the batch ends. Writing
// many settings at once then costs one commit instead of one per value, and
// other threads and processes see all of the batch or none of it: a process
// killed in the middle leaves the store as it was before the batch.
//
// While the batch lasts, the other threads of the process wait at their
// first registry call on the same store, and other processes' writers wait
// for the store's write lock (and give up with ERROR_LOCK_VIOLATION after
// some seconds); other processes still read what was committed before. Keep
// batches short, and end a batch on the thread that began it.
//
// Each call inside a batch is still all or nothing: a call that fails
// leaves the batch's other writes in place. A batch begun inside another one
// on the same store joins it, and the outermost one commits. RegFlushKey
// inside a batch makes the batch durable when it commits.
//
// On Windows, where the registry writes lazily anyway, a batch does nothing.
//
//   {
//       CKWRegistryBatch batch;
//       for (const auto& setting : settings) {
//           registry.PutRegValue(section, setting.name, setting.value);
//       }
//   }  // committed here; batch.Commit() gives the result instead
#pragma once

#include "kwcore/platform/Export.h"
#include "kwcore/platform/Registry.h"
#include "kwcore/platform/Win32Types.h"

#include <memory>

class CKWRegistryStore;

class KWCORE_API CKWRegistryBatch {
public:
    // Begins a batch on the store holding key (a predefined root names the
    // store $KWCORE_REGISTRY names now). Waits for the store's write lock.
    explicit CKWRegistryBatch(HKEY key = HKEY_CURRENT_USER);
    // Commits, unless Commit did already.
    ~CKWRegistryBatch();
    CKWRegistryBatch(const CKWRegistryBatch&) = delete;
    CKWRegistryBatch& operator=(const CKWRegistryBatch&) = delete;

    // Whether the batch began: ERROR_SUCCESS, or why not (the thread's calls
    // then run one transaction each, as outside a batch).
    LSTATUS GetStatus() const { return m_status; }
    // Ends the batch now: the result of its commit, ERROR_SUCCESS for a
    // batch nested in another; GetStatus() when it never began, and
    // ERROR_INVALID_FUNCTION when it has ended already.
    LSTATUS Commit();

private:
    std::shared_ptr<CKWRegistryStore> m_store;
    LSTATUS m_status;
    bool m_isOpen;
};
