#include "kwcore/system/CKWRegistry.h"

#include "CTempFolder.h"
#include "CTempRegistry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace {

// (name, type, bytes) of one value.
using Value = std::tuple<std::string, DWORD, std::string>;
// Every key below a path (relative to it, "" for the path itself) with its
// values in enumeration order.
using Tree = std::map<std::string, std::vector<Value>>;

void ReadTree(HKEY parent, const std::string& subKey, const std::string& relative, Tree& tree) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(parent, subKey.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) {
        return;
    }
    std::vector<Value>& values = tree[relative];
    std::vector<char> name(16384);
    std::vector<BYTE> data(1 << 16);
    for (DWORD index = 0;; ++index) {
        DWORD nameLength = static_cast<DWORD>(name.size());
        DWORD size = static_cast<DWORD>(data.size());
        DWORD type = REG_NONE;
        if (RegEnumValueA(key, index, name.data(), &nameLength, nullptr, &type, data.data(),
                          &size) != ERROR_SUCCESS) {
            break;
        }
        values.emplace_back(std::string(name.data(), nameLength), type,
                            std::string(reinterpret_cast<const char*>(data.data()), size));
    }
    for (DWORD index = 0;; ++index) {
        DWORD nameLength = static_cast<DWORD>(name.size());
        if (RegEnumKeyExA(key, index, name.data(), &nameLength, nullptr, nullptr, nullptr,
                          nullptr) != ERROR_SUCCESS) {
            break;
        }
        const std::string child(name.data(), nameLength);
        ReadTree(key, child, relative + "\\" + child, tree);
    }
    RegCloseKey(key);
}

class RegistryImportTest : public ::testing::Test {
protected:
    HKEY CreateKey(const std::string& subPath) { return m_temp.CreateKey(subPath); }

    static void SetValue(HKEY key, const char* name, DWORD type, const std::string& bytes) {
        ASSERT_EQ(SetRawValue(key, name, type, bytes), ERROR_SUCCESS);
    }

    static std::string Bytes(int first, int count) {
        std::string bytes;
        for (int i = 0; i < count; ++i) {
            bytes += static_cast<char>(first + i);
        }
        return bytes;
    }

    // Values of every type and layout the exporter has, below the temporary key.
    void MakeRichTree() {
        HKEY top = CreateKey("");
        SetValue(top, "", REG_SZ, std::string("default\0", 8));
        SetValue(top, "Empty string", REG_SZ, std::string(1, '\0'));
        SetValue(top, "Quoted", REG_SZ, std::string("say \"hi\" C:\\dir\\ \ttab\0", 22));
        SetValue(top, "Bytes", REG_SZ, "\x01\x7f\x80\xe9\xff\\\"\"\\x\0" + std::string(1, '\0'));
        SetValue(top, "Ends in backslash", REG_SZ, std::string("C:\\\0", 4));
        SetValue(top, "Path", REG_EXPAND_SZ, std::string("%TEMP%\\\"x\"\\\0", 12));
        SetValue(top, "Empty path", REG_EXPAND_SZ, std::string(1, '\0'));
        SetValue(top, "Count", REG_DWORD, std::string("\x78\x56\x34\x12", 4));
        SetValue(top, "Big endian", REG_DWORD_BIG_ENDIAN, std::string("\x12\x34\x56\x78", 4));
        SetValue(top, "Every byte", REG_BINARY, Bytes(0, 256));
        SetValue(top, "Seventeen", REG_BINARY, Bytes(200, 17));
        SetValue(top, "Sixteen", REG_BINARY, Bytes(1, 16));
        SetValue(top, "Thirty-three", REG_BINARY, Bytes(7, 33));
        SetValue(top, "No bytes", REG_BINARY, "");
        SetValue(top, "List", REG_MULTI_SZ, std::string("a\0b \"c\"\0\0\0", 10));
        SetValue(top, "Wide", REG_QWORD, std::string("\x01\x02\x03\x04\x05\x06\x07\x08", 8));
        SetValue(top, "Nothing", REG_NONE, "");
        SetValue(top, "Odd type", 0x1234abcd, "odd");
        RegCloseKey(top);
        HKEY many = CreateKey("\\Many values");
        for (int i = 0; i < 150; ++i) {
            SetValue(many, ("Value " + std::to_string(i)).c_str(), REG_SZ,
                     std::to_string(i * 7919) + '\0');
        }
        RegCloseKey(many);
        RegCloseKey(CreateKey("\\Empty key"));
        HKEY deep = CreateKey("\\A\\B\\C d e\\F");
        SetValue(deep, "Deep", REG_DWORD, std::string(4, '\xff'));
        RegCloseKey(deep);
    }

