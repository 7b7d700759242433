// The Win32 registry functions over the library's registry store.
//
// Arguments are checked in the order Windows checks them, so a call with
// several faults fails with the code Windows gives: the pointers the call
// cannot do without, then the handle, then the names, then the store.
#include "kwcore/platform/Registry.h"

#include "CKWRegistryHandles.h"
#include "KWRegistryNames.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

using kwRegistryNames::CheckValueName;
using kwRegistryNames::SplitKeyPath;

typedef std::vector<std::string_view> KeyNames;

CKWRegistryHandles& Handles() {
    return CKWRegistryHandles::Instance();
}

bool Grants(const SKWOpenKey& key, REGSAM right) {
    return (key.access & right) == right;
}

// Resolves hKey and checks that its handle was opened with right.
LSTATUS ResolveFor(HKEY hKey, REGSAM right, SKWOpenKey& key) {
    const LSTATUS status = Handles().Resolve(hKey, key);
    if (status != ERROR_SUCCESS) {
        return status;
    }
    return Grants(key, right) ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
}

LSTATUS CheckKey(const SKWOpenKey& key) {
    bool isVolatile = false;
    return key.store->CheckKey(key.key, isVolatile);
}

// Inside a transaction: the key that names lead to from base.
LSTATUS WalkPath(const SKWOpenKey& base, const KeyNames& names, KWRegistryKeyId& key) {
    LSTATUS status = CheckKey(base);
    key = base.key;
    bool isVolatile = false;
    for (std::size_t i = 0; status == ERROR_SUCCESS && i < names.size(); ++i) {
        status = base.store->FindSubKey(key, names[i], key, isVolatile);
    }
    return status;
}

// Inside a write transaction: walks names from base, creating the keys that
// are missing. created tells whether any was.
LSTATUS WalkPathCreating(const SKWOpenKey& base, const KeyNames& names, bool makeVolatile,
                         KWRegistryKeyId& key, bool& created) {
    CKWRegistryStore& store = *base.store;
    key = base.key;
    bool isVolatile = false;
    LSTATUS status = store.CheckKey(key, isVolatile);
    for (std::size_t i = 0; status == ERROR_SUCCESS && i < names.size(); ++i) {
        KWRegistryKeyId child = 0;
        bool childIsVolatile = false;
        status = store.FindSubKey(key, names[i], child, childIsVolatile);
        if (status == ERROR_FILE_NOT_FOUND) {
            if (isVolatile && !makeVolatile) {
                return ERROR_CHILD_MUST_BE_VOLATILE;
            }
            status = store.AddSubKey(key, names[i], makeVolatile, child);
            childIsVolatile = makeVolatile;
            created = true;
        }
        key = child;
        isVolatile = childIsVolatile;
    }
    return status;
}

// The size protocol of value data: with no buffer, the size; with one too
// small, ERROR_MORE_DATA and the size needed; else the bytes and the size.
LSTATUS CopyValueData(const SKWRegistryValue& value, LPDWORD lpType, LPBYTE lpData,
                      LPDWORD lpcbData) {
    if (lpType != nullptr) {
        *lpType = value.type;
    }
    if (lpcbData == nullptr) {
        return ERROR_SUCCESS;
    }
    const auto needed = static_cast<DWORD>(value.data.size());
    if (lpData != nullptr && *lpcbData < needed) {
        *lpcbData = needed;
        return ERROR_MORE_DATA;
    }
    if (lpData != nullptr) {
        std::memcpy(lpData, value.data.data(), needed);
    }
    *lpcbData = needed;
    return ERROR_SUCCESS;
}

// The RRF_RT_* flag that accepts type; types without one only RRF_RT_ANY.
DWORD TypeFlag(DWORD type) {
    switch (type) {
        case REG_NONE:
            return RRF_RT_REG_NONE;
        case REG_SZ:
            return RRF_RT_REG_SZ;
        case REG_EXPAND_SZ:
            return RRF_RT_REG_EXPAND_SZ;
        case REG_BINARY:
            return RRF_RT_REG_BINARY;
        case REG_DWORD:
            return RRF_RT_REG_DWORD;
        case REG_MULTI_SZ:
            return RRF_RT_REG_MULTI_SZ;
        case REG_QWORD:
            return RRF_RT_REG_QWORD;
        default:
            return RRF_RT_ANY;
    }
}

