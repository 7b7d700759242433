#include "kwcore/platform/CList.h"

#include <gtest/gtest.h>

#include <vector>

#include "kwcore/platform/CString.h"

namespace {

using IntList = CList<int, int>;
using Ints = std::vector<int>;

// The elements head to tail, checked against a walk from the tail and the count.
Ints Values(const IntList& list) {
    Ints forward, backward;
    for (POSITION position = list.GetHeadPosition(); position;) {
        forward.push_back(list.GetNext(position));
    }
    for (POSITION position = list.GetTailPosition(); position;) {
        backward.insert(backward.begin(), list.GetPrev(position));
    }
    EXPECT_EQ(forward, backward) << "the links disagree";
    EXPECT_EQ(static_cast<std::size_t>(list.GetCount()), forward.size());
    return forward;
}

IntList MakeList(std::initializer_list<int> values) {
    IntList list;
    for (int value : values) {
        list.AddTail(value);
    }
    return list;
}

TEST(ListOrder, AddsElementsAndWholeListsAtBothEndsEvenTheListItself) {
    IntList list = MakeList({3, 4});
    const IntList pair = MakeList({1, 2});
    list.AddHead(&pair);
    list.AddTail(&pair);
    list.AddTail(static_cast<const IntList*>(nullptr));
    list.AddHead(0);
    EXPECT_EQ(Values(list), (Ints{0, 1, 2, 3, 4, 1, 2}));
    IntList self = MakeList({1, 2});
    self.AddTail(&self);
    self.AddHead(&self);
    EXPECT_EQ(Values(self), (Ints{1, 2, 1, 2, 1, 2, 1, 2}));
}

TEST(ListPositions, InsertAroundAPositionWhereNullMeansAnEndAndRemoveUnlinksOne) {
    IntList list = MakeList({1, 3});
    const POSITION three = list.Find(3);
    list.InsertBefore(three, 2);
    list.InsertAfter(three, 4);
    list.InsertBefore(list.GetHeadPosition(), 0);
    list.InsertBefore(nullptr, -1);
    list.InsertAfter(nullptr, 5);
    EXPECT_EQ(Values(list), (Ints{-1, 0, 1, 2, 3, 4, 5}));
    list.RemoveAt(list.FindIndex(2));
    list.RemoveAt(list.GetHeadPosition());
    list.RemoveAt(list.GetTailPosition());
    list.RemoveAt(nullptr);
    EXPECT_EQ(Values(list), (Ints{0, 2, 3, 4}));
}

TEST(ListSearch, FindStartsAfterTheGivenPositionAndFindIndexStaysInRange) {
    IntList fives = MakeList({5, 6, 5});
    const POSITION first = fives.Find(5);
    EXPECT_EQ(first, fives.GetHeadPosition());
    EXPECT_EQ(fives.Find(5, first), fives.GetTailPosition());
    EXPECT_EQ(fives.FindIndex(2), fives.GetTailPosition());
    EXPECT_TRUE(!fives.Find(5, fives.GetTailPosition()) && !fives.Find(7) && !fives.FindIndex(3) &&
                !fives.FindIndex(-1));
}

TEST(ListRemoval, EndsGiveTheirElementUntilEmptyThenDefaults) {
    CList<CString> list;
    list.AddTail("a");
    list.AddTail("b");
    EXPECT_EQ((std::vector<CString>{list.RemoveHead(), list.RemoveTail(), list.RemoveHead(),
                                    list.RemoveTail()}),
              (std::vector<CString>{"a", "b", "", ""}));
    EXPECT_TRUE(!list.GetHeadPosition() && !list.GetTailPosition());
    list.GetTail() = "written nowhere";
    list.SetAt(nullptr, "x");
    POSITION none = nullptr;
    EXPECT_EQ(list.GetNext(none), "");
    EXPECT_TRUE(list.GetTail().IsEmpty() && list.IsEmpty());
}

TEST(ListValue, CopiesAreDeepAndMovesTransfer) {
    IntList original = MakeList({1, 2});
    IntList copy(original);
    copy.AddTail(3);
    EXPECT_EQ(Values(original), (Ints{1, 2}));
    original = copy;
    copy.RemoveHead();
    IntList moved(std::move(copy));
    EXPECT_EQ(Values(original), (Ints{1, 2, 3}));
    EXPECT_EQ(Values(moved), (Ints{2, 3}));
    EXPECT_TRUE(copy.IsEmpty());  // NOLINT(bugprone-use-after-move): a moved-from list is empty
}

}  // namespace
