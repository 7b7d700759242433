#include "kwcore/object/CKWGuid.h"

#include <cstring>
#include <new>
#include <type_traits>

#include "kwcore/platform/Rpc.h"

// The text forms are made and read here with lookup tables rather than through
// UuidToStringA / UuidFromStringA: archives write and read a GUID per object,
// and the rpcrt4 calls allocate. The results are the same: lower-case digits
// out, either case in, exactly the 36-character 8-4-4-4-12 form accepted.

namespace {

constexpr std::size_t kGuidBytes = 16;
constexpr std::size_t kDashedLength = 36;
constexpr std::size_t kHexLength = 32;
constexpr std::size_t kXml64Length = 22;
constexpr std::size_t kXmlLength = 41;
constexpr std::size_t kXmlElementLength = 23;
// Brace and XML texts this short are ignored outright.
constexpr std::size_t kShortestIgnoredLength = 10;
// Longer texts are all alike to the readers: none of them parses.
constexpr std::size_t kLengthLimit = 64;

constexpr char kXmlPrefix[] = "GUID_";
constexpr std::size_t kXmlPrefixLength = sizeof kXmlPrefix - 1;
constexpr char kAdoHexPrefix[] = "80e00a01";
constexpr char kBase64Alphabet[] =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
constexpr std::size_t kBase64LineLength = 76;

// ------------------------------------------------------------------ tables

struct HexPairTable {
    char pairs[256][2];
};

constexpr HexPairTable MakeHexPairTable(const char (&digits)[17]) {
    HexPairTable table{};
    for (int byte = 0; byte < 256; ++byte) {
        table.pairs[byte][0] = digits[byte >> 4];
        table.pairs[byte][1] = digits[byte & 0x0F];
    }
    return table;
}

constexpr HexPairTable kLowerHex = MakeHexPairTable("0123456789abcdef");
constexpr HexPairTable kUpperHex = MakeHexPairTable("0123456789ABCDEF");

struct ByteTable {
    unsigned char values[256];
};

// Hexadecimal digit values; anything else has a high bit set.
constexpr unsigned char kNotHex = 0xF0;

constexpr ByteTable MakeHexDigitTable() {
    ByteTable table{};
    for (int ch = 0; ch < 256; ++ch) {
        table.values[ch] = kNotHex;
    }
    for (int digit = 0; digit < 10; ++digit) {
        table.values['0' + digit] = static_cast<unsigned char>(digit);
    }
    for (int digit = 0; digit < 6; ++digit) {
        table.values['a' + digit] = static_cast<unsigned char>(10 + digit);
        table.values['A' + digit] = static_cast<unsigned char>(10 + digit);
    }
    return table;
}

constexpr ByteTable kHexDigits = MakeHexDigitTable();

// Base-64 character values; the rest is skipped, and "=" ends the text.
constexpr unsigned char kBase64Skipped = 0x40;
constexpr unsigned char kBase64End = 0x80;

constexpr ByteTable MakeBase64Table() {
    ByteTable table{};
    for (int ch = 0; ch < 256; ++ch) {
        table.values[ch] = kBase64Skipped;
    }
    for (int value = 0; value < 64; ++value) {
        table.values[static_cast<unsigned char>(kBase64Alphabet[value])] =
            static_cast<unsigned char>(value);
    }
    table.values[static_cast<unsigned char>('=')] = kBase64End;
    return table;
}

constexpr ByteTable kBase64Values = MakeBase64Table();

// Wide characters beyond one byte index as 0xFF, which no table accepts.
template <typename Char>
unsigned char TableIndex(Char ch) {
    const auto code = static_cast<std::make_unsigned_t<Char>>(ch);
    return code > 0xFF ? 0xFF : static_cast<unsigned char>(code);
}

// -------------------------------------------------------------- byte orders

struct GuidBytes {
    unsigned char bytes[kGuidBytes];
};

void PutBigEndian(std::uint32_t value, std::size_t size, unsigned char* out) {
    for (std::size_t i = 0; i < size; ++i) {
        out[i] = static_cast<unsigned char>(value >> (8 * (size - 1 - i)));
    }
}

void PutLittleEndian(std::uint32_t value, std::size_t size, unsigned char* out) {
    for (std::size_t i = 0; i < size; ++i) {
        out[i] = static_cast<unsigned char>(value >> (8 * i));
    }
}

std::uint32_t GetBigEndian(const unsigned char* bytes, std::size_t size) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < size; ++i) {
        value = value << 8 | bytes[i];
    }
    return value;
}

