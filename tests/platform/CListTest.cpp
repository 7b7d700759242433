#include "kwcore/platform/CList.h"

#include <gtest/gtest.h>

#include <vector>

#include "kwcore/platform/CString.h"

namespace {

using IntList = CList<int, int>;

std::vector<int> Forward(const IntList& list) {
    std::vector<int> values;
    for (POSITION position = list.GetHeadPosition(); position;) {
        values.push_back(list.GetNext(position));
    }
    return values;
}

std::vector<int> Backward(const IntList& list) {
    std::vector<int> values;
    for (POSITION position = list.GetTailPosition(); position;) {
        values.push_back(list.GetPrev(position));
    }
    return values;
}

IntList MakeList(std::initializer_list<int> values) {
    IntList list;
    for (int value : values) {
        list.AddTail(value);
    }
    return list;
}

TEST(ListOrder, AddsAtBothEnds) {
    IntList list;
    list.AddTail(2);
    list.AddHead(1);
    list.AddTail(3);
    EXPECT_EQ(Forward(list), (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(Backward(list), (std::vector<int>{3, 2, 1}));
    EXPECT_EQ(list.GetCount(), 3);
    EXPECT_EQ(list.GetSize(), 3);
    EXPECT_EQ(list.GetHead(), 1);
    EXPECT_EQ(list.GetTail(), 3);
}

TEST(ListOrder, AddsWholeListsInOrder) {
    IntList list = MakeList({3, 4});
    const IntList front = MakeList({1, 2});
    list.AddHead(&front);
    list.AddTail(&front);
    EXPECT_EQ(Forward(list), (std::vector<int>{1, 2, 3, 4, 1, 2}));
    list.AddTail(static_cast<const IntList*>(nullptr));
    EXPECT_EQ(list.GetCount(), 6);
}

TEST(ListOrder, AddingAListToItselfDoublesItOnce) {
    IntList list = MakeList({1, 2});
    list.AddTail(&list);
    EXPECT_EQ(Forward(list), (std::vector<int>{1, 2, 1, 2}));
    list.AddHead(&list);
    EXPECT_EQ(list.GetCount(), 8);
    EXPECT_EQ(Backward(list), (std::vector<int>{2, 1, 2, 1, 2, 1, 2, 1}));
}

TEST(ListPositions, InsertAroundAPosition) {
    IntList list = MakeList({1, 3});
    POSITION three = list.Find(3);
    list.InsertBefore(three, 2);
    list.InsertAfter(three, 4);
    list.InsertBefore(list.GetHeadPosition(), 0);
    EXPECT_EQ(Forward(list), (std::vector<int>{0, 1, 2, 3, 4}));
    EXPECT_EQ(Backward(list), (std::vector<int>{4, 3, 2, 1, 0}));
}

TEST(ListPositions, NullInsertPositionMeansAnEnd) {
    IntList list = MakeList({2});
    list.InsertBefore(nullptr, 1);
    list.InsertAfter(nullptr, 3);
    EXPECT_EQ(Forward(list), (std::vector<int>{1, 2, 3}));
}

TEST(ListPositions, RemoveAtUnlinksOnlyThatElement) {
    IntList list = MakeList({1, 2, 3});
    list.RemoveAt(list.FindIndex(1));
    EXPECT_EQ(Forward(list), (std::vector<int>{1, 3}));
    list.RemoveAt(list.GetHeadPosition());
    list.RemoveAt(list.GetTailPosition());
    EXPECT_TRUE(list.IsEmpty());
    EXPECT_EQ(list.GetHeadPosition(), nullptr);
    EXPECT_EQ(list.GetTailPosition(), nullptr);
    list.RemoveAt(nullptr);
}

TEST(ListPositions, GetAtAndSetAtAddressOneElement) {
    IntList list = MakeList({1, 2});
    POSITION second = list.FindIndex(1);
    EXPECT_EQ(list.GetAt(second), 2);
    list.SetAt(second, 20);
    list.GetAt(list.GetHeadPosition()) = 10;
    EXPECT_EQ(Forward(list), (std::vector<int>{10, 20}));
}

TEST(ListSearch, FindStartsAfterTheGivenPosition) {
    IntList list = MakeList({5, 6, 5});
    POSITION first = list.Find(5);
    POSITION second = list.Find(5, first);
    EXPECT_EQ(first, list.GetHeadPosition());
    EXPECT_EQ(second, list.GetTailPosition());
    EXPECT_EQ(list.Find(5, second), nullptr);
    EXPECT_EQ(list.Find(7), nullptr);
    EXPECT_EQ(list.FindIndex(2), list.GetTailPosition());
    EXPECT_EQ(list.FindIndex(3), nullptr);
    EXPECT_EQ(list.FindIndex(-1), nullptr);
}

TEST(ListRemoval, RemoveHeadAndTailReturnTheElement) {
    CList<CString> list;
    list.AddTail("a");
    list.AddTail("b");
    list.AddTail("c");
    EXPECT_EQ(list.RemoveHead(), "a");
    EXPECT_EQ(list.RemoveTail(), "c");
    EXPECT_EQ(list.GetHead(), "b");
    EXPECT_EQ(list.GetTail(), "b");
    list.RemoveAll();
    EXPECT_TRUE(list.IsEmpty());
}

TEST(ListInvalidUse, EmptyListAndNullPositionsYieldDefaults) {
    CList<CString> list;
    EXPECT_EQ(list.RemoveHead(), "");
    EXPECT_EQ(list.RemoveTail(), "");
    EXPECT_EQ(list.GetHead(), "");
    list.GetTail() = "written nowhere";
    EXPECT_EQ(list.GetTail(), "");
    POSITION none = nullptr;
    EXPECT_EQ(list.GetNext(none), "");
    EXPECT_EQ(none, nullptr);
    list.SetAt(nullptr, "x");
    EXPECT_TRUE(list.IsEmpty());
}

TEST(ListValue, CopiesAreDeepAndMovesTransfer) {
    IntList original = MakeList({1, 2});
    IntList copy(original);
    copy.AddTail(3);
    EXPECT_EQ(Forward(original), (std::vector<int>{1, 2}));
    original = copy;
    EXPECT_EQ(Forward(original), (std::vector<int>{1, 2, 3}));
    IntList moved(std::move(copy));
    EXPECT_EQ(Forward(moved), (std::vector<int>{1, 2, 3}));
    EXPECT_TRUE(copy.IsEmpty());  // NOLINT(bugprone-use-after-move): a moved-from list is empty
}

}  // namespace
