#include "kwcore/system/CKWThreadHoldCounts.h"

#include <gtest/gtest.h>

namespace {

TEST(SystemThreadHoldCounts, CountsStayPutWhileOthersComeAndGo) {
    CKWThreadHoldCounts counts;
    DWORD& dwFirst = counts[7];
    dwFirst = 3;
    // Enough threads to make the table grow several times.
    for (DWORD dwThread = 100; dwThread < 1100; ++dwThread)
        counts[dwThread] = dwThread;
    for (DWORD dwThread = 100; dwThread < 1100; dwThread += 2)
        counts.Remove(*counts.Find(dwThread));
    EXPECT_EQ(&counts[7], &dwFirst);
    EXPECT_EQ(dwFirst, 3u);
    EXPECT_EQ(counts.GetCount(), 501u);
    EXPECT_EQ(counts[101], 101u);
}

TEST(SystemThreadHoldCounts, NewThreadStartsAtZeroInAFreedSlot) {
    CKWThreadHoldCounts counts;
    counts[1] = 5;
    counts[2] = 6;
    SKWHoldSlot* pSlot = counts.Find(1);
    ASSERT_NE(pSlot, nullptr);
    counts.Remove(*pSlot);
    EXPECT_EQ(counts.Find(1), nullptr);
    EXPECT_EQ(counts.GetCount(), 1u);
    // The freed slot is taken again, with no count left over.
    DWORD& dwNew = counts[3];
    EXPECT_EQ(&dwNew, &pSlot->dwCount);
    EXPECT_EQ(dwNew, 0u);
    EXPECT_EQ(counts.GetCount(), 2u);
}

TEST(SystemThreadHoldCounts, CopyHasTheSameCountsApart) {
    CKWThreadHoldCounts counts;
    counts[1] = 0x10001;
    counts[2] = 2;
    CKWThreadHoldCounts copy(counts);
    counts.Remove(*counts.Find(1));
    ASSERT_NE(copy.Find(1), nullptr);
    EXPECT_EQ(copy.Find(1)->dwCount, 0x10001u);
    EXPECT_EQ(copy.GetCount(), 2u);
    CKWThreadHoldCounts other;
    other.Swap(copy);
    EXPECT_EQ(copy.GetCount(), 0u);
    EXPECT_EQ(other[2], 2u);
}

}  // namespace
