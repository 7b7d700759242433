// _bstr_t: a counted wide string, for interfaces that take either a narrow
// or a wide text.
//
// With Microsoft's compiler this is the compiler's own class from
// <comutil.h>. Elsewhere the library provides a minimal value type holding
// wchar_t text (UTF-16 on Windows, UTF-32 on Linux). Narrow text in and out
// is UTF-8; invalid input bytes become U+FFFD. Unlike the compiler's class,
// an empty _bstr_t converts to "" rather than a null pointer.
//
//   _bstr_t text("Größe");
//   const wchar_t* wide = text;  // L"Größe", text.length() == 5
#pragma once

#if defined(_MSC_VER)

#include <comutil.h>

#else

#include <string>

#include "kwcore/platform/Export.h"

class KWCORE_API _bstr_t {
public:
    _bstr_t() noexcept;
    _bstr_t(const char* utf8);
    _bstr_t(const wchar_t* wide);
    _bstr_t(const _bstr_t& other);
    _bstr_t(_bstr_t&& other) noexcept;
    ~_bstr_t();

    _bstr_t& operator=(const _bstr_t& other);
    _bstr_t& operator=(_bstr_t&& other) noexcept;
    _bstr_t& operator=(const char* utf8);
    _bstr_t& operator=(const wchar_t* wide);

    operator const wchar_t*() const noexcept { return m_wide.c_str(); }
    // The UTF-8 form is made on first use and cached: the pointer stays valid
    // while this object lives and is not modified.
    operator const char*() const;

    // Length in wchar_t units.
    unsigned int length() const noexcept { return static_cast<unsigned int>(m_wide.size()); }

    _bstr_t& operator+=(const _bstr_t& other);

    friend KWCORE_API bool operator==(const _bstr_t& left, const _bstr_t& right) noexcept;
    friend KWCORE_API bool operator<(const _bstr_t& left, const _bstr_t& right) noexcept;

private:
    void ForgetNarrow() noexcept;

    std::wstring m_wide;
    mutable std::string m_narrow;
    mutable bool m_narrowCurrent = false;
};

KWCORE_API bool operator<(const _bstr_t& left, const _bstr_t& right) noexcept;

KWCORE_API _bstr_t operator+(const _bstr_t& left, const _bstr_t& right);
KWCORE_API _bstr_t operator+(const char* left, const _bstr_t& right);
KWCORE_API _bstr_t operator+(const wchar_t* left, const _bstr_t& right);

// Overloads for each operand kind keep comparisons unambiguous next to the
// two implicit pointer conversions.
KWCORE_API bool operator==(const _bstr_t& left, const _bstr_t& right) noexcept;
KWCORE_API bool operator==(const _bstr_t& left, const char* right);
KWCORE_API bool operator==(const _bstr_t& left, const wchar_t* right) noexcept;
inline bool operator==(const char* left, const _bstr_t& right) {
    return right == left;
}
inline bool operator==(const wchar_t* left, const _bstr_t& right) noexcept {
    return right == left;
}
inline bool operator!=(const _bstr_t& left, const _bstr_t& right) noexcept {
    return !(left == right);
}
inline bool operator!=(const _bstr_t& left, const char* right) {
    return !(left == right);
}
inline bool operator!=(const _bstr_t& left, const wchar_t* right) noexcept {
    return !(left == right);
}
inline bool operator!=(const char* left, const _bstr_t& right) {
    return !(right == left);
}
inline bool operator!=(const wchar_t* left, const _bstr_t& right) noexcept {
    return !(right == left);
}

#endif  // _MSC_VER
