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

TEST(ArrayGrowth, AddReturnsTheNewIndex) {
    IntArray array;
    EXPECT_TRUE(array.IsEmpty());
    EXPECT_EQ(array.GetData(), nullptr);
    EXPECT_EQ(array.GetUpperBound(), -1);
    EXPECT_EQ(array.Add(7), 0);
    EXPECT_EQ(array.Add(8), 1);
    EXPECT_EQ(array.GetCount(), 2);
    EXPECT_EQ(array.GetUpperBound(), 1);
}

TEST(ArrayGrowth, SetSizeDefaultsNewElementsAndTruncates) {
    IntArray array = MakeArray({1, 2});
    array.SetSize(4);
    EXPECT_EQ(Values(array), (std::vector<int>{1, 2, 0, 0}));
    array.SetSize(1);
    EXPECT_EQ(Values(array), (std::vector<int>{1}));
    array.SetSize(-3);
    EXPECT_TRUE(array.IsEmpty());
}

TEST(ArrayGrowth, SetAtGrowExtendsTheArray) {
    IntArray array = MakeArray({1});
    array.SetAtGrow(3, 4);
    EXPECT_EQ(Values(array), (std::vector<int>{1, 0, 0, 4}));
    array.SetAtGrow(-1, 9);
    EXPECT_EQ(array.GetSize(), 4);
}

TEST(ArrayGrowth, SetAtGrowMayCopyFromItsOwnElement) {
    CArray<CString> array;
    array.Add("first");
    array.SetAtGrow(100, array[0]);
    EXPECT_EQ(array[100], "first");
}

TEST(ArrayAccess, ReadsAndWritesInRange) {
    IntArray array = MakeArray({1, 2, 3});
    array.SetAt(0, 10);
    array[1] = 20;
    array.ElementAt(2) += 10;
    EXPECT_EQ(array.GetAt(0), 10);
    EXPECT_EQ(Values(array), (std::vector<int>{10, 20, 13}));
}

TEST(ArrayAccess, OutOfRangeReadsDefaultAndWritesNowhere) {
    IntArray array = MakeArray({1});
    EXPECT_EQ(array.GetAt(5), 0);
    EXPECT_EQ(array[-1], 0);
    array[3] = 99;
    array.SetAt(2, 99);
    EXPECT_EQ(array.ElementAt(3), 0);
    EXPECT_EQ(Values(array), (std::vector<int>{1}));
}

TEST(ArrayEditing, InsertAtShiftsAndGrows) {
    IntArray array = MakeArray({1, 4});
    array.InsertAt(1, 2);
    array.InsertAt(2, 3, 1);
    EXPECT_EQ(Values(array), (std::vector<int>{1, 2, 3, 4}));
    array.InsertAt(6, 7, 2);
    EXPECT_EQ(Values(array), (std::vector<int>{1, 2, 3, 4, 0, 0, 7, 7}));
    array.InsertAt(-1, 5);
    array.InsertAt(0, 5, 0);
    EXPECT_EQ(array.GetSize(), 8);
}

TEST(ArrayEditing, InsertAtTakesAnotherArray) {
    IntArray array = MakeArray({1, 4});
    const IntArray middle = MakeArray({2, 3});
    array.InsertAt(1, &middle);
    EXPECT_EQ(Values(array), (std::vector<int>{1, 2, 3, 4}));
    array.InsertAt(0, &array);
    EXPECT_EQ(Values(array), (std::vector<int>{1, 2, 3, 4, 1, 2, 3, 4}));
    array.InsertAt(0, static_cast<const IntArray*>(nullptr));
    EXPECT_EQ(array.GetSize(), 8);
}

TEST(ArrayEditing, RemoveAtClampsTheCount) {
    IntArray array = MakeArray({1, 2, 3, 4});
    array.RemoveAt(1);
    EXPECT_EQ(Values(array), (std::vector<int>{1, 3, 4}));
    array.RemoveAt(1, 99);
    EXPECT_EQ(Values(array), (std::vector<int>{1}));
    array.RemoveAt(5);
    array.RemoveAt(-1);
    array.RemoveAt(0, 0);
    EXPECT_EQ(Values(array), (std::vector<int>{1}));
    array.RemoveAll();
    EXPECT_TRUE(array.IsEmpty());
}

TEST(ArrayEditing, AppendAndCopy) {
    IntArray array = MakeArray({1, 2});
    const IntArray tail = MakeArray({3});
    EXPECT_EQ(array.Append(tail), 2);
    EXPECT_EQ(array.Append(array), 3);
    EXPECT_EQ(Values(array), (std::vector<int>{1, 2, 3, 1, 2, 3}));
    IntArray copy;
    copy.Copy(tail);
    EXPECT_EQ(Values(copy), (std::vector<int>{3}));
    copy.Copy(copy);
    EXPECT_EQ(Values(copy), (std::vector<int>{3}));
}

}  // namespace
