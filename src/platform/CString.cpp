#include "kwcore/platform/CString.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";

int Sign(int value) {
    return (value > 0) - (value < 0);
}

int Clamp(int value, int low, int high) {
    return std::min(std::max(value, low), high);
}

unsigned char FoldAsciiCase(char ch) {
    const auto byte = static_cast<unsigned char>(ch);
    return (byte >= 'A' && byte <= 'Z') ? static_cast<unsigned char>(byte + ('a' - 'A')) : byte;
}

bool IsUtf8Continuation(char ch) {
    return (static_cast<unsigned char>(ch) & 0xC0) == 0x80;
}
bool IsUtf8Lead(char ch) {
    return static_cast<unsigned char>(ch) >= 0xC0;
}

// Formats into a stack buffer first, so short results cost no allocation;
// store receives bytes that never alias the caller's string, which lets the
// arguments point into the string being formatted.
template <typename Store>
bool FormatWith(const char* format, va_list args, Store store) {
    if (!format) {
        return false;
    }
    char shortBuffer[256];
    va_list measureArgs;
    va_copy(measureArgs, args);
    const int needed = std::vsnprintf(shortBuffer, sizeof shortBuffer, format, measureArgs);
    va_end(measureArgs);
    if (needed < 0) {
        return false;
    }
    if (static_cast<std::size_t>(needed) < sizeof shortBuffer) {
        store(shortBuffer, static_cast<std::size_t>(needed));
        return true;
    }
    std::string longBuffer(static_cast<std::size_t>(needed), '\0');
    std::vsnprintf(longBuffer.data(), longBuffer.size() + 1, format, args);
    store(longBuffer.data(), longBuffer.size());
    return true;
}

CString Concat(std::string_view left, std::string_view right) {
    std::string joined;
    joined.reserve(left.size() + right.size());
    joined.append(left).append(right);
    return CString(std::move(joined));
}

std::string_view ViewOf(const char* text) {
    return text ? std::string_view(text) : std::string_view();
}

}  // namespace

CString::CString(const char* text, int length) {
    if (text && length > 0) {
        m_str.assign(text, static_cast<std::size_t>(length));
    }
}

CString& CString::operator=(const char* text) {
    m_str.assign(text ? text : "");
    return *this;
}

CString& CString::operator=(char ch) {
    m_str.assign(1, ch);
    return *this;
}

CString& CString::operator=(const std::string& text) {
    m_str = text;
    return *this;
}

CString& CString::operator=(std::string&& text) noexcept {
    m_str = std::move(text);
    return *this;
}

char CString::GetAt(int index) const noexcept {
    return (index >= 0 && index < GetLength()) ? m_str[static_cast<std::size_t>(index)] : '\0';
}

void CString::SetAt(int index, char ch) noexcept {
    if (index >= 0 && index < GetLength()) {
        m_str[static_cast<std::size_t>(index)] = ch;
    }
}

void CString::Format(const char* format, ...) {
    va_list args;
    va_start(args, format);
    FormatV(format, args);
    va_end(args);
}

void CString::AppendFormat(const char* format, ...) {
    va_list args;
    va_start(args, format);
    AppendFormatV(format, args);
    va_end(args);
}

void CString::FormatV(const char* format, va_list args) {
    const bool formatted = FormatWith(
        format, args, [this](const char* text, std::size_t length) { m_str.assign(text, length); });
    if (!formatted) {
        m_str.clear();
    }
}

void CString::AppendFormatV(const char* format, va_list args) {
    FormatWith(format, args,
               [this](const char* text, std::size_t length) { m_str.append(text, length); });
}

CString& CString::operator+=(const CString& text) {
    m_str += text.m_str;
    return *this;
}

CString& CString::operator+=(const char* text) {
    if (text) {
        m_str += text;
    }
    return *this;
}

CString& CString::operator+=(char ch) {
    m_str += ch;
    return *this;
}

int CString::Compare(const char* text) const noexcept {
    return Sign(m_str.compare(ViewOf(text)));
}

