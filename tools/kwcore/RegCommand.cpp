// kwcore reg: reads and writes the registry (the library's store on Linux,
// the system's on Windows), and exports and imports "REGEDIT4" files.
#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "Commands.h"
#include "kwcore/platform/Registry.h"
#include "kwcore/system/CKWRegistry.h"

namespace kwCommands {
namespace {

const char kKeyHelp[] =
    "KEY is ROOT\\sub\\key; ROOT is HKEY_CLASSES_ROOT (HKCR), HKEY_CURRENT_USER (HKCU),\n"
    "HKEY_LOCAL_MACHINE (HKLM), HKEY_CURRENT_CONFIG (HKCC), HKEY_USERS (HKU),\n"
    "HKEY_PERFORMANCE_DATA (HKPD) or HKEY_DYN_DATA (HKDD). On Linux the registry is the\n"
    "library's store: $KWCORE_REGISTRY, else $XDG_CONFIG_HOME/kwcore/registry.db.\n";

const char kDataHelp[] =
    "Data are shown as set takes them: strings as their text (up to the terminating\n"
    "zero), REG_DWORD and REG_QWORD in decimal, REG_MULTI_SZ as its strings joined\n"
    "by the two characters \\0, other types as comma-separated hex bytes.\n";

const char kListHelp[] =
    "usage: kwcore reg list KEY\n"
    "\n"
    "Prints the sub-keys of KEY (each followed by a backslash), then its values as\n"
    "NAME = TYPE DATA; the default value is named (default).\n";

const char kGetHelp[] =
    "usage: kwcore reg get KEY VALUE\n"
    "\n"
    "Prints the data of the value VALUE of KEY; '' or @ names the default value.\n";

const char kSetHelp[] =
    "usage: kwcore reg set KEY VALUE TYPE DATA\n"
    "\n"
    "Creates KEY if it is missing and sets its value VALUE ('' or @ for the default\n"
    "value).\n"
    "TYPE and DATA:\n"
    "  REG_SZ, REG_EXPAND_SZ  the text; it is stored with its terminating zero\n"
    "  REG_DWORD, REG_QWORD   a number: decimal, 0x and hex digits, or negative decimal\n"
    "  REG_BINARY             hex bytes, with or without commas or spaces: 00,1f,ff\n"
    "  REG_MULTI_SZ           strings separated by the two characters \\0: one\\0two\n"
    "Type names may be given in any case and without REG_ (sz, expand_sz, dword,\n"
    "qword, binary, multi_sz).\n";

const char kExportHelp[] =
    "usage: kwcore reg export KEY FILE\n"
    "\n"
    "Writes KEY with all its values and sub-keys to FILE in the REGEDIT4 format.\n";

const char kImportHelp[] =
    "usage: kwcore reg import FILE\n"
    "\n"
    "Reads a REGEDIT4 file, as export writes it or as regedit commonly does, into\n"
    "the registry. The whole file is checked first: when a line is malformed,\n"
    "nothing is written and the line is named.\n";

const char kMultiSeparator[] = "\\0";

struct STypeName {
    DWORD type;
    const char* name;
};

const STypeName kTypeNames[] = {
    {REG_NONE, "REG_NONE"},
    {REG_SZ, "REG_SZ"},
    {REG_EXPAND_SZ, "REG_EXPAND_SZ"},
    {REG_BINARY, "REG_BINARY"},
    {REG_DWORD, "REG_DWORD"},
    {REG_DWORD_BIG_ENDIAN, "REG_DWORD_BIG_ENDIAN"},
    {REG_LINK, "REG_LINK"},
    {REG_MULTI_SZ, "REG_MULTI_SZ"},
    {REG_RESOURCE_LIST, "REG_RESOURCE_LIST"},
    {REG_FULL_RESOURCE_DESCRIPTOR, "REG_FULL_RESOURCE_DESCRIPTOR"},
    {REG_RESOURCE_REQUIREMENTS_LIST, "REG_RESOURCE_REQUIREMENTS_LIST"},
    {REG_QWORD, "REG_QWORD"},
};

// The types set writes.
const DWORD kSettableTypes[] = {REG_SZ,    REG_EXPAND_SZ, REG_BINARY,
                                REG_DWORD, REG_QWORD,     REG_MULTI_SZ};

using Bytes = std::vector<BYTE>;

std::string TypeName(DWORD type) {
    for (const STypeName& name : kTypeNames) {
        if (name.type == type) {
            return name.name;
        }
    }
    char text[32];
    std::snprintf(text, sizeof text, "type 0x%x", static_cast<unsigned>(type));
    return text;
}

std::string Upper(std::string text) {
    for (char& c : text) {
        if (c >= 'a' && c <= 'z') {
            c = static_cast<char>(c - 'a' + 'A');
        }
    }
    return text;
}

bool ParseType(const std::string& text, DWORD& type) {
    std::string name = Upper(text);
    if (name.compare(0, 4, "REG_") != 0) {
        name = "REG_" + name;
    }
    for (DWORD settable : kSettableTypes) {
        if (TypeName(settable) == name) {
            type = settable;
            return true;
        }
    }
    return false;
}

// A whole decimal or 0x-hex number of at most maxValue, or a negative decimal
// down to minValue, in two's complement.
bool ParseNumber(const std::string& text, unsigned long long maxValue, long long minValue,
                 unsigned long long& number) {
    if (text.empty() || text[0] == ' ' || text[0] == '+') {
        return false;
    }
    const char* begin = text.c_str();
    char* end = nullptr;
    errno = 0;
    if (text[0] == '-') {
        const long long negative = std::strtoll(begin, &end, 10);
        number = static_cast<unsigned long long>(negative) & maxValue;
        return *end == '\0' && errno != ERANGE && negative >= minValue;
    }
    const bool hex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    number = std::strtoull(hex ? begin + 2 : begin, &end, hex ? 16 : 10);
    return end != begin && *end == '\0' && errno != ERANGE && number <= maxValue &&
           (!hex || (text[2] != '-' && text[2] != ' '));
}

bool ParseHexBytes(const std::string& text, Bytes& data) {
    std::string digits;
    for (char c : text) {
        if (c == ',' || c == ' ') {
            continue;
        }
        if (!std::isxdigit(static_cast<unsigned char>(c))) {
            return false;
        }
        digits += c;
    }
    if (digits.size() % 2 != 0) {
        return false;
    }
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        data.push_back(static_cast<BYTE>(std::strtoul(digits.substr(i, 2).c_str(), nullptr, 16)));
    }
    return true;
}

void AppendString(Bytes& data, const std::string& text) {
    data.insert(data.end(), text.begin(), text.end());
    data.push_back(0);
}

void AppendLittleEndian(Bytes& data, unsigned long long number, int size) {
    for (int i = 0; i < size; ++i) {
        data.push_back(static_cast<BYTE>(number >> (8 * i)));
    }
}

// The bytes set stores for DATA of the type; false when DATA does not fit.
bool ParseData(DWORD type, const std::string& text, Bytes& data) {
    unsigned long long number = 0;
    switch (type) {
        case REG_SZ:
        case REG_EXPAND_SZ:
            AppendString(data, text);
            return true;
        case REG_DWORD:
            if (!ParseNumber(text, 0xffffffffULL, -0x80000000LL, number)) {
                return false;
            }
            AppendLittleEndian(data, number, 4);
            return true;
        case REG_QWORD:
            if (!ParseNumber(text, ~0ULL, INT64_MIN, number)) {
                return false;
            }
            AppendLittleEndian(data, number, 8);
            return true;
        case REG_MULTI_SZ:
            for (std::size_t start = 0; !text.empty();) {
                const std::size_t end = text.find(kMultiSeparator, start);
                AppendString(data, text.substr(start, end - start));
                if (end == std::string::npos) {
                    break;
                }
                start = end + std::strlen(kMultiSeparator);
            }
            data.push_back(0);
            return true;
        default:
            return ParseHexBytes(text, data);
    }
}

unsigned long long LittleEndian(const Bytes& data) {
    unsigned long long number = 0;
    for (std::size_t i = data.size(); i > 0; --i) {
        number = (number << 8) | data[i - 1];
    }
    return number;
}

std::string HexBytes(const Bytes& data) {
    std::string text;
    for (std::size_t i = 0; i < data.size(); ++i) {
        char byte[4];
        std::snprintf(byte, sizeof byte, "%s%02x", i == 0 ? "" : ",", data[i]);
        text += byte;
    }
    return text;
}

// The data as set takes it.
std::string FormatData(DWORD type, const Bytes& data) {
    const std::string bytes(data.begin(), data.end());
    if (type == REG_SZ || type == REG_EXPAND_SZ) {
        return bytes.substr(0, bytes.find('\0'));
    }
    if ((type == REG_DWORD && data.size() == 4) || (type == REG_QWORD && data.size() == 8)) {
        return std::to_string(LittleEndian(data));
    }
    if (type == REG_MULTI_SZ) {
        std::string text;
        for (std::size_t start = 0; start < bytes.size() && bytes[start] != '\0';) {
            const std::size_t end = std::min(bytes.find('\0', start), bytes.size());
            text += (start == 0 ? "" : kMultiSeparator) + bytes.substr(start, end - start);
            start = end + 1;
        }
        return text;
    }
    return HexBytes(data);
}

// The value name of VALUE: @ stands for the default value, as in REGEDIT4 files.
std::string ValueName(const std::string& argument) {
    return argument == "@" ? std::string() : argument;
}

// Parses KEY; prints why it is refused.
bool ParseKey(const char* command, const std::string& keyPath, HKEY& root, std::string& subKey) {
    CString sub;
    if (!CKWRegistry::SplitKeyPath(keyPath.c_str(), root, sub) || sub.IsEmpty()) {
        std::fprintf(stderr,
                     "kwcore reg %s: '%s' is not ROOT\\sub\\key with a known ROOT (see --help)\n",
                     command, keyPath.c_str());
        return false;
    }
    subKey = static_cast<const char*>(sub);
    return true;
}

// Opens KEY for reading; prints why it cannot.
bool OpenKey(const char* command, const std::string& keyPath, HKEY& key) {
    HKEY root = nullptr;
    std::string subKey;
    if (!ParseKey(command, keyPath, root, subKey)) {
        return false;
    }
    const LSTATUS status = RegOpenKeyExA(root, subKey.c_str(), 0, KEY_READ, &key);
    if (status == ERROR_FILE_NOT_FOUND) {
        std::fprintf(stderr, "kwcore reg %s: no key '%s'\n", command, keyPath.c_str());
    } else if (status != ERROR_SUCCESS) {
        std::fprintf(stderr, "kwcore reg %s: cannot open '%s' (error %ld)\n", command,
                     keyPath.c_str(), static_cast<long>(status));
    }
    return status == ERROR_SUCCESS;
}

// 0 to go on; else the exit status after printing help or a usage error.
// The help of list, get and set also tells how data are shown.
int CheckArguments(const Arguments& args, std::size_t count, const char* help,
                   bool showsData = false) {
    if (WantsHelp(args)) {
        std::fputs(help, stdout);
        std::fputs("\n", stdout);
        std::fputs(kKeyHelp, stdout);
        if (showsData) {
            std::fputs(kDataHelp, stdout);
        }
        return -1;
    }
    if (args.size() != count) {
        std::fputs(help, stderr);
        return 2;
    }
    return 0;
}

int ExitStatus(int checked) {
    return checked < 0 ? 0 : checked;
}

int RunList(const Arguments& args) {
    if (const int checked = CheckArguments(args, 1, kListHelp, true)) {
        return ExitStatus(checked);
    }
    HKEY key = nullptr;
    if (!OpenKey("list", args[0], key)) {
        return 1;
    }
    DWORD longestKeyName = 0;
    DWORD longestValueName = 0;
    DWORD largestValue = 0;
    LSTATUS status =
        RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, nullptr, &longestKeyName, nullptr, nullptr,
                         &longestValueName, &largestValue, nullptr, nullptr);
    std::vector<char> name(std::max(longestKeyName, longestValueName) + 1);
    Bytes data(largestValue + 1);
    for (DWORD index = 0; status == ERROR_SUCCESS; ++index) {
        DWORD length = static_cast<DWORD>(name.size());
        status =
            RegEnumKeyExA(key, index, name.data(), &length, nullptr, nullptr, nullptr, nullptr);
        if (status == ERROR_SUCCESS) {
            std::printf("%s\\\n", name.data());
        }
    }
    if (status == ERROR_NO_MORE_ITEMS) {
        status = ERROR_SUCCESS;
    }
    for (DWORD index = 0; status == ERROR_SUCCESS; ++index) {
        DWORD length = static_cast<DWORD>(name.size());
        DWORD size = static_cast<DWORD>(data.size());
        DWORD type = REG_NONE;
        status =
            RegEnumValueA(key, index, name.data(), &length, nullptr, &type, data.data(), &size);
        if (status == ERROR_SUCCESS) {
            std::printf("%s = %s %s\n", length == 0 ? "(default)" : name.data(),
                        TypeName(type).c_str(),
                        FormatData(type, Bytes(data.begin(), data.begin() + size)).c_str());
        }
    }
    RegCloseKey(key);
    if (status != ERROR_NO_MORE_ITEMS) {
        std::fprintf(stderr, "kwcore reg list: cannot read '%s' (error %ld)\n", args[0].c_str(),
                     static_cast<long>(status));
        return 1;
    }
    return 0;
}

