#include "kwcore/system/CKWRegistry.h"

#include <algorithm>
#include <cstring>
#include <type_traits>
#include <utility>

namespace {

constexpr int kBraceGuidLength = 38;
constexpr DWORD kFirstReadSize = 256;
constexpr int kMaxReadAttempts = 4;

// Reads a value with read(type, buffer, size), a call of the
// RegQueryValueExA size protocol, into data, which must be of exactly the
// expected type. Settings are mostly small: one call reads them, and a
// larger value gives its size for the next call. The failing call's code
// is kept in status.
template <class Read>
_EKWRegistryErrors ReadSized(Read read, DWORD expectedType, std::vector<BYTE>& data,
                             LSTATUS& status) {
    // The first read goes to the stack; only what was read is copied out.
    BYTE first[kFirstReadSize];
    DWORD type = REG_NONE;
    DWORD size = kFirstReadSize;
    status = read(&type, first, &size);
    std::vector<BYTE> buffer;
    // A value that another writer keeps growing is given up on. One spare
    // byte, so the buffer is never null.
    for (int attempt = 0; status == ERROR_MORE_DATA && attempt < kMaxReadAttempts; ++attempt) {
        buffer.assign(size + 1, 0);
        status = read(&type, buffer.data(), &size);
    }
    if (status != ERROR_SUCCESS) {
        return KW_REGISTRY_CALL_FAILED;
    }
    if (type != expectedType) {
        return KW_REGISTRY_WRONG_TYPE;
    }
    if (buffer.empty()) {
        data.assign(first, first + size);
    } else {
        buffer.resize(size);
        data = std::move(buffer);
    }
    return KW_REGISTRY_SUCCESS;
}

_EKWRegistryErrors QueryValue(HKEY key, const char* valueName, DWORD expectedType,
                              std::vector<BYTE>& data) {
    LSTATUS status = ERROR_SUCCESS;
    return ReadSized(
        [&](DWORD* type, BYTE* buffer, DWORD* size) {
            return RegQueryValueExA(key, valueName, nullptr, type, buffer, size);
        },
        expectedType, data, status);
}

// The text up to the first zero byte or the end of the data.
CString StringFromBytes(const BYTE* data, size_t size) {
    const char* text = reinterpret_cast<const char*>(data);
    return CString(text, static_cast<int>(std::find(text, text + size, '\0') - text));
}

}  // namespace

CKWRegistry::CKWRegistry()
    : m_hSoftwareKey(nullptr), m_hCompanyKey(nullptr), m_hApplicationKey(nullptr) {}

CKWRegistry::CKWRegistry(CString company, CString application, HKEY root) : CKWRegistry() {
    Initialize(company, application, root);
}

CKWRegistry::~CKWRegistry() {
    CloseKeys();
}

_EKWRegistryErrors CKWRegistry::Initialize(CString company, CString application, HKEY root) {
    CloseKeys();
    HKEY software = nullptr;
    HKEY companyKey = nullptr;
    HKEY applicationKey = nullptr;
    const bool opened =
        RegOpenKeyExA(root, "SOFTWARE", 0, KEY_READ, &software) == ERROR_SUCCESS &&
        RegCreateKeyExA(software, company, 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS,
                        nullptr, &companyKey, nullptr) == ERROR_SUCCESS &&
        RegCreateKeyExA(companyKey, application, 0, nullptr, REG_OPTION_NON_VOLATILE,
                        KEY_ALL_ACCESS, nullptr, &applicationKey, nullptr) == ERROR_SUCCESS;
    m_hSoftwareKey = software;
    m_hCompanyKey = companyKey;
    m_hApplicationKey = applicationKey;
    if (!opened) {
        CloseKeys();
        return KW_REGISTRY_CALL_FAILED;
    }
    return KW_REGISTRY_SUCCESS;
}

int CKWRegistry::Load() {
    return 0;
}

int CKWRegistry::Save() {
    return 0;
}

bool CKWRegistry::IsInitialized() const {
    return m_hSoftwareKey != nullptr && m_hCompanyKey != nullptr && m_hApplicationKey != nullptr;
}

void CKWRegistry::CloseKeys() {
    for (HKEY* key : {&m_hApplicationKey, &m_hCompanyKey, &m_hSoftwareKey}) {
        if (*key != nullptr) {
            RegCloseKey(*key);
            *key = nullptr;
        }
    }
}