int CString::CompareNoCase(const char* text) const noexcept {
    const std::string_view other = ViewOf(text);
    const std::size_t common = std::min(m_str.size(), other.size());
    for (std::size_t i = 0; i < common; ++i) {
        const int difference = FoldAsciiCase(m_str[i]) - FoldAsciiCase(other[i]);
        if (difference != 0) {
            return Sign(difference);
        }
    }
    return Sign(static_cast<int>(m_str.size() > other.size()) -
                static_cast<int>(m_str.size() < other.size()));
}

int CString::Find(char ch, int start) const noexcept {
    if (start < 0 || start >= GetLength()) {
        return -1;
    }
    const std::size_t found = m_str.find(ch, static_cast<std::size_t>(start));
    return found == std::string::npos ? -1 : static_cast<int>(found);
}

int CString::Find(const char* sub, int start) const noexcept {
    if (!sub || start < 0 || start > GetLength()) {
        return -1;
    }
    const std::size_t found = m_str.find(sub, static_cast<std::size_t>(start));
    return found == std::string::npos ? -1 : static_cast<int>(found);
}

int CString::ReverseFind(char ch) const noexcept {
    const std::size_t found = m_str.rfind(ch);
    return found == std::string::npos ? -1 : static_cast<int>(found);
}

int CString::FindOneOf(const char* charSet) const noexcept {
    const std::size_t found = m_str.find_first_of(ViewOf(charSet));
    return found == std::string::npos ? -1 : static_cast<int>(found);
}

CString CString::Left(int count) const {
    return CString(m_str.substr(0, static_cast<std::size_t>(Clamp(count, 0, GetLength()))));
}

CString CString::Mid(int first) const {
    return CString(m_str.substr(static_cast<std::size_t>(Clamp(first, 0, GetLength()))));
}

CString CString::Mid(int first, int count) const {
    const int start = Clamp(first, 0, GetLength());
    const int length = Clamp(count, 0, GetLength() - start);
    return CString(m_str.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(length)));
}

CString CString::Right(int count) const {
    const int length = Clamp(count, 0, GetLength());
    return CString(m_str.substr(static_cast<std::size_t>(GetLength() - length)));
}

CString CString::SpanIncluding(const char* charSet) const {
    const std::size_t end = m_str.find_first_not_of(ViewOf(charSet));
    return CString(m_str.substr(0, end));
}

CString CString::SpanExcluding(const char* charSet) const {
    const std::size_t end = m_str.find_first_of(ViewOf(charSet));
    return CString(m_str.substr(0, end));
}

CString& CString::MakeUpper() noexcept {
    for (char& ch : m_str) {
        if (ch >= 'a' && ch <= 'z') {
            ch = static_cast<char>(ch - ('a' - 'A'));
        }
    }
    return *this;
}

CString& CString::MakeLower() noexcept {
    for (char& ch : m_str) {
        ch = static_cast<char>(FoldAsciiCase(ch));
    }
    return *this;
}

// After reversing the bytes, each UTF-8 sequence reads continuation bytes
// first and its lead byte last; flipping those runs back restores it.
CString& CString::MakeReverse() noexcept {
    std::reverse(m_str.begin(), m_str.end());
    auto runStart = m_str.begin();
    for (auto it = m_str.begin(); it != m_str.end(); ++it) {
        if (IsUtf8Continuation(*it)) {
            continue;
        }
        if (IsUtf8Lead(*it)) {
            std::reverse(runStart, it + 1);
        }
        runStart = it + 1;
    }
    return *this;
}

int CString::Replace(char oldChar, char newChar) noexcept {
    if (oldChar == newChar) {
        return 0;
    }
    int count = 0;
    for (char& ch : m_str) {
        if (ch == oldChar) {
            ch = newChar;
            ++count;
        }
    }
    return count;
}

int CString::Replace(const char* oldText, const char* newText) {
    const std::string_view from = ViewOf(oldText);
    const std::string_view to = ViewOf(newText);
    std::size_t found = from.empty() ? std::string::npos : m_str.find(from);
    if (found == std::string::npos) {
        return 0;
    }
    std::string replaced;
    replaced.reserve(m_str.size());
    std::size_t copiedUpTo = 0;
    int count = 0;
    for (; found != std::string::npos; found = m_str.find(from, copiedUpTo)) {
        replaced.append(m_str, copiedUpTo, found - copiedUpTo).append(to);
        copiedUpTo = found + from.size();
        ++count;
    }
    replaced.append(m_str, copiedUpTo, std::string::npos);
    m_str.swap(replaced);
    return count;
}

