// The export of a registry tree as "REGEDIT4" text. The layout is the one
// earlier versions wrote and their users' tools expect, quirks included.
#include "kwcore/system/CKWRegistry.h"

#include "KWExportFile.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

struct SRootName {
    HKEY root;
    const char* longName;
    const char* shortName;
};

const SRootName kRootNames[] = {
    {HKEY_CLASSES_ROOT, "HKEY_CLASSES_ROOT", "HKCR"},
    {HKEY_CURRENT_USER, "HKEY_CURRENT_USER", "HKCU"},
    {HKEY_LOCAL_MACHINE, "HKEY_LOCAL_MACHINE", "HKLM"},
    {HKEY_CURRENT_CONFIG, "HKEY_CURRENT_CONFIG", "HKCC"},
    {HKEY_USERS, "HKEY_USERS", "HKU"},
    {HKEY_PERFORMANCE_DATA, "HKEY_PERFORMANCE_DATA", "HKPD"},
    {HKEY_DYN_DATA, "HKEY_DYN_DATA", "HKDD"},
};

const SRootName* FindRoot(HKEY root) {
    for (const SRootName& name : kRootNames) {
        if (name.root == root) {
            return &name;
        }
    }
    return nullptr;
}

const SRootName* FindRoot(const std::string& text) {
    for (const SRootName& name : kRootNames) {
        if (text == name.longName || text == name.shortName) {
            return &name;
        }
    }
    return nullptr;
}

// Closes the key however the writer leaves, a failed write throwing included.
class CKWOpenKey {
public:
    CKWOpenKey() = default;
    ~CKWOpenKey() {
        if (m_hKey != nullptr) {
            RegCloseKey(m_hKey);
        }
    }
    CKWOpenKey(const CKWOpenKey&) = delete;
    CKWOpenKey& operator=(const CKWOpenKey&) = delete;

    HKEY* GetAddress() { return &m_hKey; }
    operator HKEY() const { return m_hKey; }

private:
    HKEY m_hKey = nullptr;
};

bool IsEmpty(const char* text) {
    return text == nullptr || *text == '\0';
}

// Printable ASCII; every other byte of a string is written as an escape.
bool IsPrintable(BYTE byte) {
    return byte >= 0x20 && byte < 0x7f;
}

std::string HexByte(const char* separator, BYTE byte) {
    char text[8];
    std::snprintf(text, sizeof text, "%s%02x", separator, byte);
    return text;
}

std::string TypePart(DWORD type) {
    switch (type) {
        case REG_SZ:
            return "=\"";
        case REG_BINARY:
            return "=hex:";
        case REG_DWORD:
            return "=dword:";
        default: {
            char text[24];
            std::snprintf(text, sizeof text, "=hex(%x):", static_cast<unsigned>(type));
            return text;
        }
    }
}

// A string without its last byte (the terminator), escaped, and the closing
// quote. An expandable string gets no opening quote after its "=hex(2):".
std::string StringData(const BYTE* data, DWORD size) {
    std::string text;
    for (DWORD i = 0; i + 1 < size; ++i) {
        const BYTE byte = data[i];
        if (byte == '\\' || byte == '"') {
            text += '\\';
            text += static_cast<char>(byte);
        } else if (!IsPrintable(byte)) {
            text += HexByte("\\", byte);
        } else {
            text += static_cast<char>(byte);
        }
    }
    return text + '"';
}

std::string DwordData(const BYTE* data, DWORD size) {
    std::string text;
    for (DWORD i = size; i > 0; --i) {
        text += HexByte("", data[i - 1]);
    }
    return text;
}

// Comma-separated bytes. The break after every sixteenth index puts 17 bytes
// on the first line and 16 on the others, each later line starting with its
// comma, and no continuation backslash: the layout earlier versions wrote.
std::string HexData(const BYTE* data, DWORD size) {
    std::string text;
    for (DWORD i = 0; i < size; ++i) {
        text += HexByte(i == 0 ? "" : ",", data[i]);
        if (i != 0 && i % 16 == 0) {
            text += "\r\n";
        }
    }
    return text;
}

std::string ValueData(DWORD type, const BYTE* data, DWORD size) {
    switch (type) {
        case REG_SZ:
        case REG_EXPAND_SZ:
            return StringData(data, size);
        case REG_DWORD:
            return DwordData(data, size);
        default:
            return HexData(data, size);
    }
}

}  // namespace

