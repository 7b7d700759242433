#include "kwcore/platform/Arrays.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using IntArray = CArray<int, int>;

std::vector<int> Values(const IntArray& array) {
    return std::vector<int>(array.GetData(), array.GetData() + array.GetSize());
}

IntArray MakeArray(std::initializer_list<int> values) {
    IntArray array;
    for (int value : values) {
        array.Add(value);
    }
    return array;
}

TEST(ArrayBounds, OnlySetSizeAndSetAtGrowGrowAndNewElementsAreDefaulted) {
    IntArray array;
    EXPECT_EQ((std::vector<INT_PTR>{array.Add(1), array.Add(2)}), (std::vector<INT_PTR>{0, 1}));
    array.SetSize(4);
    EXPECT_EQ(Values(array), (std::vector<int>{1, 2, 0, 0}));
    array.SetSize(1);
    array.SetAtGrow(3, 4);
    array.SetAtGrow(-1, 9);
    array[5] = 99;
    array.SetAt(4, 99);
    EXPECT_TRUE(array.GetAt(5) == 0 && array[-1] == 0 && array.ElementAt(6) == 0);
    EXPECT_EQ(Values(array), (std::vector<int>{1, 0, 0, 4}));
    array.SetSize(-3);
    EXPECT_TRUE(array.IsEmpty() && array.GetData() == nullptr && array.GetUpperBound() == -1);
    CArray<CString> strings;
    strings.Add("first");
    strings.SetAtGrow(100, strings[0]);  // the source moves while the array grows
    EXPECT_EQ(strings[100], "first");
}

TEST(ArrayEditing, InsertAndRemoveShiftElementsAndClampPositionsAndCounts) {
    IntArray array = MakeArray({1, 4});
    array.InsertAt(1, 2);
    array.InsertAt(2, 3, 1);
    array.InsertAt(-1, 5);
    array.InsertAt(0, 5, 0);
    array.InsertAt(6, 7, 2);
    EXPECT_EQ(Values(array), (std::vector<int>{1, 2, 3, 4, 0, 0, 7, 7}));
    array.RemoveAt(4, 99);
    array.RemoveAt(1);
    array.RemoveAt(5);
    array.RemoveAt(-1);
    array.RemoveAt(0, 0);
    EXPECT_EQ(Values(array), (std::vector<int>{1, 3, 4}));
    const IntArray middle = MakeArray({2});
    array.InsertAt(1, &middle);
    array.InsertAt(0, &array);
    array.InsertAt(0, static_cast<const IntArray*>(nullptr));
    EXPECT_EQ(Values(array), (std::vector<int>{1, 2, 3, 4, 1, 2, 3, 4}));
}

TEST(ArrayEditing, AppendAndCopyAcceptTheArrayItself) {
    IntArray array = MakeArray({1, 2});
    const IntArray tail = MakeArray({3});
    EXPECT_EQ(array.Append(tail), 2);
    EXPECT_EQ(array.Append(array), 3);
    EXPECT_EQ(Values(array), (std::vector<int>{1, 2, 3, 1, 2, 3}));
    array.Copy(tail);
    array.Copy(array);
    EXPECT_EQ(Values(array), (std::vector<int>{3}));
}

}  // namespace
