// CKWGuid: the library's 128-bit identifier, a value in the platform's GUID
// layout that names object instances, types, fields and repositories.
//
// Empty means all 16 bytes zero. Maps are keyed by its order: Data1, Data2,
// Data3, then the Data4 bytes, all unsigned. The archives write it in several
// text forms, all made and read here byte for byte:
//   brace    {95e11590-e209-41b1-811a-263330087175}   (38, lower-case digits)
//   SQL      95e11590-e209-41b1-811a-263330087175     (36)
//   hex      95e11590e20941b1811a263330087175         (32)
//   XML      GUID_95e11590-e209-41b1-811a-263330087175 (41)
//   XML64    kBXhlQnisUGBGiYzMAhxdQ               (22, base 64 of the memory bytes)
//   element  _kBXhlQnisUGBGiYzMAhxdQ              (23)
//   ADO hex  80e00a01 + the memory bytes in hexadecimal (40)
// Nothing here throws or reports errors: a text that does not parse leaves
// the value as it was, so a caller that needs to know tests IsValid after.
//
//   CKWGuid id = CKWGuid::CreateNewGUID();
//   CString name = id.GetCStringXMLElement();  // a legal XML element name
//   CKWGuid same;
//   same.SetCStringXMLElement(name);           // same == id
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "kwcore/platform/BString.h"
#include "kwcore/platform/CString.h"
#include "kwcore/platform/Export.h"
#include "kwcore/platform/Win32Types.h"

class KWCORE_API CKWGuid {
public:
    CKWGuid() noexcept : m_guid() {}
    CKWGuid(const GUID& guid) noexcept : m_guid(guid) {}
    CKWGuid(const CKWGuid& other) = default;
    // Parses the brace form as SetCString does; empty when it does not parse.
    CKWGuid(const char* braceText);
    virtual ~CKWGuid() = default;

    CKWGuid& operator=(const GUID& guid) noexcept {
        m_guid = guid;
        return *this;
    }
    CKWGuid& operator=(const CKWGuid& other) = default;

    void SetEmpty() noexcept { m_guid = GUID(); }
    // Copies the value out into guid (despite the name, it writes its argument).
    void SetGUID(GUID& guid) const noexcept { guid = m_guid; }
    // A new random GUID from the platform's UuidCreate, trusted as it comes.
    static CKWGuid CreateNewGUID();

    // 1 when any byte is nonzero, else 0.
    int IsValid() const noexcept { return (HighKey() | LowKey()) != 0; }

    bool operator==(const CKWGuid& other) const noexcept { return Equals(other.m_guid); }
    bool operator!=(const CKWGuid& other) const noexcept { return !Equals(other.m_guid); }
    bool operator==(const GUID& guid) const noexcept { return Equals(guid); }
    bool operator!=(const GUID& guid) const noexcept { return !Equals(guid); }
    // Comparing with an integer tests for the empty GUID; the number itself is
    // ignored, as existing hosts expect ("id == 0" and "id == 5" agree).
    bool operator==(int) const noexcept { return !IsValid(); }
    bool operator!=(int) const noexcept { return IsValid() != 0; }
    bool operator<(const CKWGuid& other) const noexcept { return IsBefore(other); }
    bool operator>(const CKWGuid& other) const noexcept { return other.IsBefore(*this); }

    // A hash of all 16 bytes, for hash maps (see std::hash<CKWGuid> below).
    std::size_t GetHash() const noexcept {
        std::uint64_t low = 0;
        std::uint64_t high = 0;
        std::memcpy(&low, &m_guid, sizeof low);
        std::memcpy(&high, reinterpret_cast<const char*>(&m_guid) + sizeof low, sizeof high);
        std::uint64_t mixed = low ^ (high * 0x9E3779B97F4A7C15ull);
        mixed = (mixed ^ (mixed >> 32)) * 0xD6E8FEB86659FD93ull;
        return static_cast<std::size_t>(mixed ^ (mixed >> 32));
    }

    // Text forms written; each returns a new string.
    CString GetCString() const;
    CString GetCStringUpperCase() const;
    std::string GetSTLString() const;
    _bstr_t GetBString() const;
    std::string GetSTLStringSQL() const;
    CString GetCStringHex() const;
    _bstr_t GetBStringHex() const;
    CString GetCStringXML() const;
    std::string GetSTLStringXML() const;
    _bstr_t GetBStringXML() const;
    CString GetCStringXML64() const;
    _bstr_t GetBStringXML64() const;
    CString GetCStringXMLElement() const;
    std::string GetSTLStringADOHex() const;

