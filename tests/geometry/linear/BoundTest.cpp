// CKWBound2T: empty by default, sorted corners, growth by points.
#include <gtest/gtest.h>

#include <cmath>

#include "GeometryPrinters.h"
#include "kwcore/geometry/linear/CKWBound2T.h"

namespace {

using B = CKWBound2T<float, double>;
using P = CKWPoint2T<float, double>;

TEST(Bound2, DefaultIsEmptyAndGrowsToCoverPoints) {
    B box;
    EXPECT_TRUE(box.IsEmpty());
    EXPECT_EQ(box.GetWidth(), 0.0f);
    EXPECT_FALSE(box.Contains(P(0, 0)));
    box.Include(P(1, 5));
    EXPECT_FALSE(box.IsEmpty());
    EXPECT_EQ(box.GetMin(), box.GetMax());
    box.Include(P(3, 2));
    box.Include(P(std::nanf(""), 100.0f));
    EXPECT_EQ(box.GetMin(), P(1, 2));
    EXPECT_EQ(box.GetMax(), P(3, 100));
    EXPECT_TRUE(box.Contains(P(3, 2)));
    EXPECT_FALSE(box.Contains(P(0.5f, 2.0f)));
    box.MakeEmpty();
    EXPECT_TRUE(box.IsEmpty());
}

TEST(Bound2, CornersAreSortedPerComponent) {
    CKWBound2T<double, float> box(CKWPoint2T<double, float>(4.0, -1.0),
                                  CKWPoint2T<double, float>(-2.0, 3.0));
    EXPECT_EQ(box.GetMin(), (CKWPoint2T<double, float>(-2.0, -1.0)));
    EXPECT_EQ(box.GetMax(), (CKWPoint2T<double, float>(4.0, 3.0)));
    EXPECT_EQ(box.GetWidth(), 6.0);
    EXPECT_EQ(box.GetHeight(), 4.0);
}

}  // namespace
