#include <gtest/gtest.h>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

#include <cmath>
#include <cstdio>
#include <string>

#include "TriangulationTestSupport.h"
#include "kwcore/geometry/triangulation/KWPolygonTriangulation.h"

using namespace kwPolygonTriangulation;
using kwtest::Build;
using kwtest::Contour;
using kwtest::ExpectTiles;
using kwtest::Triangulate;

namespace {

const Contour kSquare = {0, 0, 4, 0, 4, 4, 0, 4};
const Contour kSquareHole = {1, 1, 1, 3, 3, 3, 3, 1};  // clockwise

}  // namespace

TEST(PolygonTriangulation, SquareMakesTwoTrianglesAndReportsTheTotal) {
    Polygon polygon;
    ASSERT_TRUE(Build(polygon, {kSquare}));
    testing::internal::CaptureStdout();
    polygon.triangulation();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Total number of triangles:2\n");
    EXPECT_TRUE(polygon.traceText().empty());  // traced only when asked
    ExpectTiles(polygon, {kSquare});
}

TEST(PolygonTriangulation, SquareWithHoleNumbersInContourOrderAndTiles) {
    Polygon polygon;
    ASSERT_TRUE(Build(polygon, {kSquare, kSquareHole}));
    ASSERT_EQ(polygon.points().size(), 8u);
    EXPECT_EQ(polygon.points()[5]->x, 1.0);
    EXPECT_EQ(polygon.points()[6]->y, 3.0);
    // Edge k leaves vertex k; each contour closes on its own first vertex.
    EXPECT_EQ(polygon.edges()[4]->endPoint(0)->id, 4u);
    EXPECT_EQ(polygon.edges()[4]->endPoint(1)->id, 1u);
    EXPECT_EQ(polygon.edges()[8]->endPoint(1)->id, 5u);
    EXPECT_EQ(polygon.contourSizes(), (std::vector<unsigned>{4, 4}));
    EXPECT_EQ(polygon.xmax(), 4.0);
    Triangulate(polygon);
    ExpectTiles(polygon, {kSquare, kSquareHole});
}

TEST(PolygonTriangulation, TakesContoursOfPoints) {
    std::vector<CKWPoint2T<double, float>> outer = {{0.0, 0.0}, {4.0, 0.0}, {4.0, 4.0}, {0.0, 4.0}};
    std::vector<CKWPoint2T<double, float>> hole = {
        {1.0, 1.0}, {1.0, 3.0}, {3.0, 3.0}, {3.0, 1.0}, {1.0, 1.0}};
    Polygon polygon;
    ASSERT_TRUE(polygon.AddContour(outer, false, false));
    ASSERT_TRUE(polygon.AddContour(hole, false, true));  // the repeated first point is skipped
    polygon.Finish();
    EXPECT_EQ(polygon.points().size(), 8u);
    EXPECT_EQ(polygon.points()[8]->x, 3.0);
    Triangulate(polygon);
    ExpectTiles(polygon, {kSquare, kSquareHole});
}

TEST(PolygonTriangulation, ReversedAndClosedContoursReadBackwardsFromOne) {
    const Contour clockwiseClosed = {0, 0, 0, 4, 4, 4, 4, 0, 0, 0};
    Polygon polygon;
    ASSERT_TRUE(polygon.AddContour(clockwiseClosed.data(), 5, true, true));
    polygon.Finish();
    ASSERT_EQ(polygon.points().size(), 4u);
    EXPECT_EQ(polygon.points()[1]->x, 4.0);  // the last point before the repeat
    EXPECT_EQ(polygon.points()[1]->y, 0.0);
    Triangulate(polygon);
    EXPECT_EQ(polygon.triangleCount(), 2u);
}

TEST(PolygonTriangulation, RefusesAContourThatRepeatsAPoint) {
    Polygon polygon;
    ASSERT_TRUE(polygon.AddContour(kSquare.data(), 4, false, false));
    const Contour touching = {1, 1, 2, 1, 4, 4, 1, 2};
    EXPECT_FALSE(polygon.AddContour(touching.data(), 4, false, false));
    EXPECT_EQ(polygon.contourCount(), 1u);
    EXPECT_EQ(polygon.points().size(), 6u);  // the two points before the repeat stay
    EXPECT_TRUE(polygon.is_exist(2, 1));
    EXPECT_FALSE(polygon.is_exist(2, 2));
    // A reversed contour renumbers from 1: the points it replaces are gone.
    const Contour renumbering = {10, 10, 12, 10, 11, 12};
    EXPECT_TRUE(polygon.AddContour(renumbering.data(), 3, true, false));
    EXPECT_FALSE(polygon.is_exist(0, 0));
    EXPECT_FALSE(polygon.is_exist(4, 4));
    EXPECT_TRUE(polygon.is_exist(0, 4));
    EXPECT_TRUE(polygon.is_exist(12, 10));
    EXPECT_EQ(polygon.points()[1]->x, 11.0);
    polygon.Finish();
    const Contour late = {1, 1, 2, 1, 2, 2};
    EXPECT_FALSE(polygon.AddContour(late.data(), 3, false, false));
    EXPECT_EQ(polygon.contourCount(), 2u);
}