// Whether the flags take a value of this type and size.
LSTATUS CheckRestriction(DWORD flags, DWORD type, std::size_t size) {
    const DWORD accepted = flags & RRF_RT_ANY;
    if ((accepted & TypeFlag(type)) != TypeFlag(type)) {
        return ERROR_UNSUPPORTED_TYPE;
    }
    // REG_BINARY stands in for a number only with the number's size.
    if (type == REG_BINARY && accepted != RRF_RT_ANY) {
        if (((accepted & RRF_RT_DWORD) == RRF_RT_DWORD && size != sizeof(DWORD)) ||
            ((accepted & RRF_RT_QWORD) == RRF_RT_QWORD && size != sizeof(ULONGLONG))) {
            return ERROR_DATATYPE_MISMATCH;
        }
    }
    return ERROR_SUCCESS;
}

// The text with every %NAME% of a set environment variable replaced by its
// value; others stay as they are.
std::string ExpandEnvironment(const std::string& text) {
    std::string expanded;
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t open = text.find('%', at);
        const std::size_t close = open == std::string::npos ? open : text.find('%', open + 1);
        if (close == std::string::npos) {
            break;
        }
        const char* variable = std::getenv(text.substr(open + 1, close - open - 1).c_str());
        expanded.append(text, at, open - at);
        if (variable != nullptr && close > open + 1) {
            expanded += variable;
            at = close + 1;
        } else {
            expanded += '%';
            at = open + 1;
        }
    }
    return expanded.append(text, at, std::string::npos);
}

// String data ends in its terminators: one zero byte, two for a list.
bool IsTerminated(DWORD type, const std::string& data) {
    const std::size_t zeros = type == REG_MULTI_SZ ? 2 : 1;
    return data.size() >= zeros &&
           data.find_first_not_of('\0', data.size() - zeros) == std::string::npos;
}

// RegGetValueA's form of a value: expanded unless the flags keep it, and a
// string terminated. Null when the value is returned as stored.
std::unique_ptr<SKWRegistryValue> AdjustForGet(const SKWRegistryValue& value, DWORD flags) {
    const bool expand = value.type == REG_EXPAND_SZ && (flags & RRF_NOEXPAND) == 0;
    const bool isString =
        value.type == REG_SZ || value.type == REG_EXPAND_SZ || value.type == REG_MULTI_SZ;
    if (!expand && (!isString || IsTerminated(value.type, value.data))) {
        return nullptr;
    }
    auto adjusted = std::make_unique<SKWRegistryValue>(value);
    if (expand) {
        adjusted->data = ExpandEnvironment(adjusted->data.substr(0, adjusted->data.find('\0')));
        adjusted->type = REG_SZ;
    }
    while (!IsTerminated(adjusted->type, adjusted->data)) {
        adjusted->data += '\0';
    }
    return adjusted;
}

// Copies a name with its terminator when it fits in *count characters (the
// terminator included); else ERROR_MORE_DATA and nothing is written.
LSTATUS CopyName(const std::string& name, LPSTR buffer, LPDWORD count) {
    if (name.size() >= *count) {
        return ERROR_MORE_DATA;
    }
    std::memcpy(buffer, name.c_str(), name.size() + 1);
    *count = static_cast<DWORD>(name.size());
    return ERROR_SUCCESS;
}

// Keys have no class: an empty one.
void CopyEmptyClass(LPSTR lpClass, LPDWORD lpcchClass) {
    if (lpcchClass == nullptr) {
        return;
    }
    if (lpClass != nullptr && *lpcchClass > 0) {
        lpClass[0] = '\0';
    }
    *lpcchClass = 0;
}

void CopyFileTime(ULONGLONG ticks, PFILETIME fileTime) {
    if (fileTime != nullptr) {
        fileTime->dwLowDateTime = static_cast<DWORD>(ticks);
        fileTime->dwHighDateTime = static_cast<DWORD>(ticks >> 32);
    }
}

void SetIfWanted(LPDWORD target, DWORD value) {
    if (target != nullptr) {
        *target = value;
    }
}

}  // namespace

LSTATUS RegOpenKeyExA(HKEY hKey, LPCSTR lpSubKey, DWORD /*ulOptions*/, REGSAM samDesired,
                      PHKEY phkResult) {
    if (phkResult == nullptr) {
        return ERROR_INVALID_PARAMETER;
    }
    *phkResult = nullptr;
    SKWOpenKey base;
    LSTATUS status = Handles().Resolve(hKey, base);
    KeyNames names;
    if (status == ERROR_SUCCESS) {
        status = SplitKeyPath(lpSubKey, names);
    }
    KWRegistryKeyId key = 0;
    if (status == ERROR_SUCCESS) {
        status = base.store->FindPath(base.key, names, key);
    }
    if (status == ERROR_SUCCESS) {
        *phkResult = Handles().Add({base.store, key, CKWRegistryHandles::MapAccess(samDesired)});
    }
    return status;
}

