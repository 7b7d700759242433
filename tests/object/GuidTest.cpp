// CKWGuid as a value: emptiness, equality, order, hash and every text form.
#include "kwcore/object/CKWGuid.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <random>
#include <set>
#include <string>
#include <type_traits>

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

TEST(GuidValue, EveryByteCountsAndComparingWithAnIntegerOnlyTestsForEmpty) {
    CKWGuid empty(kKnown);
    empty.SetEmpty();
    EXPECT_TRUE(empty == CKWGuid() && !empty.IsValid() && empty == 0 && empty == 5 &&
                !(empty != 0));
    const CKWGuid known(kKnown);
    for (std::size_t i = 0; i < sizeof(GUID); ++i) {
        const CKWGuid oneByte(SetByte(GUID{}, i, 1));
        EXPECT_TRUE(oneByte.IsValid() == 1 && oneByte != 7 && !(oneByte == 0)) << i;
        const GUID changed = SetByte(kKnown, i, reinterpret_cast<const BYTE*>(&kKnown)[i] ^ 1);
        CKWGuid copy;
        copy = CKWGuid(changed);
        GUID out = kKnown;
        copy.SetGUID(out);
        EXPECT_TRUE(copy != known && copy == changed && !(copy == kKnown) && copy != kKnown) << i;
        EXPECT_EQ(std::memcmp(&out, &changed, sizeof out), 0) << i;
        EXPECT_NE(std::hash<CKWGuid>()(copy), std::hash<CKWGuid>()(known)) << i;
    }
}

TEST(GuidOrder, FieldByFieldUnsignedFirstDifferenceDecides) {
    const BYTE ff = 0xFF;
    const std::pair<GUID, GUID> lowHigh[] = {
        {{1, 0xFFFF, 0xFFFF, {ff, ff, ff, ff, ff, ff, ff, ff}}, {0xFFFFFFFF, 0, 0, {}}},
        {{1, 0, 0, {}}, {0x80000000, 0, 0, {}}},
        {{0, 1, 0, {}}, {0, 0x8000, 0, {}}},
        {{0, 0, 1, {}}, {0, 0, 0x8000, {}}},
        {{0, 0, 0, {1, ff}}, {0, 0, 0, {0x80}}},
        {{0, 0, 0, {0, 0, 0, 0, 0, 0, 0, 1}}, {0, 0, 0, {0, 0, 0, 0, 0, 0, 0, 0x80}}},
        {{0x1, 0, 0, {}}, {0x100, 0, 0, {}}}};  // stored 01 00 .. and 00 01 ..: not memory order
    for (const auto& [low, high] : lowHigh) {
        EXPECT_TRUE(CKWGuid(low) < CKWGuid(high) && CKWGuid(high) > CKWGuid(low));
        EXPECT_FALSE(CKWGuid(high) < CKWGuid(low) || CKWGuid(low) > CKWGuid(high));
    }
    EXPECT_FALSE(CKWGuid(kKnown) < CKWGuid(kKnown) || CKWGuid(kKnown) > CKWGuid(kKnown));
}

TEST(GuidWrittenForms, KnownValuesInEveryForm) {
    const CKWGuid v(kKnown);
    const std::string brace = "{" + kDashed + "}";
    const std::string hex = "95e11590e20941b1811a263330087175";
    const std::pair<std::string, std::string> forms[] = {
        {v.GetCString().GetString(), brace},
        {v.GetSTLString(), brace},
        {static_cast<const char*>(v.GetBString()), brace},
        {v.GetCStringUpperCase().GetString(), "{95E11590-E209-41B1-811A-263330087175}"},
        {v.GetSTLStringSQL(), kDashed},
        {v.GetCStringHex().GetString(), hex},
        {static_cast<const char*>(v.GetBStringHex()), hex},
        {v.GetCStringXML().GetString(), "GUID_" + kDashed},
        {v.GetSTLStringXML(), "GUID_" + kDashed},
        {static_cast<const char*>(v.GetBStringXML()), "GUID_" + kDashed},
        {v.GetCStringXML64().GetString(), kXml64},
        {static_cast<const char*>(v.GetBStringXML64()), kXml64},
        {v.GetCStringXMLElement().GetString(), "_" + kXml64},
        {v.GetSTLStringADOHex(), "80e00a019015e19509e2b141811a263330087175"},
        {CKWGuid(GUID{1, 2, 3, {0, 4, 0, 0, 0, 0, 0, 5}}).GetSTLString(),
         "{00000001-0002-0003-0004-000000000005}"},
        {CKWGuid("{EC130930-944F-4394-B58A-D252EB277FFD}").GetCStringXMLElement().GetString(),
         "_MAkT7E-UlEO1itJS6yd__Q"}};
    for (const auto& [written, expected] : forms) {
        EXPECT_EQ(written, expected);
    }
}

