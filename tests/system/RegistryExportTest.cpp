#include "kwcore/system/CKWRegistry.h"

#include "CTempFolder.h"
#include "CTempRegistry.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {

// A tree below the temporary registry's key, and a folder for the exports.
class RegistryExportTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_NE(m_key = CreateKey(""), nullptr); }
    void TearDown() override { RegCloseKey(m_key); }

    // Creates the key at the temporary key path followed by subPath.
    HKEY CreateKey(const std::string& subPath) { return m_temp.CreateKey(subPath); }

    static void SetValue(HKEY key, const char* name, DWORD type, const std::string& bytes) {
        ASSERT_EQ(SetRawValue(key, name, type, bytes), ERROR_SUCCESS);
    }

    static std::string Bytes(int count) {
        std::string bytes;
        for (int i = 0; i < count; ++i) {
            bytes += static_cast<char>(i);
        }
        return bytes;
    }

    // The export of the temporary key as text, or "(failed)".
    std::string Export() {
        const std::filesystem::path file = m_folder.GetPath() / "tree.reg";
        if (!CKWRegistry::WriteRegistryTreeToFile(HKEY_CURRENT_USER, m_temp.GetKeyPath().c_str(),
                                                  file.string().c_str())) {
            return "(failed)";
        }
        return ReadText(file);
    }

    // "\r\n[HKEY_CURRENT_USER\<temporary key><subPath>]\r\n"
    std::string Header(const std::string& subPath = "") const {
        return "\r\n[HKEY_CURRENT_USER\\" + m_temp.GetKeyPath() + subPath + "]\r\n";
    }

    CTempRegistry m_temp;
    CTempFolder m_folder{"kwregexport-"};
    HKEY m_key = nullptr;
};

// Values are written in the order the registry lists them: creation order on
// Windows and in the Linux store, name order in Wine's registry. The tests
// create them in name order, so one expected text serves all three.

TEST_F(RegistryExportTest, StringsEscapeQuotesBackslashesAndUnprintableBytes) {
    SetValue(m_key, "", REG_SZ, std::string("\0", 1));
    SetValue(m_key, "Name", REG_SZ, std::string("say \"hi\" C:\\x\ttab \xe9\x01.\0", 22));
    EXPECT_EQ(Export(), "REGEDIT4\r\n" + Header() +
                            "\"\"=\"\"\r\n"
                            "\"Name\"=\"say \\\"hi\\\" C:\\\\x\\09tab \\e9\\01.\"\r\n");
}

TEST_F(RegistryExportTest, DwordsAreEightDigitsMostSignificantFirst) {
    const DWORD value = 305419896;
    SetValue(m_key, "Count", REG_DWORD, std::string(reinterpret_cast<const char*>(&value), 4));
    SetValue(m_key, "Zero", REG_DWORD, std::string(4, '\0'));
    EXPECT_EQ(Export(), "REGEDIT4\r\n" + Header() +
                            "\"Count\"=dword:12345678\r\n"
                            "\"Zero\"=dword:00000000\r\n");
}

TEST_F(RegistryExportTest, BinaryLinesHoldSeventeenThenSixteenBytesWithoutBackslashes) {
    SetValue(m_key, "1 Twenty", REG_BINARY, Bytes(20));
    SetValue(m_key, "2 Seventeen", REG_BINARY, Bytes(17));
    SetValue(m_key, "3 ThirtyFour", REG_BINARY, Bytes(34));
    SetValue(m_key, "4 Empty", REG_BINARY, "");
    const std::string first17 = "00,01,02,03,04,05,06,07,08,09,0a,0b,0c,0d,0e,0f,10\r\n";
    const std::string next16 = ",11,12,13,14,15,16,17,18,19,1a,1b,1c,1d,1e,1f,20\r\n";
    EXPECT_EQ(Export(), "REGEDIT4\r\n" + Header() +                            //
                            "\"1 Twenty\"=hex:" + first17 + ",11,12,13\r\n" +  //
                            "\"2 Seventeen\"=hex:" + first17 + "\r\n" +        //
                            "\"3 ThirtyFour\"=hex:" + first17 + next16 + ",21\r\n" +
                            "\"4 Empty\"=hex:\r\n");
}

TEST_F(RegistryExportTest, BinaryDataOfEveryByteValueIsTwoLowerCaseDigitsEach) {
    SetValue(m_key, "All", REG_BINARY, Bytes(256));
    std::string hex = "\"All\"=hex:";
    const char* digits = "0123456789abcdef";
    for (int i = 0; i < 256; ++i) {
        hex += std::string(i ? "," : "") + digits[i / 16] + digits[i % 16];
        hex += i % 16 == 0 && i ? "\r\n" : "";
    }
    EXPECT_EQ(Export(), "REGEDIT4\r\n" + Header() + hex + "\r\n");
}