void CKWRegistry::WriteFileString(HANDLE hFile, const char* text) {
    if (!kwExportFile::Write(hFile, text, std::strlen(text))) {
        throw std::runtime_error("registry export: cannot write the file");
    }
}

bool CKWRegistry::WriteRegValue(HANDLE hFile, const char* /*keyName*/, const char* valueName,
                                int /*valueIndex*/, DWORD type, const BYTE* data, DWORD size) {
    try {
        WriteFileString(hFile, (std::string("\"") + valueName + "\"").c_str());
        WriteFileString(hFile, TypePart(type).c_str());
        WriteFileString(hFile, ValueData(type, data, size).c_str());
        WriteFileString(hFile, "\r\n");
    } catch (const std::runtime_error&) {
        return false;
    }
    return true;
}

bool CKWRegistry::WriteValuesAndSubkeys(const char* rootName, HKEY parent, const char* subKey,
                                        HANDLE hFile) {
    CKWOpenKey key;
    if (RegOpenKeyExA(parent, subKey, 0, KEY_READ, key.GetAddress()) != ERROR_SUCCESS) {
        return false;
    }
    DWORD longestKeyName = 0;
    DWORD longestValueName = 0;
    DWORD largestValue = 0;
    if (RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, nullptr, &longestKeyName, nullptr, nullptr,
                         &longestValueName, &largestValue, nullptr, nullptr) != ERROR_SUCCESS) {
        return false;
    }
    WriteFileString(hFile, (std::string("\r\n[") + rootName + "\\" + subKey + "]\r\n").c_str());
    std::vector<char> name(std::max(longestKeyName, longestValueName) + 1);
    std::vector<BYTE> data(largestValue + 1);
    bool written = true;
    LSTATUS status = ERROR_SUCCESS;
    for (DWORD index = 0; written; ++index) {
        DWORD nameLength = static_cast<DWORD>(name.size());
        DWORD size = largestValue;
        DWORD type = REG_NONE;
        status =
            RegEnumValueA(key, index, name.data(), &nameLength, nullptr, &type, data.data(), &size);
        if (status != ERROR_SUCCESS) {
            break;
        }
        written = WriteRegValue(hFile, subKey, name.data(), static_cast<int>(index), type,
                                data.data(), size);
    }
    written = written && status == ERROR_NO_MORE_ITEMS;
    for (DWORD index = 0; written; ++index) {
        DWORD nameLength = static_cast<DWORD>(name.size());
        status =
            RegEnumKeyExA(key, index, name.data(), &nameLength, nullptr, nullptr, nullptr, nullptr);
        if (status != ERROR_SUCCESS) {
            break;
        }
        const std::string path = std::string(subKey) + "\\" + name.data();
        written = WriteValuesAndSubkeys(rootName, parent, path.c_str(), hFile);
    }
    return written && status == ERROR_NO_MORE_ITEMS;
}

bool CKWRegistry::WriteRegistryTreeToFile(HKEY root, const char* subKey, const char* fileName) {
    const SRootName* rootName = FindRoot(root);
    if (IsEmpty(subKey) || IsEmpty(fileName) || rootName == nullptr) {
        return false;
    }
    const HANDLE hFile = kwExportFile::Create(fileName);
    if (hFile == nullptr) {
        return false;
    }
    bool written = false;
    try {
        WriteFileString(hFile, "REGEDIT4\r\n");
        written = WriteValuesAndSubkeys(rootName->longName, root, subKey, hFile);
    } catch (const std::exception&) {
        written = false;
    }
    kwExportFile::Close(hFile);
    if (!written) {
        kwExportFile::Delete(fileName);
    }
    return written;
}

bool CKWRegistry::WriteRegistryTreeToFile(const char* keyPath, const char* fileName) {
    HKEY root = nullptr;
    CString subKey;
    return SplitKeyPath(keyPath, root, subKey) && WriteRegistryTreeToFile(root, subKey, fileName);
}

bool CKWRegistry::SplitKeyPath(const char* keyPath, HKEY& root, CString& subKey) {
    if (keyPath == nullptr) {
        return false;
    }
    const char* separator = std::strchr(keyPath, '\\');
    if (separator == nullptr) {
        return false;
    }
    const SRootName* rootName = FindRoot(std::string(keyPath, separator));
    if (rootName == nullptr) {
        return false;
    }
    root = rootName->root;
    subKey = separator + 1;
    return true;
}