LSTATUS RegCreateKeyExA(HKEY hKey, LPCSTR lpSubKey, DWORD Reserved, LPSTR /*lpClass*/,
                        DWORD dwOptions, REGSAM samDesired,
                        const LPSECURITY_ATTRIBUTES /*lpSecurityAttributes*/, PHKEY phkResult,
                        LPDWORD lpdwDisposition) {
    if (phkResult == nullptr) {
        return ERROR_INVALID_PARAMETER;
    }
    *phkResult = nullptr;
    if (Reserved != 0 || (dwOptions & REG_OPTION_CREATE_LINK) != 0) {
        return ERROR_INVALID_PARAMETER;  // the store has no symbolic links
    }
    SKWOpenKey base;
    LSTATUS status = Handles().Resolve(hKey, base);
    KeyNames names;
    if (status == ERROR_SUCCESS) {
        status = SplitKeyPath(lpSubKey, names);
    }
    if (status != ERROR_SUCCESS) {
        return status;
    }
    // Opening an existing key needs no write lock: most calls just open.
    KWRegistryKeyId key = 0;
    bool created = false;
    status = base.store->FindPath(base.key, names, key);
    if (status == ERROR_FILE_NOT_FOUND) {
        const bool makeVolatile = (dwOptions & REG_OPTION_VOLATILE) != 0;
        status = base.store->Write(
            [&] { return WalkPathCreating(base, names, makeVolatile, key, created); });
    }
    if (status != ERROR_SUCCESS) {
        return status;
    }
    *phkResult = Handles().Add({base.store, key, CKWRegistryHandles::MapAccess(samDesired)});
    SetIfWanted(lpdwDisposition, created ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY);
    return ERROR_SUCCESS;
}

namespace {

// Sets a value of a resolved key, once name and data are checked, in one
// change of the store.
LSTATUS SetValueOf(const SKWOpenKey& key, LPCSTR lpValueName, DWORD dwType, const BYTE* lpData,
                   DWORD cbData) {
    std::string_view name;
    LSTATUS status = CheckValueName(lpValueName, name);
    if (status == ERROR_SUCCESS && lpData == nullptr && cbData != 0) {
        status = ERROR_NOACCESS;
    }
    if (status != ERROR_SUCCESS) {
        return status;
    }
    return key.store->WriteOneChange([&] {
        const LSTATUS checked = CheckKey(key);
        return checked != ERROR_SUCCESS
                   ? checked
                   : key.store->SetValue(key.key, name, dwType, lpData, cbData);
    });
}

}  // namespace

LSTATUS RegSetValueExA(HKEY hKey, LPCSTR lpValueName, DWORD /*Reserved*/, DWORD dwType,
                       const BYTE* lpData, DWORD cbData) {
    SKWOpenKey key;
    LSTATUS status = ResolveFor(hKey, KEY_SET_VALUE, key);
    return status != ERROR_SUCCESS ? status : SetValueOf(key, lpValueName, dwType, lpData, cbData);
}

LSTATUS RegSetKeyValueA(HKEY hKey, LPCSTR lpSubKey, LPCSTR lpValueName, DWORD dwType,
                        LPCVOID lpData, DWORD cbData) {
    SKWOpenKey key;
    LSTATUS status = Handles().Resolve(hKey, key);
    KeyNames names;
    KWRegistryKeyId target = key.key;
    if (status == ERROR_SUCCESS) {
        status = key.store->FindPath(key.key, lpSubKey, names, target);
    }
    // Found by its text, a path had names; split, it may have none.
    if (status == ERROR_SUCCESS && target == key.key && names.empty() &&
        !Grants(key, KEY_SET_VALUE)) {
        status = ERROR_ACCESS_DENIED;
    }
    if (status == ERROR_FILE_NOT_FOUND && !names.empty()) {
        bool created = false;
        status =
            key.store->Write([&] { return WalkPathCreating(key, names, false, target, created); });
    }
    key.key = target;
    // As on Windows, the key is there even when the value is refused.
    return status != ERROR_SUCCESS
               ? status
               : SetValueOf(key, lpValueName, dwType, static_cast<const BYTE*>(lpData), cbData);
}