int CString::Remove(char ch) noexcept {
    const auto newEnd = std::remove(m_str.begin(), m_str.end(), ch);
    const auto removed = static_cast<int>(m_str.end() - newEnd);
    m_str.erase(newEnd, m_str.end());
    return removed;
}

int CString::Insert(int index, char ch) {
    m_str.insert(static_cast<std::size_t>(Clamp(index, 0, GetLength())), 1, ch);
    return GetLength();
}

int CString::Insert(int index, const char* text) {
    if (text) {
        m_str.insert(static_cast<std::size_t>(Clamp(index, 0, GetLength())), text);
    }
    return GetLength();
}

int CString::Delete(int index, int count) noexcept {
    const int start = Clamp(index, 0, GetLength());
    const int length = Clamp(count, 0, GetLength() - start);
    m_str.erase(static_cast<std::size_t>(start), static_cast<std::size_t>(length));
    return GetLength();
}

CString& CString::Trim() {
    return TrimRight().TrimLeft();
}
CString& CString::Trim(char ch) {
    return TrimRight(ch).TrimLeft(ch);
}
CString& CString::Trim(const char* charSet) {
    return TrimRight(charSet).TrimLeft(charSet);
}
CString& CString::TrimLeft() {
    return TrimLeftWhile(kWhiteSpace);
}
CString& CString::TrimLeft(char ch) {
    return TrimLeftWhile(std::string_view(&ch, 1));
}
CString& CString::TrimLeft(const char* charSet) {
    return TrimLeftWhile(ViewOf(charSet));
}
CString& CString::TrimRight() {
    return TrimRightWhile(kWhiteSpace);
}
CString& CString::TrimRight(char ch) {
    return TrimRightWhile(std::string_view(&ch, 1));
}
CString& CString::TrimRight(const char* charSet) {
    return TrimRightWhile(ViewOf(charSet));
}

CString& CString::TrimLeftWhile(std::string_view charSet) {
    m_str.erase(0, std::min(m_str.find_first_not_of(charSet), m_str.size()));
    return *this;
}

CString& CString::TrimRightWhile(std::string_view charSet) {
    const std::size_t last = m_str.find_last_not_of(charSet);
    m_str.erase(last == std::string::npos ? 0 : last + 1);
    return *this;
}

char* CString::GetBuffer(int minLength) {
    if (minLength > GetLength()) {
        m_str.resize(static_cast<std::size_t>(minLength));
    }
    return m_str.data();
}

char* CString::GetBufferSetLength(int length) {
    m_str.resize(static_cast<std::size_t>(std::max(length, 0)));
    return m_str.data();
}

void CString::ReleaseBuffer(int newLength) noexcept {
    if (newLength < 0) {
        const void* terminator = std::memchr(m_str.data(), '\0', m_str.size());
        newLength = terminator
                        ? static_cast<int>(static_cast<const char*>(terminator) - m_str.data())
                        : GetLength();
    }
    m_str.resize(static_cast<std::size_t>(std::min(newLength, GetLength())));
}

CString operator+(const CString& left, const CString& right) {
    return Concat(left.GetStdString(), right.GetStdString());
}

CString operator+(const CString& left, const char* right) {
    return Concat(left.GetStdString(), ViewOf(right));
}

CString operator+(const char* left, const CString& right) {
    return Concat(ViewOf(left), right.GetStdString());
}

CString operator+(const CString& left, char right) {
    return Concat(left.GetStdString(), std::string_view(&right, 1));
}

CString operator+(char left, const CString& right) {
    return Concat(std::string_view(&left, 1), right.GetStdString());
}

CString operator+(CString&& left, const CString& right) {
    return std::move(left += right);
}

CString operator+(CString&& left, const char* right) {
    return std::move(left += right);
}

CString operator+(CString&& left, char right) {
    return std::move(left += right);
}