    Tree ReadTemporaryTree() {
        Tree tree;
        ReadTree(HKEY_CURRENT_USER, m_temp.GetKeyPath(), "", tree);
        return tree;
    }

    bool TemporaryKeyExists() {
        HKEY key = nullptr;
        if (RegOpenKeyExA(HKEY_CURRENT_USER, m_temp.GetKeyPath().c_str(), 0, KEY_READ, &key) !=
            ERROR_SUCCESS) {
            return false;
        }
        RegCloseKey(key);
        return true;
    }

    // The export of the temporary key, or "(failed)".
    std::string Export() {
        const std::filesystem::path file = m_folder.GetPath() / "export.reg";
        if (!CKWRegistry::WriteRegistryTreeToFile(HKEY_CURRENT_USER, m_temp.GetKeyPath().c_str(),
                                                  file.string().c_str())) {
            return "(failed)";
        }
        return ReadText(file);
    }

    // Imports text through a file; line and reason describe a failure.
    bool Import(const std::string& text) {
        const std::filesystem::path file = m_folder.GetPath() / "import.reg";
        WriteText(file, text);
        return CKWRegistry::ReadRegistryTreeFromFile(file.string().c_str(), m_line, m_reason);
    }

    void DeleteTemporaryKey() {
        ASSERT_EQ(DeleteKeyTree(HKEY_CURRENT_USER, m_temp.GetKeyPath().c_str()), ERROR_SUCCESS);
    }

    // "[HKEY_CURRENT_USER\<temporary key><subPath>]\r\n"
    std::string KeyLine(const std::string& subPath = "", const char* root = "HKEY_CURRENT_USER") {
        return std::string("[") + root + "\\" + m_temp.GetKeyPath() + subPath + "]\r\n";
    }

    CTempRegistry m_temp;
    CTempFolder m_folder{"kwregimport-"};
    int m_line = -1;
    CString m_reason;
};

std::string WithoutCarriageReturns(std::string text) {
    std::string lines;
    for (char c : text) {
        if (c != '\r') {
            lines += c;
        }
    }
    return lines;
}

TEST_F(RegistryImportTest, AnExportImportsBackIntoEveryKeyAndValueExactly) {
    MakeRichTree();
    const Tree written = ReadTemporaryTree();
    ASSERT_EQ(written.size(), 7u);
    ASSERT_EQ(written.at("").size(), 18u);
    const std::string exported = Export();
    ASSERT_NE(exported, "(failed)");
    for (const std::string& text : {exported, WithoutCarriageReturns(exported)}) {
        DeleteTemporaryKey();
        ASSERT_FALSE(TemporaryKeyExists());
        ASSERT_TRUE(Import(text)) << "line " << m_line << ": " << m_reason;
        EXPECT_EQ(m_line, 0);
        EXPECT_EQ(ReadTemporaryTree(), written);
        EXPECT_EQ(Export(), exported);
    }
}