std::uint32_t GetLittleEndian(const unsigned char* bytes, std::size_t size) {
    std::uint32_t value = 0;
    for (std::size_t i = size; i > 0; --i) {
        value = value << 8 | bytes[i - 1];
    }
    return value;
}

// The text shows Data1, Data2 and Data3 as numbers, then the Data4 bytes.
GuidBytes TextOrder(const GUID& guid) {
    GuidBytes text;
    PutBigEndian(guid.Data1, 4, text.bytes);
    PutBigEndian(guid.Data2, 2, text.bytes + 4);
    PutBigEndian(guid.Data3, 2, text.bytes + 6);
    std::memcpy(text.bytes + 8, guid.Data4, sizeof guid.Data4);
    return text;
}

// The platform's memory layout: the three numbers little-endian.
GuidBytes MemoryOrder(const GUID& guid) {
    GuidBytes memory;
    PutLittleEndian(guid.Data1, 4, memory.bytes);
    PutLittleEndian(guid.Data2, 2, memory.bytes + 4);
    PutLittleEndian(guid.Data3, 2, memory.bytes + 6);
    std::memcpy(memory.bytes + 8, guid.Data4, sizeof guid.Data4);
    return memory;
}

GUID FromTextOrder(const GuidBytes& text) {
    GUID guid;
    guid.Data1 = GetBigEndian(text.bytes, 4);
    guid.Data2 = static_cast<WORD>(GetBigEndian(text.bytes + 4, 2));
    guid.Data3 = static_cast<WORD>(GetBigEndian(text.bytes + 6, 2));
    std::memcpy(guid.Data4, text.bytes + 8, sizeof guid.Data4);
    return guid;
}

GUID FromMemoryOrder(const GuidBytes& memory) {
    GUID guid;
    guid.Data1 = GetLittleEndian(memory.bytes, 4);
    guid.Data2 = static_cast<WORD>(GetLittleEndian(memory.bytes + 4, 2));
    guid.Data3 = static_cast<WORD>(GetLittleEndian(memory.bytes + 6, 2));
    std::memcpy(guid.Data4, memory.bytes + 8, sizeof guid.Data4);
    return guid;
}

// ------------------------------------------------------------------ base 64

std::uint32_t Group24(unsigned char b0, unsigned char b1, unsigned char b2) {
    return static_cast<std::uint32_t>(b0) << 16 | static_cast<std::uint32_t>(b1) << 8 | b2;
}

// The deliberate quirk of a final two-byte group (see Encode64).
std::uint32_t SignExtended(unsigned char byte) {
    return (byte & 0x80) != 0 ? 0xFFFFFF00u | byte : byte;
}

std::uint32_t GroupAt(const unsigned char* data, std::size_t available) {
    if (available >= 3) {
        return Group24(data[0], data[1], data[2]);
    }
    const std::uint32_t first = static_cast<std::uint32_t>(data[0]) << 16;
    return available == 2 ? first | SignExtended(data[1]) << 8 : first;
}

// Writes the characters of a 24-bit group, "=" in place of the missing ones.
char* WriteGroupCharacters(std::uint32_t group, std::size_t characters, char* out) {
    for (std::size_t i = 0; i < 4; ++i) {
        *out++ = i < characters ? kBase64Alphabet[(group >> (18 - 6 * i)) & 0x3F] : '=';
    }
    return out;
}

std::size_t Encoded64Length(std::size_t size) {
    const std::size_t characters = (size + 2) / 3 * 4;
    const std::size_t lineBreaks = characters == 0 ? 0 : (characters - 1) / kBase64LineLength;
    return characters + 2 * lineBreaks;
}

