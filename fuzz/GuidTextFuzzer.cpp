// libFuzzer target over CKWGuid's text forms and base 64.
//
// Each input is read by every text reader, starting from a known value, and
// the result is compared with a plain model of the reader built on
// UuidFromStringA and Decode64Bytes: a reader takes exactly the texts of its
// form and leaves the value alone otherwise. The first 16 bytes (and the next
// 16) are also taken as GUIDs whose every written form must read back to the
// same value, and whose order must be that of their 36-character texts. The
// whole input is encoded in base 64 and decoded again.
#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "kwcore/object/CKWGuid.h"
#include "kwcore/platform/Rpc.h"

namespace {

void Require(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "GUID text fuzzer: %s\n", what);
        std::abort();
    }
}

// A value no reader's failure can produce.
const CKWGuid kStart("{0badc0de-1234-4567-89ab-cdef01234567}");

GUID GuidAt(const std::uint8_t* data) {
    GUID guid;
    std::memcpy(&guid, data, sizeof guid);
    return guid;
}

// ------------------------------------------------------------ the model

// The 36-character form, through the platform's parser.
bool ModelDashed(const std::string& text, GUID& guid) {
    if (text.find('\0') != std::string::npos) {
        return false;
    }
    std::string copy(text);
    return UuidFromStringA(reinterpret_cast<RPC_CSTR>(&copy[0]), &guid) == RPC_S_OK;
}

bool ModelBrace(const std::string& text, GUID& guid) {
    return text.size() > 10 && ModelDashed(text.substr(1, text.size() - 2), guid);
}

bool ModelXml(const std::string& text, GUID& guid) {
    return text.size() > 10 && ModelDashed(text.substr(5), guid);
}

// 22 characters and "==", decoded; the first 16 bytes in memory order.
bool ModelXml64(const std::string& text, GUID& guid) {
    const std::string padded = text + "==";
    const std::vector<BYTE> bytes = CKWGuid::Decode64Bytes(padded.data(), padded.size());
    if (bytes.size() < sizeof guid) {
        return false;
    }
    std::memcpy(&guid, bytes.data(), sizeof guid);
    return true;
}

// 32 digits with the hyphens put back, the later positions first.
bool ModelHex(std::string text, GUID& guid) {
    for (std::size_t position : {20, 16, 12, 8}) {
        text.insert(position, 1, '-');
    }
    return ModelDashed(text, guid);
}

bool ModelXml64Reader(const std::string& text, bool acceptsXml, GUID& guid) {
    switch (text.size()) {
        case 22:
            return ModelXml64(text, guid);
        case 32:
            return ModelHex(text, guid);
        case 41:
            return acceptsXml && ModelXml(text, guid);
        default:
            return false;
    }
}

bool ModelElement(const std::string& text, GUID& guid) {
    return text.size() == 23 && ModelXml64(text.substr(1), guid);
}

// The value a reader must leave: the parsed one, or the start value.
CKWGuid Expected(bool parsed, const GUID& guid) {
    return parsed ? CKWGuid(guid) : kStart;
}

// A _bstr_t is read by its wide characters; outside ASCII none is a digit,
// hyphen or base-64 character, which "?" stands for here.
std::string NarrowedWide(const _bstr_t& text) {
    std::string narrow;
    for (const wchar_t* wide = text; *wide != L'\0'; ++wide) {
        narrow.push_back(*wide < 0x80 ? static_cast<char>(*wide) : '?');
    }
    return narrow;
}

// ---------------------------------------------------------- the readers

template <class Read>
CKWGuid ReadFromStart(Read read) {
    CKWGuid guid = kStart;
    read(guid);
    return guid;
}

