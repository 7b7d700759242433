#include "kwcore/platform/CRect.h"

#include <gtest/gtest.h>

namespace {

TEST(Rect, IsEmptyWithoutAreaAndExcludesItsRightAndBottomEdges) {
    EXPECT_TRUE(CRect(5, 5, 5, 10).IsRectEmpty() && CRect(10, 0, 0, 10).IsRectEmpty());
    EXPECT_FALSE(CRect(0, 0, 1, 1).IsRectEmpty() || CRect(5, 5, 5, 10).IsRectNull());
    const CRect rect(0, 0, 10, 10);
    EXPECT_TRUE(rect.PtInRect(CPoint(0, 0)) && rect.PtInRect(CPoint(9, 9)));
    EXPECT_FALSE(rect.PtInRect(CPoint(10, 5)) || rect.PtInRect(CPoint(5, 10)));
    EXPECT_EQ(rect + CRect(1, 2, 3, 4), CRect(-1, -2, 13, 14));  // a RECT operand inflates
}

TEST(Rect, EmptyResultsAreAllZeroAndEmptyInputsDoNotWidenAUnion) {
    const struct {
        CRect a, b, intersection, united;
    } cases[] = {{{0, 0, 10, 10}, {5, 5, 15, 15}, {5, 5, 10, 10}, {0, 0, 15, 15}},
                 {{0, 0, 5, 5}, {5, 0, 10, 5}, {}, {0, 0, 10, 5}},
                 {{100, 100, 100, 100}, {1, 1, 2, 2}, {}, {1, 1, 2, 2}},
                 {{3, 3, 3, 9}, {}, {}, {}}};
    for (const auto& c : cases) {
        CRect result(1, 2, 3, 4);
        EXPECT_EQ(result.IntersectRect(c.a, c.b) != FALSE, !c.intersection.IsRectNull());
        EXPECT_EQ(result, c.intersection);
        result.SetRect(1, 2, 3, 4);
        EXPECT_EQ(result.UnionRect(c.a, c.b) != FALSE, !c.united.IsRectNull());
        EXPECT_EQ(result, c.united);
    }
    CRect result(1, 2, 3, 4);
    EXPECT_FALSE(result.IntersectRect(nullptr, CRect(0, 0, 5, 5)));  // null counts as empty
    EXPECT_TRUE(result.IsRectNull());
}

}  // namespace
