#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ArchiveBytes.h"
#include "kwcore/platform/Arrays.h"
#include "kwcore/platform/CArchive.h"
#include "kwcore/platform/CStringList.h"

namespace {

template <typename Collection>
std::vector<BYTE> Stored(Collection& collection) {
    CArchive ar(CArchive::store);
    collection.Serialize(ar);
    return ar.GetBytes();
}

template <typename Collection>
bool Load(Collection& collection, const std::vector<BYTE>& bytes) {
    CArchive ar(bytes);
    collection.Serialize(ar);
    return !ar.HasFailed();
}

std::vector<CString> Strings(const CStringList& list) {
    std::vector<CString> strings;
    for (POSITION position = list.GetHeadPosition(); position;) {
        strings.push_back(list.GetNext(position));
    }
    return strings;
}

TEST(StoredStringList, HasACountThenLengthPrefixedStrings) {
    CStringList list;
    list.AddTail("ab");
    list.AddTail("");
    list.AddTail("xyz");
    EXPECT_EQ(Stored(list), Bytes({0x03, 0x00, 0x02, 'a', 'b', 0x00, 0x03, 'x', 'y', 'z'}));
    CStringList empty;
    EXPECT_EQ(Stored(empty), Bytes({0x00, 0x00}));
    EXPECT_TRUE(list.IsKindOf(RUNTIME_CLASS(CStringList)));
}

TEST(StoredStringList, LoadingAppendsAsMfcDoes) {
    CStringList list;
    list.AddTail("old");
    ASSERT_TRUE(Load(list, Bytes({0x02, 0x00, 0x01, 'a', 0x01, 'b'})));
    EXPECT_EQ(Strings(list), (std::vector<CString>{"old", "a", "b"}));
}

TEST(StoredStringList, FailedLoadLeavesTheListUnchanged) {
    CStringList list;
    list.AddTail("keep");
    EXPECT_FALSE(Load(list, Bytes({0x02, 0x00, 0x01, 'a', 0x05, 'b'})));
    EXPECT_FALSE(Load(list, Bytes({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F, 0x01, 'a'})));
    EXPECT_FALSE(Load(list, Bytes({0x01})));
    EXPECT_EQ(Strings(list), (std::vector<CString>{"keep"}));
}

TEST(StoredStringList, CountOf65535UsesTheDwordEscape) {
    CStringList list;
    for (int i = 0; i < 65535; ++i) {
        list.AddTail("");
    }
    const std::vector<BYTE> bytes = Stored(list);
    ASSERT_EQ(bytes.size(), 6u + 65535u);
    EXPECT_EQ(std::vector<BYTE>(bytes.begin(), bytes.begin() + 7),
              Bytes({0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x00}));
    CStringList loaded;
    ASSERT_TRUE(Load(loaded, bytes));
    EXPECT_EQ(loaded.GetCount(), 65535);
}

TEST(StoredStringArray, MatchesTheListLayoutAndReplacesOnLoad) {
    CStringArray array;
    array.Add("ab");
    array.Add(CString('c', 255));
    EXPECT_EQ(Stored(array),
              Concat(Bytes({0x02, 0x00, 0x02, 'a', 'b', 0xFF, 0xFF, 0x00}), std::string(255, 'c')));
    EXPECT_TRUE(array.IsKindOf(RUNTIME_CLASS(CStringArray)));
    CStringArray loaded;
    loaded.Add("old");
    ASSERT_TRUE(Load(loaded, Stored(array)));
    ASSERT_EQ(loaded.GetSize(), 2);
    EXPECT_EQ(loaded[0], "ab");
    EXPECT_EQ(loaded[1], CString('c', 255));
}

TEST(StoredStringArray, ReadsUnicodeMarkedElements) {
    CStringArray array;
    ASSERT_TRUE(Load(array, Bytes({0x01, 0x00, 0xFF, 0xFE, 0xFF, 0x01, 0xFC, 0x00})));
    ASSERT_EQ(array.GetSize(), 1);
    EXPECT_EQ(array[0], "\xC3\xBC");
}

TEST(StoredByteArray, HoldsRawBytes) {
    CByteArray array;
    array.Add(0x00);
    array.Add(0xFF);
    array.Add(0x7F);
    EXPECT_EQ(Stored(array), Bytes({0x03, 0x00, 0x00, 0xFF, 0x7F}));
    CByteArray loaded;
    ASSERT_TRUE(Load(loaded, Stored(array)));
    EXPECT_EQ(std::vector<BYTE>(loaded.GetData(), loaded.GetData() + 3), Bytes({0x00, 0xFF, 0x7F}));
}

TEST(StoredWordArray, HoldsLittleEndianWords) {
    CWordArray array;
    array.Add(0x0102);
    array.Add(0xFFFE);
    EXPECT_EQ(Stored(array), Bytes({0x02, 0x00, 0x02, 0x01, 0xFE, 0xFF}));
    CWordArray loaded;
    ASSERT_TRUE(Load(loaded, Stored(array)));
    EXPECT_EQ(loaded[1], 0xFFFE);
}

TEST(StoredDWordArray, HoldsLittleEndianDwords) {
    CDWordArray array;
    array.Add(0x01020304);
    array.Add(0xFFFFFFFF);
    EXPECT_EQ(Stored(array), Bytes({0x02, 0x00, 0x04, 0x03, 0x02, 0x01, 0xFF, 0xFF, 0xFF, 0xFF}));
    CDWordArray loaded;
    ASSERT_TRUE(Load(loaded, Stored(array)));
    EXPECT_EQ(loaded[0], 0x01020304u);
}

TEST(StoredUIntArray, HoldsFourBytesPerElement) {
    CUIntArray array;
    array.Add(1);
    array.Add(0x80000000u);
    EXPECT_EQ(Stored(array), Bytes({0x02, 0x00, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x80}));
    CUIntArray loaded;
    ASSERT_TRUE(Load(loaded, Stored(array)));
    EXPECT_EQ(loaded[1], 0x80000000u);
}

TEST(StoredArrays, CountOf65535UsesTheDwordEscape) {
    CByteArray array;
    array.SetSize(65535);
    const std::vector<BYTE> bytes = Stored(array);
    ASSERT_EQ(bytes.size(), 6u + 65535u);
    EXPECT_EQ(std::vector<BYTE>(bytes.begin(), bytes.begin() + 6),
              Bytes({0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00}));
    CByteArray loaded;
    ASSERT_TRUE(Load(loaded, bytes));
    EXPECT_EQ(loaded.GetSize(), 65535);
}

TEST(StoredArrays, FailedLoadLeavesTheArrayUnchanged) {
    CWordArray words;
    words.Add(7);
    EXPECT_FALSE(Load(words, Bytes({0x02, 0x00, 0x01, 0x00, 0x02})));
    EXPECT_FALSE(Load(words, Bytes({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                                    0xFF, 0xFF, 0xFF, 0xFF})));
    EXPECT_FALSE(Load(words, Bytes({})));
    ASSERT_EQ(words.GetSize(), 1);
    EXPECT_EQ(words[0], 7);

    CStringArray strings;
    strings.Add("keep");
    EXPECT_FALSE(Load(strings, Bytes({0x03, 0x00, 0x01, 'a', 0x01, 'b'})));
    ASSERT_EQ(strings.GetSize(), 1);
    EXPECT_EQ(strings[0], "keep");
}

TEST(StoredArrays, GarbageNeverCrashes) {
    std::vector<BYTE> garbage;
    unsigned state = 12345;
    for (int round = 0; round < 200; ++round) {
        garbage.clear();
        for (int i = 0; i < 40; ++i) {
            state = state * 1103515245u + 12345u;
            garbage.push_back(static_cast<BYTE>(state >> 16));
        }
        CStringArray strings;
        CDWordArray dwords;
        CStringList list;
        Load(strings, garbage);
        Load(dwords, garbage);
        Load(list, garbage);
        EXPECT_LE(strings.GetSize() + dwords.GetSize() + list.GetCount(), 120);
    }
}

}  // namespace
