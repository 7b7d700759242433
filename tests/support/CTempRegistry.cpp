#include "CTempRegistry.h"

#include "kwcore/object/CKWGuid.h"

#include <cstdlib>
#include <vector>

namespace {

constexpr const char* kStoreVariable = "KWCORE_REGISTRY";

std::string NewKeyPath() {
    return "Software\\kwcore tests\\" + CKWGuid::CreateNewGUID().GetCStringXML64().GetStdString();
}

}  // namespace

#if defined(_WIN32)

CTempRegistry::CTempRegistry() : m_keyPath(NewKeyPath()) {}

CTempRegistry::~CTempRegistry() {
    DeleteKeyTree(HKEY_CURRENT_USER, m_keyPath.c_str());
}

std::filesystem::path CTempRegistry::GetStorePath() const {
    return std::filesystem::path();
}

#else

CTempRegistry::CTempRegistry()
    : m_keyPath(NewKeyPath()), m_folder(std::make_unique<CTempFolder>("kwregistry-")) {
    if (const char* previous = std::getenv(kStoreVariable)) {
        m_previousStore = std::make_unique<std::string>(previous);
    }
    setenv(kStoreVariable, GetStorePath().c_str(), 1);
}

CTempRegistry::~CTempRegistry() {
    if (m_previousStore != nullptr) {
        setenv(kStoreVariable, m_previousStore->c_str(), 1);
    } else {
        unsetenv(kStoreVariable);
    }
}

std::filesystem::path CTempRegistry::GetStorePath() const {
    return m_folder->GetPath() / "registry.db";
}

#endif  // _WIN32

HKEY CTempRegistry::CreateKey(const std::string& subPath) const {
    HKEY key = nullptr;
    RegCreateKeyExA(HKEY_CURRENT_USER, (m_keyPath + subPath).c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                    nullptr, &key, nullptr);
    return key;
}

LSTATUS SetRawValue(HKEY key, const char* name, DWORD type, const std::string& bytes) {
    return RegSetValueExA(key, name, 0, type, reinterpret_cast<const BYTE*>(bytes.data()),
                          static_cast<DWORD>(bytes.size()));
}

LSTATUS DeleteKeyTree(HKEY parent, const char* subKey) {
    HKEY key = nullptr;
    LSTATUS status = RegOpenKeyExA(parent, subKey, 0, KEY_READ, &key);
    if (status != ERROR_SUCCESS) {
        return status;
    }
    std::vector<std::string> children;
    char name[256];
    DWORD length = sizeof name;
    while (RegEnumKeyExA(key, static_cast<DWORD>(children.size()), name, &length, nullptr, nullptr,
                         nullptr, nullptr) == ERROR_SUCCESS) {
        children.emplace_back(name, length);
        length = sizeof name;
    }
    for (const std::string& child : children) {
        const LSTATUS deleted = DeleteKeyTree(key, child.c_str());
        if (status == ERROR_SUCCESS) {
            status = deleted;
        }
    }
    RegCloseKey(key);
    const LSTATUS deleted = RegDeleteKeyA(parent, subKey);
    return status != ERROR_SUCCESS ? status : deleted;
}