TEST_F(RegistryExportTest, OtherTypesAreHexWithTheirNumberAndExpandableStringsKeepTheirText) {
    SetValue(m_key, "1 Path", REG_EXPAND_SZ, std::string("%TEMP%\\x\0", 9));
    SetValue(m_key, "2 List", REG_MULTI_SZ, std::string("a\0b\0\0", 5));
    SetValue(m_key, "3 Big", REG_QWORD, std::string("\x01\x02\x03\x04\x05\x06\x07\x08", 8));
    SetValue(m_key, "4 None", REG_NONE, "");
    // The expandable string keeps its escaped text and lone closing quote.
    EXPECT_EQ(Export(), "REGEDIT4\r\n" + Header() +
                            "\"1 Path\"=hex(2):%TEMP%\\\\x\"\r\n"
                            "\"2 List\"=hex(7):61,00,62,00,00\r\n"
                            "\"3 Big\"=hex(b):01,02,03,04,05,06,07,08\r\n"
                            "\"4 None\"=hex(0):\r\n");
}

TEST_F(RegistryExportTest, KeysComeDepthFirstWithValuesBeforeSubkeys) {
    SetValue(m_key, "Top", REG_SZ, std::string("t\0", 2));
    HKEY child = CreateKey("\\Child");
    HKEY grand = CreateKey("\\Child\\Grand");
    HKEY another = CreateKey("\\another");
    SetValue(child, "C", REG_SZ, std::string("c\0", 2));
    SetValue(grand, "G", REG_SZ, std::string("g\0", 2));
    SetValue(m_key, "Under", REG_SZ, std::string("l\0", 2));
    RegCloseKey(child);
    RegCloseKey(grand);
    RegCloseKey(another);
    EXPECT_EQ(Export(), "REGEDIT4\r\n" + Header() + "\"Top\"=\"t\"\r\n\"Under\"=\"l\"\r\n" +
                            Header("\\another") +                    //
                            Header("\\Child") + "\"C\"=\"c\"\r\n" +  //
                            Header("\\Child\\Grand") + "\"G\"=\"g\"\r\n");
}

TEST_F(RegistryExportTest, TheKeyPathTakesLongAndShortRootNames) {
    SetValue(m_key, "V", REG_SZ, std::string("v\0", 2));
    const std::string expected = Export();
    ASSERT_NE(expected, "(failed)");
    for (const char* root : {"HKEY_CURRENT_USER\\", "HKCU\\"}) {
        const std::filesystem::path file = m_folder.GetPath() / "path.reg";
        EXPECT_TRUE(CKWRegistry::WriteRegistryTreeToFile((root + m_temp.GetKeyPath()).c_str(),
                                                         file.string().c_str()))
            << root;
        EXPECT_EQ(ReadText(file), expected) << root;
    }
}

TEST_F(RegistryExportTest, RefusedExportsLeaveNoFile) {
    const std::filesystem::path file = m_folder.GetPath() / "refused.reg";
    const std::string name = file.string();
    const std::string subKey = m_temp.GetKeyPath();
    EXPECT_FALSE(CKWRegistry::WriteRegistryTreeToFile(("HKXX\\" + subKey).c_str(), name.c_str()));
    EXPECT_FALSE(CKWRegistry::WriteRegistryTreeToFile("HKCU", name.c_str()));
    EXPECT_FALSE(CKWRegistry::WriteRegistryTreeToFile(nullptr, name.c_str()));
    EXPECT_FALSE(CKWRegistry::WriteRegistryTreeToFile(HKEY_CURRENT_USER, "", name.c_str()));
    EXPECT_FALSE(CKWRegistry::WriteRegistryTreeToFile(HKEY_CURRENT_USER, subKey.c_str(), ""));
    EXPECT_FALSE(CKWRegistry::WriteRegistryTreeToFile(m_key, "x", name.c_str()));
    EXPECT_FALSE(std::filesystem::exists(file));

    // A missing key fails after the file was begun: the file is deleted, an
    // earlier one of the same name included.
    WriteText(file, "earlier");
    EXPECT_FALSE(CKWRegistry::WriteRegistryTreeToFile(
        HKEY_CURRENT_USER, (subKey + "\\missing").c_str(), name.c_str()));
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_FALSE(CKWRegistry::WriteRegistryTreeToFile(
        HKEY_CURRENT_USER, subKey.c_str(),
        (m_folder.GetPath() / "no" / "such.reg").string().c_str()));
}

}  // namespace