// The char* readers see the text up to its first NUL, std::string readers all of it.
void CheckNarrowReaders(const std::string& whole) {
    const std::string text = whole.c_str();
    const char* c = text.c_str();
    GUID parsed{};
    bool ok = ModelBrace(text, parsed);
    Require(ReadFromStart([&](CKWGuid& g) { g.SetCString(c); }) == Expected(ok, parsed),
            "SetCString differs from the brace form");
    Require(CKWGuid(c) == (ok ? CKWGuid(parsed) : CKWGuid()), "the text constructor");
    ok = ModelBrace(whole, parsed);
    Require(ReadFromStart([&](CKWGuid& g) { g.SetSTLString(whole); }) == Expected(ok, parsed),
            "SetSTLString differs from the brace form");
    ok = ModelXml(text, parsed);
    Require(ReadFromStart([&](CKWGuid& g) { g.SetCStringXML(c); }) == Expected(ok, parsed),
            "SetCStringXML differs from the XML form");
    ok = ModelXml(whole, parsed);
    Require(ReadFromStart([&](CKWGuid& g) { g.SetSTLStringXML(whole); }) == Expected(ok, parsed),
            "SetSTLStringXML differs from the XML form");
    ok = ModelXml64Reader(text, true, parsed);
    Require(ReadFromStart([&](CKWGuid& g) { g.SetCStringXML64(c); }) == Expected(ok, parsed),
            "SetCStringXML64 differs from the XML64, hex and XML forms");
    ok = ModelElement(text, parsed);
    Require(ReadFromStart([&](CKWGuid& g) { g.SetCStringXMLElement(c); }) == Expected(ok, parsed),
            "SetCStringXMLElement differs from the element form");
    Require(ReadFromStart([&](CKWGuid& g) { g.SetSTLStringADOHex(c); }) == kStart,
            "SetSTLStringADOHex changed the value");
}

void CheckWideReaders(const std::string& whole) {
    const _bstr_t wide(whole.c_str());
    const std::string text = NarrowedWide(wide);
    GUID parsed{};
    bool ok = ModelBrace(text, parsed);
    Require(ReadFromStart([&](CKWGuid& g) { g.SetBString(wide); }) == Expected(ok, parsed),
            "SetBString differs from the brace form");
    ok = ModelXml(text, parsed);
    Require(ReadFromStart([&](CKWGuid& g) { g.SetBStringXML(wide); }) == Expected(ok, parsed),
            "SetBStringXML differs from the XML form");
    ok = ModelXml64Reader(text, false, parsed);
    Require(ReadFromStart([&](CKWGuid& g) { g.SetBStringXML64(wide); }) == Expected(ok, parsed),
            "SetBStringXML64 differs from the XML64 and hex forms");
}

// ----------------------------------------------------------- the writers

std::string Lower(std::string text) {
    for (char& ch : text) {
        ch = static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));
    }
    return text;
}

std::string Narrow(const _bstr_t& text) {
    return static_cast<const char*>(text);
}

template <class Read>
void RequireReadsBack(const CKWGuid& guid, Read read, const char* what) {
    CKWGuid back = kStart;
    read(back);
    Require(back == guid, what);
}

