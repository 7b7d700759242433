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

// Stores the elements, compares the bytes, and loads them back into an array
// that already holds an element, which the load replaces.
template <typename Array, typename Element>
void ExpectStoredAs(std::initializer_list<Element> elements, const std::vector<BYTE>& bytes) {
    Array array;
    for (const Element& element : elements) {
        array.Add(element);
    }
    const char* name = array.GetRuntimeClass()->m_lpszClassName;
    EXPECT_TRUE(array.IsKindOf(Array::GetThisClass())) << name;
    EXPECT_EQ(Stored(array), bytes) << name;
    Array loaded;
    loaded.Add(Element());
    ASSERT_TRUE(Load(loaded, bytes)) << name;
    EXPECT_EQ(std::vector<Element>(loaded.GetData(), loaded.GetData() + loaded.GetSize()),
              std::vector<Element>(elements))
        << name;
}

TEST(StoredArrays, EachClassWritesACountThenItsElementsLittleEndian) {
    ExpectStoredAs<CByteArray, BYTE>({0x00, 0xFF, 0x7F}, Hex("03 00 00 ff 7f"));
    ExpectStoredAs<CWordArray, WORD>({0x0102, 0xFFFE}, Hex("02 00 02 01 fe ff"));
    ExpectStoredAs<CDWordArray, DWORD>({0x01020304, 0xFFFFFFFF},
                                       Hex("02 00 04 03 02 01 ff ff ff ff"));
    ExpectStoredAs<CUIntArray, UINT>({1, 0x80000000u}, Hex("02 00 01 00 00 00 00 00 00 80"));
    ExpectStoredAs<CStringArray, CString>(
        {"ab", CString('c', 255)}, Concat(Hex("02 00 02 'ab' ff ff 00"), std::string(255, 'c')));
}

TEST(StoredArrays, CountOf65535UsesTheDwordEscape) {
    CByteArray array;
    array.SetSize(65535);
    const std::vector<BYTE> bytes = Stored(array);
    EXPECT_EQ(std::vector<BYTE>(bytes.begin(), bytes.begin() + 7), Hex("ff ff ff ff 00 00 00"));
    EXPECT_EQ(bytes.size(), 6u + 65535u);
    CByteArray loaded;
    EXPECT_TRUE(Load(loaded, bytes) && loaded.GetSize() == 65535);
}

TEST(StoredStringList, HasTheArrayLayoutButLoadingAppendsAsMfcDoes) {
    CStringList list;
    list.AddTail("ab");
    list.AddTail("");
    list.AddTail("xyz");
    EXPECT_EQ(Stored(list), Hex("03 00 02 'ab' 00 03 'xyz'"));
    EXPECT_TRUE(list.IsKindOf(RUNTIME_CLASS(CStringList)));
    CStringList loaded;
    loaded.AddTail("old");
    EXPECT_TRUE(Load(loaded, Hex("02 00 01 'a' 01 'b'")));
    EXPECT_EQ(Stored(loaded), Hex("03 00 03 'old' 01 'a' 01 'b'"));
}

TEST(StoredCollections, FailedLoadLeavesTheContentsUnchanged) {
    CStringList list;
    list.AddTail("keep");
    EXPECT_FALSE(Load(list, Hex("02 00 01 'a' 05 'b'")));
    EXPECT_FALSE(Load(list, Hex("ff ff ff ff ff 7f 01 'a'")));
    EXPECT_FALSE(Load(list, Hex("01")));
    EXPECT_EQ(Stored(list), Hex("01 00 04 'keep'"));

    CWordArray words;
    words.Add(7);
    EXPECT_FALSE(Load(words, Hex("02 00 01 00 02")));
    EXPECT_FALSE(Load(words, Hex("ff ff ff ff ff ff ff ff ff ff ff ff ff ff")));
    EXPECT_FALSE(Load(words, Hex("")));
    EXPECT_TRUE(words.GetSize() == 1 && words[0] == 7);

    CStringArray strings;
    strings.Add("keep");
    EXPECT_FALSE(Load(strings, Hex("03 00 01 'a' 01 'b'")));
    EXPECT_TRUE(strings.GetSize() == 1 && strings[0] == "keep");
}

TEST(StoredCollections, GarbageNeverCrashes) {
    unsigned state = 12345;
    for (int round = 0; round < 200; ++round) {
        std::vector<BYTE> garbage;
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
