#include "RegistrySerializerTest.h"

namespace {
// The key, or null when it cannot be opened.
HKEY OpenKey(const std::string& path) {
    HKEY key = nullptr;
    return RegOpenKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, KEY_ALL_ACCESS, &key) == ERROR_SUCCESS
               ? key
               : nullptr;
}

// The names an enumeration call lists under the key, in its order.
template <class Enumerate>
std::vector<std::string> NamesUnder(const std::string& path, Enumerate enumerate) {
    std::vector<std::string> names;
    HKEY key = OpenKey(path);
    char name[256];
    DWORD length = sizeof name;
    for (DWORD index = 0; key && enumerate(key, index, name, &length) == ERROR_SUCCESS;
         ++index, length = sizeof name) {
        names.emplace_back(name);
    }
    if (key) {
        RegCloseKey(key);
    }
    return names;
}
}  // namespace

std::vector<std::string> RegistrySerializerTest::SubKeys(const std::string& path) {
    return NamesUnder(path, [](HKEY key, DWORD index, char* name, DWORD* length) {
        return RegEnumKeyExA(key, index, name, length, nullptr, nullptr, nullptr, nullptr);
    });
}

std::vector<std::string> RegistrySerializerTest::ValueNames(const std::string& path) {
    return NamesUnder(path, [](HKEY key, DWORD index, char* name, DWORD* length) {
        return RegEnumValueA(key, index, name, length, nullptr, nullptr, nullptr, nullptr);
    });
}

SRawValue RegistrySerializerTest::RawValue(const std::string& path, const char* name) {
    SRawValue value;
    HKEY key = OpenKey(path);
    DWORD size = 0;
    if (key && RegQueryValueExA(key, name, nullptr, &value.type, nullptr, &size) == ERROR_SUCCESS) {
        value.bytes.resize(size);
        RegQueryValueExA(key, name, nullptr, &value.type, value.bytes.data(), &size);
    }
    if (key) {
        RegCloseKey(key);
    }
    return value;
}
