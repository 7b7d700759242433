#include "RegistryTestKeys.h"

#if !defined(_WIN32)
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

using Names = std::vector<std::string>;

std::string EveryByteValue() {
    std::string bytes;
    for (int i = 0; i < 256; ++i) {
        bytes.push_back(static_cast<char>(i));
    }
    return bytes;
}

// -------------------------------------------------------------------- values

TEST_F(RegistryTest, ValuesKeepTheirTypeAndExactBytes) {
    const std::string binary = EveryByteValue();
    ASSERT_EQ(SetBytes(Base(), "Binary", REG_BINARY, binary), ERROR_SUCCESS);
    // Windows counts a terminator the size left out when the byte after the
    // data happens to be zero; here the next byte is not.
    ASSERT_EQ(
        RegSetValueExA(Base(), "Unterminated", 0, REG_SZ, reinterpret_cast<const BYTE*>("abcX"), 3),
        ERROR_SUCCESS);
    ASSERT_EQ(SetString(Base(), "Terminated", "abc"), ERROR_SUCCESS);
    ASSERT_EQ(SetBytes(Base(), "ShortDword", REG_DWORD, std::string("\x01\x02", 2)), ERROR_SUCCESS);
    ASSERT_EQ(SetBytes(Base(), "List", REG_MULTI_SZ, std::string("a\0bc\0\0\0", 7)), ERROR_SUCCESS);
    ASSERT_EQ(SetBytes(Base(), "Empty", REG_BINARY, ""), ERROR_SUCCESS);
    ASSERT_EQ(SetBytes(Base(), "Odd type", 0x12345678, "xyz"), ERROR_SUCCESS);

    DWORD type = 0;
    EXPECT_EQ(GetBytes(Base(), "Binary", &type), binary);
    EXPECT_EQ(type, static_cast<DWORD>(REG_BINARY));
    EXPECT_EQ(GetBytes(Base(), "Unterminated", &type), "abc");
    EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
    EXPECT_EQ(GetBytes(Base(), "Terminated"), std::string("abc", 4));
    EXPECT_EQ(GetBytes(Base(), "ShortDword", &type), std::string("\x01\x02", 2));
    EXPECT_EQ(type, static_cast<DWORD>(REG_DWORD));
    EXPECT_EQ(GetBytes(Base(), "List", &type), std::string("a\0bc\0\0\0", 7));
    EXPECT_EQ(type, static_cast<DWORD>(REG_MULTI_SZ));
    DWORD size = 99;
    EXPECT_EQ(RegQueryValueExA(Base(), "Empty", nullptr, &type, nullptr, &size), ERROR_SUCCESS);
    EXPECT_EQ(size, 0u);
    EXPECT_EQ(GetBytes(Base(), "Odd type", &type), "xyz");
    EXPECT_EQ(type, 0x12345678u);
}

TEST_F(RegistryTest, QueryGivesTheSizeWithoutABufferAndAsksForMoreWhenItIsSmall) {
    ASSERT_EQ(SetString(Base(), "Text", "0123456789"), ERROR_SUCCESS);
    DWORD type = 0;
    DWORD size = 0;
    EXPECT_EQ(RegQueryValueExA(Base(), "Text", nullptr, &type, nullptr, &size), ERROR_SUCCESS);
    EXPECT_EQ(size, 11u);
    EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));

    char buffer[16];
    std::memset(buffer, '#', sizeof buffer);
    size = 10;
    EXPECT_EQ(
        RegQueryValueExA(Base(), "Text", nullptr, &type, reinterpret_cast<BYTE*>(buffer), &size),
        ERROR_MORE_DATA);
    EXPECT_EQ(size, 11u);
    size = 11;
    EXPECT_EQ(
        RegQueryValueExA(Base(), "Text", nullptr, nullptr, reinterpret_cast<BYTE*>(buffer), &size),
        ERROR_SUCCESS);
    EXPECT_STREQ(buffer, "0123456789");
    EXPECT_EQ(buffer[11], '#');  // nothing written past the value

    EXPECT_EQ(RegQueryValueExA(Base(), "Text", nullptr, &type, nullptr, nullptr), ERROR_SUCCESS);
    EXPECT_EQ(RegQueryValueExA(Base(), "Text", nullptr, nullptr, reinterpret_cast<BYTE*>(buffer),
                               nullptr),
              ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegQueryValueExA(Base(), "Missing", nullptr, &type, nullptr, &size),
              ERROR_FILE_NOT_FOUND);
}