TEST_F(RegistryImportTest, ReadsTheUsualRegeditForms) {
    HKEY key = CreateKey("");
    SetValue(key, "Old", REG_SZ, std::string("old\0", 4));
    SetValue(key, "Kept", REG_SZ, std::string("kept\0", 5));
    RegCloseKey(key);
    RegCloseKey(CreateKey("\\Gone\\Below"));
    ASSERT_TRUE(
        Import("REGEDIT4\n"
               "; a comment, then blank lines\n"
               "\n"
               "  \t\n" +
               WithoutCarriageReturns(KeyLine("", "HKCU")) +
               "@=\"the default\"\n"
               "\"Old\"=-\n"
               "\"Missing\"=-\n"
               "\"Continued\"=hex:00,01,\\\n"
               "  02,03\\\n"
               "  ,04\n"
               "\"Broken\"=hex:0A,0b\n"
               "FF\n"
               "\"Expand\"=HEX(2):25,41,25,00\n"
               "\"Number\"=DWORD:DEADbeef\n"
               "\"Spaced\"=hex: 01 , 02 \n" +
               "[-HKCU\\" + m_temp.GetKeyPath() + "\\Gone]\n" + "[-HKCU\\" + m_temp.GetKeyPath() +
               "\\Never there]\n"))
        << "line " << m_line << ": " << m_reason;
    Tree expected;
    expected[""] = {Value{"Kept", REG_SZ, std::string("kept\0", 5)},
                    Value{"", REG_SZ, std::string("the default\0", 12)},
                    Value{"Continued", REG_BINARY, Bytes(0, 5)},
                    Value{"Broken", REG_BINARY, "\x0a\x0b\xff"},
                    Value{"Expand", REG_EXPAND_SZ, std::string("%A%\0", 4)},
                    Value{"Number", REG_DWORD, "\xef\xbe\xad\xde"},
                    Value{"Spaced", REG_BINARY, "\x01\x02"}};
    Tree read = ReadTemporaryTree();
    // Wine's registry lists values by name, the others in creation order.
    std::sort(read[""].begin(), read[""].end());
    std::sort(expected[""].begin(), expected[""].end());
    EXPECT_EQ(read, expected);
}

TEST_F(RegistryImportTest, MalformedFilesWriteNothingAndNameTheLine) {
    struct SCase {
        std::string body;  // after the header and a valid key with a value
        int line;
        const char* reason;
    };
    const std::string longName(256, 'k');
    const std::vector<SCase> cases = {
        {"\"v\"=\"no closing quote\r\n", 4, "no closing quote"},
        {"\"v\"=\"bad \\q escape\"\r\n", 4, "bad escape"},
        {"\"v\"=\"cut \\4\"\r\n", 4, "bad escape"},
        {"\"v\"=\"text\" after\r\n", 4, "after the closing quote"},
        {"\"v\"=hex:00,0g\r\n", 4, "bad byte list"},
        {"\"v\"=hex:00,123\r\n", 4, "'123', not a byte"},
        {"\"v\"=hex:00,\r\n", 4, "'', not a byte"},
        {"\"v\"=hex:00,\\\r\n", 4, "continues past the end"},
        {"\"v\"=hex:00,\\\r\n\r\n", 5, "breaks off"},
        {"\"v\"=hex(2):text without its quote\r\n", 4, "bad byte list"},
        {"\"v\"=hex(xyz):00\r\n", 4, "bad type"},
        {"\"v\"=dword:1234\r\n", 4, "8 hex digits"},
        {"\"v\"=dword:1234567g\r\n", 4, "8 hex digits"},
        {"\"v\"=word:12\r\n", 4, "unknown data"},
        {"\"v\" = \"x\"\r\n", 4, "expected \"name\"=data"},
        {"@\"x\"\r\n", 4, "expected = after @"},
        {"garbage\r\n", 4, "neither a key, a value nor a comment"},
        {"[HKEY_NOWHERE\\Software]\r\n", 4, "unknown root 'HKEY_NOWHERE'"},
        {"[hkcu\\Software]\r\n", 4, "unknown root"},
        {"[HKEY_CURRENT_USER]\r\n", 4, "no key below the root"},
        {"[HKCU\\Software\\\\x]\r\n", 4, "empty key name"},
        {"[HKCU\\Software\\x\\]\r\n", 4, "empty key name"},
        {"[HKCU\\Software\\x\r\n", 4, "without its closing ]"},
        {"[HKCU\\Software\\" + longName + "]\r\n", 4, "longer than 255 bytes"},
        {"\"" + std::string(16384, 'v') + "\"=\"x\"\r\n", 4, "longer than 16383 bytes"},
        {"[-HKCU\\Software\\x]\r\n\"v\"=\"x\"\r\n", 5, "below a deleted key"},
        {"\"v\"=\"x\"", 4, "truncated"},
        {std::string("\"v\"=\"a\0b\"\r\n", 11), 4, "NUL"},
    };
    for (const SCase& test : cases) {
        const std::string text = "REGEDIT4\r\n" + KeyLine() + "\"first\"=\"1\"\r\n" + test.body;
        EXPECT_FALSE(Import(text)) << test.body;
        EXPECT_EQ(m_line, test.line) << test.body;
        EXPECT_NE(std::string(m_reason).find(test.reason), std::string::npos)
            << test.body << " gave: " << m_reason;
        EXPECT_FALSE(TemporaryKeyExists()) << test.body;
    }
    // Names at the limits are taken.
    EXPECT_TRUE(Import("REGEDIT4\r\n" + KeyLine("\\" + std::string(255, 'k')) + "\"" +
                       std::string(16383, 'v') + "\"=\"x\"\r\n"))
        << m_reason;
}