int RunGet(const Arguments& args) {
    if (const int checked = CheckArguments(args, 2, kGetHelp, true)) {
        return ExitStatus(checked);
    }
    HKEY key = nullptr;
    if (!OpenKey("get", args[0], key)) {
        return 1;
    }
    DWORD type = REG_NONE;
    DWORD size = 0;
    const std::string name = ValueName(args[1]);
    LSTATUS status = RegQueryValueExA(key, name.c_str(), nullptr, &type, nullptr, &size);
    Bytes data(size);
    if (status == ERROR_SUCCESS) {
        status = RegQueryValueExA(key, name.c_str(), nullptr, &type, data.data(), &size);
    }
    RegCloseKey(key);
    if (status == ERROR_FILE_NOT_FOUND) {
        std::fprintf(stderr, "kwcore reg get: '%s' has no value '%s'\n", args[0].c_str(),
                     args[1].c_str());
        return 1;
    }
    if (status != ERROR_SUCCESS) {
        std::fprintf(stderr, "kwcore reg get: cannot read '%s' of '%s' (error %ld)\n",
                     args[1].c_str(), args[0].c_str(), static_cast<long>(status));
        return 1;
    }
    data.resize(size);
    std::printf("%s\n", FormatData(type, data).c_str());
    return 0;
}