void CheckWrittenTexts(const CKWGuid& guid) {
    const std::string dashed = guid.GetSTLStringSQL();
    Require(dashed.size() == 36 && Lower(dashed) == dashed, "the SQL form");
    std::string hex = dashed;
    hex.erase(std::remove(hex.begin(), hex.end(), '-'), hex.end());
    Require(guid.GetSTLString() == "{" + dashed + "}", "the brace form");
    Require(guid.GetCString().GetStdString() == guid.GetSTLString(), "GetCString");
    Require(Narrow(guid.GetBString()) == guid.GetSTLString(), "GetBString");
    Require(Lower(guid.GetCStringUpperCase().GetStdString()) == guid.GetSTLString(),
            "the upper-case brace form");
    Require(guid.GetCStringHex().GetStdString() == hex, "the hex form");
    Require(Narrow(guid.GetBStringHex()) == hex, "GetBStringHex");
    Require(guid.GetSTLStringXML() == "GUID_" + dashed, "the XML form");
    Require(guid.GetCStringXML().GetStdString() == guid.GetSTLStringXML(), "GetCStringXML");
    Require(Narrow(guid.GetBStringXML()) == guid.GetSTLStringXML(), "GetBStringXML");

    GUID raw;
    guid.SetGUID(raw);
    const std::string xml64 = CKWGuid::Encode64String(&raw, sizeof raw);
    Require(xml64.size() == 24 && xml64.compare(22, 2, "==") == 0, "Encode64 of 16 bytes");
    Require(guid.GetCStringXML64().GetStdString() == xml64.substr(0, 22), "the XML64 form");
    Require(Narrow(guid.GetBStringXML64()) == xml64.substr(0, 22), "GetBStringXML64");
    Require(guid.GetCStringXMLElement().GetStdString() == "_" + xml64.substr(0, 22),
            "the element form");
    std::string adoHex = "80e00a01";
    for (std::size_t i = 0; i < sizeof raw; ++i) {
        char pair[3];
        std::snprintf(pair, sizeof pair, "%02x", reinterpret_cast<const unsigned char*>(&raw)[i]);
        adoHex += pair;
    }
    Require(guid.GetSTLStringADOHex() == adoHex, "the ADO hex form");

    char brace[CKWGuid::BRACE_TEXT_SIZE];
    char base64[CKWGuid::XML64_TEXT_SIZE];
    char element[CKWGuid::XML_ELEMENT_TEXT_SIZE];
    guid.WriteCString(brace);
    guid.WriteCStringXML64(base64);
    guid.WriteCStringXMLElement(element);
    Require(guid.GetSTLString() == brace, "WriteCString");
    Require(guid.GetCStringXML64().GetStdString() == base64, "WriteCStringXML64");
    Require(guid.GetCStringXMLElement().GetStdString() == element, "WriteCStringXMLElement");
}

void CheckReadsBack(const CKWGuid& guid) {
    RequireReadsBack(
        guid, [&](CKWGuid& g) { g.SetCString(guid.GetCString()); }, "brace");
    RequireReadsBack(
        guid, [&](CKWGuid& g) { g.SetCString(guid.GetCStringUpperCase()); }, "upper-case brace");
    RequireReadsBack(
        guid, [&](CKWGuid& g) { g.SetSTLString(guid.GetSTLString()); }, "STL brace");
    RequireReadsBack(
        guid, [&](CKWGuid& g) { g.SetBString(guid.GetBString()); }, "wide brace");
    RequireReadsBack(
        guid, [&](CKWGuid& g) { g.SetCStringXML(guid.GetCStringXML()); }, "XML");
    RequireReadsBack(
        guid, [&](CKWGuid& g) { g.SetSTLStringXML(guid.GetSTLStringXML()); }, "STL XML");
    RequireReadsBack(
        guid, [&](CKWGuid& g) { g.SetBStringXML(guid.GetBStringXML()); }, "wide XML");
    RequireReadsBack(
        guid, [&](CKWGuid& g) { g.SetCStringXML64(guid.GetCStringXML64()); }, "XML64");
    RequireReadsBack(
        guid, [&](CKWGuid& g) { g.SetCStringXML64(guid.GetCStringHex()); },
        "hex through SetCStringXML64");
    RequireReadsBack(
        guid, [&](CKWGuid& g) { g.SetCStringXML64(guid.GetCStringXML()); },
        "XML through SetCStringXML64");
    RequireReadsBack(
        guid, [&](CKWGuid& g) { g.SetBStringXML64(guid.GetBStringXML64()); }, "wide XML64");
    RequireReadsBack(
        guid, [&](CKWGuid& g) { g.SetBStringXML64(guid.GetBStringHex()); }, "wide hex");
    RequireReadsBack(
        guid, [&](CKWGuid& g) { g.SetCStringXMLElement(guid.GetCStringXMLElement()); }, "element");
    CKWGuid unchanged = kStart;
    unchanged.SetBStringXML64(guid.GetBStringXML());
    Require(unchanged == kStart, "SetBStringXML64 took the XML form");
}