LSTATUS RegQueryValueExA(HKEY hKey, LPCSTR lpValueName, LPDWORD lpReserved, LPDWORD lpType,
                         LPBYTE lpData, LPDWORD lpcbData) {
    if (lpReserved != nullptr || (lpData != nullptr && lpcbData == nullptr)) {
        return ERROR_INVALID_PARAMETER;
    }
    SKWOpenKey key;
    LSTATUS status = ResolveFor(hKey, KEY_QUERY_VALUE, key);
    if (status != ERROR_SUCCESS) {
        return status;
    }
    // A name too long to be stored is simply not found.
    const std::string_view name = lpValueName != nullptr ? lpValueName : "";
    std::shared_ptr<const SKWRegistryValue> value;
    status = key.store->ReadValue(key.key, name, value);
    return status != ERROR_SUCCESS ? status : CopyValueData(*value, lpType, lpData, lpcbData);
}

LSTATUS RegGetValueA(HKEY hkey, LPCSTR lpSubKey, LPCSTR lpValue, DWORD dwFlags, LPDWORD pdwType,
                     PVOID pvData, LPDWORD pcbData) {
    const DWORD accepted = dwFlags & RRF_RT_ANY;
    if ((pvData != nullptr && pcbData == nullptr) ||
        ((accepted & RRF_RT_REG_EXPAND_SZ) != 0 && (dwFlags & RRF_NOEXPAND) == 0 &&
         accepted != RRF_RT_ANY)) {
        return ERROR_INVALID_PARAMETER;
    }
    const DWORD capacity = pcbData != nullptr ? *pcbData : 0;
    SKWOpenKey base;
    LSTATUS status = Handles().Resolve(hkey, base);
    const bool onHandle = lpSubKey == nullptr || lpSubKey[0] == '\0';
    if (status == ERROR_SUCCESS && onHandle && !Grants(base, KEY_QUERY_VALUE)) {
        status = ERROR_ACCESS_DENIED;
    }
    std::shared_ptr<const SKWRegistryValue> value;
    if (status == ERROR_SUCCESS) {
        status =
            base.store->ReadPathValue(base.key, lpSubKey, lpValue != nullptr ? lpValue : "", value);
    }
    if (status == ERROR_SUCCESS) {
        const std::unique_ptr<SKWRegistryValue> adjusted = AdjustForGet(*value, dwFlags);
        const SKWRegistryValue& got = adjusted != nullptr ? *adjusted : *value;
        status = CheckRestriction(dwFlags, got.type, got.data.size());
        const LSTATUS copied = CopyValueData(
            got, pdwType, status == ERROR_SUCCESS ? static_cast<LPBYTE>(pvData) : nullptr, pcbData);
        if (status == ERROR_SUCCESS) {
            status = copied;
        }
    }
    if (status != ERROR_SUCCESS && pvData != nullptr && (dwFlags & RRF_ZEROONFAILURE) != 0) {
        std::memset(pvData, 0, capacity);
    }
    return status;
}

LSTATUS RegQueryInfoKeyA(HKEY hKey, LPSTR lpClass, LPDWORD lpcchClass, LPDWORD /*lpReserved*/,
                         LPDWORD lpcSubKeys, LPDWORD lpcbMaxSubKeyLen, LPDWORD lpcbMaxClassLen,
                         LPDWORD lpcValues, LPDWORD lpcbMaxValueNameLen, LPDWORD lpcbMaxValueLen,
                         LPDWORD lpcbSecurityDescriptor, PFILETIME lpftLastWriteTime) {
    if (lpClass != nullptr && lpcchClass == nullptr) {
        return ERROR_INVALID_PARAMETER;
    }
    SKWOpenKey key;
    LSTATUS status = ResolveFor(hKey, KEY_QUERY_VALUE, key);
    SKWRegistryKeyInfo info;
    if (status == ERROR_SUCCESS) {
        status = key.store->Read([&] { return key.store->GetKeyInfo(key.key, info); });
    }
    if (status != ERROR_SUCCESS) {
        return status;
    }
    CopyEmptyClass(lpClass, lpcchClass);
    SetIfWanted(lpcSubKeys, info.subKeys);
    SetIfWanted(lpcbMaxSubKeyLen, info.maxSubKeyNameLength);
    SetIfWanted(lpcbMaxClassLen, 0);
    SetIfWanted(lpcValues, info.values);
    SetIfWanted(lpcbMaxValueNameLen, info.maxValueNameLength);
    SetIfWanted(lpcbMaxValueLen, info.maxValueDataSize);
    SetIfWanted(lpcbSecurityDescriptor, 0);
    CopyFileTime(info.lastWriteTime, lpftLastWriteTime);
    return ERROR_SUCCESS;
}

