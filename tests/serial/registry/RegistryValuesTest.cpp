// The serializer's typed values in its current key.
#include <string>
#include <vector>

#include "RegistrySerializerTest.h"

class RegistryValues : public RegistrySerializerTest {
protected:
    void SetUp() override {
        m_serializer = NewSerializer(Location());
        ASSERT_EQ(1, m_serializer->CreateKey(HKEY_CURRENT_USER, Location().c_str()));
        ASSERT_NE(nullptr, m_serializer->GetCurrentKey());
    }

    KWOwned<CKWRegistrySerializer> m_serializer;
};

TEST_F(RegistryValues, NumbersAndTextReadBackWithTheirTypesAndSizes) {
    ASSERT_EQ(1, m_serializer->Write("Count", -2));
    EXPECT_EQ(static_cast<DWORD>(REG_DWORD), m_serializer->GetLastValueType());
    EXPECT_EQ(4u, m_serializer->GetLastValueSize());
    ASSERT_EQ(1, m_serializer->Write("Mask", static_cast<DWORD>(0xFEDCBA98)));
    ASSERT_EQ(1, m_serializer->Write("Text", "line\none"));
    EXPECT_EQ(static_cast<DWORD>(REG_SZ), m_serializer->GetLastValueType());
    EXPECT_EQ(9u, m_serializer->GetLastValueSize());

    EXPECT_EQ((std::vector<BYTE>{0xFE, 0xFF, 0xFF, 0xFF}), RawValue(Location(), "Count").bytes);
    int count = 0;
    DWORD mask = 0;
    CString text;
    EXPECT_EQ(1, m_serializer->Read("Count", count));
    EXPECT_EQ(-2, count);
    EXPECT_EQ(1, m_serializer->Read("Mask", mask));
    EXPECT_EQ(0xFEDCBA98u, mask);
    EXPECT_EQ(1, m_serializer->Read("Text", text));
    EXPECT_EQ(CString("line\none"), text);
    EXPECT_EQ(1, m_serializer->VerifyValue("text"));
    EXPECT_EQ(0, m_serializer->Write("Null", static_cast<const char*>(nullptr)));
}

TEST_F(RegistryValues, ArraysAndListsAreStoredInTheirArchiveForm) {
    CByteArray bytes;
    for (int value = 0; value < 256; ++value) {
        bytes.Add(static_cast<BYTE>(value));
    }
    CWordArray words;
    words.Add(1);
    words.Add(0x0302);
    CDWordArray dwords;
    dwords.Add(0x04030201);
    CStringArray strings;
    strings.Add("alpha");
    strings.Add("");
    CStringList list;
    list.AddTail("x");
    list.AddTail(CString('y', 300));
    ASSERT_EQ(1, m_serializer->Write("Bytes", bytes));
    ASSERT_EQ(1, m_serializer->Write("Words", words));
    ASSERT_EQ(1, m_serializer->Write("DWords", dwords));
    ASSERT_EQ(1, m_serializer->Write("Strings", strings));
    ASSERT_EQ(1, m_serializer->Write("List", list));
    EXPECT_EQ(static_cast<DWORD>(REG_BINARY), m_serializer->GetLastValueType());

    EXPECT_EQ((std::vector<BYTE>{2, 0, 1, 0, 2, 3}), RawValue(Location(), "Words").bytes);
    EXPECT_EQ((std::vector<BYTE>{1, 0, 1, 2, 3, 4}), RawValue(Location(), "DWords").bytes);
    EXPECT_EQ((std::vector<BYTE>{2, 0, 5, 'a', 'l', 'p', 'h', 'a', 0}),
              RawValue(Location(), "Strings").bytes);
    const SRawValue stored = RawValue(Location(), "List");
    ASSERT_EQ(2u + 2u + 3u + 300u, stored.bytes.size());
    EXPECT_EQ((std::vector<BYTE>{2, 0, 1, 'x', 0xFF, 0x2C, 0x01}),
              std::vector<BYTE>(stored.bytes.begin(), stored.bytes.begin() + 7));

    CByteArray bytesBack;
    CWordArray wordsBack;
    CDWordArray dwordsBack;
    CStringArray stringsBack;
    CStringList listBack;
    listBack.AddTail("replaced");
    ASSERT_EQ(1, m_serializer->Read("Bytes", bytesBack));
    ASSERT_EQ(1, m_serializer->Read("Words", wordsBack));
    ASSERT_EQ(1, m_serializer->Read("DWords", dwordsBack));
    ASSERT_EQ(1, m_serializer->Read("Strings", stringsBack));
    ASSERT_EQ(1, m_serializer->Read("List", listBack));
    ASSERT_EQ(256, bytesBack.GetSize());
    EXPECT_EQ(255, bytesBack[255]);
    ASSERT_EQ(2, wordsBack.GetSize());
    EXPECT_EQ(0x0302, wordsBack[1]);
    ASSERT_EQ(1, dwordsBack.GetSize());
    EXPECT_EQ(0x04030201u, dwordsBack[0]);
    ASSERT_EQ(2, stringsBack.GetSize());
    EXPECT_EQ(CString("alpha"), stringsBack[0]);
    ASSERT_EQ(2, listBack.GetCount());
    EXPECT_EQ(CString("x"), listBack.GetHead());
    EXPECT_EQ(CString('y', 300), listBack.GetTail());
}