TEST(PolygonTriangulation, TilesAwkwardShapes) {
    struct SCase {
        const char* name;
        std::vector<Contour> contours;
        bool allowFlat;
    };
    const SCase cases[] = {
        {"collinear runs and horizontal edges",
         {{0, 0, 1, 0, 2, 0, 3, 0, 3, 1, 3, 2, 2, 2, 2, 1, 1, 1, 1, 2, 0, 2, 0, 1}},
         true},
        // At the wedge's tip the edges and the diagonal differ in direction
        // by less than their cosines can show.
        {"holes in a thin wedge",
         {{1, 0, 10, 0, 10, 5555555510}, {2, 4, 4, 4, 4, 2}, {6, 5, 5, 8, 8, 8}},
         false},
    };
    for (const SCase& c : cases) {
        SCOPED_TRACE(c.name);
        kwtest::ExpectTriangulationTiles(c.contours, c.allowFlat);
    }
}

TEST(PolygonTriangulation, TilesGeneratedPolygons) {
    for (std::size_t n : {3u, 10u, 100u, 2000u}) {
        for (std::uint32_t seed = 1; seed <= 3; ++seed) {
            for (const SBenchPolygon& shape : {MakeStarPolygon(n, seed), MakeCombPolygon(n, seed),
                                               MakePolygonWithHoles(n, seed)}) {
                const std::vector<Contour> contours = kwtest::Flatten(shape);
                Polygon polygon;
                ASSERT_TRUE(Build(polygon, contours));
                ASSERT_EQ(polygon.Check(), CHECK_OK) << n << " " << seed;
                Triangulate(polygon);
                ExpectTiles(polygon, contours);
            }
        }
    }
}

TEST(PolygonTriangulation, SweepPartitionsIntoMonotonePiecesWithDiagonals) {
    // Notches from above (a MERGE vertex) and below (a SPLIT vertex) meet.
    Polygon split;
    const Contour hourglass = {0, 0, 2, 1, 4, 0, 4, 4, 2, 3, 0, 4};
    ASSERT_TRUE(Build(split, {hourglass}));
    split.partition2Monotone();
    EXPECT_EQ(split.diagonals().size(), 1u);
    split.searchMonotones();
    EXPECT_EQ(split.monotonePieces().size(), 2u);
    split.triangulateMonotones();
    ExpectTiles(split, {hourglass});
}

TEST(PolygonTriangulation, TracesEveryPhaseWhenAsked) {
    Polygon polygon;
    ASSERT_TRUE(Build(polygon, {kSquare, kSquareHole}));
    polygon.setDebugOption(true);
    Triangulate(polygon);
    const std::string trace = polygon.traceText();
    for (const char* text :
         {"Handle vertex:1 type:", "START", "SPLIT", "MERGE", "END", "Insert e", " to splay tree",
          "Remove e", " from splay tree", "Search key:", " is directly left to v",
          "Add Diagonal from ", "Searching for loops:", "loop closed!",
          "Add triangle:", "current top queue vertex index=", "Current top stack vertex index="}) {
        EXPECT_NE(trace.find(text), std::string::npos) << text;
    }
}

TEST(PolygonTriangulation, MapsFollowTheContoursAndTheSweep) {
    // The maps by id are views made when asked for: each call sees what was
    // added since the last one.
    Polygon polygon;
    ASSERT_TRUE(polygon.AddContour(kSquare.data(), kSquare.size() / 2, false, false));
    EXPECT_EQ(polygon.points().size(), 4u);
    ASSERT_TRUE(polygon.AddContour(kSquareHole.data(), kSquareHole.size() / 2, false, false));
    ASSERT_EQ(polygon.points().size(), 8u);
    EXPECT_EQ(polygon.points().rbegin()->second->x, 3.0);
    EXPECT_TRUE(polygon.is_exist(-0.0, 0.0));
    EXPECT_FALSE(polygon.is_exist(2.0, 2.0));
    polygon.Finish();
    EXPECT_EQ(polygon.edges().size(), 8u);
    EXPECT_TRUE(polygon.diagonals().empty());
    polygon.partition2Monotone();
    const std::size_t diagonals = polygon.diagonals().size();
    EXPECT_GT(diagonals, 0u);
    EXPECT_EQ(polygon.edges().size(), 8u + diagonals);
    for (const auto& entry : polygon.diagonals()) {
        EXPECT_EQ(polygon.edges()[entry.first], entry.second);
        EXPECT_EQ(entry.second->type(), INSERT);
    }
}

TEST(PolygonTriangulationDeathTest, FatalMessagesGoToStandardOutput) {
    // Death tests match standard error; reroute standard output there.
    const auto run = [](const std::vector<Contour>& contours) {
        std::fflush(stdout);
        dup2(2, 1);
        Polygon polygon;
        Build(polygon, contours);
        polygon.triangulation();
    };
    EXPECT_EXIT(run({{0, 0, 0, 4, 4, 4, 4, 0}}), testing::ExitedWithCode(1),
                "Please check your input polygon:\n1\\)orientations\\?\n2\\)duplicated "
                "points\\?\ngraiflod stopped.\n");
    // A repeated point left behind by a refused contour keeps type 1.
    EXPECT_EXIT(run({kSquare, {5, 5, 6, 5, 0, 0}}), testing::ExitedWithCode(1),
                "Please check your input polygon");
    // Coordinates that cannot be ordered stop the sweep before it orders them.
    Contour star = kwtest::Flatten(MakeStarPolygon(300, 4))[0];
    for (std::size_t i = 1; i < star.size(); i += 7) {
        star[i] = std::nan("");
    }
    EXPECT_EXIT(run({star}), testing::ExitedWithCode(1), "Please check your input polygon");
}