TEST_F(RegistryImportTest, FilesWithoutAValidHeaderOrKeyWriteNothing) {
    const std::vector<std::tuple<std::string, int, const char*>> cases = {
        {"", 1, "empty"},
        {"REGEDIT5\r\n" + KeyLine(), 1, "does not begin with REGEDIT4"},
        {"Windows Registry Editor Version 5.00\r\n", 1, "does not begin with REGEDIT4"},
        {KeyLine(), 1, "does not begin with REGEDIT4"},
        {"REGEDIT4\r\n\"v\"=\"x\"\r\n" + KeyLine(), 2, "a value before any key"},
        {"REGEDIT4", 1, "truncated"},
        {std::string("\x89PNG\r\n\x1a\n\0\0", 10), 1, "does not begin"},
    };
    for (const auto& [text, line, reason] : cases) {
        EXPECT_FALSE(Import(text)) << text;
        EXPECT_EQ(m_line, line) << text;
        EXPECT_NE(std::string(m_reason).find(reason), std::string::npos) << m_reason;
        EXPECT_FALSE(TemporaryKeyExists()) << text;
    }
    m_line = -1;
    EXPECT_FALSE(CKWRegistry::ReadRegistryTreeFromFile(
        (m_folder.GetPath() / "missing.reg").string().c_str(), m_line, m_reason));
    EXPECT_EQ(m_line, 0);
    EXPECT_EQ(m_reason, CString("cannot read the file"));
    EXPECT_FALSE(CKWRegistry::ReadRegistryTreeFromFile(nullptr));
    EXPECT_FALSE(CKWRegistry::ReadRegistryTreeFromFile(""));
    EXPECT_FALSE(CKWRegistry::ReadRegistryTreeFromFile(m_folder.GetPath().string().c_str()));
}

// Cut anywhere, an export either fails whole or, cut at a line end, imports
// the lines before the cut.
TEST_F(RegistryImportTest, ATruncatedExportWritesNothingUnlessCutAtALineEnd) {
    HKEY key = CreateKey("");
    SetValue(key, "Text", REG_SZ, std::string("a \"b\" \\c\td\0", 11));
    SetValue(key, "Path", REG_EXPAND_SZ, std::string("%P%\\\0", 5));
    SetValue(key, "Number", REG_DWORD, std::string("\x01\x02\x03\x04", 4));
    SetValue(key, "Blob", REG_BINARY, Bytes(0, 40));
    RegCloseKey(key);
    RegCloseKey(CreateKey("\\Child"));
    const std::string exported = Export();
    ASSERT_NE(exported, "(failed)");
    DeleteTemporaryKey();
    for (std::size_t size = 0; size < exported.size(); ++size) {
        const bool atLineEnd = size > 0 && exported[size - 1] == '\n';
        const bool imported = Import(exported.substr(0, size));
        if (!atLineEnd) {
            EXPECT_FALSE(imported) << "cut after " << size << " bytes";
            EXPECT_GT(m_line, 0) << "cut after " << size << " bytes";
            EXPECT_FALSE(TemporaryKeyExists()) << "cut after " << size << " bytes";
        } else {
            EXPECT_TRUE(imported) << "cut after " << size << " bytes: " << m_reason;
            if (TemporaryKeyExists()) {
                DeleteTemporaryKey();
            }
        }
    }
}

TEST_F(RegistryImportTest, ShortRootNamesAndBothLineEndsImportAlike) {
    const std::string body = "\"v\"=dword:0000002a\r\n";
    for (const char* root : {"HKEY_CURRENT_USER", "HKCU"}) {
        ASSERT_TRUE(Import("REGEDIT4\r\n" + KeyLine("", root) + body)) << m_reason;
        Tree expected;
        expected[""] = {Value{"v", REG_DWORD, std::string("\x2a\0\0\0", 4)}};
        EXPECT_EQ(ReadTemporaryTree(), expected) << root;
        DeleteTemporaryKey();
    }
}

}  // namespace