TEST_F(RegistryValues, RectanglesAndPointsAreLittleEndianLongs) {
    RECT rect{-1, 2, 300, 0x01020304};
    POINT point{7, -8};
    POINT* pointer = &point;
    ASSERT_EQ(1, m_serializer->Write("Rect", &rect));
    ASSERT_EQ(1, m_serializer->Write("Point", pointer));
    const std::vector<BYTE> expected{0xFF, 0xFF, 0xFF, 0xFF, 2, 0, 0, 0, 0x2C, 1, 0, 0, 4, 3, 2, 1};
    EXPECT_EQ(expected, RawValue(Location(), "Rect").bytes);
    RECT rectBack{};
    POINT pointBack{};
    ASSERT_EQ(1, m_serializer->Read("Rect", rectBack));
    ASSERT_EQ(1, m_serializer->Read("Point", pointBack));
    EXPECT_EQ(-1, rectBack.left);
    EXPECT_EQ(0x01020304, rectBack.bottom);
    EXPECT_EQ(7, pointBack.x);
    EXPECT_EQ(-8, pointBack.y);
    POINT* none = nullptr;
    EXPECT_EQ(0, m_serializer->Write("None", none));
    EXPECT_EQ(0, m_serializer->Write("None", static_cast<RECT*>(nullptr)));
    EXPECT_EQ(0, m_serializer->VerifyValue("None"));
}

TEST_F(RegistryValues, MissingMalformedOrOtherTypedValuesFailAndLeaveTargetsAlone) {
    int number = 11;
    CString text("kept");
    CStringList list;
    list.AddTail("kept");
    RECT rect{1, 2, 3, 4};
    EXPECT_EQ(0, m_serializer->Read("Absent", number));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, m_serializer->GetLastError());
    EXPECT_EQ(0, m_serializer->VerifyValue("Absent"));

    ASSERT_EQ(1, m_serializer->Write("Text", "12"));
    EXPECT_EQ(0, m_serializer->Read("Text", number));
    EXPECT_EQ(static_cast<DWORD>(REG_SZ), m_serializer->GetLastValueType());
    EXPECT_EQ(0, m_serializer->Read("Text", list));
    EXPECT_EQ(0, m_serializer->Read("Text", rect));
    ASSERT_EQ(1, m_serializer->Write("Number", 12));
    EXPECT_EQ(0, m_serializer->Read("Number", text));

    const BYTE truncated[] = {3, 0, 5, 'a', 'b'};
    HKEY key = m_serializer->GetCurrentKey();
    ASSERT_EQ(ERROR_SUCCESS,
              RegSetValueExA(key, "Short", 0, REG_BINARY, truncated, sizeof truncated));
    EXPECT_EQ(0, m_serializer->Read("Short", list));
    const BYTE fewBytes[] = {5, 0, 1, 2};
    ASSERT_EQ(ERROR_SUCCESS, RegSetValueExA(key, "Few", 0, REG_BINARY, fewBytes, sizeof fewBytes));
    CByteArray bytes;
    EXPECT_EQ(0, m_serializer->Read("Few", bytes));
    EXPECT_EQ(0, m_serializer->Read("Short", rect));
    const BYTE shortNumber[] = {1, 2};
    ASSERT_EQ(ERROR_SUCCESS, RegSetValueExA(key, "Half", 0, REG_DWORD, shortNumber, 2));
    EXPECT_EQ(0, m_serializer->Read("Half", number));
    const BYTE unterminated[] = {'a', 'b'};
    ASSERT_EQ(ERROR_SUCCESS, RegSetValueExA(key, "Bare", 0, REG_SZ, unterminated, 2));
    EXPECT_EQ(1, m_serializer->Read("Bare", text));
    EXPECT_EQ(CString("ab"), text);

    EXPECT_EQ(11, number);
    ASSERT_EQ(1, list.GetCount());
    EXPECT_EQ(CString("kept"), list.GetHead());
    EXPECT_EQ(1, rect.left);
    EXPECT_EQ(0, bytes.GetSize());
}