TEST(GuidRoundTrip, EveryReadableFormRestoresRandomValues) {
    for (int i = 0; i < 500; ++i) {
        const CKWGuid value = RandomGuid();
        CKWGuid read[14];
        read[0].SetCString(value.GetCString());
        read[1].SetCString(value.GetCStringUpperCase());
        read[2].SetSTLString(value.GetSTLString());
        read[3].SetBString(value.GetBString());
        read[4].SetCStringXML(value.GetCStringXML());
        read[5].SetSTLStringXML(value.GetSTLStringXML());
        read[6].SetBStringXML(value.GetBStringXML());
        read[7].SetCStringXML64(value.GetCStringXML64());
        read[8].SetCStringXML64(value.GetCStringHex());
        read[9].SetCStringXML64(value.GetCStringXML());
        read[10].SetBStringXML64(value.GetBStringXML64());
        read[11].SetBStringXML64(value.GetBStringHex());
        read[12].SetCStringXMLElement(value.GetCStringXMLElement());
        read[13] = kOther;
        read[13].SetBStringXML64(value.GetBStringXML());  // ignored here, as it always was
        for (int form = 0; form < 14; ++form) {
            EXPECT_EQ(read[form], form < 13 ? value : CKWGuid(kOther))
                << form << " " << value.GetSTLString();
        }
    }
}

using Reader = void (*)(CKWGuid&, const std::string&);

TEST(GuidReaders, OnlyTheirOwnLengthsParseAndTheAdoHexReaderNeverDoes) {
    const std::string tail(60, '}');
    const std::string brace = "{" + kDashed + tail;
    const std::string xml = "GUID_" + kDashed + tail;
    const std::string digits = "95e11590e20941b1811a263330087175a0b1c2d3e4f5a6b7c8d9e0f1a2b3c4";
    const struct {
        Reader read;
        std::string text;
        std::set<std::size_t> lengths;
    } cases[] = {
        {[](CKWGuid& g, const std::string& t) { g.SetCString(t.c_str()); }, brace, {38}},
        {[](CKWGuid& g, const std::string& t) { g.SetSTLString(t); }, brace, {38}},
        {[](CKWGuid& g, const std::string& t) { g.SetBString(t.c_str()); }, brace, {38}},
        {[](CKWGuid& g, const std::string& t) { g.SetCStringXML(t.c_str()); }, xml, {41}},
        {[](CKWGuid& g, const std::string& t) { g.SetSTLStringXML(t); }, xml, {41}},
        {[](CKWGuid& g, const std::string& t) { g.SetBStringXML(t.c_str()); }, xml, {41}},
        {[](CKWGuid& g, const std::string& t) { g.SetCStringXML64(t.c_str()); }, digits, {22, 32}},
        {[](CKWGuid& g, const std::string& t) { g.SetBStringXML64(t.c_str()); }, digits, {22, 32}},
        {[](CKWGuid& g, const std::string& t) { g.SetCStringXMLElement(t.c_str()); },
         "_" + kXml64 + digits,
         {23}},
        {[](CKWGuid& g, const std::string& t) { g.SetSTLStringADOHex(t.c_str()); },
         CKWGuid(kKnown).GetSTLStringADOHex() + digits,
         {}}};
    for (const auto& c : cases) {
        for (std::size_t length = 0; length <= c.text.size(); ++length) {
            CKWGuid value(kOther);
            c.read(value, c.text.substr(0, length));
            EXPECT_EQ(value != kOther, c.lengths.count(length) == 1) << c.text << " at " << length;
        }
    }
}

