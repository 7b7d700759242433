// A registry of a test's own. On Linux, a new store in a temporary folder:
// $KWCORE_REGISTRY names it while the object lives and is put back after.
// On Windows, where the registry is the system's, a new key below
// HKEY_CURRENT_USER\Software, deleted with everything below it at the end.
// Either way, tests work below GetKeyPath() under HKEY_CURRENT_USER.
//
//   CTempRegistry registry;
//   HKEY key = nullptr;
//   RegCreateKeyExA(HKEY_CURRENT_USER, registry.GetKeyPath().c_str(), 0, nullptr, 0,
//                   KEY_ALL_ACCESS, nullptr, &key, nullptr);
#pragma once

#include "CTempFolder.h"

#include "kwcore/platform/Registry.h"

#include <filesystem>
#include <memory>
#include <string>

class CTempRegistry {
public:
    CTempRegistry();
    ~CTempRegistry();
    CTempRegistry(const CTempRegistry&) = delete;
    CTempRegistry& operator=(const CTempRegistry&) = delete;

    // "Software\kwcore tests\" and a new GUID.
    const std::string& GetKeyPath() const { return m_keyPath; }
    // The store's file on Linux (made on first use); empty on Windows.
    std::filesystem::path GetStorePath() const;
    // Creates (or opens) GetKeyPath() followed by subPath below
    // HKEY_CURRENT_USER with all access; null when that fails.
    HKEY CreateKey(const std::string& subPath) const;

private:
    std::string m_keyPath;
    std::unique_ptr<CTempFolder> m_folder;
    std::unique_ptr<std::string> m_previousStore;
};

// Deletes subKey below parent with every key below it; the first failure, or
// ERROR_SUCCESS.
LSTATUS DeleteKeyTree(HKEY parent, const char* subKey);

// Sets the value name of key to type and the bytes as they are.
LSTATUS SetRawValue(HKEY key, const char* name, DWORD type, const std::string& bytes);
