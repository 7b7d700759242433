#include "CKWRegistryHandles.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

namespace {

// Handles are multiples of 4, as Windows' are, far below the predefined roots.
constexpr ULONG_PTR kHandleStep = 4;

std::string EnvironmentValue(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? std::string(value) : std::string();
}

std::string HomeFolder() {
    std::string home = EnvironmentValue("HOME");
    if (home.empty()) {
        if (const passwd* user = getpwuid(getuid())) {
            home = user->pw_dir != nullptr ? user->pw_dir : "";
        }
    }
    return home;
}

// $KWCORE_REGISTRY, else registry.db in the user's configuration folder
// ($XDG_CONFIG_HOME, which must be absolute, else ~/.config) under "kwcore".
std::string StorePath() {
    std::string path = EnvironmentValue("KWCORE_REGISTRY");
    if (!path.empty()) {
        return path;
    }
    std::string config = EnvironmentValue("XDG_CONFIG_HOME");
    if (config.empty() || config[0] != '/') {
        const std::string home = HomeFolder();
        if (home.empty()) {
            return std::string();
        }
        config = home + "/.config";
    }
    return config + "/kwcore/registry.db";
}

}  // namespace

CKWRegistryHandles& CKWRegistryHandles::Instance() {
    static CKWRegistryHandles handles;
    return handles;
}

bool CKWRegistryHandles::IsPredefined(HKEY handle) {
    const auto value = reinterpret_cast<ULONG_PTR>(handle);
    return value >= reinterpret_cast<ULONG_PTR>(HKEY_CLASSES_ROOT) &&
           value <= reinterpret_cast<ULONG_PTR>(HKEY_DYN_DATA);
}

REGSAM CKWRegistryHandles::MapAccess(REGSAM access) {
    REGSAM mapped =
        access & ~(GENERIC_READ | GENERIC_WRITE | GENERIC_EXECUTE | GENERIC_ALL | MAXIMUM_ALLOWED);
    if (access & GENERIC_READ) {
        mapped |= KEY_READ;
    }
    if (access & GENERIC_WRITE) {
        mapped |= KEY_WRITE;
    }
    if (access & GENERIC_EXECUTE) {
        mapped |= KEY_EXECUTE;
    }
    if (access & (GENERIC_ALL | MAXIMUM_ALLOWED)) {
        mapped |= KEY_ALL_ACCESS;
    }
    return mapped;
}

LSTATUS CKWRegistryHandles::Resolve(HKEY handle, SKWOpenKey& key) {
    const KWRegistryKeyId root = CKWRegistryDatabase::RootKeyId(handle);
    std::lock_guard<std::mutex> lock(m_mutex);
    if (root != 0) {
        key.key = root;
        key.access = KEY_ALL_ACCESS;
        return CurrentStore(key.store);
    }
    const auto found = m_keys.find(reinterpret_cast<ULONG_PTR>(handle));
    if (found == m_keys.end()) {
        return ERROR_INVALID_HANDLE;
    }
    key = found->second;
    return ERROR_SUCCESS;
}

HKEY CKWRegistryHandles::Add(const SKWOpenKey& key) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_lastSerial += kHandleStep;
    m_keys.emplace(m_lastSerial, key);
    return reinterpret_cast<HKEY>(m_lastSerial);
}

bool CKWRegistryHandles::Remove(HKEY handle) {
    std::shared_ptr<CKWRegistryStore> last;  // a store closes outside the lock
    std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_keys.find(reinterpret_cast<ULONG_PTR>(handle));
    if (found == m_keys.end()) {
        return false;
    }
    last = std::move(found->second.store);
    m_keys.erase(found);
    return true;
}

LSTATUS CKWRegistryHandles::CurrentStore(std::shared_ptr<CKWRegistryStore>& store) {
    const std::string path = StorePath();
    if (path.empty()) {
        return ERROR_REGISTRY_IO_FAILED;
    }
    if (m_current == nullptr || m_current->GetPath() != path) {
        m_current = std::make_shared<CKWRegistryStore>(path);
    }
    store = m_current;
    return ERROR_SUCCESS;
}