void Encode64Into(const unsigned char* data, std::size_t size, char* out) {
    std::size_t lineLength = 0;
    for (std::size_t offset = 0; offset < size; offset += 3) {
        if (lineLength == kBase64LineLength) {
            *out++ = '\r';
            *out++ = '\n';
            lineLength = 0;
        }
        const std::size_t available = size - offset;
        const std::size_t characters = available >= 3 ? 4 : available + 1;
        out = WriteGroupCharacters(GroupAt(data + offset, available), characters, out);
        lineLength += 4;
    }
}

// Enough for every text of this length: each 4 characters give 3 bytes.
std::size_t Decode64Capacity(std::size_t length) {
    return length / 4 * 3 + 2;
}

unsigned char* WriteGroupBytes(std::uint32_t group, std::size_t bytes, unsigned char* out) {
    for (std::size_t i = 0; i < bytes; ++i) {
        *out++ = static_cast<unsigned char>(group >> (16 - 8 * i));
    }
    return out;
}

std::size_t Decode64Into(const char* text, std::size_t length, unsigned char* out) {
    unsigned char* const start = out;
    std::uint32_t group = 0;
    std::size_t characters = 0;
    for (std::size_t i = 0; i < length; ++i) {
        const unsigned char value = kBase64Values.values[static_cast<unsigned char>(text[i])];
        if (value == kBase64End) {
            break;
        }
        if (value == kBase64Skipped) {
            continue;
        }
        group = group << 6 | value;
        if (++characters == 4) {
            out = WriteGroupBytes(group, 3, out);
            group = 0;
            characters = 0;
        }
    }
    if (characters >= 2) {
        out = WriteGroupBytes(group << (6 * (4 - characters)), characters - 1, out);
    }
    return static_cast<std::size_t>(out - start);
}

// ------------------------------------------------------------- text making

struct GuidText {
    char chars[kXmlLength + 1];  // the XML form is the longest
    std::size_t length;
};

GuidText Finished(GuidText& text, char* end) {
    *end = '\0';
    text.length = static_cast<std::size_t>(end - text.chars);
    return text;
}

char* WriteLiteral(const char* literal, char* out) {
    while (*literal != '\0') {
        *out++ = *literal++;
    }
    return out;
}

char* WriteHex(const unsigned char* bytes, std::size_t count, const HexPairTable& hex, char* out) {
    for (std::size_t i = 0; i < count; ++i) {
        std::memcpy(out, hex.pairs[bytes[i]], 2);
        out += 2;
    }
    return out;
}

// The 8-4-4-4-12 text, written straight from the fields (hot: every brace,
// SQL and XML text goes through here).
char* WriteDashed(const GUID& guid, const HexPairTable& hex, char* out) {
    const auto put = [&hex, &out](unsigned byte) {
        std::memcpy(out, hex.pairs[byte & 0xFF], 2);
        out += 2;
    };
    put(guid.Data1 >> 24);
    put(guid.Data1 >> 16);
    put(guid.Data1 >> 8);
    put(guid.Data1);
    *out++ = '-';
    put(guid.Data2 >> 8);
    put(guid.Data2);
    *out++ = '-';
    put(guid.Data3 >> 8);
    put(guid.Data3);
    *out++ = '-';
    put(guid.Data4[0]);
    put(guid.Data4[1]);
    *out++ = '-';
    for (std::size_t i = 2; i < 8; ++i) {
        put(guid.Data4[i]);
    }
    return out;
}

// Two base-64 characters for each 12-bit value, so a 24-bit group takes two
// lookups (the element and attribute forms are written for every object).
struct Base64PairTable {
    char pairs[4096][2];
};

constexpr Base64PairTable MakeBase64PairTable() {
    Base64PairTable table{};
    for (int value = 0; value < 4096; ++value) {
        table.pairs[value][0] = kBase64Alphabet[value >> 6];
        table.pairs[value][1] = kBase64Alphabet[value & 0x3F];
    }
    return table;
}

constexpr Base64PairTable kBase64Pairs = MakeBase64PairTable();

