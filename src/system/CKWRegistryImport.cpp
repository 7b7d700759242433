// The import of "REGEDIT4" text into the registry, through the Reg* calls
// alone: the file is parsed whole first, so a malformed one writes nothing.
#include "kwcore/system/CKWRegistry.h"

#include "CKWRegFileParser.h"

#include <cstdio>
#include <string>

namespace {

bool ReadWholeFile(const char* fileName, std::string& text) {
    std::FILE* file = std::fopen(fileName, "rb");
    if (file == nullptr) {
        return false;
    }
    char buffer[65536];
    std::size_t count = 0;
    while ((count = std::fread(buffer, 1, sizeof buffer, file)) > 0) {
        text.append(buffer, count);
    }
    const bool read = std::ferror(file) == 0;
    std::fclose(file);
    return read;
}

std::string CallFailed(const char* what, LSTATUS status) {
    return std::string(what) + " (error " + std::to_string(status) + ")";
}

// Deletes subKey below parent with every key below it; a missing key is
// ERROR_FILE_NOT_FOUND.
LSTATUS DeleteTree(HKEY parent, const std::string& subKey) {
    HKEY key = nullptr;
    LSTATUS status = RegOpenKeyExA(parent, subKey.c_str(), 0, KEY_ALL_ACCESS, &key);
    if (status != ERROR_SUCCESS) {
        return status;
    }
    char name[256];
    for (;;) {
        DWORD length = sizeof name;
        status = RegEnumKeyExA(key, 0, name, &length, nullptr, nullptr, nullptr, nullptr);
        if (status != ERROR_SUCCESS) {
            break;
        }
        status = DeleteTree(key, name);
        if (status != ERROR_SUCCESS) {
            break;
        }
    }
    RegCloseKey(key);
    if (status != ERROR_NO_MORE_ITEMS) {
        return status;
    }
    return RegDeleteKeyA(parent, subKey.c_str());
}

// Creates (create) or opens the keys of path below root one name at a time:
// Wine's ANSI calls refuse whole paths longer than MAX_PATH even where each
// name is short enough. The key is closed by the caller.
LSTATUS OpenKeyPath(HKEY root, const std::string& path, bool create, HKEY& key) {
    key = root;
    for (std::size_t begin = 0; begin <= path.size();) {
        std::size_t end = path.find('\\', begin);
        if (end == std::string::npos) {
            end = path.size();
        }
        const std::string name = path.substr(begin, end - begin);
        HKEY next = nullptr;
        const LSTATUS status =
            create ? RegCreateKeyExA(key, name.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                     KEY_ALL_ACCESS, nullptr, &next, nullptr)
                   : RegOpenKeyExA(key, name.c_str(), 0, KEY_ALL_ACCESS, &next);
        if (key != root) {
            RegCloseKey(key);
        }
        if (status != ERROR_SUCCESS) {
            key = nullptr;
            return status;
        }
        key = next;
        begin = end + 1;
    }
    return ERROR_SUCCESS;
}

// Deletes the key at path below root with everything below it.
LSTATUS DeleteKeyPath(HKEY root, const std::string& path) {
    const std::size_t separator = path.rfind('\\');
    if (separator == std::string::npos) {
        return DeleteTree(root, path);
    }
    HKEY parent = nullptr;
    const LSTATUS status = OpenKeyPath(root, path.substr(0, separator), false, parent);
    if (status != ERROR_SUCCESS) {
        return status;
    }
    const LSTATUS deleted = DeleteTree(parent, path.substr(separator + 1));
    RegCloseKey(parent);
    return deleted;
}

bool ApplyValue(HKEY key, const SKWRegFileValue& value, std::string& reason) {
    if (value.remove) {
        const LSTATUS status = RegDeleteValueA(key, value.name.c_str());
        if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) {
            reason = CallFailed("cannot delete the value", status);
            return false;
        }
        return true;
    }
    const LSTATUS status = RegSetValueExA(key, value.name.c_str(), 0, value.type, value.data.data(),
                                          static_cast<DWORD>(value.data.size()));
    if (status != ERROR_SUCCESS) {
        reason = CallFailed("cannot set the value", status);
        return false;
    }
    return true;
}

// Creates (or deletes) the key and applies its values; on failure the line
// and reason of the call that failed.
bool ApplyKey(const SKWRegFileKey& fileKey, int& errorLine, std::string& reason) {
    errorLine = fileKey.line;
    if (fileKey.remove) {
        const LSTATUS status = DeleteKeyPath(fileKey.root, fileKey.subKey);
        if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) {
            reason = CallFailed("cannot delete the key", status);
            return false;
        }
        return true;
    }
    HKEY key = nullptr;
    const LSTATUS status = OpenKeyPath(fileKey.root, fileKey.subKey, true, key);
    if (status != ERROR_SUCCESS) {
        reason = CallFailed("cannot create the key", status);
        return false;
    }
    bool applied = true;
    for (const SKWRegFileValue& value : fileKey.values) {
        errorLine = value.line;
        applied = ApplyValue(key, value, reason);
        if (!applied) {
            break;
        }
    }
    RegCloseKey(key);
    return applied;
}

}  // namespace

bool CKWRegistry::ReadRegistryTreeFromFile(const char* fileName) {
    int errorLine = 0;
    CString reason;
    return ReadRegistryTreeFromFile(fileName, errorLine, reason);
}

bool CKWRegistry::ReadRegistryTreeFromFile(const char* fileName, int& errorLine, CString& reason) {
    errorLine = 0;
    reason.Empty();
    std::string text;
    if (fileName == nullptr || *fileName == '\0' || !ReadWholeFile(fileName, text)) {
        reason = "cannot read the file";
        return false;
    }
    CKWRegFileParser parser;
    if (!parser.Parse(text)) {
        errorLine = parser.GetErrorLine();
        reason = parser.GetReason().c_str();
        return false;
    }
    for (const SKWRegFileKey& key : parser.GetKeys()) {
        std::string failure;
        if (!ApplyKey(key, errorLine, failure)) {
            reason = failure.c_str();
            return false;
        }
    }
    errorLine = 0;
    return true;
}
