#include "kwcore/platform/BString.h"

#if !defined(_MSC_VER)

#include <cwchar>
#include <utility>

#include "Unicode.h"

namespace {

std::wstring WideFromUtf8(const char* utf8) {
    return utf8 ? kwUnicode::Utf8ToWide(utf8) : std::wstring();
}

std::wstring WideFrom(const wchar_t* wide) {
    return wide ? std::wstring(wide) : std::wstring();
}

}  // namespace

_bstr_t::_bstr_t() noexcept = default;
_bstr_t::_bstr_t(const char* utf8) : m_wide(WideFromUtf8(utf8)) {}
_bstr_t::_bstr_t(const wchar_t* wide) : m_wide(WideFrom(wide)) {}
_bstr_t::_bstr_t(const _bstr_t& other) : m_wide(other.m_wide) {}

_bstr_t::_bstr_t(_bstr_t&& other) noexcept : m_wide(std::move(other.m_wide)) {
    other.m_wide.clear();
    other.ForgetNarrow();
}

_bstr_t::~_bstr_t() = default;

_bstr_t& _bstr_t::operator=(const _bstr_t& other) {
    if (this != &other) {
        m_wide = other.m_wide;
        ForgetNarrow();
    }
    return *this;
}

_bstr_t& _bstr_t::operator=(_bstr_t&& other) noexcept {
    if (this != &other) {
        m_wide = std::move(other.m_wide);
        other.m_wide.clear();
        other.ForgetNarrow();
        ForgetNarrow();
    }
    return *this;
}

_bstr_t& _bstr_t::operator=(const char* utf8) {
    m_wide = WideFromUtf8(utf8);
    ForgetNarrow();
    return *this;
}

_bstr_t& _bstr_t::operator=(const wchar_t* wide) {
    m_wide = WideFrom(wide);
    ForgetNarrow();
    return *this;
}

_bstr_t::operator const char*() const {
    if (!m_narrowCurrent) {
        m_narrow = kwUnicode::WideToUtf8(m_wide);
        m_narrowCurrent = true;
    }
    return m_narrow.c_str();
}

_bstr_t& _bstr_t::operator+=(const _bstr_t& other) {
    m_wide += other.m_wide;
    ForgetNarrow();
    return *this;
}

void _bstr_t::ForgetNarrow() noexcept {
    m_narrow.clear();
    m_narrowCurrent = false;
}

_bstr_t operator+(const _bstr_t& left, const _bstr_t& right) {
    _bstr_t joined(left);
    joined += right;
    return joined;
}

_bstr_t operator+(const char* left, const _bstr_t& right) {
    return _bstr_t(left) + right;
}

_bstr_t operator+(const wchar_t* left, const _bstr_t& right) {
    return _bstr_t(left) + right;
}

bool operator==(const _bstr_t& left, const _bstr_t& right) noexcept {
    return left.m_wide == right.m_wide;
}

bool operator<(const _bstr_t& left, const _bstr_t& right) noexcept {
    return left.m_wide < right.m_wide;
}

bool operator==(const _bstr_t& left, const char* right) {
    return left == _bstr_t(right);
}

bool operator==(const _bstr_t& left, const wchar_t* right) noexcept {
    return std::wcscmp(left, right ? right : L"") == 0;
}

#endif  // !_MSC_VER