// Encode64 of the memory bytes, cut before its "==" padding.
char* WriteXml64(const GUID& guid, char* out) {
    const GuidBytes memory = MemoryOrder(guid);
    const unsigned char* b = memory.bytes;
    for (std::size_t offset = 0; offset + 3 <= kGuidBytes; offset += 3) {
        const std::uint32_t group = Group24(b[offset], b[offset + 1], b[offset + 2]);
        std::memcpy(out, kBase64Pairs.pairs[group >> 12], 2);
        std::memcpy(out + 2, kBase64Pairs.pairs[group & 0xFFF], 2);
        out += 4;
    }
    std::memcpy(out, kBase64Pairs.pairs[(b[15] << 4) & 0xFFF], 2);
    return out + 2;
}

GuidText BraceText(const GUID& guid, const HexPairTable& hex) {
    GuidText text;
    char* out = text.chars;
    *out++ = '{';
    out = WriteDashed(guid, hex, out);
    *out++ = '}';
    return Finished(text, out);
}

GuidText DashedText(const GUID& guid) {
    GuidText text;
    return Finished(text, WriteDashed(guid, kLowerHex, text.chars));
}

GuidText HexText(const GUID& guid) {
    GuidText text;
    return Finished(text, WriteHex(TextOrder(guid).bytes, kGuidBytes, kLowerHex, text.chars));
}

GuidText XmlText(const GUID& guid) {
    GuidText text;
    return Finished(text, WriteDashed(guid, kLowerHex, WriteLiteral(kXmlPrefix, text.chars)));
}

GuidText Xml64Text(const GUID& guid) {
    GuidText text;
    return Finished(text, WriteXml64(guid, text.chars));
}

GuidText XmlElementText(const GUID& guid) {
    GuidText text;
    return Finished(text, WriteXml64(guid, WriteLiteral("_", text.chars)));
}

GuidText AdoHexText(const GUID& guid) {
    GuidText text;
    char* out = WriteLiteral(kAdoHexPrefix, text.chars);
    return Finished(text, WriteHex(MemoryOrder(guid).bytes, kGuidBytes, kLowerHex, out));
}

std::string ToStdString(const GuidText& text) {
    return std::string(text.chars, text.length);
}

CString ToCString(const GuidText& text) {
    return CString(ToStdString(text));
}

_bstr_t ToBString(const GuidText& text) {
    return _bstr_t(text.chars);
}

// ------------------------------------------------------------- text reading
//
// Each reader stores into guid only when the whole text parses. They take
// narrow or wide characters, so a _bstr_t is read by its own characters.

// Two digits per byte at the given offsets, the bytes in text order.
template <typename Char>
bool ReadHexDigits(const Char* text, const unsigned char (&pairOffsets)[kGuidBytes], GUID& guid) {
    GuidBytes bytes;
    unsigned invalid = 0;
    for (std::size_t i = 0; i < kGuidBytes; ++i) {
        const unsigned char high = kHexDigits.values[TableIndex(text[pairOffsets[i]])];
        const unsigned char low = kHexDigits.values[TableIndex(text[pairOffsets[i] + 1])];
        invalid |= high | low;
        bytes.bytes[i] = static_cast<unsigned char>(high << 4 | low);
    }
    if ((invalid & kNotHex) != 0) {
        return false;
    }
    guid = FromTextOrder(bytes);
    return true;
}

// The 36-character form, as UuidFromStringA accepts it.
template <typename Char>
bool ReadDashed(const Char* text, std::size_t length, GUID& guid) {
    static constexpr unsigned char kPairOffsets[kGuidBytes] = {0,  2,  4,  6,  9,  11, 14, 16,
                                                               19, 21, 24, 26, 28, 30, 32, 34};
    return length == kDashedLength && text[8] == '-' && text[13] == '-' && text[18] == '-' &&
           text[23] == '-' && ReadHexDigits(text, kPairOffsets, guid);
}

// 32 digits: the same as inserting the four hyphens and reading the result.
template <typename Char>
bool ReadHex(const Char* text, GUID& guid) {
    static constexpr unsigned char kPairOffsets[kGuidBytes] = {0,  2,  4,  6,  8,  10, 12, 14,
                                                               16, 18, 20, 22, 24, 26, 28, 30};
    return ReadHexDigits(text, kPairOffsets, guid);
}

