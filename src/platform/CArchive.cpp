#include "kwcore/platform/CArchive.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <string>
#include <utility>

#include "Unicode.h"

namespace {

// Escape values of MFC's length prefixes: a field holding its maximum (or,
// for a string's WORD, 0xFFFE as the Unicode marker) means "read on".
constexpr ULONGLONG kByteEscape = 0xFF;
constexpr ULONGLONG kWordEscape = 0xFFFF;
constexpr ULONGLONG kUnicodeMarker = 0xFFFE;
constexpr ULONGLONG kDwordEscape = 0xFFFFFFFF;

}  // namespace

CArchive::CArchive(Mode mode) : m_mode(mode) {}

CArchive::CArchive(const void* data, std::size_t size) : m_mode(load) {
    if (data) {
        const auto* first = static_cast<const BYTE*>(data);
        m_bytes.assign(first, first + size);
    }
}

CArchive::CArchive(std::vector<BYTE> bytes) : m_bytes(std::move(bytes)), m_mode(load) {}

bool CArchive::CanLoad(std::size_t byteCount) {
    if (!m_failed && m_mode == load && byteCount <= GetRemaining()) {
        return true;
    }
    m_failed = TRUE;
    return false;
}

BOOL CArchive::CheckAvailable(ULONGLONG elementCount, std::size_t bytesPerElement) {
    const std::size_t perElement = std::max<std::size_t>(bytesPerElement, 1);
    if (elementCount > GetRemaining() / perElement) {
        m_failed = TRUE;
    }
    return CanLoad(0) ? TRUE : FALSE;
}

void CArchive::AppendBytes(const BYTE* data, std::size_t byteCount) {
    if (m_mode != store) {
        m_failed = TRUE;
        return;
    }
    m_bytes.insert(m_bytes.end(), data, data + byteCount);
}

void CArchive::Write(const void* data, UINT byteCount) {
    if (!data) {
        m_failed = byteCount > 0 ? TRUE : m_failed;
        return;
    }
    AppendBytes(static_cast<const BYTE*>(data), byteCount);
}

UINT CArchive::Read(void* data, UINT byteCount) {
    if (!data) {
        m_failed = byteCount > 0 ? TRUE : m_failed;
        return 0;
    }
    const bool readable = !m_failed && m_mode == load;
    const std::size_t available = readable ? std::min<std::size_t>(byteCount, GetRemaining()) : 0;
    if (available > 0) {
        std::memcpy(data, m_bytes.data() + m_readPosition, available);
        m_readPosition += available;
    }
    if (available < byteCount) {
        std::memset(static_cast<BYTE*>(data) + available, 0, byteCount - available);
        m_failed = TRUE;
    }
    return static_cast<UINT>(available);
}

void CArchive::WriteLittleEndian(ULONGLONG value, int byteCount) {
    BYTE bytes[8];
    for (int i = 0; i < byteCount; ++i) {
        bytes[i] = static_cast<BYTE>(value >> (8 * i));
    }
    AppendBytes(bytes, static_cast<std::size_t>(byteCount));
}

ULONGLONG CArchive::ReadLittleEndian(int byteCount) {
    if (!CanLoad(static_cast<std::size_t>(byteCount))) {
        return 0;
    }
    ULONGLONG value = 0;
    for (int i = 0; i < byteCount; ++i) {
        value |= static_cast<ULONGLONG>(m_bytes[m_readPosition++]) << (8 * i);
    }
    return value;
}

void CArchive::WriteCount(DWORD_PTR count) {
    if (count < kWordEscape) {
        WriteLittleEndian(count, 2);
        return;
    }
    WriteLittleEndian(kWordEscape, 2);
    WriteDwordOrEscape(count);
}

void CArchive::WriteDwordOrEscape(ULONGLONG value) {
    if (value < kDwordEscape) {
        WriteLittleEndian(value, 4);
        return;
    }
    WriteLittleEndian(kDwordEscape, 4);
    WriteLittleEndian(value, 8);
}

ULONGLONG CArchive::ReadDwordOrEscape() {
    const ULONGLONG dword = ReadLittleEndian(4);
    return dword != kDwordEscape ? dword : ReadLittleEndian(8);
}

