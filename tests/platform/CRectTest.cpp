#include "kwcore/platform/CRect.h"

#include <gtest/gtest.h>

namespace {

TEST(PointAndSize, ArithmeticMixesPointsAndSizes) {
    CPoint point(1, 2);
    const CSize size(10, 20);
    EXPECT_EQ(point + size, CPoint(11, 22));
    EXPECT_EQ(point - size, CPoint(-9, -18));
    EXPECT_EQ(CPoint(5, 5) - point, CSize(4, 3));
    EXPECT_EQ(-point, CPoint(-1, -2));
    EXPECT_EQ(size + point, CPoint(11, 22));
    EXPECT_EQ(size - CSize(1, 1), CSize(9, 19));
    point += size;
    point -= CPoint(1, 1);
    EXPECT_EQ(point, CPoint(10, 21));
    EXPECT_NE(point, CPoint(10, 20));
}

TEST(RectMeasures, WidthHeightAndCorners) {
    const CRect rect(10, 20, 40, 80);
    EXPECT_EQ(rect.Width(), 30);
    EXPECT_EQ(rect.Height(), 60);
    EXPECT_EQ(rect.Size(), CSize(30, 60));
    EXPECT_EQ(rect.TopLeft(), CPoint(10, 20));
    EXPECT_EQ(rect.BottomRight(), CPoint(40, 80));
    EXPECT_EQ(rect.CenterPoint(), CPoint(25, 50));
    EXPECT_EQ(CRect(CPoint(1, 2), CSize(3, 4)), CRect(1, 2, 4, 6));
    EXPECT_EQ(CRect(CPoint(1, 2), CPoint(3, 4)), CRect(1, 2, 3, 4));
}

TEST(RectMeasures, EmptyMeansNoAreaAndNullMeansAllZero) {
    EXPECT_TRUE(CRect().IsRectEmpty());
    EXPECT_TRUE(CRect().IsRectNull());
    EXPECT_TRUE(CRect(5, 5, 5, 10).IsRectEmpty());
    EXPECT_TRUE(CRect(10, 0, 0, 10).IsRectEmpty());
    EXPECT_FALSE(CRect(5, 5, 5, 10).IsRectNull());
    EXPECT_FALSE(CRect(0, 0, 1, 1).IsRectEmpty());
}

TEST(RectMeasures, PointsOnTheRightAndBottomEdgesAreOutside) {
    const CRect rect(0, 0, 10, 10);
    EXPECT_TRUE(rect.PtInRect(CPoint(0, 0)));
    EXPECT_TRUE(rect.PtInRect(CPoint(9, 9)));
    EXPECT_FALSE(rect.PtInRect(CPoint(10, 5)));
    EXPECT_FALSE(rect.PtInRect(CPoint(5, 10)));
    EXPECT_FALSE(rect.PtInRect(CPoint(-1, 5)));
}

TEST(RectChanges, OffsetInflateAndDeflate) {
    CRect rect(0, 0, 10, 10);
    rect.OffsetRect(5, -5);
    EXPECT_EQ(rect, CRect(5, -5, 15, 5));
    rect.OffsetRect(CSize(-5, 5));
    rect.InflateRect(1, 2);
    EXPECT_EQ(rect, CRect(-1, -2, 11, 12));
    rect.DeflateRect(1, 2);
    rect.InflateRect(1, 2, 3, 4);
    EXPECT_EQ(rect, CRect(-1, -2, 13, 14));
    const RECT margins = {1, 2, 3, 4};
    rect.DeflateRect(&margins);
    EXPECT_EQ(rect, CRect(0, 0, 10, 10));
    rect.InflateRect(static_cast<const RECT*>(nullptr));
    EXPECT_EQ(rect, CRect(0, 0, 10, 10));
    rect.SetRect(10, 20, 0, 5);
    rect.NormalizeRect();
    EXPECT_EQ(rect, CRect(0, 5, 10, 20));
}

TEST(RectOperators, MoveByPointsAndSizesAndInflateByRects) {
    const CRect rect(0, 0, 10, 10);
    EXPECT_EQ(rect + CPoint(1, 2), CRect(1, 2, 11, 12));
    EXPECT_EQ(rect - CSize(1, 2), CRect(-1, -2, 9, 8));
    const CRect margins(1, 1, 1, 1);
    EXPECT_EQ(rect + margins, CRect(-1, -1, 11, 11));
    EXPECT_EQ(rect - margins, CRect(1, 1, 9, 9));
    CRect moved = rect;
    moved += CSize(3, 3);
    moved -= CPoint(1, 1);
    EXPECT_EQ(moved, CRect(2, 2, 12, 12));
    EXPECT_NE(moved, rect);
}

TEST(RectSetOperations, IntersectionOfOverlappingRects) {
    CRect result;
    const CRect a(0, 0, 10, 10);
    const CRect b(5, 5, 15, 15);
    EXPECT_TRUE(result.IntersectRect(a, b));
    EXPECT_EQ(result, CRect(5, 5, 10, 10));
}

TEST(RectSetOperations, DisjointOrNullInputGivesAnEmptyIntersection) {
    CRect result(1, 2, 3, 4);
    EXPECT_FALSE(result.IntersectRect(CRect(0, 0, 5, 5), CRect(5, 0, 10, 5)));
    EXPECT_TRUE(result.IsRectNull());
    result.SetRect(1, 2, 3, 4);
    EXPECT_FALSE(result.IntersectRect(nullptr, CRect(0, 0, 5, 5)));
    EXPECT_TRUE(result.IsRectNull());
}

TEST(RectSetOperations, UnionIgnoresEmptyRects) {
    CRect result;
    EXPECT_TRUE(result.UnionRect(CRect(0, 0, 5, 5), CRect(10, 10, 20, 20)));
    EXPECT_EQ(result, CRect(0, 0, 20, 20));
    EXPECT_TRUE(result.UnionRect(CRect(100, 100, 100, 100), CRect(1, 1, 2, 2)));
    EXPECT_EQ(result, CRect(1, 1, 2, 2));
    EXPECT_FALSE(result.UnionRect(CRect(3, 3, 3, 9), nullptr));
    EXPECT_TRUE(result.IsRectNull());
}

}  // namespace
