#include "kwcore/platform/CArchive.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "ArchiveBytes.h"

namespace {

std::vector<BYTE> Stored(const CString& text) {
    CArchive ar(CArchive::store);
    ar << text;
    return ar.GetBytes();
}

CString LoadString(const std::vector<BYTE>& bytes, bool expectFailure = false) {
    CArchive ar(bytes);
    CString text("unchanged?");
    ar >> text;
    EXPECT_EQ(ar.HasFailed() != FALSE, expectFailure);
    return text;
}

template <typename T>
T Read(CArchive& ar) {
    T value = static_cast<T>(0x5A5A5A5A);
    ar >> value;
    return value;
}

TEST(ArchiveNumbers, AreStoredLittleEndianAndLoadBack) {
    CArchive ar(CArchive::store);
    ar << BYTE(0x12) << WORD(0x3456) << DWORD(0x789ABCDE) << LONG(-2) << -1 << UINT(1);
    EXPECT_EQ(ar.GetBytes(), Hex("12 56 34 de bc 9a 78 fe ff ff ff ff ff ff ff 01 00 00 00"));
    CArchive in(ar.GetBytes());
    EXPECT_TRUE(Read<BYTE>(in) == 0x12 && Read<WORD>(in) == 0x3456 &&
                Read<DWORD>(in) == 0x789ABCDE && Read<LONG>(in) == -2 && Read<int>(in) == -1 &&
                Read<UINT>(in) == 1);
    EXPECT_TRUE(in.IsLoading() && !in.HasFailed() && in.GetRemaining() == 0);
}

TEST(ArchiveStrings, LengthIsAByteThenEscapesToAWordFrom255AndADwordFrom0xFFFE) {
    const std::pair<int, std::vector<BYTE>> cases[] = {{0, Hex("00")},
                                                       {3, Hex("03")},
                                                       {254, Hex("fe")},
                                                       {255, Hex("ff ff 00")},
                                                       {0xFFFD, Hex("ff fd ff")},
                                                       {0xFFFE, Hex("ff ff ff fe ff 00 00")},
                                                       {0x12345, Hex("ff ff ff 45 23 01 00")}};
    for (const auto& [length, prefix] : cases) {
        const std::string text(static_cast<std::size_t>(length),
                               static_cast<char>('a' + length % 26));
        EXPECT_EQ(Stored(text), Concat(prefix, text)) << length;
        EXPECT_EQ(LoadString(Stored(text)), CString(text)) << length;
    }
    EXPECT_EQ(Stored("Gr\xC3\xB6\xC3\x9Fn"), Hex("07 'Gr' c3 b6 c3 9f 'n'"));
}

TEST(ArchiveStrings, UnicodeMarkedStringsLoadAsUtf8) {
    // FF FE FF marks UTF-16LE text; its length counts units and escapes like
    // a narrow length. A lone surrogate becomes U+FFFD.
    std::string units(0x200, '\0');
    for (std::size_t i = 0; i < units.size(); i += 2) {
        units[i] = 'u';
    }
    EXPECT_EQ(LoadString(Hex("ff fe ff 03 'a' 00 e9 00 ac 20")), "a\xC3\xA9\xE2\x82\xAC");
    EXPECT_EQ(LoadString(Hex("ff fe ff 02 34 d8 1e dd")), "\xF0\x9D\x84\x9E");
    EXPECT_EQ(LoadString(Hex("ff fe ff 01 00 d8")), "\xEF\xBF\xBD");
    EXPECT_EQ(LoadString(Concat(Hex("ff fe ff ff 00 01"), units)), CString('u', 0x100));
}

TEST(ArchiveCounts, AreAWordBelow0xFFFFAndEscapeToWiderForms) {
    const std::pair<ULONGLONG, std::vector<BYTE>> cases[] = {
        {0, Hex("00 00")},
        {0xFFFE, Hex("fe ff")},
        {0xFFFF, Hex("ff ff ff ff 00 00")},
        {0x12345678, Hex("ff ff 78 56 34 12")},
        {0x100000000ull, Hex("ff ff ff ff ff ff 00 00 00 00 01 00 00 00")}};
    for (const auto& [count, bytes] : cases) {
        if (sizeof(DWORD_PTR) < 8 && count > 0xFFFFFFFFu) {
            continue;  // counts are 32 bits wide here
        }
        CArchive ar(CArchive::store);
        ar.WriteCount(static_cast<DWORD_PTR>(count));
        EXPECT_EQ(ar.GetBytes(), bytes) << count;
        CArchive in(bytes);
        EXPECT_EQ(static_cast<ULONGLONG>(in.ReadCount()), count);
        EXPECT_FALSE(in.HasFailed());
    }
}

TEST(ArchiveFailure, ReadingPastTheEndFailsForGoodAndZeroesTheOutputs) {
    CArchive ar(Hex("01 02 03"));
    EXPECT_EQ(Read<DWORD>(ar), 0u);
    EXPECT_EQ(Read<WORD>(ar), 0);  // would fit, but the failure sticks
    EXPECT_TRUE(ar.ReadCount() == 0 && ar.HasFailed());
    CArchive raw(Hex("aa bb"));
    BYTE buffer[4] = {1, 1, 1, 1};
    EXPECT_EQ(raw.Read(buffer, 4), 2u);
    EXPECT_EQ(std::vector<BYTE>(buffer, buffer + 4), Hex("aa bb 00 00"));
    EXPECT_TRUE(raw.HasFailed());
    CArchive counted(Hex("01 02 03 04"));  // the size check must not overflow
    EXPECT_TRUE(counted.CheckAvailable(2, 2) && !counted.CheckAvailable(0xFFFFFFFFFFFFFFFFull, 4) &&
                counted.HasFailed());
}

TEST(ArchiveFailure, TruncatedOrHugeStringsLoadEmpty) {
    // Too short for the length, a WORD or UTF-16 unit cut off, and lengths of
    // 0x7FFFFFFF and 2^64-1 with one byte behind them.
    for (const char* bytes :
         {"", "05 'ab'", "ff 00", "ff fe ff 02 'a' 00 'b'", "ff ff ff fe ff ff 7f 'a'",
          "ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff 'a'"}) {
        EXPECT_EQ(LoadString(Hex(bytes), true), "") << bytes;
    }
}

TEST(ArchiveMisuse, ReadingAStoringArchiveOrWritingALoadingOneFails) {
    CArchive storing(CArchive::store);
    EXPECT_TRUE(Read<int>(storing) == 0 && storing.HasFailed());
    CArchive loading(Hex("01"));
    loading << WORD(7) << CString("abc");
    EXPECT_TRUE(loading.HasFailed() && loading.GetBytes() == Hex("01"));
    CArchive empty(nullptr, 10);
    EXPECT_TRUE(empty.IsLoading() && empty.GetRemaining() == 0);
    empty.Write(nullptr, 3);
    EXPECT_TRUE(empty.HasFailed());
}

}  // namespace