    // The brace, XML64 and element forms written into the caller's buffer
    // with a terminating NUL, without allocating: for hot paths such as
    // archive writers. The text is that of GetCString, GetCStringXML64 and
    // GetCStringXMLElement.
    static constexpr std::size_t BRACE_TEXT_SIZE = 39;
    static constexpr std::size_t XML64_TEXT_SIZE = 23;
    static constexpr std::size_t XML_ELEMENT_TEXT_SIZE = 24;
    void WriteCString(char (&buffer)[BRACE_TEXT_SIZE]) const;
    void WriteCStringXML64(char (&buffer)[XML64_TEXT_SIZE]) const;
    void WriteCStringXMLElement(char (&buffer)[XML_ELEMENT_TEXT_SIZE]) const;

    // Text forms read. A null pointer or a text that does not parse leaves
    // the value unchanged.
    //
    // Brace form: a text longer than 10 characters loses its first and last
    // characters (whatever they are) and the rest must be the 36-character
    // form; shorter texts are ignored.
    void SetCString(const char* text);
    void SetSTLString(const std::string& text);
    void SetBString(const _bstr_t& text);
    // XML form: a text longer than 10 characters loses its first 5 (not
    // checked to be "GUID_") and the rest must be the 36-character form.
    void SetCStringXML(const char* text);
    void SetSTLStringXML(const std::string& text);
    void SetBStringXML(const _bstr_t& text);
    // By length: 22 the XML64 form, 32 the hex form, 41 the XML form; others
    // are ignored.
    void SetCStringXML64(const char* text);
    // As SetCStringXML64, except that the 41-character XML form is ignored
    // here, as it always was.
    void SetBStringXML64(const _bstr_t& text);
    // The first character is dropped unchecked; 22 XML64 characters must
    // remain.
    void SetCStringXMLElement(const char* text);
    // Never changes the value: this reader always tested the length of the
    // text's first character against the 40 the form needs, and stored data
    // and existing hosts depend on that.
    void SetSTLStringADOHex(const char* text);

    // Base 64 for hosts: the rules of Encode64 and Decode64 below, with
    // results that free themselves.
    static std::string Encode64String(const void* data, std::size_t length);
    static std::vector<BYTE> Decode64Bytes(const char* text, std::size_t length);

protected:
    // Base 64 with the URL-safe alphabet (A-Z a-z 0-9 - _) and "=" padding,
    // a CR LF between lines of 76 characters (none after the last line). In a
    // final group of two bytes the second byte is merged sign-extended, so
    // from 0x80 up the first byte's bits come out as all ones: kept for
    // compatibility with stored data (a GUID ends in a one-byte group and is
    // not affected). Null data or a negative length encode as nothing.
    // Returns a NUL-terminated buffer allocated with new[] (null only when
    // memory runs out): the caller owns it and frees it with delete[].
    static char* Encode64(const char* data, int length);
    // The inverse. *length is the number of characters on entry and the
    // number of bytes made on return. Characters outside the alphabet
    // (including CR, LF, "+", "/" and bytes from 0x80 up) are skipped;
    // decoding stops at the first "=" or at the end; a final group of two or
    // three characters gives one or two bytes. Returns a buffer allocated
    // with new[] (null only when length is null or memory runs out): the
    // caller owns it and frees it with delete[].
    static char* Decode64(const char* text, int* length);

private:
    inline bool Equals(const GUID& guid) const noexcept;
    // The order as two unsigned numbers: Data1, Data2, Data3 in the high one,
    // the Data4 bytes (first byte most significant) in the low one.
    inline std::uint64_t HighKey() const noexcept;
    inline std::uint64_t LowKey() const noexcept;
    inline bool IsBefore(const CKWGuid& other) const noexcept;

    GUID m_guid;
};

inline bool CKWGuid::Equals(const GUID& guid) const noexcept {
    return std::memcmp(&m_guid, &guid, sizeof m_guid) == 0;
}

inline std::uint64_t CKWGuid::HighKey() const noexcept {
    return static_cast<std::uint64_t>(m_guid.Data1) << 32 |
           static_cast<std::uint64_t>(m_guid.Data2) << 16 | m_guid.Data3;
}

inline std::uint64_t CKWGuid::LowKey() const noexcept {
    std::uint64_t key = 0;
    for (BYTE byte : m_guid.Data4) {
        key = key << 8 | byte;
    }
    return key;
}

inline bool CKWGuid::IsBefore(const CKWGuid& other) const noexcept {
    const std::uint64_t high = HighKey();
    const std::uint64_t otherHigh = other.HighKey();
    return high != otherHigh ? high < otherHigh : LowKey() < other.LowKey();
}

namespace std {
template <>
struct hash<CKWGuid> {
    size_t operator()(const CKWGuid& guid) const noexcept { return guid.GetHash(); }
};
}  // namespace std
