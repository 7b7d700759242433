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

// Every overload of a move, a size change or a sum against its plain form:
// a swapped sign or component in one of them shows.
TEST(Rect, OperatorsAgreeWithThePlainMovesAndSizeChanges) {
    const CPoint p(3, -4);
    const CSize s(5, 7);
    const RECT margins = {1, 2, 3, 4};
    const CRect r(10, 20, 30, 50);
    EXPECT_EQ(p + s, CPoint(8, 3));
    EXPECT_EQ(p - s, CPoint(-2, -11));
    EXPECT_EQ(p + CPoint(1, 1), CPoint(4, -3));
    EXPECT_EQ(p - CPoint(1, 1), CSize(2, -5));
    EXPECT_EQ(-p, CPoint(-3, 4));
    EXPECT_EQ(s + CSize(1, 2), CSize(6, 9));
    EXPECT_EQ(s - CSize(1, 2), CSize(4, 5));
    EXPECT_EQ(-s, CSize(-5, -7));
    EXPECT_EQ(s + p, CPoint(8, 3));
    EXPECT_EQ(s - p, CPoint(2, 11));
    CPoint moved = p;
    moved += s;
    moved -= CPoint(8, 3);
    moved += CPoint(1, 2);
    moved -= CSize(1, 2);
    EXPECT_EQ(moved, CPoint(0, 0));
    moved.Offset(CSize(2, 3));
    moved.Offset(CPoint(-1, -1));
    EXPECT_EQ(moved, CPoint(1, 2));
    moved.SetPoint(9, 8);
    EXPECT_NE(moved, p);
    CSize grown = s;
    grown += CSize(1, 1);
    grown -= CSize(2, 3);
    EXPECT_EQ(grown, CSize(4, 5));
    EXPECT_EQ(CSize(CPoint(2, 3)), CSize(2, 3));

    EXPECT_EQ(r + p, CRect(13, 16, 33, 46));
    EXPECT_EQ(r - p, CRect(7, 24, 27, 54));
    EXPECT_EQ(r + s, CRect(15, 27, 35, 57));
    EXPECT_EQ(r - s, CRect(5, 13, 25, 43));
    EXPECT_EQ(r - &margins, CRect(11, 22, 27, 46));
    EXPECT_EQ(p + &margins, CRect(4, -2, 6, 0));
    EXPECT_EQ(p - &margins, CRect(-2, 6, 0, 8));
    CRect changed = r;
    changed += p;
    changed -= p;
    changed += s;
    changed -= s;
    changed += &margins;
    changed -= &margins;
    EXPECT_EQ(changed, r);
    changed.InflateRect(s);
    changed.DeflateRect(5, 7);
    changed.InflateRect(1, 2);
    changed.DeflateRect(CSize(1, 2));
    changed.OffsetRect(p);
    changed.OffsetRect(CSize(-3, 4));
    changed.DeflateRect(nullptr);
    EXPECT_EQ(changed, r);
    EXPECT_NE(changed, CRect(10, 20, 30, 51));
}

TEST(Rect, CornersSizesAndNormalizing) {
    const CRect r(CPoint(1, 2), CSize(4, 6));
    EXPECT_EQ(r, CRect(CPoint(1, 2), CPoint(5, 8)));
    EXPECT_EQ(r.Size(), CSize(4, 6));
    EXPECT_EQ(r.TopLeft(), CPoint(1, 2));
    EXPECT_EQ(r.BottomRight(), CPoint(5, 8));
    EXPECT_EQ(CRect(-3, -3, 0, 0).CenterPoint(), CPoint(-1, -1));  // rounds toward zero
    CRect flipped(5, 8, 1, 2);
    flipped.NormalizeRect();
    EXPECT_EQ(flipped, r);
    CRect copy;
    copy.CopyRect(&r);
    EXPECT_EQ(copy, r);
    copy.CopyRect(nullptr);
    EXPECT_TRUE(copy.IsRectNull());
    const RECT plain = r;
    EXPECT_EQ(CRect(plain), r);
}

}  // namespace
