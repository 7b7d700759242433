// The process's open registry keys. A handle names a key of one store and
// the access it was opened with; it stays with that store even when
// $KWCORE_REGISTRY later names another. Handle values are never reused, so a
// closed handle stays invalid. The predefined roots name keys of the store
// that $KWCORE_REGISTRY (or the default location) names at the time of the
// call.
#pragma once

#include "CKWRegistryStore.h"

#include <memory>
#include <mutex>
#include <unordered_map>

struct SKWOpenKey {
    std::shared_ptr<CKWRegistryStore> store;
    KWRegistryKeyId key = 0;
    REGSAM access = 0;
};

class CKWRegistryHandles {
public:
    static CKWRegistryHandles& Instance();

    // The key a handle or predefined root names: ERROR_INVALID_HANDLE for a
    // handle that is not open and for the roots the store does not keep; a
    // failure to locate the store for a root.
    LSTATUS Resolve(HKEY handle, SKWOpenKey& key);
    HKEY Add(const SKWOpenKey& key);
    // False when the handle is not open.
    bool Remove(HKEY handle);

    static bool IsPredefined(HKEY handle);
    // Generic rights and MAXIMUM_ALLOWED mapped to the key rights they grant.
    static REGSAM MapAccess(REGSAM access);

private:
    CKWRegistryHandles() = default;
    LSTATUS CurrentStore(std::shared_ptr<CKWRegistryStore>& store);

    std::mutex m_mutex;
    std::unordered_map<ULONG_PTR, SKWOpenKey> m_keys;
    ULONG_PTR m_lastSerial = 0;
    std::shared_ptr<CKWRegistryStore> m_current;
};
