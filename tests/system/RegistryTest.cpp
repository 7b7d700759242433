#include "kwcore/system/CKWRegistry.h"

#include "CTempRegistry.h"

#include "kwcore/platform/CKWRegistryBatch.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

constexpr const char* kCompany = "kwcore tests";

// Reaches the protected string reader.
class CRegistryProbe : public CKWRegistry {
public:
    using CKWRegistry::CKWRegistry;
    using CKWRegistry::GetStringValueFromReg;
};

// A registry object whose application key is the temporary registry's key:
// HKCU\Software\kwcore tests\<id>.
class RegistryTest : public ::testing::Test {
protected:
    void SetUp() override {
        HKEY key = nullptr;
        ASSERT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, m_temp.GetKeyPath().c_str(), 0, nullptr, 0,
                                  KEY_ALL_ACCESS, nullptr, &key, nullptr),
                  ERROR_SUCCESS);
        RegCloseKey(key);
        m_application = m_temp.GetKeyPath().substr(m_temp.GetKeyPath().rfind('\\') + 1);
        ASSERT_EQ(m_registry.Initialize(kCompany, m_application.c_str(), HKEY_CURRENT_USER), 0);
    }

    // A key path relative to SOFTWARE, below the application key.
    CString Section(const char* name) const {
        return CString(kCompany) + "\\" + m_application.c_str() + "\\" + name;
    }

    // The raw stored value (type and bytes) below HKCU\Software.
    bool ReadRaw(const CString& keyPath, const char* valueName, DWORD& type, std::string& bytes) {
        HKEY key = nullptr;
        if (RegOpenKeyExA(HKEY_CURRENT_USER, CString("Software\\") + keyPath, 0, KEY_READ, &key) !=
            ERROR_SUCCESS) {
            return false;
        }
        char buffer[256];
        DWORD size = sizeof buffer;
        const LSTATUS status = RegQueryValueExA(key, valueName, nullptr, &type,
                                                reinterpret_cast<BYTE*>(buffer), &size);
        RegCloseKey(key);
        bytes.assign(buffer, status == ERROR_SUCCESS ? size : 0);
        return status == ERROR_SUCCESS;
    }

    CTempRegistry m_temp;
    std::string m_application;
    CRegistryProbe m_registry;
};

TEST(RegistryUninitialised, EveryAccessReturnsFourAndLeavesTheDefault) {
    CRegistryProbe registry;
    int number = 0;
    EXPECT_EQ(registry.GetRegValue("a", "v", number, 42), 4);
    EXPECT_EQ(number, 42);
    unsigned long unsignedNumber = 0;
    EXPECT_EQ(registry.GetRegValue("a", "v", unsignedNumber, 43ul), 4);
    EXPECT_EQ(unsignedNumber, 43ul);
    long longNumber = 0;
    EXPECT_EQ(registry.GetRegValue("a", "v", longNumber, -44l), 4);
    EXPECT_EQ(longNumber, -44l);
    CString text;
    EXPECT_EQ(registry.GetRegValue("a", "v", text, CString("fallback")), 4);
    EXPECT_EQ(text, "fallback");
    std::vector<CString> list;
    EXPECT_EQ(registry.GetRegValue("a", "v", list, std::vector<CString>{"x"}), 4);
    EXPECT_EQ(list, std::vector<CString>{"x"});
    std::map<CKWGuid, CString> map;
    const std::map<CKWGuid, CString> defaultMap{{CKWGuid::CreateNewGUID(), "y"}};
    EXPECT_EQ(registry.GetRegValue("a", "v", map, defaultMap), 4);
    EXPECT_EQ(map, defaultMap);
    EXPECT_EQ(registry.GetStringValueFromReg(nullptr, "v", text, CString("none")), 4);
    EXPECT_EQ(text, "none");

    EXPECT_EQ(registry.PutRegValue("a", "v", 1), 4);
    EXPECT_EQ(registry.PutRegValue("a", "v", 1ul), 4);
    EXPECT_EQ(registry.PutRegValue("a", "v", 1l), 4);
    EXPECT_EQ(registry.PutRegValue("a", "v", CString("t")), 4);
    EXPECT_EQ(registry.PutRegValue("a", "v", std::vector<CString>{"t"}), 4);
    EXPECT_EQ(registry.Load(), 0);
    EXPECT_EQ(registry.Save(), 0);
}

TEST(RegistryUninitialised, FailedInitialiseLeavesTheObjectUninitialised) {
    CTempRegistry temp;
    // No root has SOFTWARE below HKEY_USERS, on any platform; the others are no roots at all.
    const HKEY madeUp = reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(0x5000));
    for (HKEY root : {HKEY_USERS, HKEY_PERFORMANCE_DATA, madeUp, HKEY(nullptr)}) {
        CKWRegistry registry;
        EXPECT_EQ(registry.Initialize(kCompany, "app", root), 6);
        int number = 0;
        EXPECT_EQ(registry.GetRegValue("a", "v", number, 5), 4);
        EXPECT_EQ(number, 5);
    }
}

