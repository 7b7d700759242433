#include "kwcore/platform/CKWRegistryBatch.h"

#if defined(_WIN32)

// advapi32 keeps writes in memory and writes them out lazily: nothing to group.
CKWRegistryBatch::CKWRegistryBatch(HKEY /*key*/) : m_status(ERROR_SUCCESS), m_isOpen(true) {}

CKWRegistryBatch::~CKWRegistryBatch() = default;

LSTATUS CKWRegistryBatch::Commit() {
    if (!m_isOpen) {
        return ERROR_INVALID_FUNCTION;
    }
    m_isOpen = false;
    return ERROR_SUCCESS;
}

#else

#include "platform/registry/CKWRegistryHandles.h"

CKWRegistryBatch::CKWRegistryBatch(HKEY key) : m_status(ERROR_SUCCESS), m_isOpen(false) {
    SKWOpenKey openKey;
    m_status = CKWRegistryHandles::Instance().Resolve(key, openKey);
    if (m_status == ERROR_SUCCESS) {
        m_status = openKey.store->BeginBatch();
    }
    if (m_status == ERROR_SUCCESS) {
        m_store = std::move(openKey.store);
        m_isOpen = true;
    }
}

CKWRegistryBatch::~CKWRegistryBatch() {
    if (m_isOpen) {
        Commit();
    }
}

LSTATUS CKWRegistryBatch::Commit() {
    if (!m_isOpen) {
        return m_status != ERROR_SUCCESS ? m_status : ERROR_INVALID_FUNCTION;
    }
    m_isOpen = false;
    return m_store->EndBatch();
}

#endif  // _WIN32