TEST_F(RegistryTest, ValueNamesIgnoreCaseAndSettingAgainKeepsTheFirstName) {
    ASSERT_EQ(SetDword(Base(), "Width", 1), ERROR_SUCCESS);
    ASSERT_EQ(SetString(Base(), "WIDTH", "wide"), ERROR_SUCCESS);
    DWORD type = 0;
    EXPECT_EQ(GetBytes(Base(), "width", &type), std::string("wide", 5));
    EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
    EXPECT_EQ(ValueNames(Base()), Names{"Width"});
    EXPECT_EQ(RegDeleteValueA(Base(), "wIdTh"), ERROR_SUCCESS);
    EXPECT_TRUE(ValueNames(Base()).empty());
}

TEST_F(RegistryTest, TheEmptyNameAndNullNameTheDefaultValue) {
    ASSERT_EQ(SetString(Base(), nullptr, "default"), ERROR_SUCCESS);
    EXPECT_EQ(GetBytes(Base(), ""), std::string("default", 8));
    ASSERT_EQ(SetString(Base(), "", "changed"), ERROR_SUCCESS);
    EXPECT_EQ(GetBytes(Base(), nullptr), std::string("changed", 8));
    EXPECT_EQ(ValueNames(Base()), Names{""});
    EXPECT_EQ(RegDeleteValueA(Base(), nullptr), ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteValueA(Base(), ""), ERROR_FILE_NOT_FOUND);
}