TEST_F(RegistryValues, OverLongNamesAndUnknownRootsFailWithTheStoresCode) {
    const std::string longName(16384, 'v');
    const std::string longPath = Location() + "\\" + std::string(256, 'k');
    EXPECT_EQ(0, m_serializer->Write(longName.c_str(), 1));
#if !defined(_WIN32)  // Wine refuses long names with other codes
    EXPECT_EQ(ERROR_INVALID_PARAMETER, m_serializer->GetLastError());
#endif
    EXPECT_EQ(0, m_serializer->VerifyValue(longName.c_str()));
    EXPECT_EQ(0, m_serializer->OpenRegistry(HKEY_CURRENT_USER, longPath.c_str()));
#if !defined(_WIN32)
    EXPECT_EQ(ERROR_INVALID_PARAMETER, m_serializer->GetLastError());
#endif
    EXPECT_EQ(nullptr, m_serializer->GetCurrentKey());
    EXPECT_EQ(0, m_serializer->OpenRegistry(HKEY_PERFORMANCE_DATA, "Anything"));
    EXPECT_EQ(ERROR_INVALID_HANDLE, m_serializer->GetLastError());
    // Nothing was made on the way.
    CStringList names;
    ASSERT_EQ(1, m_serializer->OpenRegistry(HKEY_CURRENT_USER, Location().c_str()));
    EXPECT_EQ(1, m_serializer->EnumerateSubKeys(names));
    EXPECT_EQ(0, names.GetCount());
}

TEST_F(RegistryValues, KeysAreFoundDeletedAndEnumerated) {
    const std::string child = Location() + "\\Child";
    EXPECT_EQ(0, m_serializer->VerifyKey(child.c_str()));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, m_serializer->GetLastError());
    EXPECT_EQ(nullptr, m_serializer->GetCurrentKey());
    EXPECT_EQ(0, m_serializer->Write("Nowhere", 1));
    EXPECT_EQ(1, m_serializer->OpenRegistry(HKEY_CURRENT_USER, (child + "\\Grandchild").c_str()));
    EXPECT_EQ(1, m_serializer->VerifyKey(child.c_str()));
    EXPECT_EQ(0u, m_serializer->GetLastValueSize());
    CStringList names;
    names.AddTail("stale");
    ASSERT_EQ(1, m_serializer->EnumerateSubKeys(names));
    ASSERT_EQ(1, names.GetCount());
    EXPECT_EQ(CString("Grandchild"), names.GetHead());

    ASSERT_EQ(1, m_serializer->Write("Value", 1));
    EXPECT_EQ(1, m_serializer->DeleteValue("Value"));
    EXPECT_EQ(0, m_serializer->DeleteValue("Value"));
    EXPECT_EQ(0, m_serializer->DeleteValueKey(HKEY_CURRENT_USER, child.c_str()));
    EXPECT_EQ(1, m_serializer->DeleteValueKey(HKEY_CURRENT_USER, (child + "\\Grandchild").c_str()));
    m_serializer->CloseRegistry();
    EXPECT_EQ(nullptr, m_serializer->GetCurrentKey());
    EXPECT_EQ(0, m_serializer->EnumerateSubKeys(names));
    EXPECT_EQ(0, names.GetCount());
    EXPECT_EQ(0, m_serializer->VerifyValue("Value"));
}