TEST_F(RegistryTest, ValuesRoundTripWithTheirTypes) {
    EXPECT_EQ(m_registry.PutRegValue(Section("s"), "int", -7), 0);
    EXPECT_EQ(m_registry.PutRegValue(Section("s"), "ulong", 0xFFFFFFFFul), 0);
    EXPECT_EQ(m_registry.PutRegValue(Section("s"), "long", -123456l), 0);
    const DWORD flags = 0x80000001;
    EXPECT_EQ(m_registry.PutRegValue(Section("s"), "dword", flags), 0);
    EXPECT_EQ(m_registry.PutRegValue(Section("s"), "text", CString("h\xc3\xa9llo \"x\"")), 0);
    const std::vector<CString> list{"one", "two", "three"};
    EXPECT_EQ(m_registry.PutRegValue(Section("s"), "list", list), 0);

    int number = 0;
    EXPECT_EQ(m_registry.GetRegValue(Section("s"), "int", number, 0), 0);
    EXPECT_EQ(number, -7);
    unsigned long unsignedNumber = 0;
    EXPECT_EQ(m_registry.GetRegValue(Section("s"), "ulong", unsignedNumber, 0ul), 0);
    EXPECT_EQ(unsignedNumber, 0xFFFFFFFFul);
    long longNumber = 0;
    EXPECT_EQ(m_registry.GetRegValue(Section("s"), "long", longNumber, 0l), 0);
    EXPECT_EQ(longNumber, -123456l);
    DWORD readFlags = 0;
    EXPECT_EQ(m_registry.GetRegValue(Section("s"), "dword", readFlags, DWORD{0}), 0);
    EXPECT_EQ(readFlags, flags);
    CString text;
    EXPECT_EQ(m_registry.GetRegValue(Section("s"), "TEXT", text, CString()), 0);
    EXPECT_EQ(text, "h\xc3\xa9llo \"x\"");
    std::vector<CString> readList;
    EXPECT_EQ(m_registry.GetRegValue(Section("s"), "list", readList, std::vector<CString>()), 0);
    EXPECT_EQ(readList, list);
}

TEST_F(RegistryTest, StoredBytesAreDwordsStringsWithTerminatorAndListsWithThreeZeros) {
    ASSERT_EQ(m_registry.PutRegValue(Section("raw"), "n", 0x01020304), 0);
    ASSERT_EQ(m_registry.PutRegValue(Section("raw"), "s", CString("ab")), 0);
    ASSERT_EQ(m_registry.PutRegValue(Section("raw"), "l", std::vector<CString>{"a", "bc"}), 0);
    ASSERT_EQ(m_registry.PutRegValue(Section("raw"), "e", std::vector<CString>()), 0);
    DWORD type = 0;
    std::string bytes;
    ASSERT_TRUE(ReadRaw(Section("raw"), "n", type, bytes));
    EXPECT_EQ(type, static_cast<DWORD>(REG_DWORD));
    EXPECT_EQ(bytes, std::string("\x04\x03\x02\x01", 4));
    ASSERT_TRUE(ReadRaw(Section("raw"), "s", type, bytes));
    EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
    EXPECT_EQ(bytes, std::string("ab\0", 3));
    ASSERT_TRUE(ReadRaw(Section("raw"), "l", type, bytes));
    EXPECT_EQ(type, static_cast<DWORD>(REG_MULTI_SZ));
    EXPECT_EQ(bytes, std::string("a\0bc\0\0\0", 7));
    ASSERT_TRUE(ReadRaw(Section("raw"), "e", type, bytes));
    EXPECT_EQ(bytes, std::string("\0\0", 2));
    std::vector<CString> list{"stale"};
    EXPECT_EQ(m_registry.GetRegValue(Section("raw"), "e", list, std::vector<CString>{"d"}), 0);
    EXPECT_TRUE(list.empty());
}

TEST_F(RegistryTest, WrongTypeReturnsSevenAndLeavesTheDefault) {
    ASSERT_EQ(m_registry.PutRegValue(Section("s"), "text", CString("12")), 0);
    ASSERT_EQ(m_registry.PutRegValue(Section("s"), "number", 12), 0);
    int number = 0;
    EXPECT_EQ(m_registry.GetRegValue(Section("s"), "text", number, 99), 7);
    EXPECT_EQ(number, 99);
    CString text;
    EXPECT_EQ(m_registry.GetRegValue(Section("s"), "number", text, CString("d")), 7);
    EXPECT_EQ(text, "d");
    std::vector<CString> list;
    EXPECT_EQ(m_registry.GetRegValue(Section("s"), "text", list, std::vector<CString>{"d"}), 7);
    EXPECT_EQ(list, std::vector<CString>{"d"});
}

TEST_F(RegistryTest, ReadingBelowAMissingKeyCreatesItAndReturnsSix) {
    CString text;
    EXPECT_EQ(m_registry.GetRegValue(Section("new\\deeper"), "v", text, CString("d")), 6);
    EXPECT_EQ(text, "d");
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, (m_temp.GetKeyPath() + "\\new\\deeper").c_str(), 0,
                            KEY_READ, &key),
              ERROR_SUCCESS);
    RegCloseKey(key);
    // An existing key without the value: 6 as well.
    int number = 0;
    EXPECT_EQ(m_registry.GetRegValue(Section("new"), "v", number, 3), 6);
    EXPECT_EQ(number, 3);
}