DWORD_PTR CArchive::ReadCount() {
    const ULONGLONG word = ReadLittleEndian(2);
    const ULONGLONG count = word != kWordEscape ? word : ReadDwordOrEscape();
    if (count > std::numeric_limits<DWORD_PTR>::max()) {
        m_failed = TRUE;
        return 0;
    }
    return static_cast<DWORD_PTR>(count);
}

void CArchive::WriteStringLength(std::size_t length) {
    if (length < kByteEscape) {
        WriteLittleEndian(length, 1);
        return;
    }
    WriteLittleEndian(kByteEscape, 1);
    if (length < kUnicodeMarker) {
        WriteLittleEndian(length, 2);
        return;
    }
    WriteLittleEndian(kWordEscape, 2);
    WriteDwordOrEscape(length);
}

// MFC's reader: after the Unicode marker the length starts over with a BYTE,
// and from the WORD on both kinds of string share the escapes of a count.
ULONGLONG CArchive::ReadStringLength(bool& isUnicode) {
    isUnicode = false;
    const ULONGLONG byteLength = ReadLittleEndian(1);
    if (byteLength < kByteEscape) {
        return byteLength;
    }
    ULONGLONG wordLength = ReadLittleEndian(2);
    if (wordLength == kUnicodeMarker) {
        isUnicode = true;
        const ULONGLONG unicodeByteLength = ReadLittleEndian(1);
        if (unicodeByteLength < kByteEscape) {
            return unicodeByteLength;
        }
        wordLength = ReadLittleEndian(2);
    }
    if (wordLength < kWordEscape) {
        return wordLength;
    }
    return ReadDwordOrEscape();
}

CArchive& CArchive::operator<<(BYTE value) {
    WriteLittleEndian(value, 1);
    return *this;
}

CArchive& CArchive::operator<<(WORD value) {
    WriteLittleEndian(value, 2);
    return *this;
}

CArchive& CArchive::operator<<(int value) {
    WriteLittleEndian(static_cast<UINT>(value), 4);
    return *this;
}

CArchive& CArchive::operator<<(UINT value) {
    WriteLittleEndian(value, 4);
    return *this;
}

CArchive& CArchive::operator<<(const CString& text) {
    const std::string& bytes = text.GetStdString();
    WriteStringLength(bytes.size());
    AppendBytes(reinterpret_cast<const BYTE*>(bytes.data()), bytes.size());
    return *this;
}

CArchive& CArchive::operator>>(BYTE& value) {
    value = static_cast<BYTE>(ReadLittleEndian(1));
    return *this;
}

CArchive& CArchive::operator>>(WORD& value) {
    value = static_cast<WORD>(ReadLittleEndian(2));
    return *this;
}

CArchive& CArchive::operator>>(int& value) {
    value = static_cast<int>(static_cast<UINT>(ReadLittleEndian(4)));
    return *this;
}

CArchive& CArchive::operator>>(UINT& value) {
    value = static_cast<UINT>(ReadLittleEndian(4));
    return *this;
}

CArchive& CArchive::operator>>(CString& text) {
    bool isUnicode = false;
    const ULONGLONG length = ReadStringLength(isUnicode);
    const ULONGLONG bytesPerChar = isUnicode ? 2 : 1;
    if (m_failed || length > GetRemaining() / bytesPerChar) {
        m_failed = TRUE;
        text.Empty();
        return *this;
    }
    const BYTE* first = m_bytes.data() + m_readPosition;
    const auto charCount = static_cast<std::size_t>(length);
    m_readPosition += charCount * bytesPerChar;
    if (!isUnicode) {
        text = std::string(reinterpret_cast<const char*>(first), charCount);
        return *this;
    }
    std::u16string units(charCount, u'\0');
    for (std::size_t i = 0; i < charCount; ++i) {
        units[i] = static_cast<char16_t>(first[2 * i] | (first[2 * i + 1] << 8));
    }
    text = kwUnicode::Utf16ToUtf8(units);
    return *this;
}

#if defined(_WIN32)

CArchive& CArchive::operator<<(LONG value) {
    return *this << static_cast<int>(value);
}

CArchive& CArchive::operator<<(DWORD value) {
    return *this << static_cast<UINT>(value);
}

CArchive& CArchive::operator>>(LONG& value) {
    int stored = 0;
    *this >> stored;
    value = stored;
    return *this;
}

CArchive& CArchive::operator>>(DWORD& value) {
    UINT stored = 0;
    *this >> stored;
    value = stored;
    return *this;
}

#endif