_EKWRegistryErrors CKWRegistry::ReadValue(const CString& keyPath, const CString& valueName,
                                          HKEY base, DWORD expectedType,
                                          std::vector<BYTE>& data) const {
    if (!IsInitialized()) {
        return KW_REGISTRY_NOT_INITIALIZED;
    }
    // Most reads find key and value: one call, without a handle. Only when
    // one of them is missing is the key created, as reading creates a
    // missing key: hosts rely on the key being there after their first
    // read of a setting.
    const HKEY from = base != nullptr ? base : m_hSoftwareKey;
    LSTATUS status = ERROR_SUCCESS;
    const _EKWRegistryErrors result = ReadSized(
        [&](DWORD* type, BYTE* buffer, DWORD* size) {
            return RegGetValueA(from, keyPath, valueName, RRF_RT_ANY | RRF_NOEXPAND, type, buffer,
                                size);
        },
        expectedType, data, status);
    if (status != ERROR_FILE_NOT_FOUND) {
        return result;
    }
    HKEY key = nullptr;
    if (RegCreateKeyExA(from, keyPath, 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr,
                        &key, nullptr) != ERROR_SUCCESS) {
        return KW_REGISTRY_CALL_FAILED;
    }
    const _EKWRegistryErrors created = QueryValue(key, valueName, expectedType, data);
    RegCloseKey(key);
    return created;
}

_EKWRegistryErrors CKWRegistry::WriteValue(const CString& keyPath, const CString& valueName,
                                           HKEY base, DWORD type, const void* data,
                                           DWORD size) const {
    if (!IsInitialized()) {
        return KW_REGISTRY_NOT_INITIALIZED;
    }
    // One call, which creates the key when it is missing. A base handle
    // without the right to set values of its own needs one opened for it.
    const HKEY from = base != nullptr ? base : m_hSoftwareKey;
    LSTATUS status = RegSetKeyValueA(from, keyPath, valueName, type, data, size);
    if (status == ERROR_ACCESS_DENIED) {
        HKEY key = nullptr;
        status = RegCreateKeyExA(from, keyPath, 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS,
                                 nullptr, &key, nullptr);
        if (status == ERROR_SUCCESS) {
            status = RegSetValueExA(key, valueName, 0, type, static_cast<const BYTE*>(data), size);
            RegCloseKey(key);
        }
    }
    return status == ERROR_SUCCESS ? KW_REGISTRY_SUCCESS : KW_REGISTRY_CALL_FAILED;
}

_EKWRegistryErrors CKWRegistry::WriteDword(const CString& keyPath, const CString& valueName,
                                           HKEY base, DWORD value) const {
    return WriteValue(keyPath, valueName, base, REG_DWORD, &value, sizeof value);
}

template <class Integer>
_EKWRegistryErrors CKWRegistry::ReadInteger(const CString& keyPath, const CString& valueName,
                                            HKEY base, Integer& value, Integer defaultValue) const {
    value = defaultValue;
    std::vector<BYTE> data;
    const _EKWRegistryErrors result = ReadValue(keyPath, valueName, base, REG_DWORD, data);
    if (result == KW_REGISTRY_SUCCESS) {
        // A REG_DWORD of fewer than 4 bytes reads as if padded with zeros.
        DWORD stored = 0;
        std::memcpy(&stored, data.data(), std::min(data.size(), sizeof stored));
        if (std::is_signed<Integer>::value) {
            value = static_cast<Integer>(static_cast<LONG>(stored));
        } else {
            value = static_cast<Integer>(stored);
        }
    }
    return result;
}

_EKWRegistryErrors CKWRegistry::ReadStringList(const CString& keyPath, const CString& valueName,
                                               HKEY base, std::vector<CString>& strings) const {
    std::vector<BYTE> data;
    const _EKWRegistryErrors result = ReadValue(keyPath, valueName, base, REG_MULTI_SZ, data);
    if (result != KW_REGISTRY_SUCCESS) {
        return result;
    }
    strings.clear();
    size_t start = 0;
    while (start < data.size() && data[start] != 0) {
        strings.push_back(StringFromBytes(data.data() + start, data.size() - start));
        start += strings.back().GetLength() + 1;
    }
    return result;
}

_EKWRegistryErrors CKWRegistry::GetRegValue(CString keyPath, CString valueName, int& value,
                                            int defaultValue, HKEY base) {
    return ReadInteger(keyPath, valueName, base, value, defaultValue);
}

_EKWRegistryErrors CKWRegistry::GetRegValue(CString keyPath, CString valueName,
                                            unsigned long& value, unsigned long defaultValue,
                                            HKEY base) {
    return ReadInteger(keyPath, valueName, base, value, defaultValue);
}