TEST_F(RegistryTest, OverLongNamesFailWithSixAndStoreNothing) {
    const CString longKey = Section(std::string(256, 'k').c_str());
    const std::string longValue(16384, 'v');
    EXPECT_EQ(m_registry.PutRegValue(longKey, "v", 1), 6);
    EXPECT_EQ(m_registry.PutRegValue(Section("s"), longValue.c_str(), CString("x")), 6);
    CString text;
    EXPECT_EQ(m_registry.GetRegValue(longKey, "v", text, CString("d")), 6);
    EXPECT_EQ(text, "d");
    EXPECT_EQ(m_registry.GetRegValue(Section("s"), longValue.c_str(), text, CString("e")), 6);
    EXPECT_EQ(text, "e");
    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, m_temp.GetKeyPath().c_str(), 0, KEY_READ, &key),
              ERROR_SUCCESS);
    DWORD subKeys = 9;
    DWORD values = 9;
    EXPECT_EQ(RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, &subKeys, nullptr, nullptr, &values,
                               nullptr, nullptr, nullptr, nullptr),
              ERROR_SUCCESS);
    RegCloseKey(key);
    EXPECT_EQ(subKeys, 1u);  // "s", made by the refused value's write
    EXPECT_EQ(values, 0u);
}

TEST_F(RegistryTest, ABaseKeyReplacesTheSoftwareKey) {
    HKEY base = nullptr;
    ASSERT_EQ(
        RegOpenKeyExA(HKEY_CURRENT_USER, m_temp.GetKeyPath().c_str(), 0, KEY_ALL_ACCESS, &base),
        ERROR_SUCCESS);
    EXPECT_EQ(m_registry.PutRegValue("rel", "v", CString("below base"), base), 0);
    CString text;
    EXPECT_EQ(m_registry.GetRegValue(Section("rel"), "v", text, CString()), 0);
    EXPECT_EQ(text, "below base");
    EXPECT_EQ(m_registry.GetStringValueFromReg(base, "missing", text, CString("d")), 6);
    EXPECT_EQ(text, "d");
    RegCloseKey(base);
}

TEST_F(RegistryTest, AGuidMapReadsBraceGuidEqualsTextEntriesAndSkipsOthers) {
    const CKWGuid first = CKWGuid::CreateNewGUID();
    const CKWGuid second = CKWGuid::CreateNewGUID();
    const std::vector<CString> entries{first.GetCString() + "=first = one", "not a guid=x",
                                       second.GetCString() + "=", first.GetCString().Left(20)};
    ASSERT_EQ(m_registry.PutRegValue(Section("map"), "names", entries), 0);
    std::map<CKWGuid, CString> map;
    EXPECT_EQ(m_registry.GetRegValue(Section("map"), "names", map, std::map<CKWGuid, CString>()),
              0);
    const std::map<CKWGuid, CString> expected{{first, "first = one"}, {second, ""}};
    EXPECT_EQ(map, expected);
}

// Values longer than a first read takes are read whole, whatever else the
// key holds.
TEST_F(RegistryTest, LongValuesAreReadWhole) {
    const CString text(std::string(5000, 'x').c_str());
    const std::vector<CString> list{CString(std::string(300, 'a').c_str()), "b"};
    ASSERT_EQ(m_registry.PutRegValue(Section("long"), "short", CString("s")), 0);
    ASSERT_EQ(m_registry.PutRegValue(Section("long"), "text", text), 0);
    ASSERT_EQ(m_registry.PutRegValue(Section("long"), "list", list), 0);
    CString readText;
    EXPECT_EQ(m_registry.GetRegValue(Section("long"), "text", readText, CString()), 0);
    EXPECT_EQ(readText, text);
    std::vector<CString> readList;
    EXPECT_EQ(m_registry.GetRegValue(Section("long"), "list", readList, std::vector<CString>()), 0);
    EXPECT_EQ(readList, list);
}

TEST_F(RegistryTest, PutsInsideABatchAreCommittedWithIt) {
    {
        CKWRegistryBatch batch;
        EXPECT_EQ(m_registry.PutRegValue(Section("batch"), "width", 640), 0);
        EXPECT_EQ(m_registry.PutRegValue(Section("batch"), "title", CString("Main")), 0);
        int width = 0;
        EXPECT_EQ(m_registry.GetRegValue(Section("batch"), "width", width, 0), 0);
        EXPECT_EQ(width, 640);
        EXPECT_EQ(batch.Commit(), ERROR_SUCCESS);
    }
    DWORD type = REG_NONE;
    std::string bytes;
    ASSERT_TRUE(ReadRaw(Section("batch"), "title", type, bytes));
    EXPECT_EQ(bytes, std::string("Main", 5));
}

}  // namespace