LSTATUS RegEnumKeyExA(HKEY hKey, DWORD dwIndex, LPSTR lpName, LPDWORD lpcchName, LPDWORD lpReserved,
                      LPSTR lpClass, LPDWORD lpcchClass, PFILETIME lpftLastWriteTime) {
    if (lpName == nullptr || lpcchName == nullptr || lpReserved != nullptr) {
        return ERROR_INVALID_PARAMETER;
    }
    SKWOpenKey key;
    LSTATUS status = ResolveFor(hKey, KEY_ENUMERATE_SUB_KEYS, key);
    std::string name;
    ULONGLONG lastWriteTime = 0;
    if (status == ERROR_SUCCESS) {
        status = key.store->EnumSubKey(key.key, dwIndex, name, lastWriteTime);
    }
    if (status == ERROR_SUCCESS) {
        status = CopyName(name, lpName, lpcchName);
    }
    if (status == ERROR_SUCCESS) {
        CopyEmptyClass(lpClass, lpcchClass);
        CopyFileTime(lastWriteTime, lpftLastWriteTime);
    }
    return status;
}

LSTATUS RegEnumValueA(HKEY hKey, DWORD dwIndex, LPSTR lpValueName, LPDWORD lpcchValueName,
                      LPDWORD lpReserved, LPDWORD lpType, LPBYTE lpData, LPDWORD lpcbData) {
    if (lpValueName == nullptr || lpcchValueName == nullptr || lpReserved != nullptr ||
        (lpData != nullptr && lpcbData == nullptr)) {
        return ERROR_INVALID_PARAMETER;
    }
    SKWOpenKey key;
    LSTATUS status = ResolveFor(hKey, KEY_QUERY_VALUE, key);
    SKWRegistryValue value;
    if (status == ERROR_SUCCESS) {
        status = key.store->Read([&] {
            const LSTATUS checked = CheckKey(key);
            return checked != ERROR_SUCCESS ? checked
                                            : key.store->GetValueAt(key.key, dwIndex, value);
        });
    }
    if (status == ERROR_SUCCESS) {
        status = CopyName(value.name, lpValueName, lpcchValueName);
    }
    return status != ERROR_SUCCESS ? status : CopyValueData(value, lpType, lpData, lpcbData);
}

LSTATUS RegDeleteValueA(HKEY hKey, LPCSTR lpValueName) {
    SKWOpenKey key;
    const LSTATUS status = ResolveFor(hKey, KEY_SET_VALUE, key);
    if (status != ERROR_SUCCESS) {
        return status;
    }
    const std::string_view name = lpValueName != nullptr ? lpValueName : "";
    return key.store->WriteOneChange([&] {
        const LSTATUS checked = CheckKey(key);
        return checked != ERROR_SUCCESS ? checked : key.store->DeleteValue(key.key, name);
    });
}

LSTATUS RegDeleteKeyA(HKEY hKey, LPCSTR lpSubKey) {
    if (lpSubKey == nullptr) {
        return ERROR_INVALID_PARAMETER;
    }
    SKWOpenKey base;
    LSTATUS status = Handles().Resolve(hKey, base);
    KeyNames names;
    if (status == ERROR_SUCCESS) {
        status = SplitKeyPath(lpSubKey, names);
    }
    if (status != ERROR_SUCCESS) {
        return status;
    }
    return base.store->Write([&] {
        KWRegistryKeyId key = 0;
        const LSTATUS found = WalkPath(base, names, key);
        return found != ERROR_SUCCESS ? found : base.store->DeleteKey(key);
    });
}

LSTATUS RegFlushKey(HKEY hKey) {
    SKWOpenKey key;
    const LSTATUS status = Handles().Resolve(hKey, key);
    return status != ERROR_SUCCESS ? status : key.store->Flush();
}

LSTATUS RegCloseKey(HKEY hKey) {
    if (CKWRegistryHandles::IsPredefined(hKey)) {
        return ERROR_SUCCESS;
    }
    return Handles().Remove(hKey) ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}