int RunSet(const Arguments& args) {
    if (const int checked = CheckArguments(args, 4, kSetHelp, true)) {
        return ExitStatus(checked);
    }
    HKEY root = nullptr;
    std::string subKey;
    if (!ParseKey("set", args[0], root, subKey)) {
        return 2;
    }
    DWORD type = REG_NONE;
    if (!ParseType(args[2], type)) {
        std::fprintf(stderr, "kwcore reg set: unknown type '%s' (see --help)\n", args[2].c_str());
        return 2;
    }
    Bytes data;
    if (!ParseData(type, args[3], data)) {
        std::fprintf(stderr, "kwcore reg set: '%s' is not %s data (see --help)\n", args[3].c_str(),
                     TypeName(type).c_str());
        return 2;
    }
    HKEY key = nullptr;
    LSTATUS status = RegCreateKeyExA(root, subKey.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                     KEY_ALL_ACCESS, nullptr, &key, nullptr);
    if (status == ERROR_SUCCESS) {
        status = RegSetValueExA(key, ValueName(args[1]).c_str(), 0, type, data.data(),
                                static_cast<DWORD>(data.size()));
        RegCloseKey(key);
    }
    if (status != ERROR_SUCCESS) {
        std::fprintf(stderr, "kwcore reg set: cannot set '%s' of '%s' (error %ld)\n",
                     args[1].c_str(), args[0].c_str(), static_cast<long>(status));
        return 1;
    }
    return 0;
}