// 22 characters with "==" appended, decoded by Decode64's rules. A character
// outside the alphabet would be skipped (or end the text, for "="), leaving
// fewer than 16 bytes, so only 22 alphabet characters give a value.
template <typename Char>
bool ReadXml64(const Char* text, GUID& guid) {
    unsigned char values[kXml64Length];
    unsigned outside = 0;
    for (std::size_t i = 0; i < kXml64Length; ++i) {
        values[i] = kBase64Values.values[TableIndex(text[i])];
        outside |= values[i];
    }
    if ((outside & ~0x3Fu) != 0) {
        return false;
    }
    GuidBytes memory;
    unsigned char* out = memory.bytes;
    for (std::size_t i = 0; i + 4 <= kXml64Length; i += 4) {
        const std::uint32_t group = static_cast<std::uint32_t>(values[i]) << 18 |
                                    static_cast<std::uint32_t>(values[i + 1]) << 12 |
                                    static_cast<std::uint32_t>(values[i + 2]) << 6 | values[i + 3];
        out = WriteGroupBytes(group, 3, out);
    }
    *out = static_cast<unsigned char>(values[20] << 2 | values[21] >> 4);
    guid = FromMemoryOrder(memory);
    return true;
}

template <typename Char>
bool ReadBraceText(const Char* text, std::size_t length, GUID& guid) {
    return length > kShortestIgnoredLength && ReadDashed(text + 1, length - 2, guid);
}

template <typename Char>
bool ReadXmlText(const Char* text, std::size_t length, GUID& guid) {
    return length > kShortestIgnoredLength &&
           ReadDashed(text + kXmlPrefixLength, length - kXmlPrefixLength, guid);
}

template <typename Char>
bool ReadXml64OrHexText(const Char* text, std::size_t length, GUID& guid) {
    if (length == kXml64Length) {
        return ReadXml64(text, guid);
    }
    return length == kHexLength && ReadHex(text, guid);
}

// The length up to kLengthLimit; a null text has length 0.
std::size_t BoundedLength(const char* text) {
    return text != nullptr ? strnlen(text, kLengthLimit) : 0;
}

// A _bstr_t is read by its wide characters, so "first and last character"
// means characters, not bytes of an encoding. Null reads as empty.
struct WideText {
    const wchar_t* chars;
    std::size_t length;
};

WideText WideTextOf(const _bstr_t& text) {
    const wchar_t* chars = text;
    return chars != nullptr ? WideText{chars, text.length()} : WideText{L"", 0};
}

}  // namespace

// ---------------------------------------------------------------- CKWGuid

CKWGuid::CKWGuid(const char* braceText) : m_guid() {
    SetCString(braceText);
}

// UuidCreate writes straight into the result; its status is not examined, as
// the platform is trusted.
CKWGuid CKWGuid::CreateNewGUID() {
    CKWGuid created;
    UuidCreate(&created.m_guid);
    return created;
}

CString CKWGuid::GetCString() const {
    return ToCString(BraceText(m_guid, kLowerHex));
}

CString CKWGuid::GetCStringUpperCase() const {
    return ToCString(BraceText(m_guid, kUpperHex));
}

std::string CKWGuid::GetSTLString() const {
    return ToStdString(BraceText(m_guid, kLowerHex));
}

_bstr_t CKWGuid::GetBString() const {
    return ToBString(BraceText(m_guid, kLowerHex));
}

std::string CKWGuid::GetSTLStringSQL() const {
    return ToStdString(DashedText(m_guid));
}

CString CKWGuid::GetCStringHex() const {
    return ToCString(HexText(m_guid));
}

_bstr_t CKWGuid::GetBStringHex() const {
    return ToBString(HexText(m_guid));
}

CString CKWGuid::GetCStringXML() const {
    return ToCString(XmlText(m_guid));
}

std::string CKWGuid::GetSTLStringXML() const {
    return ToStdString(XmlText(m_guid));
}

_bstr_t CKWGuid::GetBStringXML() const {
    return ToBString(XmlText(m_guid));
}

CString CKWGuid::GetCStringXML64() const {
    return ToCString(Xml64Text(m_guid));
}

