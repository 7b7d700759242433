// CKWGuid as a value: emptiness, equality, order, hash and every text form.
#include "kwcore/object/CKWGuid.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <random>
#include <set>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

namespace {

const GUID kKnown = {0x95E11590, 0xE209, 0x41B1, {0x81, 0x1A, 0x26, 0x33, 0x30, 0x08, 0x71, 0x75}};
const GUID kOther = {0x01020304, 0x0506, 0x0708, {0x09, 0x0A, 0x0B, 0x0C, 0x0D, 0x0E, 0x0F, 0x10}};
const std::string kDashed = "95e11590-e209-41b1-811a-263330087175";
const std::string kXml64 = "kBXhlQnisUGBGiYzMAhxdQ";

std::mt19937_64 g_random(20240611);

CKWGuid RandomGuid() {  // any bits, not only version 4
    const std::uint64_t words[2] = {g_random(), g_random()};
    GUID guid;
    std::memcpy(&guid, words, sizeof guid);
    return guid;
}

GUID SetByte(GUID guid, std::size_t index, unsigned char value) {
    reinterpret_cast<unsigned char*>(&guid)[index] = value;
    return guid;
}

static_assert(std::has_virtual_destructor_v<CKWGuid>, "hosts delete derived values through it");

TEST(GuidValue, ComparingWithAnIntegerOnlyTestsForEmptyAndEveryByteCounts) {
    CKWGuid empty(kKnown);
    empty.SetEmpty();
    EXPECT_TRUE(empty == CKWGuid() && !empty.IsValid() && empty == 0 && empty == 5 &&
                !(empty != 0));
    const std::size_t knownHash = std::hash<CKWGuid>()(kKnown);
    for (std::size_t i = 0; i < sizeof(GUID); ++i) {
        const CKWGuid oneByte(SetByte(GUID{}, i, 1));
        EXPECT_TRUE(oneByte.IsValid() == 1 && oneByte != 7 && !(oneByte == 0)) << i;
        const CKWGuid changed(SetByte(kKnown, i, reinterpret_cast<const BYTE*>(&kKnown)[i] ^ 1));
        EXPECT_TRUE(changed != kKnown && !(changed == CKWGuid(kKnown))) << i;
        EXPECT_NE(std::hash<CKWGuid>()(changed), knownHash) << i;
    }
}

// The SQL text gives the fields in turn, most significant digit first, so its
// order is the order: Data1, Data2, Data3, then the Data4 bytes, all unsigned.
TEST(GuidOrder, MatchesTheOrderOfTheTextFormWhereverTheValuesDiffer) {
    for (int i = 0; i < 20000; ++i) {
        const CKWGuid a = RandomGuid();
        GUID changed;
        a.SetGUID(changed);
        for (int k = 0; k <= i % 3; ++k) {
            changed = SetByte(changed, g_random() % 16, static_cast<unsigned char>(g_random()));
        }
        const CKWGuid b(changed);
        const std::string textA = a.GetSTLStringSQL(), textB = b.GetSTLStringSQL();
        EXPECT_TRUE((a < b) == (textA < textB) && (b < a) == (textB < textA) &&
                    (a > b) == (textA > textB))
            << textA << " " << textB;
    }
}

template <typename Text>
std::string Str(const Text& text) {
    return static_cast<const char*>(text);
}

// The written forms in a fixed order: brace (CString, STL, BSTR), upper-case
// brace, SQL, hex (CString, BSTR), XML (CString, STL, BSTR), XML64 (CString,
// BSTR), element and ADO hex.
std::vector<std::string> WrittenForms(const CKWGuid& v) {
    return {Str(v.GetCString()),           v.GetSTLString(),         Str(v.GetBString()),
            Str(v.GetCStringUpperCase()),  v.GetSTLStringSQL(),      Str(v.GetCStringHex()),
            Str(v.GetBStringHex()),        Str(v.GetCStringXML()),   v.GetSTLStringXML(),
            Str(v.GetBStringXML()),        Str(v.GetCStringXML64()), Str(v.GetBStringXML64()),
            Str(v.GetCStringXMLElement()), v.GetSTLStringADOHex()};
}

template <auto Setter>
void Read(CKWGuid& guid, const std::string& text) {
    (guid.*Setter)(text.c_str());
}

// Every reader with the text lengths it accepts: 38 brace, 41 XML, 22 XML64,
// 32 hex and 23 element. The wide XML64 reader ignores the XML form, and the
// ADO hex reader never changes the value; both as they always did.
const struct {
    const char* name;
    void (*read)(CKWGuid&, const std::string&);
    std::set<std::size_t> lengths;
} kReaders[] = {{"SetCString", Read<&CKWGuid::SetCString>, {38}},
                {"SetSTLString", Read<&CKWGuid::SetSTLString>, {38}},
                {"SetBString", Read<&CKWGuid::SetBString>, {38}},
                {"SetCStringXML", Read<&CKWGuid::SetCStringXML>, {41}},
                {"SetSTLStringXML", Read<&CKWGuid::SetSTLStringXML>, {41}},
                {"SetBStringXML", Read<&CKWGuid::SetBStringXML>, {41}},
                {"SetCStringXML64", Read<&CKWGuid::SetCStringXML64>, {22, 32, 41}},
                {"SetBStringXML64", Read<&CKWGuid::SetBStringXML64>, {22, 32}},
                {"SetCStringXMLElement", Read<&CKWGuid::SetCStringXMLElement>, {23}},
                {"SetSTLStringADOHex", Read<&CKWGuid::SetSTLStringADOHex>, {}}};

TEST(GuidWrittenForms, KnownValuesInEveryFormAndBack) {
    const std::string brace = "{" + kDashed + "}", hex = "95e11590e20941b1811a263330087175";
    EXPECT_EQ(WrittenForms(kKnown),
              (std::vector<std::string>{
                  brace, brace, brace, "{95E11590-E209-41B1-811A-263330087175}", kDashed, hex, hex,
                  "GUID_" + kDashed, "GUID_" + kDashed, "GUID_" + kDashed, kXml64, kXml64,
                  "_" + kXml64, "80e00a019015e19509e2b141811a263330087175"}));
    EXPECT_EQ(CKWGuid(GUID{1, 2, 3, {0, 4, 0, 0, 0, 0, 0, 5}}).GetSTLString(),
              "{00000001-0002-0003-0004-000000000005}");
    EXPECT_EQ(CKWGuid("{EC130930-944F-4394-B58A-D252EB277FFD}").GetCStringXMLElement(),
              "_MAkT7E-UlEO1itJS6yd__Q");
    CKWGuid read[2];
    read[0].SetBString(("\xC2\xAB" + kDashed + "\xC2\xBB").c_str());  // «...»: whole characters go
    read[1].SetCStringXML64("kBXhlQnisUGBGiYzMAhxdR");  // the last 4 bits are beyond the value
    EXPECT_TRUE(read[0] == kKnown && read[1] == kKnown);
}

TEST(GuidReaders, EachRestoresRandomValuesFromExactlyTheFormsOfItsLengths) {
    for (int i = 0; i < 300; ++i) {
        const CKWGuid value = RandomGuid();
        std::vector<std::string> forms = WrittenForms(value);
        // The buffer writers give the getters' text.
        char brace[CKWGuid::BRACE_TEXT_SIZE], xml64[CKWGuid::XML64_TEXT_SIZE],
            element[CKWGuid::XML_ELEMENT_TEXT_SIZE];
        value.WriteCString(brace);
        value.WriteCStringXML64(xml64);
        value.WriteCStringXMLElement(element);
        EXPECT_TRUE(brace == forms[0] && xml64 == forms[10] && element == forms[12]) << forms[0];
        const std::string sql = value.GetSTLStringSQL(), hex = Str(value.GetCStringHex());
        // Outer characters, the XML prefix, the element's first character and
        // the case of hex digits are not checked.
        forms.insert(forms.end(),
                     {"(" + sql + ")", "12345" + sql, "9" + Str(value.GetCStringXML64()),
                      Str(CString(hex.c_str()).MakeUpper())});
        for (const std::string& form : forms) {
            for (const auto& reader : kReaders) {
                CKWGuid read(kOther);
                reader.read(read, form);
                EXPECT_EQ(read, reader.lengths.count(form.size()) ? value : CKWGuid(kOther))
                    << reader.name << " on " << form;
            }
        }
    }
}

TEST(GuidReaders, NoOtherLengthParses) {
    for (const std::string& form : WrittenForms(kKnown)) {
        const std::string text = form + "a0b1c2d3e4f5a6b7c8d9e0f1a2b3c4d5e6f7";
        for (std::size_t length = 0; length <= text.size(); ++length) {
            for (const auto& reader : kReaders) {
                CKWGuid value(kOther);
                reader.read(value, text.substr(0, length));
                EXPECT_TRUE(value == kOther || reader.lengths.count(length) == 1)
                    << reader.name << " on " << text.substr(0, length);
            }
        }
    }
}

TEST(GuidReaders, ABadCharacterAnywhereLeavesTheValueUnchanged) {
    // Each form with where its checked characters start and how many there are.
    const std::tuple<std::string, std::size_t, std::size_t> forms[] = {
        {"{" + kDashed + "}", 1, 36}, {kXml64, 0, 22}, {"_" + kXml64, 1, 22}};
    // U+0139 and U+0141 end in the bytes of '9' and 'A'.
    const std::string bads[] = {
        "g", "-", "+", "/", "=", " ", "\r", "\x80", "\xC4\xB9", "\xC5\x81", std::string(1, '\0')};
    for (const std::string& bad : bads) {
        for (const auto& [form, first, count] : forms) {
            for (std::size_t at = first; at < first + count; ++at) {
                const std::string text = std::string(form).replace(at, 1, bad);
                if (text == form || (form.size() < 38 && (bad == "-" || bad == "g"))) {
                    continue;  // unchanged, or still base 64
                }
                for (const auto& reader : kReaders) {
                    CKWGuid value(kOther);
                    if (reader.lengths.count(form.size()) == 1) {  // a reader of this form
                        reader.read(value, text);
                    }
                    EXPECT_TRUE(value == kOther) << reader.name << " on " << text;
                }
            }
        }
    }
}

TEST(GuidReaders, NullTextsChangeNothing) {
    CKWGuid value(kOther);
    for (auto setter : {&CKWGuid::SetCString, &CKWGuid::SetCStringXML, &CKWGuid::SetCStringXML64,
                        &CKWGuid::SetCStringXMLElement, &CKWGuid::SetSTLStringADOHex}) {
        (value.*setter)(nullptr);
    }
    for (auto setter : {&CKWGuid::SetBString, &CKWGuid::SetBStringXML, &CKWGuid::SetBStringXML64}) {
        (value.*setter)(_bstr_t());
    }
    value.SetCString(std::string(100000, 'A').c_str());
    EXPECT_TRUE(value == kOther);
    EXPECT_EQ(CKWGuid(static_cast<const char*>(nullptr)), CKWGuid());
}

}  // namespace
