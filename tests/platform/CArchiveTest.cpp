#include "kwcore/platform/CArchive.h"

#include <gtest/gtest.h>

#include <string>
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

TEST(ArchiveNumbers, AreStoredLittleEndian) {
    CArchive ar(CArchive::store);
    ar << BYTE(0x12) << WORD(0x3456) << DWORD(0x789ABCDE) << LONG(-2) << -1 << UINT(1);
    EXPECT_EQ(ar.GetBytes(), Bytes({0x12, 0x56, 0x34, 0xDE, 0xBC, 0x9A, 0x78, 0xFE, 0xFF, 0xFF,
                                    0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x01, 0x00, 0x00, 0x00}));
    EXPECT_TRUE(ar.IsStoring());
    EXPECT_FALSE(ar.HasFailed());
}

TEST(ArchiveNumbers, LoadBackAsStored) {
    CArchive ar(Bytes({0x12, 0x56, 0x34, 0xDE, 0xBC, 0x9A, 0x78, 0xFE, 0xFF, 0xFF, 0xFF}));
    BYTE byte = 0;
    WORD word = 0;
    DWORD dword = 0;
    LONG negative = 0;
    ar >> byte >> word >> dword >> negative;
    EXPECT_TRUE(ar.IsLoading());
    EXPECT_FALSE(ar.HasFailed());
    EXPECT_EQ(byte, 0x12);
    EXPECT_EQ(word, 0x3456);
    EXPECT_EQ(dword, 0x789ABCDEu);
    EXPECT_EQ(negative, -2);
    EXPECT_EQ(ar.GetRemaining(), 0u);
}

TEST(ArchiveStrings, ShortStringHasAByteLength) {
    EXPECT_EQ(Stored("abc"), Bytes({0x03, 'a', 'b', 'c'}));
    EXPECT_EQ(Stored(""), Bytes({0x00}));
    const std::string longest(254, 'x');
    EXPECT_EQ(Stored(longest), Concat(Bytes({0xFE}), longest));
}

TEST(ArchiveStrings, From255BytesTheLengthIsAWord) {
    const std::string text(255, 'y');
    EXPECT_EQ(Stored(text), Concat(Bytes({0xFF, 0xFF, 0x00}), text));
    const std::string longest(0xFFFD, 'z');
    EXPECT_EQ(Stored(longest), Concat(Bytes({0xFF, 0xFD, 0xFF}), longest));
}

TEST(ArchiveStrings, From0xFFFEBytesTheLengthIsADword) {
    const std::string text(0xFFFE, 'w');
    EXPECT_EQ(Stored(text), Concat(Bytes({0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0x00, 0x00}), text));
}

TEST(ArchiveStrings, EveryLengthFormLoadsBack) {
    for (int length : {0, 1, 254, 255, 0xFFFD, 0xFFFE, 0x12345}) {
        const CString text(static_cast<char>('a' + length % 26), length);
        EXPECT_EQ(LoadString(Stored(text)), text) << length;
    }
}

TEST(ArchiveStrings, Utf8TextIsStoredByteForByte) {
    const CString text(
        "Gr\xC3\xB6\xC3\x9F"
        "e");
    EXPECT_EQ(Stored(text), Bytes({0x07, 'G', 'r', 0xC3, 0xB6, 0xC3, 0x9F, 'e'}));
    EXPECT_EQ(LoadString(Stored(text)), text);
}

TEST(ArchiveStrings, UnicodeMarkedStringsLoadAsUtf8) {
    // FF FE FF is the marker, then a BYTE length in UTF-16LE units.
    EXPECT_EQ(LoadString(Bytes({0xFF, 0xFE, 0xFF, 0x03, 'a', 0x00, 0xE9, 0x00, 0xAC, 0x20})),
              "a\xC3\xA9\xE2\x82\xAC");
    EXPECT_EQ(LoadString(Bytes({0xFF, 0xFE, 0xFF, 0x02, 0x34, 0xD8, 0x1E, 0xDD})),
              "\xF0\x9D\x84\x9E");
    EXPECT_EQ(LoadString(Bytes({0xFF, 0xFE, 0xFF, 0x01, 0x00, 0xD8})), "\xEF\xBF\xBD");
}

TEST(ArchiveStrings, UnicodeMarkedStringsUseTheLongerLengthForms) {
    std::vector<BYTE> bytes = Bytes({0xFF, 0xFE, 0xFF, 0xFF, 0x00, 0x01});
    for (int i = 0; i < 0x100; ++i) {
        bytes.push_back('u');
        bytes.push_back(0x00);
    }
    EXPECT_EQ(LoadString(bytes), CString('u', 0x100));
}

TEST(ArchiveCounts, UseAWordBelow0xFFFF) {
    CArchive ar(CArchive::store);
    ar.WriteCount(0);
    ar.WriteCount(0xFFFE);
    EXPECT_EQ(ar.GetBytes(), Bytes({0x00, 0x00, 0xFE, 0xFF}));
}

