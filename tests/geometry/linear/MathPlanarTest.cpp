// Planar constructions: circles, arcs, line classification, nearest points
// and polygon containment, with their result codes.
#include <gtest/gtest.h>

#include <cmath>

#include "GeometryPrinters.h"
#include "kwcore/geometry/linear/CKWMathT.h"
#include "kwcore/geometry/linear/CKWPoint2T.h"
#include "kwcore/geometry/linear/CKWPoint4T.h"

namespace {

using Math = CKWMathT<double, float>;
using P = CKWPoint4T<double, float>;
using P2 = CKWPoint2T<double, float>;

P At(double x, double y) {
    return P(x, y, 0.0, 1.0);
}

// Arc angles go through the kernel's single-precision pi, hence the looser
// tolerance there.
constexpr double kArcTolerance = 1e-6;

void ExpectAt(const P& p, double x, double y, double tolerance = 1e-9) {
    EXPECT_NEAR(p.X(), x, tolerance);
    EXPECT_NEAR(p.Y(), y, tolerance);
}

TEST(MathCircles, CenterAndRadiusThroughThreePoints) {
    P center;
    double radius = 0;
    ASSERT_EQ(Math::Circle3Pts_to_CenterRadius(At(3, 2), At(1, 4), At(-1, 2), &center, &radius), 1);
    ExpectAt(center, 1, 2);
    EXPECT_NEAR(radius, 2, 1e-12);
    double cx = 0, cy = 0;
    EXPECT_EQ(Math::GetCircleCenter(0, 0, 2, 0, 0, 2, &cx, &cy), 1);
    EXPECT_NEAR(cx, 1, 1e-12);
    EXPECT_NEAR(cy, 1, 1e-12);
    // Collinear or coincident points have no circle; results stay untouched.
    EXPECT_EQ(Math::GetCircleCenter(0, 0, 1, 1, 2, 2, &cx, &cy), 0);
    EXPECT_EQ(Math::GetCircleCenter(0, 0, 0, 0, 2, 2, &cx, &cy), 0);
    EXPECT_EQ(Math::GetCircleCenter(0, 0, 1, 0, 0, 1, nullptr, &cy), 0);
    EXPECT_NEAR(cx, 1, 1e-12);
    EXPECT_EQ(Math::GetCircleCenter(At(0, 0), At(1, 0), At(std::nan(""), 1), &center), 0);
}

TEST(MathArcs, StartMiddleEndAndBack) {
    P start, middle, end;
    const double quarter = Math::HALF_PI;
    ASSERT_EQ(Math::ArcCenterRadiusStartAngleArcAngle_to_StartMiddleEnd(At(1, 1), 2, 0, quarter,
                                                                        &start, &middle, &end),
              1);
    ExpectAt(start, 3, 1, kArcTolerance);
    ExpectAt(middle, 1 + std::sqrt(2.0), 1 + std::sqrt(2.0), kArcTolerance);
    ExpectAt(end, 1, 3, kArcTolerance);
    EXPECT_EQ(Math::ArcCenterRadiusStartAngleArcAngle_to_StartMiddleEnd(At(0, 0), -1, 0, 1, &start,
                                                                        &middle, &end),
              0);

    P center;
    double radius = 0, startAngle = 0, arcAngle = 0, endAngle = 0;
    ASSERT_EQ(Math::ArcStartMiddleEnd_to_CenterRadiusStartAngleArcAngle(
                  start, middle, end, &center, &radius, &startAngle, &arcAngle),
              1);
    ExpectAt(center, 1, 1, kArcTolerance);
    EXPECT_NEAR(radius, 2, kArcTolerance);
    EXPECT_NEAR(startAngle, 0, kArcTolerance);
    EXPECT_NEAR(arcAngle, quarter, kArcTolerance);
    // The same points walked backwards: a clockwise arc.
    ASSERT_EQ(Math::ArcStartMiddleEnd_to_CenterRadiusStartArcAngleEndArcAngle(
                  end, middle, start, &center, &radius, &startAngle, &endAngle),
              1);
    EXPECT_NEAR(startAngle, quarter, kArcTolerance);
    EXPECT_NEAR(endAngle, 0, kArcTolerance);
    // A major arc: from (1, 0) through (-1, 0) to (0, -1), counter-clockwise 270 degrees.
    ASSERT_EQ(Math::ArcStartMiddleEnd_to_CenterRadiusStartAngleArcAngle(
                  At(1, 0), At(-1, 0), At(0, -1), &center, &radius, &startAngle, &arcAngle),
              1);
    EXPECT_NEAR(arcAngle, 3 * quarter, kArcTolerance);
    EXPECT_EQ(Math::ArcStartMiddleEnd_to_CenterRadiusStartAngleArcAngle(
                  At(0, 0), At(1, 1), At(2, 2), &center, &radius, &startAngle, &arcAngle),
              0);
}

TEST(MathArcs, StartDirectionEnd) {
    P center;
    double radius = 0, startAngle = 0, arcAngle = 0;
    // Leaving (1, 0) upwards and ending at (-1, 0): the left half-turn around the origin.
    ASSERT_EQ(Math::ArcStartDirectionEnd_to_CenterRadiusStartAngleArcAngle(
                  At(1, 0), Math::HALF_PI, At(-1, 0), &center, &radius, &startAngle, &arcAngle),
              1);
    ExpectAt(center, 0, 0, kArcTolerance);
    EXPECT_NEAR(radius, 1, kArcTolerance);
    EXPECT_NEAR(startAngle, 0, kArcTolerance);
    EXPECT_NEAR(arcAngle, Math::PI, kArcTolerance);
    // Leaving downwards instead: clockwise.
    ASSERT_EQ(Math::ArcStartDirectionEnd_to_CenterRadiusStartAngleArcAngle(
                  At(1, 0), -Math::HALF_PI, At(0, -1), &center, &radius, &startAngle, &arcAngle),
              1);
    ExpectAt(center, 0, 0, kArcTolerance);
    EXPECT_NEAR(arcAngle, -Math::HALF_PI, kArcTolerance);
    // An end straight ahead needs no arc.
    EXPECT_EQ(Math::ArcStartDirectionEnd_to_CenterRadiusStartAngleArcAngle(
                  At(0, 0), 0, At(5, 0), &center, &radius, &startAngle, &arcAngle),
              0);
}

TEST(MathLines, ClassifyPointToLine) {
    EXPECT_EQ(Math::ClassifyPointToLine(0, 1, 0, 0, 1, 0), Math::POINT_LEFT);
    EXPECT_EQ(Math::ClassifyPointToLine(0, -1, 0, 0, 1, 0), Math::POINT_RIGHT);
    EXPECT_EQ(Math::ClassifyPointToLine(5, 1e-7, 0, 0, 1, 0), Math::POINT_ON_LINE);
    EXPECT_EQ(Math::ClassifyPointToLine(At(1, 1), At(0, 0), At(0, 0)), Math::LINE_DEGENERATE);
}

TEST(MathLines, ClassifySegmentsAndInfiniteLines) {
    P crossing;
    EXPECT_EQ(Math::ClassifyLineToLine(At(0, 0), At(2, 2), At(0, 2), At(2, 0), &crossing),
              Math::LINES_INTERSECT);
    ExpectAt(crossing, 1, 1);
    EXPECT_EQ(Math::ClassifyLineToLine(At(0, 0), At(1, 1), At(0, 4), At(4, 0)),
              Math::SEGMENTS_DISJOINT);
    EXPECT_EQ(
        Math::ClassifyInfiniteLineToInfiniteLine(At(0, 0), At(1, 1), At(0, 4), At(4, 0), &crossing),
        Math::LINES_INTERSECT);
    ExpectAt(crossing, 2, 2);
    EXPECT_EQ(Math::ClassifyLineToLine(At(0, 0), At(1, 0), At(0, 1), At(1, 1)),
              Math::LINES_PARALLEL);
    EXPECT_EQ(Math::ClassifyLineToLine(At(0, 0), At(2, 0), At(1, 0), At(3, 0)),
              Math::LINES_COLLINEAR);
    EXPECT_EQ(Math::ClassifyLineToLine(At(0, 0), At(1, 0), At(2, 0), At(3, 0)),
              Math::SEGMENTS_COLLINEAR_APART);
    EXPECT_EQ(Math::ClassifyInfiniteLineToInfiniteLine(At(0, 0), At(1, 0), At(2, 0), At(3, 0)),
              Math::LINES_COLLINEAR);
    EXPECT_EQ(Math::ClassifyLineToLine(At(0, 0), At(0, 0), At(2, 0), At(3, 0)),
              Math::LINES_DEGENERATE);
    // Segments meeting at an end point intersect there.
    EXPECT_EQ(Math::ClassifyLineToLine(At(0, 0), At(1, 0), At(1, 0), At(1, 5), &crossing),
              Math::LINES_INTERSECT);
    ExpectAt(crossing, 1, 0);
}

TEST(MathNearest, PointsOnLinesSegmentsAndPolylines) {
    P nearest;
    double t = 0;
    EXPECT_EQ(Math::GetNearestPointOnLine(At(5, 3), At(0, 0), At(1, 0), &nearest, &t), 1);
    ExpectAt(nearest, 5, 0);
    EXPECT_NEAR(t, 5, 1e-12);
    EXPECT_EQ(Math::GetNearestPointOnLine(At(5, 3), At(1, 1), At(1, 1), &nearest), 0);
    EXPECT_EQ(Math::GetNearestPoint(At(5, 3), At(0, 0), At(1, 0), &nearest, &t), 1);
    ExpectAt(nearest, 1, 0);
    EXPECT_EQ(t, 1);
    EXPECT_EQ(Math::GetNearestPoint(At(5, 3), At(2, 2), At(2, 2), &nearest), 1);
    ExpectAt(nearest, 2, 2);

    const P polyline[] = {At(0, 0), At(4, 0), At(4, 4)};
    int segment = -1;
    EXPECT_EQ(Math::GetNearestPointOnPolyline(At(5, 3), polyline, 3, &nearest, &segment), 1);
    ExpectAt(nearest, 4, 3);
    EXPECT_EQ(segment, 1);
    EXPECT_EQ(Math::GetNearestPointOnPolyline(At(5, 3), polyline, 1, &nearest, &segment), 1);
    ExpectAt(nearest, 0, 0);
    EXPECT_EQ(segment, 0);
    EXPECT_EQ(Math::GetNearestPointOnPolyline(At(5, 3), polyline, 0, &nearest), 0);
}

TEST(MathPolygons, ContainmentWithTheBoundaryFlag) {
    // An L-shaped polygon, so the even-odd rule is exercised on a concave corner.
    const P2 l[] = {P2(0, 0), P2(4, 0), P2(4, 1), P2(1, 1), P2(1, 4), P2(0, 4)};
    EXPECT_TRUE(Math::PolygonContainsPoint(l, 6, P2(0.5, 3.0), false));
    EXPECT_TRUE(Math::PolygonContainsPoint(l, 6, P2(3.0, 0.5), false));
    EXPECT_FALSE(Math::PolygonContainsPoint(l, 6, P2(2.0, 2.0), true));
    EXPECT_FALSE(Math::PolygonContainsPoint(l, 6, P2(-1.0, 0.5), true));
    // A vertex and a point on an edge count only with the flag.
    for (const P2& onBoundary : {P2(4, 1), P2(2, 1), P2(0, 2), P2(1, 1)}) {
        EXPECT_TRUE(Math::PolygonContainsPoint(l, 6, onBoundary, true));
        EXPECT_FALSE(Math::PolygonContainsPoint(l, 6, onBoundary, false));
    }
    // A ray through a vertex is counted once.
    const P2 diamond[] = {P2(0, -1), P2(1, 0), P2(0, 1), P2(-1, 0)};
    EXPECT_TRUE(Math::PolygonContainsPoint(diamond, 4, P2(0.0, 0.0), false));
    EXPECT_FALSE(Math::PolygonContainsPoint(diamond, 4, P2(-2.0, 0.0), false));
    EXPECT_FALSE(Math::PolygonContainsPoint(diamond, 2, P2(0.0, 0.0), true));
    EXPECT_FALSE(Math::PolygonContainsPoint(nullptr, 4, P2(0.0, 0.0), true));
    EXPECT_FALSE(Math::PolygonContainsPoint(diamond, 4, P2(std::nan(""), 0.0), true));
}

}  // namespace