// The order is that of the 36-character texts, whose digits sort as numbers.
void CheckOrder(const CKWGuid& a, const CKWGuid& b) {
    const std::string ta = a.GetSTLStringSQL();
    const std::string tb = b.GetSTLStringSQL();
    Require((a < b) == (ta < tb) && (a > b) == (ta > tb), "the order is not that of the texts");
    Require((a == b) == (ta == tb) && (a != b) == (ta != tb), "equality");
    Require(a != b || a.GetHash() == b.GetHash(), "equal GUIDs hash alike");
    Require((a == 0) == (ta == "00000000-0000-0000-0000-000000000000") && (a == 0) != (a != 7),
            "comparison with a number");
    Require((a.IsValid() != 0) == (a != 0), "IsValid");
}

// ----------------------------------------------------------- base 64

// The plain decoder: alphabet characters only, "=" ends, whole bytes kept.
std::vector<BYTE> ModelDecode64(const std::uint8_t* text, std::size_t length) {
    static const std::string alphabet =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
    std::vector<BYTE> bytes;
    unsigned bits = 0;
    unsigned bitCount = 0;
    for (std::size_t i = 0; i < length && text[i] != '='; ++i) {
        const std::size_t value = text[i] == 0 ? std::string::npos : alphabet.find(text[i]);
        if (value == std::string::npos) {
            continue;
        }
        bits = (bits << 6 | static_cast<unsigned>(value)) & 0xFFFF;
        bitCount += 6;
        if (bitCount >= 8) {
            bitCount -= 8;
            bytes.push_back(static_cast<BYTE>(bits >> bitCount));
        }
    }
    return bytes;
}

// Encode64 and Decode64 themselves, for the comparison with the string forms.
struct CBase64 : CKWGuid {
    using CKWGuid::Decode64;
    using CKWGuid::Encode64;
};

void CheckEncoding(const std::uint8_t* data, std::size_t size) {
    const std::string text = CKWGuid::Encode64String(data, size);
    char* encoded = CBase64::Encode64(reinterpret_cast<const char*>(data), static_cast<int>(size));
    Require(encoded != nullptr && text == encoded, "Encode64 differs from Encode64String");
    delete[] encoded;
    // A line break after each 76 characters but the last, and padding to 4.
    std::string unbroken;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (i % 78 == 76) {
            Require(text.compare(i, 2, "\r\n") == 0, "a line of 76 characters");
            ++i;
            continue;
        }
        unbroken.push_back(text[i]);
    }
    Require(unbroken.size() == (size + 2) / 3 * 4, "the encoded length");
    // Decoding gives the bytes back, but for the kept quirk: a final group of
    // two bytes whose second is 0x80 or more makes the first one all ones.
    std::vector<BYTE> expected(data, data + size);
    if (size % 3 == 2 && data[size - 1] >= 0x80) {
        expected[size - 2] = 0xFF;
    }
    Require(CKWGuid::Decode64Bytes(text.data(), text.size()) == expected,
            "decoding the encoded bytes");
}

void CheckDecoding(const std::uint8_t* data, std::size_t size) {
    const auto* text = reinterpret_cast<const char*>(data);
    const std::vector<BYTE> bytes = CKWGuid::Decode64Bytes(text, size);
    Require(bytes == ModelDecode64(data, size), "Decode64Bytes differs from the plain decoder");
    int length = static_cast<int>(size);
    char* decoded = CBase64::Decode64(text, &length);
    Require(decoded != nullptr && static_cast<std::size_t>(length) == bytes.size() &&
                std::equal(bytes.begin(), bytes.end(), reinterpret_cast<BYTE*>(decoded)),
            "Decode64 differs from Decode64Bytes");
    delete[] decoded;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    CheckNarrowReaders(text);
    CheckWideReaders(text);
    if (size >= 2 * sizeof(GUID)) {
        const CKWGuid first(GuidAt(data));
        const CKWGuid second(GuidAt(data + sizeof(GUID)));
        CheckWrittenTexts(first);
        CheckReadsBack(first);
        CheckOrder(first, second);
    }
    CheckEncoding(data, size);
    CheckDecoding(data, size);
    return 0;
}