TEST(ArchiveCounts, EscapeToADwordFrom0xFFFF) {
    CArchive ar(CArchive::store);
    ar.WriteCount(65535);
    ar.WriteCount(0x12345678);
    EXPECT_EQ(ar.GetBytes(),
              Bytes({0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0xFF, 0xFF, 0x78, 0x56, 0x34, 0x12}));
    CArchive in(ar.GetBytes());
    EXPECT_EQ(in.ReadCount(), 65535u);
    EXPECT_EQ(in.ReadCount(), 0x12345678u);
    EXPECT_FALSE(in.HasFailed());
}

TEST(ArchiveCounts, EscapeTo64BitsWhereCountsAreThatWide) {
    if constexpr (sizeof(DWORD_PTR) == 8) {
        CArchive ar(CArchive::store);
        ar.WriteCount(static_cast<DWORD_PTR>(0x100000000ull));
        EXPECT_EQ(ar.GetBytes(), Bytes({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x00, 0x00,
                                        0x01, 0x00, 0x00, 0x00}));
        CArchive in(ar.GetBytes());
        EXPECT_EQ(static_cast<unsigned long long>(in.ReadCount()), 0x100000000ull);
    }
}

TEST(ArchiveFailure, ReadingPastTheEndFailsAndZeroesTheOutput) {
    CArchive ar(Bytes({0x01, 0x02, 0x03}));
    DWORD value = 0xDEADBEEF;
    ar >> value;
    EXPECT_TRUE(ar.HasFailed());
    EXPECT_EQ(value, 0u);
}

TEST(ArchiveFailure, FailureIsStickyEvenWithBytesLeft) {
    CArchive ar(Bytes({0x01, 0x02, 0x03}));
    DWORD tooWide = 0;
    WORD fits = 0xFFFF;
    ar >> tooWide >> fits;
    EXPECT_TRUE(ar.HasFailed());
    EXPECT_EQ(fits, 0);
    EXPECT_EQ(ar.ReadCount(), 0u);
}

TEST(ArchiveFailure, TruncatedStringsLoadEmpty) {
    EXPECT_EQ(LoadString(Bytes({0x05, 'a', 'b'}), true), "");
    EXPECT_EQ(LoadString(Bytes({0xFF, 0x00}), true), "");
    EXPECT_EQ(LoadString(Bytes({0xFF, 0xFE, 0xFF, 0x02, 'a', 0x00, 'b'}), true), "");
    EXPECT_EQ(LoadString(Bytes({}), true), "");
}

TEST(ArchiveFailure, HugeLengthsFailWithoutAllocating) {
    EXPECT_EQ(LoadString(Bytes({0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0xFF, 0x7F, 'a'}), true), "");
    EXPECT_EQ(LoadString(Bytes({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                                0xFF, 0xFF, 0xFF, 0xFF, 'a'}),
                         true),
              "");
}

TEST(ArchiveFailure, CheckAvailableRefusesCountsBeyondTheBytesLeft) {
    CArchive ar(Bytes({1, 2, 3, 4}));
    EXPECT_TRUE(ar.CheckAvailable(2, 2));
    EXPECT_FALSE(ar.CheckAvailable(0xFFFFFFFFFFFFFFFFull, 4));
    EXPECT_TRUE(ar.HasFailed());
}

TEST(ArchiveFailure, ShortRawReadZeroFillsTheRest) {
    CArchive ar(Bytes({0xAA, 0xBB}));
    BYTE buffer[4] = {1, 1, 1, 1};
    EXPECT_EQ(ar.Read(buffer, 4), 2u);
    EXPECT_TRUE(ar.HasFailed());
    EXPECT_EQ(std::vector<BYTE>(buffer, buffer + 4), Bytes({0xAA, 0xBB, 0x00, 0x00}));
    EXPECT_EQ(ar.Read(nullptr, 0), 0u);
}

TEST(ArchiveMisuse, LoadingFromAStoringArchiveFails) {
    CArchive ar(CArchive::store);
    int value = 5;
    ar >> value;
    EXPECT_TRUE(ar.HasFailed());
    EXPECT_EQ(value, 0);
}

TEST(ArchiveMisuse, StoringIntoALoadingArchiveFailsAndWritesNothing) {
    CArchive ar(Bytes({0x01}));
    ar << WORD(7) << CString("abc");
    EXPECT_TRUE(ar.HasFailed());
    EXPECT_EQ(ar.GetBytes(), Bytes({0x01}));
}

TEST(ArchiveMisuse, NullDataMakesAnEmptyLoadingArchive) {
    CArchive ar(nullptr, 10);
    EXPECT_TRUE(ar.IsLoading());
    EXPECT_EQ(ar.GetRemaining(), 0u);
    ar.Write(nullptr, 3);
    EXPECT_TRUE(ar.HasFailed());
}

}  // namespace