TEST(GuidReaders, OuterCharactersPrefixesCaseAndUnusedBitsAreNotChecked) {
    CKWGuid read[8];
    read[0].SetCString(("(" + kDashed + ")").c_str());
    read[1].SetSTLString("a" + kDashed + "b");
    read[2].SetCString("{95E11590-E209-41B1-811A-263330087175}");
    read[3].SetCStringXML(("12345" + kDashed).c_str());
    read[4].SetCStringXML64("95E11590E20941B1811A263330087175");
    read[5].SetCStringXMLElement(("9" + kXml64).c_str());
    read[6].SetBString(("\xC2\xAB" + kDashed + "\xC2\xBB").c_str());  // «...»: whole characters go
    read[7].SetCStringXML64("kBXhlQnisUGBGiYzMAhxdR");  // the last 4 bits are beyond the value
    for (const CKWGuid& value : read) {
        EXPECT_TRUE(value == kKnown) << value.GetSTLString();
    }
}

TEST(GuidReaders, ABadCharacterAnywhereLeavesTheValueUnchanged) {
    const std::string brace = "{" + kDashed + "}";
    // U+0139 and U+0141 end in the bytes of '9' and 'A'.
    const std::string bads[] = {
        "g", "-", "+", "/", "=", " ", "\r", "\x80", "\xC4\xB9", "\xC5\x81", std::string(1, '\0')};
    for (const std::string& bad : bads) {
        for (std::size_t at = 0; at < 36; ++at) {
            const std::string text = std::string(brace).replace(at + 1, 1, bad);
            CKWGuid value(kOther);
            if (brace[at + 1] != bad[0]) {
                value.SetCString(text.c_str());
                value.SetSTLString(text);
                value.SetBString(text.c_str());
            }
            if (at < 22 && bad != "-" && bad != "g") {
                const std::string base64 = std::string(kXml64).replace(at, 1, bad);
                value.SetCStringXMLElement(("_" + base64).c_str());
                value.SetCStringXML64(base64.c_str());
                value.SetBStringXML64(base64.c_str());
            }
            EXPECT_TRUE(value == kOther) << bad << " at " << at;
        }
    }
}

TEST(GuidReaders, NullAndRandomTextsOfEveryLengthAreSafe) {
    CKWGuid value(kOther);
    value.SetCString(nullptr);
    value.SetCStringXML(nullptr);
    value.SetCStringXML64(nullptr);
    value.SetCStringXMLElement(nullptr);
    value.SetSTLStringADOHex(nullptr);
    value.SetBString(_bstr_t());
    value.SetBStringXML(_bstr_t());
    value.SetBStringXML64(_bstr_t());
    value.SetCString(std::string(100000, 'A').c_str());
    EXPECT_TRUE(value == kOther);
    EXPECT_EQ(CKWGuid(static_cast<const char*>(nullptr)), CKWGuid());
    for (std::size_t length = 0; length < 80; ++length) {
        std::string text;
        while (text.size() < length) {
            text += static_cast<char>(1 + g_random() % 255);
        }
        value.SetSTLString(text);
        value.SetSTLStringXML(text);
        value.SetBString(text.c_str());
        value.SetBStringXML(text.c_str());
        value.SetCStringXML64(text.c_str());
        value.SetBStringXML64(text.c_str());
        value.SetCStringXMLElement(text.c_str());
        EXPECT_TRUE(value == kOther || length == 22 || length == 23 || length == 32) << length;
        value = kOther;
    }
}

}  // namespace