_bstr_t CKWGuid::GetBStringXML64() const {
    return ToBString(Xml64Text(m_guid));
}

CString CKWGuid::GetCStringXMLElement() const {
    return ToCString(XmlElementText(m_guid));
}

std::string CKWGuid::GetSTLStringADOHex() const {
    return ToStdString(AdoHexText(m_guid));
}

void CKWGuid::WriteCString(char (&buffer)[BRACE_TEXT_SIZE]) const {
    buffer[0] = '{';
    char* end = WriteDashed(m_guid, kLowerHex, buffer + 1);
    end[0] = '}';
    end[1] = '\0';
}

void CKWGuid::WriteCStringXML64(char (&buffer)[XML64_TEXT_SIZE]) const {
    *WriteXml64(m_guid, buffer) = '\0';
}

void CKWGuid::WriteCStringXMLElement(char (&buffer)[XML_ELEMENT_TEXT_SIZE]) const {
    buffer[0] = '_';
    *WriteXml64(m_guid, buffer + 1) = '\0';
}

void CKWGuid::SetCString(const char* text) {
    ReadBraceText(text, BoundedLength(text), m_guid);
}

void CKWGuid::SetSTLString(const std::string& text) {
    ReadBraceText(text.data(), text.size(), m_guid);
}

void CKWGuid::SetBString(const _bstr_t& text) {
    const WideText wide = WideTextOf(text);
    ReadBraceText(wide.chars, wide.length, m_guid);
}

void CKWGuid::SetCStringXML(const char* text) {
    ReadXmlText(text, BoundedLength(text), m_guid);
}

void CKWGuid::SetSTLStringXML(const std::string& text) {
    ReadXmlText(text.data(), text.size(), m_guid);
}

void CKWGuid::SetBStringXML(const _bstr_t& text) {
    const WideText wide = WideTextOf(text);
    ReadXmlText(wide.chars, wide.length, m_guid);
}

void CKWGuid::SetCStringXML64(const char* text) {
    const std::size_t length = BoundedLength(text);
    if (length == kXmlLength) {
        ReadXmlText(text, length, m_guid);
        return;
    }
    ReadXml64OrHexText(text, length, m_guid);
}

void CKWGuid::SetBStringXML64(const _bstr_t& text) {
    const WideText wide = WideTextOf(text);
    ReadXml64OrHexText(wide.chars, wide.length, m_guid);
}

void CKWGuid::SetCStringXMLElement(const char* text) {
    if (BoundedLength(text) == kXmlElementLength) {
        ReadXml64(text + 1, m_guid);
    }
}

void CKWGuid::SetSTLStringADOHex(const char*) {}

std::string CKWGuid::Encode64String(const void* data, std::size_t length) {
    const std::size_t size = data != nullptr ? length : 0;
    std::string text(Encoded64Length(size), '\0');
    Encode64Into(static_cast<const unsigned char*>(data), size, &text[0]);
    return text;
}

std::vector<BYTE> CKWGuid::Decode64Bytes(const char* text, std::size_t length) {
    const std::size_t size = text != nullptr ? length : 0;
    std::vector<BYTE> bytes(Decode64Capacity(size));
    bytes.resize(Decode64Into(text, size, bytes.data()));
    return bytes;
}

char* CKWGuid::Encode64(const char* data, int length) {
    const std::size_t size = data != nullptr && length > 0 ? static_cast<std::size_t>(length) : 0;
    const std::size_t textLength = Encoded64Length(size);
    char* text = new (std::nothrow) char[textLength + 1];
    if (text != nullptr) {
        Encode64Into(reinterpret_cast<const unsigned char*>(data), size, text);
        text[textLength] = '\0';
    }
    return text;
}

char* CKWGuid::Decode64(const char* text, int* length) {
    if (length == nullptr) {
        return nullptr;
    }
    const std::size_t size = text != nullptr && *length > 0 ? static_cast<std::size_t>(*length) : 0;
    char* bytes = new (std::nothrow) char[Decode64Capacity(size)];
    *length =
        bytes != nullptr
            ? static_cast<int>(Decode64Into(text, size, reinterpret_cast<unsigned char*>(bytes)))
            : 0;
    return bytes;
}