_EKWRegistryErrors CKWRegistry::GetRegValue(CString keyPath, CString valueName, long& value,
                                            long defaultValue, HKEY base) {
    return ReadInteger(keyPath, valueName, base, value, defaultValue);
}

_EKWRegistryErrors CKWRegistry::GetRegValue(CString keyPath, CString valueName, unsigned int& value,
                                            unsigned int defaultValue, HKEY base) {
    return ReadInteger(keyPath, valueName, base, value, defaultValue);
}

_EKWRegistryErrors CKWRegistry::GetRegValue(CString keyPath, CString valueName, CString& value,
                                            CString defaultValue, HKEY base) {
    value = defaultValue;
    std::vector<BYTE> data;
    const _EKWRegistryErrors result = ReadValue(keyPath, valueName, base, REG_SZ, data);
    if (result == KW_REGISTRY_SUCCESS) {
        value = StringFromBytes(data.data(), data.size());
    }
    return result;
}

_EKWRegistryErrors CKWRegistry::GetRegValue(CString keyPath, CString valueName,
                                            std::vector<CString>& value,
                                            std::vector<CString> defaultValue, HKEY base) {
    value = std::move(defaultValue);
    std::vector<CString> strings;
    const _EKWRegistryErrors result = ReadStringList(keyPath, valueName, base, strings);
    if (result == KW_REGISTRY_SUCCESS) {
        value = std::move(strings);
    }
    return result;
}

_EKWRegistryErrors CKWRegistry::GetRegValue(CString keyPath, CString valueName,
                                            std::map<CKWGuid, CString>& value,
                                            std::map<CKWGuid, CString> defaultValue, HKEY base) {
    value = std::move(defaultValue);
    std::vector<CString> strings;
    const _EKWRegistryErrors result = ReadStringList(keyPath, valueName, base, strings);
    if (result != KW_REGISTRY_SUCCESS) {
        return result;
    }
    std::map<CKWGuid, CString> entries;
    for (const CString& entry : strings) {
        CKWGuid id;
        id.SetCString(entry.Left(kBraceGuidLength));
        if (id.IsValid() && entry.GetAt(kBraceGuidLength) == '=') {
            entries[id] = entry.Mid(kBraceGuidLength + 1);
        }
    }
    value = std::move(entries);
    return result;
}

_EKWRegistryErrors CKWRegistry::GetStringValueFromReg(HKEY key, CString valueName, CString& value,
                                                      CString defaultValue) {
    value = defaultValue;
    if (key == nullptr) {
        return KW_REGISTRY_NOT_INITIALIZED;
    }
    std::vector<BYTE> data;
    const _EKWRegistryErrors result = QueryValue(key, valueName, REG_SZ, data);
    if (result == KW_REGISTRY_SUCCESS) {
        value = StringFromBytes(data.data(), data.size());
    }
    return result;
}

_EKWRegistryErrors CKWRegistry::PutRegValue(CString keyPath, CString valueName, int value,
                                            HKEY base) {
    return WriteDword(keyPath, valueName, base, static_cast<DWORD>(value));
}

_EKWRegistryErrors CKWRegistry::PutRegValue(CString keyPath, CString valueName, unsigned long value,
                                            HKEY base) {
    return WriteDword(keyPath, valueName, base, static_cast<DWORD>(value));
}

_EKWRegistryErrors CKWRegistry::PutRegValue(CString keyPath, CString valueName, long value,
                                            HKEY base) {
    return WriteDword(keyPath, valueName, base, static_cast<DWORD>(value));
}

_EKWRegistryErrors CKWRegistry::PutRegValue(CString keyPath, CString valueName, unsigned int value,
                                            HKEY base) {
    return WriteDword(keyPath, valueName, base, static_cast<DWORD>(value));
}

_EKWRegistryErrors CKWRegistry::PutRegValue(CString keyPath, CString valueName, CString value,
                                            HKEY base) {
    const char* text = value;
    return WriteValue(keyPath, valueName, base, REG_SZ, text,
                      static_cast<DWORD>(value.GetLength() + 1));
}

_EKWRegistryErrors CKWRegistry::PutRegValue(CString keyPath, CString valueName,
                                            const std::vector<CString>& value, HKEY base) {
    std::vector<BYTE> data;
    for (const CString& text : value) {
        const char* bytes = text;
        data.insert(data.end(), bytes, bytes + text.GetLength() + 1);
    }
    data.insert(data.end(), 2, 0);
    return WriteValue(keyPath, valueName, base, REG_MULTI_SZ, data.data(),
                      static_cast<DWORD>(data.size()));
}
