// Points: affine arithmetic, the text forms and PolarBy.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "GeometryPrinters.h"
#include "kwcore/geometry/linear/CKWPoint2T.h"
#include "kwcore/geometry/linear/CKWPoint3T.h"
#include "kwcore/geometry/linear/CKWPoint4T.h"
#include "kwcore/geometry/linear/CKWVector3T.h"

namespace {

using P2d = CKWPoint2T<double, float>;
using P3d = CKWPoint3T<double, float>;
using P3f = CKWPoint3T<float, double>;
using P4f = CKWPoint4T<float, double>;
using V3f = CKWVector3T<float, double>;

TEST(Point, AffineArithmetic) {
    P3f p(1, 2, 3), q(4, 6, 3);
    V3f d = q - p;
    EXPECT_EQ(d, V3f(3, 4, 0));
    EXPECT_EQ(d.Length(), 5.0f);
    EXPECT_EQ(P3f(p + d), q);
    EXPECT_EQ(P3f(q - d), p);
    EXPECT_EQ(P3f(-p), P3f(-1, -2, -3));
    EXPECT_EQ(P3f(p.AffineSum(0.5f, q)), P3f(2.5f, 4.0f, 3.0f));
    EXPECT_EQ(P3f(p.AffineSum(0.0f, q)), p);
    EXPECT_EQ(P3f(p.AffineSum(1.0f, q)), q);
}

TEST(Point, NamedClassesTakeEitherPrecisionAndSetOneComponent) {
    P2d r(1.5, -2.5);
    r.SetY(4.0);
    EXPECT_EQ(r, P2d(1.5, 4.0));
    EXPECT_EQ(P3d(0.5f, 0.25f, 0.125f), P3d(0.5, 0.25, 0.125));
    EXPECT_EQ(P3f(0.1, 0.2, 0.3).Y(), 0.2f);
    EXPECT_EQ((CKWPointT<3, float, double>::ZERO()), P3f::ZERO);
}

TEST(Point4, PolarByStepsInThePlaneAndSetsW) {
    using Math = CKWMathT<float, double>;
    P4f p(1, 1, 5, 0);
    P4f q = p.PolarBy(Math::HALF_PI, 2);
    EXPECT_NEAR(q.X(), 1, 1e-6);
    EXPECT_EQ(q.Y(), 3.0f);
    EXPECT_EQ(q.Z(), 5.0f);
    EXPECT_EQ(q.W(), 1.0f);
    EXPECT_EQ(p.ToVector(), (CKWVector4T<float, double>(1, 1, 5, 0)));
}

TEST(PointText, ToStringUsesSixDecimals) {
    EXPECT_EQ(std::string(P3f(1, 2, 3).ToString()), "1.000000,2.000000,3.000000");
    EXPECT_EQ(std::string(P2d(-0.5, 1e6).ToString()), "-0.500000,1000000.000000");
    EXPECT_EQ(std::string(P4f(1, 2, 3, 4).ToString()), "1.000000,2.000000,3.000000,4.000000");
    EXPECT_EQ(std::string(V3f(0.25f, 0, 0).ToString()), "0.250000,0.000000,0.000000");
}

TEST(PointText, FromStringKeepsComponentsWithoutAPiece) {
    P3f p(7, 8, 9);
    EXPECT_EQ(p.FromString(" 1 , 2 "), 2);
    EXPECT_EQ(p, P3f(1, 2, 9));
    EXPECT_EQ(p.FromString(""), 0);
    EXPECT_EQ(p, P3f(1, 2, 9));
    EXPECT_EQ(p.FromString(",,5"), 1);
    EXPECT_EQ(p, P3f(1, 2, 5));
    // Pieces beyond the dimension are ignored.
    EXPECT_EQ(p.FromString("4,5,6,7,8"), 3);
    EXPECT_EQ(p, P3f(4, 5, 6));
    // Text that is not a number converts to 0, as the runtime converts it.
    EXPECT_EQ(p.FromString("x,2.5e1abc"), 2);
    EXPECT_EQ(p, P3f(0, 25, 6));
    P2d q;
    EXPECT_EQ(q.FromString("nan,-inf"), 2);
    EXPECT_TRUE(std::isnan(q.X()));
    EXPECT_TRUE(std::isinf(q.Y()));
}

TEST(PointText, FromStringSurvivesOverlongText) {
    std::string digits(100000, '9');
    P3f p(1, 2, 3);
    EXPECT_EQ(p.FromString((digits + "," + digits).c_str()), 2);
    EXPECT_TRUE(std::isinf(p.X()));
    EXPECT_EQ(p.Z(), 3.0f);
    std::string commas(100000, ',');
    EXPECT_EQ(p.FromString(commas.c_str()), 0);
    EXPECT_EQ(p.Z(), 3.0f);
    V3f v(1, 2, 3);
    EXPECT_EQ(v.FromString(" -1.5 ,  , 4e2"), 2);
    EXPECT_EQ(v, V3f(-1.5f, 2.0f, 400.0f));
}

}  // namespace
