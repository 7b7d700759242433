// CString: the library's narrow text string, shaped after MFC's CString.
//
// A value type over std::string holding UTF-8 text on Linux (the active code
// page on Windows). Indices and lengths count bytes, as in MFC's narrow
// string. Out-of-range arguments are clamped the way MFC clamps them, so no
// member ever reads or writes outside the text; a null const char* reads as
// the empty string.
//
//   CString s;
//   s.Format("%d items", 3);   // "3 items"
//   s.Replace("items", "rows"); // "3 rows"
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "kwcore/platform/Export.h"

// Lets the compiler check Format/AppendFormat arguments like printf's
// (MinGW's <cstdio> names the printf flavour its runtime uses).
#if defined(__MINGW_PRINTF_FORMAT)
#define KWCORE_PRINTF_FORMAT(fmt, first) __attribute__((format(__MINGW_PRINTF_FORMAT, fmt, first)))
#elif defined(__GNUC__) || defined(__clang__)
#define KWCORE_PRINTF_FORMAT(fmt, first) __attribute__((format(printf, fmt, first)))
#else
#define KWCORE_PRINTF_FORMAT(fmt, first)
#endif

class KWCORE_API CString {
public:
    CString() = default;
    CString(const char* text) : m_str(text ? text : "") {}
    CString(const char* text, int length);
    CString(const std::string& text) : m_str(text) {}
    CString(std::string&& text) noexcept : m_str(std::move(text)) {}
    explicit CString(char ch, int repeat = 1) : m_str(repeat > 0 ? repeat : 0, ch) {}

    CString& operator=(const char* text);
    CString& operator=(char ch);
    CString& operator=(const std::string& text);
    CString& operator=(std::string&& text) noexcept;

    operator const char*() const noexcept { return m_str.c_str(); }
    const char* GetString() const noexcept { return m_str.c_str(); }
    const std::string& GetStdString() const noexcept { return m_str; }

    int GetLength() const noexcept { return static_cast<int>(m_str.size()); }
    bool IsEmpty() const noexcept { return m_str.empty(); }
    void Empty() noexcept { m_str.clear(); }

    // Out-of-range reads give '\0'; out-of-range writes are ignored.
    char GetAt(int index) const noexcept;
    char operator[](int index) const noexcept { return GetAt(index); }
    void SetAt(int index, char ch) noexcept;

    void Format(const char* format, ...) KWCORE_PRINTF_FORMAT(2, 3);
    void AppendFormat(const char* format, ...) KWCORE_PRINTF_FORMAT(2, 3);
    void FormatV(const char* format, va_list args);
    void AppendFormatV(const char* format, va_list args);

    CString& operator+=(const CString& text);
    CString& operator+=(const char* text);
    CString& operator+=(char ch);

    // Byte-wise comparison (bytes as unsigned): -1, 0 or 1.
    int Compare(const char* text) const noexcept;
    // As Compare, with ASCII letters folded to lower case; other bytes as is.
    int CompareNoCase(const char* text) const noexcept;

    // Searches return a byte index, or -1 when nothing is found or the start
    // index lies outside the text.
    int Find(char ch, int start = 0) const noexcept;
    int Find(const char* sub, int start = 0) const noexcept;
    int ReverseFind(char ch) const noexcept;
    int FindOneOf(const char* charSet) const noexcept;

    CString Left(int count) const;
    CString Mid(int first) const;
    CString Mid(int first, int count) const;
    CString Right(int count) const;
    CString SpanIncluding(const char* charSet) const;
    CString SpanExcluding(const char* charSet) const;

    // Case changes touch ASCII letters only, so UTF-8 sequences stay intact.
    CString& MakeUpper() noexcept;
    CString& MakeLower() noexcept;
    // Reverses the characters; a UTF-8 sequence stays whole and in order.
    CString& MakeReverse() noexcept;

    // Editing members return the number of replacements/removals or the new
    // length, as MFC's do.
    int Replace(char oldChar, char newChar) noexcept;
    int Replace(const char* oldText, const char* newText);
    int Remove(char ch) noexcept;
    int Insert(int index, char ch);
    int Insert(int index, const char* text);
    int Delete(int index, int count = 1) noexcept;

    // Trimming without an argument removes white space (" \t\n\v\f\r").
    CString& Trim();
    CString& Trim(char ch);
    CString& Trim(const char* charSet);
    CString& TrimLeft();
    CString& TrimLeft(char ch);
    CString& TrimLeft(const char* charSet);
    CString& TrimRight();
    CString& TrimRight(char ch);
    CString& TrimRight(const char* charSet);

    // Direct buffer access. GetBuffer keeps the text and makes room for at
    // least minLength bytes plus a terminator; ReleaseBuffer sets the length
    // (-1: up to the first '\0'), clamped to the buffer that was handed out.
    char* GetBuffer(int minLength = 0);
    char* GetBufferSetLength(int length);
    void ReleaseBuffer(int newLength = -1) noexcept;

private:
    CString& TrimLeftWhile(std::string_view charSet);
    CString& TrimRightWhile(std::string_view charSet);

    std::string m_str;
};

KWCORE_API CString operator+(const CString& left, const CString& right);
KWCORE_API CString operator+(const CString& left, const char* right);
KWCORE_API CString operator+(const char* left, const CString& right);
KWCORE_API CString operator+(const CString& left, char right);
KWCORE_API CString operator+(char left, const CString& right);
KWCORE_API CString operator+(CString&& left, const CString& right);
KWCORE_API CString operator+(CString&& left, const char* right);
KWCORE_API CString operator+(CString&& left, char right);

// Exact-match overloads for every pairing keep comparisons unambiguous next
// to the implicit conversion to const char*.
inline bool operator==(const CString& a, const CString& b) noexcept {
    return a.GetStdString() == b.GetStdString();
}
inline bool operator==(const CString& a, const char* b) noexcept {
    return a.Compare(b) == 0;
}
inline bool operator==(const char* a, const CString& b) noexcept {
    return b.Compare(a) == 0;
}
inline bool operator!=(const CString& a, const CString& b) noexcept {
    return !(a == b);
}
inline bool operator!=(const CString& a, const char* b) noexcept {
    return !(a == b);
}
inline bool operator!=(const char* a, const CString& b) noexcept {
    return !(a == b);
}
inline bool operator<(const CString& a, const CString& b) noexcept {
    return a.GetStdString() < b.GetStdString();
}
inline bool operator<(const CString& a, const char* b) noexcept {
    return a.Compare(b) < 0;
}
inline bool operator<(const char* a, const CString& b) noexcept {
    return b.Compare(a) > 0;
}
inline bool operator>(const CString& a, const CString& b) noexcept {
    return b < a;
}
inline bool operator>(const CString& a, const char* b) noexcept {
    return b < a;
}
inline bool operator>(const char* a, const CString& b) noexcept {
    return b < a;
}
inline bool operator<=(const CString& a, const CString& b) noexcept {
    return !(b < a);
}
inline bool operator<=(const CString& a, const char* b) noexcept {
    return !(b < a);
}
inline bool operator<=(const char* a, const CString& b) noexcept {
    return !(b < a);
}
inline bool operator>=(const CString& a, const CString& b) noexcept {
    return !(a < b);
}
inline bool operator>=(const CString& a, const char* b) noexcept {
    return !(a < b);
}
inline bool operator>=(const char* a, const CString& b) noexcept {
    return !(a < b);
}

namespace std {
template <>
struct hash<CString> {
    size_t operator()(const CString& text) const noexcept {
        return hash<string>()(text.GetStdString());
    }
};
}  // namespace std
