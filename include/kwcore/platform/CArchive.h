// CArchive: MFC's binary archive format over an in-memory byte buffer.
//
// A storing archive appends to its own buffer; a loading archive reads a
// copy of the bytes it was given. Numbers are little-endian; strings and
// counts use MFC's escaped length prefixes, so bytes written by MFC
// programs on Windows read back unchanged. Loading never throws and never
// reads outside the buffer: running short (or any misuse, such as loading
// from a storing archive) sets a failure state that stays set, and every
// later read yields 0 or an empty string.
//
//   CArchive out(CArchive::store);
//   out << CString("abc") << WORD(7);          // 03 'a' 'b' 'c' 07 00
//   CArchive in(out.GetBytes().data(), out.GetBytes().size());
//   CString text; WORD number; in >> text >> number;
#pragma once

#include <cstddef>
#include <type_traits>
#include <vector>

#include "kwcore/platform/CString.h"
#include "kwcore/platform/Export.h"
#include "kwcore/platform/Win32Types.h"

class KWCORE_API CArchive {
public:
    enum Mode { store = 0, load = 1 };

    // An empty archive: storing, or loading with nothing to read.
    explicit CArchive(Mode mode);
    // A loading archive over a copy of size bytes at data.
    CArchive(const void* data, std::size_t size);
    explicit CArchive(std::vector<BYTE> bytes);

    BOOL IsStoring() const noexcept { return m_mode == store; }
    BOOL IsLoading() const noexcept { return m_mode == load; }
    BOOL HasFailed() const noexcept { return m_failed; }

    const std::vector<BYTE>& GetBytes() const noexcept { return m_bytes; }
    // Bytes left to load.
    std::size_t GetRemaining() const noexcept { return m_bytes.size() - m_readPosition; }
    // Fails the archive unless elementCount elements of bytesPerElement
    // bytes each are left to load; lets a reader refuse a stored count
    // before allocating for it.
    BOOL CheckAvailable(ULONGLONG elementCount, std::size_t bytesPerElement = 1);

    void Write(const void* data, UINT byteCount);
    // Reads byteCount bytes; when fewer are left the archive fails and the
    // rest of data is zero-filled. Returns the number of bytes read.
    UINT Read(void* data, UINT byteCount);

    // Element counts: a WORD, or 0xFFFF and a DWORD (then 0xFFFFFFFF and a
    // 64-bit value, as 64-bit MFC writes counts that need it).
    void WriteCount(DWORD_PTR count);
    DWORD_PTR ReadCount();

    CArchive& operator<<(BYTE value);
    CArchive& operator<<(WORD value);
    CArchive& operator<<(int value);
    CArchive& operator<<(UINT value);
    CArchive& operator<<(const CString& text);
    CArchive& operator>>(BYTE& value);
    CArchive& operator>>(WORD& value);
    CArchive& operator>>(int& value);
    CArchive& operator>>(UINT& value);
    // Reads narrow strings and also MFC's Unicode strings (converted to UTF-8).
    CArchive& operator>>(CString& text);

#if defined(_WIN32)
    // LONG and DWORD are distinct types only on Windows; elsewhere they are
    // int and UINT, whose overloads serve them.
    CArchive& operator<<(LONG value);
    CArchive& operator<<(DWORD value);
    CArchive& operator>>(LONG& value);
    CArchive& operator>>(DWORD& value);
#else
    static_assert(std::is_same_v<LONG, int> && std::is_same_v<DWORD, UINT>,
                  "LONG and DWORD must be served by the int and UINT overloads");
#endif

private:
    void AppendBytes(const BYTE* data, std::size_t byteCount);
    void WriteLittleEndian(ULONGLONG value, int byteCount);
    ULONGLONG ReadLittleEndian(int byteCount);
    bool CanLoad(std::size_t byteCount);
    ULONGLONG ReadStringLength(bool& isUnicode);
    void WriteStringLength(std::size_t length);
    void WriteDwordOrEscape(ULONGLONG value);
    ULONGLONG ReadDwordOrEscape();

    std::vector<BYTE> m_bytes;
    std::size_t m_readPosition = 0;
    Mode m_mode;
    BOOL m_failed = FALSE;
};