TEST_F(RegistryTest, ValueNamesHoldUpTo16383Characters) {
    const std::string longest(16383, 'v');
    ASSERT_EQ(SetDword(Base(), longest.c_str(), 5), ERROR_SUCCESS);
    EXPECT_EQ(GetBytes(Base(), longest.c_str()).size(), 4u);
    const std::string tooLong(16384, 'v');
    EXPECT_EQ(SetDword(Base(), tooLong.c_str(), 6), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(ValueNames(Base()), Names{longest});
}

TEST_F(RegistryTest, DataMissingForItsSizeIsRefusedAndNothingIsStored) {
    EXPECT_EQ(RegSetValueExA(Base(), "Nothing", 0, REG_BINARY, nullptr, 4), ERROR_NOACCESS);
    EXPECT_TRUE(ValueNames(Base()).empty());
    EXPECT_EQ(RegSetValueExA(Base(), "Empty", 0, REG_BINARY, nullptr, 0), ERROR_SUCCESS);
    EXPECT_EQ(ValueNames(Base()), Names{"Empty"});
}

TEST_F(RegistryTest, DeletingAMissingValueSaysSo) {
    EXPECT_EQ(RegDeleteValueA(Base(), "Never"), ERROR_FILE_NOT_FOUND);
}

// --------------------------------------------------------------- enumeration

TEST_F(RegistryTest, SubKeysEnumerateInCaseInsensitiveAlphabeticalOrder) {
    CKeyHandle key;
    for (const char* name : {"zeta", "Beta", "alpha", "beta2", "Alpha1"}) {
        ASSERT_EQ(CreateKey(Base(), name, key), ERROR_SUCCESS);
    }
    EXPECT_EQ(SubKeyNames(Base()), (Names{"alpha", "Alpha1", "Beta", "beta2", "zeta"}));
#if !defined(_WIN32)  // Wine compares in lower case, Windows and the store in upper case
    for (const char* name : {"_under", "[bracket"}) {
        ASSERT_EQ(CreateKey(Base(), name, key), ERROR_SUCCESS);
    }
    // '[' and '_' lie between the upper- and the lower-case letters.
    EXPECT_EQ(SubKeyNames(Base()),
              (Names{"alpha", "Alpha1", "Beta", "beta2", "zeta", "[bracket", "_under"}));
#endif
}

#if !defined(_WIN32)  // Wine enumerates values by name, Windows and the store in creation order
TEST_F(RegistryTest, ValuesEnumerateInCreationOrderAndKeepTheirPlaceWhenSetAgain) {
    for (const char* name : {"zulu", "Alpha", "mike"}) {
        ASSERT_EQ(SetDword(Base(), name, 1), ERROR_SUCCESS);
    }
    ASSERT_EQ(SetString(Base(), "ALPHA", "again"), ERROR_SUCCESS);
    EXPECT_EQ(ValueNames(Base()), (Names{"zulu", "Alpha", "mike"}));
    ASSERT_EQ(RegDeleteValueA(Base(), "zulu"), ERROR_SUCCESS);
    ASSERT_EQ(SetDword(Base(), "Zulu", 2), ERROR_SUCCESS);
    EXPECT_EQ(ValueNames(Base()), (Names{"Alpha", "mike", "Zulu"}));
}
#endif

TEST_F(RegistryTest, EnumerationEndsWithNoMoreItemsAndAsksForRoomForNamesAndData) {
    CKeyHandle key;
    ASSERT_EQ(CreateKey(Base(), "Child", key), ERROR_SUCCESS);
    ASSERT_EQ(SetString(Base(), "Name", "0123456789"), ERROR_SUCCESS);

    char name[8];
    DWORD length = 5;  // "Child" needs 6 with its terminator
    EXPECT_EQ(RegEnumKeyExA(Base(), 0, name, &length, nullptr, nullptr, nullptr, nullptr),
              ERROR_MORE_DATA);
    length = 6;
    FILETIME written = {0, 0};
    EXPECT_EQ(RegEnumKeyExA(Base(), 0, name, &length, nullptr, nullptr, nullptr, &written),
              ERROR_SUCCESS);
    EXPECT_STREQ(name, "Child");
    EXPECT_EQ(length, 5u);
    EXPECT_NE(written.dwHighDateTime, 0u);
    length = sizeof name;
    EXPECT_EQ(RegEnumKeyExA(Base(), 1, name, &length, nullptr, nullptr, nullptr, nullptr),
              ERROR_NO_MORE_ITEMS);

    length = 4;  // "Name" needs 5
    EXPECT_EQ(RegEnumValueA(Base(), 0, name, &length, nullptr, nullptr, nullptr, nullptr),
              ERROR_MORE_DATA);
    char data[16];
    DWORD type = 0;
    DWORD size = 4;
    length = sizeof name;
    EXPECT_EQ(RegEnumValueA(Base(), 0, name, &length, nullptr, &type, reinterpret_cast<BYTE*>(data),
                            &size),
              ERROR_MORE_DATA);
    EXPECT_EQ(size, 11u);
    length = sizeof name;
    size = sizeof data;
    EXPECT_EQ(RegEnumValueA(Base(), 0, name, &length, nullptr, &type, reinterpret_cast<BYTE*>(data),
                            &size),
              ERROR_SUCCESS);
    EXPECT_STREQ(name, "Name");
    EXPECT_EQ(length, 4u);
    EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
    EXPECT_EQ(size, 11u);
    EXPECT_STREQ(data, "0123456789");
    length = sizeof name;
    EXPECT_EQ(RegEnumValueA(Base(), 1, name, &length, nullptr, nullptr, nullptr, nullptr),
              ERROR_NO_MORE_ITEMS);
    EXPECT_EQ(RegEnumValueA(Base(), 0, nullptr, &length, nullptr, nullptr, nullptr, nullptr),
              ERROR_INVALID_PARAMETER);
}

std::string SubKeyAt(HKEY key, DWORD index) {
    char name[256];
    DWORD length = sizeof name;
    return RegEnumKeyExA(key, index, name, &length, nullptr, nullptr, nullptr, nullptr) ==
                   ERROR_SUCCESS
               ? std::string(name, length)
               : std::string();
}

std::string ValueAt(HKEY key, DWORD index) {
    char name[256];
    DWORD length = sizeof name;
    return RegEnumValueA(key, index, name, &length, nullptr, nullptr, nullptr, nullptr) ==
                   ERROR_SUCCESS
               ? std::string(name, length)
               : std::string();
}

TEST_F(RegistryTest, AnEnumerationGoingOnAfterAChangeSeesTheKeyAsItIsNow) {
    CKeyHandle key;
    for (const char* name : {"b", "d", "f", "h"}) {
        ASSERT_EQ(CreateKey(Base(), name, key), ERROR_SUCCESS);
        ASSERT_EQ(SetDword(Base(), name, 1), ERROR_SUCCESS);
    }
    EXPECT_EQ(SubKeyAt(Base(), 0), "b");
    EXPECT_EQ(SubKeyAt(Base(), 1), "d");
    ASSERT_EQ(CreateKey(Base(), "a", key), ERROR_SUCCESS);
    EXPECT_EQ(SubKeyAt(Base(), 2), "d");
    EXPECT_EQ(SubKeyAt(Base(), 3), "f");
    ASSERT_EQ(RegDeleteKeyA(Base(), "b"), ERROR_SUCCESS);
    EXPECT_EQ(SubKeyAt(Base(), 4), "");

    EXPECT_EQ(ValueAt(Base(), 0), "b");
    EXPECT_EQ(ValueAt(Base(), 1), "d");
    ASSERT_EQ(RegDeleteValueA(Base(), "b"), ERROR_SUCCESS);
    EXPECT_EQ(ValueAt(Base(), 2), "h");
#if !defined(_WIN32)
    // A change by another process counts as well.
    EXPECT_EQ(ValueAt(Base(), 0), "d");
    EXPECT_EQ(ValueAt(Base(), 1), "f");
    const pid_t child = fork();
    if (child == 0) {
        _exit(RegDeleteValueA(Base(), "d") == ERROR_SUCCESS ? 0 : 1);
    }
    int status = 1;
    waitpid(child, &status, 0);
    ASSERT_EQ(status, 0);
    EXPECT_EQ(ValueAt(Base(), 2), "");
#endif
}

// ------------------------------------------------------------ key information

struct SKeyInfo {
    DWORD subKeys = 0;
    DWORD maxSubKeyName = 0;
    DWORD values = 0;
    DWORD maxValueName = 0;
    DWORD maxValueData = 0;
    ULONGLONG written = 0;
};

LSTATUS QueryInfo(HKEY key, SKeyInfo& info) {
    FILETIME written = {0, 0};
    const LSTATUS status = RegQueryInfoKeyA(
        key, nullptr, nullptr, nullptr, &info.subKeys, &info.maxSubKeyName, nullptr, &info.values,
        &info.maxValueName, &info.maxValueData, nullptr, &written);
    info.written = static_cast<ULONGLONG>(written.dwHighDateTime) << 32 | written.dwLowDateTime;
    return status;
}

TEST_F(RegistryTest, KeyInformationSizesTheBuffersAnEnumerationNeeds) {
    SKeyInfo info;
    ASSERT_EQ(QueryInfo(Base(), info), ERROR_SUCCESS);
    EXPECT_EQ(
        info.subKeys + info.values + info.maxSubKeyName + info.maxValueName + info.maxValueData,
        0u);
    const ULONGLONG created = info.written;
    EXPECT_NE(created, 0u);

    CKeyHandle key;
    ASSERT_EQ(CreateKey(Base(), "Short", key), ERROR_SUCCESS);
    ASSERT_EQ(CreateKey(Base(), "AMuchLongerName", key), ERROR_SUCCESS);
    ASSERT_EQ(SetBytes(Base(), "Big", REG_BINARY, std::string(3000, 'b')), ERROR_SUCCESS);
    ASSERT_EQ(SetString(Base(), "LongerValueName", "x"), ERROR_SUCCESS);
    ASSERT_EQ(QueryInfo(Base(), info), ERROR_SUCCESS);
    EXPECT_EQ(info.subKeys, 2u);
    EXPECT_EQ(info.maxSubKeyName, 15u);
    EXPECT_EQ(info.values, 2u);
    EXPECT_EQ(info.maxValueName, 15u);
    EXPECT_EQ(info.maxValueData, 3000u);
    EXPECT_GE(info.written, created);

    char className[4] = "xyz";
    DWORD classLength = sizeof className;
    DWORD maxClass = 9;
    DWORD security = 9;
    EXPECT_EQ(RegQueryInfoKeyA(Base(), className, &classLength, nullptr, nullptr, nullptr,
                               &maxClass, nullptr, nullptr, nullptr, &security, nullptr),
              ERROR_SUCCESS);
    EXPECT_STREQ(className, "");
    EXPECT_EQ(classLength + maxClass, 0u);
    EXPECT_EQ(RegQueryInfoKeyA(Base(), className, nullptr, nullptr, nullptr, nullptr, nullptr,
                               nullptr, nullptr, nullptr, nullptr, nullptr),
              ERROR_INVALID_PARAMETER);
}

// -------------------------------------------------------------- RegGetValueA

// The value read with RegGetValueA into a generous buffer; its code in
// *status.
std::string GetValue(HKEY key, const char* subKey, const char* name, DWORD flags, DWORD* type,
                     LSTATUS* status) {
    std::string bytes(32768, '\0');
    DWORD size = static_cast<DWORD>(bytes.size());
    *status = RegGetValueA(key, subKey, name, flags, type, &bytes[0], &size);
    bytes.resize(*status == ERROR_SUCCESS ? size : 0);
    return bytes;
}

TEST_F(RegistryTest, GetValueReadsThroughASubKeyPathAndKeepsToTheTypesAsked) {
    CKeyHandle child;
    ASSERT_EQ(CreateKey(Base(), "A\\B", child), ERROR_SUCCESS);
    ASSERT_EQ(SetDword(child.Get(), "Width", 640), ERROR_SUCCESS);
    ASSERT_EQ(SetBytes(child.Get(), "Four", REG_BINARY, "wxyz"), ERROR_SUCCESS);
    ASSERT_EQ(SetBytes(child.Get(), "Three", REG_BINARY, "xyz"), ERROR_SUCCESS);
    DWORD type = 0;
    LSTATUS status = ERROR_SUCCESS;
    EXPECT_EQ(GetValue(Base(), "a\\b", "WIDTH", RRF_RT_DWORD, &type, &status),
              std::string("\x80\x02\0\0", 4));
    EXPECT_EQ(status, ERROR_SUCCESS);
    EXPECT_EQ(type, static_cast<DWORD>(REG_DWORD));
    EXPECT_EQ(GetValue(Base(), "A\\B", "Four", RRF_RT_DWORD, &type, &status), "wxyz");
    EXPECT_EQ(GetValue(Base(), "A\\B", "Three", RRF_RT_DWORD, &type, &status), "");
    EXPECT_EQ(status, ERROR_DATATYPE_MISMATCH);
    EXPECT_EQ(GetValue(Base(), "A\\B", "Three", RRF_RT_ANY, &type, &status), "xyz");
    GetValue(Base(), "A\\B", "Width", RRF_RT_REG_SZ | RRF_RT_REG_QWORD, &type, &status);
    EXPECT_EQ(status, ERROR_UNSUPPORTED_TYPE);

    // A missing key is not created; a read from the handle itself needs the
    // right to query.
    DWORD size = 0;
    EXPECT_EQ(RegGetValueA(Base(), "A\\C", "Width", RRF_RT_ANY, nullptr, nullptr, &size),
              ERROR_FILE_NOT_FOUND);
    CKeyHandle key;
    EXPECT_EQ(OpenKey(Base(), "A\\C", key), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegGetValueA(Base(), "A\\B", "Height", RRF_RT_ANY, nullptr, nullptr, &size),
              ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegGetValueA(Base(), "A\\B", "Width", RRF_RT_ANY, nullptr, &type, nullptr),
              ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegGetValueA(Base(), "A\\B", "Width", RRF_RT_REG_EXPAND_SZ, nullptr, nullptr, &size),
              ERROR_INVALID_PARAMETER);
    ASSERT_EQ(OpenKey(Base(), "A\\B", key, KEY_SET_VALUE), ERROR_SUCCESS);
    EXPECT_EQ(RegGetValueA(key.Get(), nullptr, "Width", RRF_RT_ANY, nullptr, nullptr, &size),
              ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegGetValueA(Base(), "A", nullptr, RRF_RT_ANY, nullptr, nullptr, &size),
              ERROR_FILE_NOT_FOUND);
}

TEST_F(RegistryTest, GetValueTerminatesStringsExpandsThemUnlessToldAndZeroesOnFailure) {
    ASSERT_EQ(RegSetValueExA(Base(), "Bare", 0, REG_SZ, reinterpret_cast<const BYTE*>("abc"), 3),
              ERROR_SUCCESS);
    const std::string unexpanded("%PATH%;%KW_NO_SUCH_VARIABLE%", 29);
    ASSERT_EQ(SetBytes(Base(), "Expand", REG_EXPAND_SZ, unexpanded), ERROR_SUCCESS);
    DWORD type = 0;
    DWORD size = 0;
    EXPECT_EQ(RegGetValueA(Base(), "", "Bare", RRF_RT_REG_SZ, &type, nullptr, &size),
              ERROR_SUCCESS);
    EXPECT_EQ(size, 4u);
    char text[8] = "zzzzzzz";
    size = 2;
    EXPECT_EQ(
        RegGetValueA(Base(), "", "Bare", RRF_RT_REG_SZ | RRF_ZEROONFAILURE, &type, text, &size),
        ERROR_MORE_DATA);
    EXPECT_EQ(size, 4u);
    EXPECT_EQ(std::string(text, 2), std::string(2, '\0'));
    LSTATUS status = ERROR_SUCCESS;
    EXPECT_EQ(GetValue(Base(), nullptr, "Bare", RRF_RT_REG_SZ, &type, &status),
              std::string("abc", 4));

    EXPECT_EQ(GetValue(Base(), nullptr, "Expand", RRF_RT_REG_SZ, &type, &status),
              std::string(std::getenv("PATH")) + ";%KW_NO_SUCH_VARIABLE%" + '\0');
    EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
    EXPECT_EQ(
        GetValue(Base(), nullptr, "Expand", RRF_RT_REG_EXPAND_SZ | RRF_NOEXPAND, &type, &status),
        unexpanded);
    EXPECT_EQ(type, static_cast<DWORD>(REG_EXPAND_SZ));
    GetValue(Base(), nullptr, "Expand", RRF_RT_REG_SZ | RRF_NOEXPAND, &type, &status);
    EXPECT_EQ(status, ERROR_UNSUPPORTED_TYPE);
}

TEST_F(RegistryTest, SetKeyValueCreatesTheKeyPathAndSetsTheValue) {
    const std::string width("\x80\x02\0\0", 4);
    ASSERT_EQ(RegSetKeyValueA(Base(), "New\\Path", "Width", REG_DWORD, width.data(), 4),
              ERROR_SUCCESS);
    CKeyHandle key;
    ASSERT_EQ(OpenKey(Base(), "new\\path", key), ERROR_SUCCESS);
    DWORD type = 0;
    EXPECT_EQ(GetBytes(key.Get(), "Width", &type), width);
    EXPECT_EQ(type, static_cast<DWORD>(REG_DWORD));
    EXPECT_EQ(RegSetKeyValueA(Base(), "NEW\\Path", "Width", REG_SZ, "x", 2), ERROR_SUCCESS);
    EXPECT_EQ(GetBytes(key.Get(), "Width"), std::string("x", 2));
    EXPECT_EQ(RegSetKeyValueA(key.Get(), nullptr, "Own", REG_BINARY, "ab", 2), ERROR_SUCCESS);
    EXPECT_EQ(GetBytes(key.Get(), "Own"), "ab");

    CKeyHandle readOnly;
    ASSERT_EQ(OpenKey(Base(), "New", readOnly, KEY_QUERY_VALUE), ERROR_SUCCESS);
    EXPECT_EQ(RegSetKeyValueA(readOnly.Get(), "", "v", REG_BINARY, "ab", 2), ERROR_ACCESS_DENIED);
    CKeyHandle volatileKey;
    ASSERT_EQ(CreateKey(Base(), "Volatile", volatileKey, REG_OPTION_VOLATILE), ERROR_SUCCESS);
    EXPECT_EQ(RegSetKeyValueA(Base(), "Volatile\\Child", "v", REG_BINARY, "ab", 2),
              ERROR_CHILD_MUST_BE_VOLATILE);
    EXPECT_EQ(SubKeyNames(volatileKey.Get()), Names{});
}

}  // namespace