int RunExport(const Arguments& args) {
    if (const int checked = CheckArguments(args, 2, kExportHelp)) {
        return ExitStatus(checked);
    }
    HKEY key = nullptr;
    if (!OpenKey("export", args[0], key)) {
        return 1;
    }
    RegCloseKey(key);
    if (!CKWRegistry::WriteRegistryTreeToFile(args[0].c_str(), args[1].c_str())) {
        std::fprintf(stderr, "kwcore reg export: cannot write '%s' to '%s'\n", args[0].c_str(),
                     args[1].c_str());
        return 1;
    }
    std::printf("exported %s to %s\n", args[0].c_str(), args[1].c_str());
    return 0;
}

int RunImport(const Arguments& args) {
    if (const int checked = CheckArguments(args, 1, kImportHelp)) {
        return ExitStatus(checked);
    }
    int line = 0;
    CString reason;
    if (!CKWRegistry::ReadRegistryTreeFromFile(args[0].c_str(), line, reason)) {
        if (line > 0) {
            std::fprintf(stderr, "kwcore reg import: %s, line %d: %s\n", args[0].c_str(), line,
                         static_cast<const char*>(reason));
        } else {
            std::fprintf(stderr, "kwcore reg import: cannot read '%s'\n", args[0].c_str());
        }
        return 1;
    }
    std::printf("imported %s\n", args[0].c_str());
    return 0;
}

const Command kRegCommands[] = {
    {"list", "list a key's sub-keys, then its values with type and data", RunList},
    {"get", "print the data of a value", RunGet},
    {"set", "set a value of a type to data, creating the key", RunSet},
    {"export", "write a key and everything below it to a REGEDIT4 file", RunExport},
    {"import", "read a REGEDIT4 file into the registry, all or nothing", RunImport},
};

}  // namespace

int RunRegCommand(const Arguments& args) {
    return RunCommandFrom("kwcore reg", kRegCommands, args);
}

}  // namespace kwCommands
