#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "TriangulationTestSupport.h"
#include "kwcore/geometry/triangulation/KWPolygonTriangulation.h"

using namespace kwPolygonTriangulation;
using kwtest::Build;
using kwtest::Contour;

namespace {

const Contour kSquare = {0, 0, 10, 0, 10, 10, 0, 10};
// The double after 3/7, a hair right of the edge (3, 7) -> (0, 0) at y = 1,
// and the double before 1.3.
const double kNearSlant = 0x1.b6db6db6db6dcp-2;
const double kBeside = 0x1.4ccccccccccccp+0;

CheckResult CheckOf(const std::vector<Contour>& contours) {
    Polygon polygon;
    Build(polygon, contours);
    CheckResult result;
    EXPECT_EQ(polygon.Check(&result), result.code);
    return result;
}

struct SCase {
    const char* name;
    std::vector<Contour> contours;
    CheckCode code;
    const char* message;
};

}  // namespace

TEST(PolygonCheck, NamesEveryProblemThatWouldEndTheTriangulation) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const SCase cases[] = {
        {"valid with two holes",
         {kSquare, {1, 1, 1, 3, 3, 3, 3, 1}, {5, 5, 5, 8, 8, 8}},
         CHECK_OK,
         ""},
        {"no contour", {}, CHECK_TOO_FEW_POINTS, "no contour"},
        {"two points", {kSquare, {1, 1, 2, 2}}, CHECK_TOO_FEW_POINTS, "contour 2 has 2 points"},
        {"NaN", {{0, 0, 1, 0, nan, 1}}, CHECK_NOT_FINITE, "vertex 3 of contour 1"},
        {"infinity", {{0, 0, 1, 0, 1, inf}}, CHECK_NOT_FINITE, "not a finite number"},
        // Orientation products of this sliver overflow; the sweep would end the process.
        {"beyond 2^500", {{0, 0, 1e302, 5602601550, 5, 4}}, CHECK_NOT_FINITE, "at most 2^500"},
        {"repeated point", {kSquare, {1, 1, 10, 10, 1, 2}}, CHECK_DUPLICATED_POINT, "refused"},
        {"clockwise outer",
         {{0, 0, 0, 10, 10, 10, 10, 0}},
         CHECK_WRONG_ORIENTATION,
         "outer contour runs clockwise"},
        {"counter-clockwise hole",
         {kSquare, {1, 1, 3, 1, 3, 3, 1, 3}},
         CHECK_WRONG_ORIENTATION,
         "contour 2 (a hole) runs counter-clockwise"},
        {"bow tie",
         {{0, 0, 10, 10, 10, 0, 0, 10}},
         CHECK_SELF_INTERSECTION,
         "contour 1 crosses or touches itself"},
        {"doubling back",
         {{0, 0, 10, 0, 5, 0, 5, 5}},
         CHECK_SELF_INTERSECTION,
         "contour 1 crosses or touches itself"},
        {"vertex on an edge",
         {{0, 0, 10, 0, 10, 10, 5, 0, 0, 10}},
         CHECK_SELF_INTERSECTION,
         "touches itself near"},
        {"holes crossing",
         {kSquare, {1, 1, 1, 5, 5, 5, 5, 1}, {3, 3, 3, 7, 7, 7, 7, 3}},
         CHECK_SELF_INTERSECTION,
         "contours 2 and 3 cross or touch"},
        {"hole touching the boundary",
         {kSquare, {0, 5, 2, 7, 2, 3}},
         CHECK_SELF_INTERSECTION,
         "contours 1 and 2 cross or touch"},
        {"hole sharing a horizontal line with the boundary",
         {kSquare, {2, 0, 4, 2, 6, 0}},
         CHECK_SELF_INTERSECTION,
         "contours 1 and 2"},
        {"hole outside",
         {kSquare, {20, 1, 20, 3, 22, 3, 22, 1}},
         CHECK_HOLE_OUTSIDE,
         "contour 2 (a hole) is not inside the outer contour"},
        {"hole above",
         {kSquare, {1, 20, 1, 23, 3, 23, 3, 20}},
         CHECK_HOLE_OUTSIDE,
         "contour 2 (a hole)"},
        {"hole in a hole",
         {kSquare, {1, 1, 1, 9, 9, 9, 9, 1}, {3, 3, 3, 5, 5, 5, 5, 3}},
         CHECK_HOLE_OUTSIDE,
         "contour 3 (a hole)"},
        {"outer inside its hole",
         {{3, 3, 5, 3, 5, 5, 3, 5}, {0, 0, 0, 10, 10, 10, 10, 0}},
         CHECK_HOLE_OUTSIDE,
         "contour 2 (a hole)"},
        // Inside exactly, but where the sweep's rounded keys see them touch.
        {"hole vertex a rounding unit right of a slanted edge",
         {{0, 0, 10, 0, 3, 7}, {kNearSlant, 1, kNearSlant + 1, 1.5, kNearSlant + 1, 0.5}},
         CHECK_SELF_INTERSECTION,
         "contours 1 and 2 come closer near (0.428571, 1) than the sweep can tell apart"},
        {"vertices at one height a rounding unit apart",
         {{-10, -10, 20, -10, 20, 20, -10, 20},
          {1.3, 0.3, 0.3, 3.3, 4, 3.1},
          {kBeside, 0.3, kBeside - 3, -2.7, kBeside - 3, 3.3}},
         CHECK_DUPLICATED_POINT,
         "too close for the sweep to tell apart"},
    };
    for (const SCase& c : cases) {
        const CheckResult result = CheckOf(c.contours);
        EXPECT_EQ(result.code, c.code) << c.name << ": " << result.message;
        EXPECT_NE(result.message.find(c.message), std::string::npos)
            << c.name << ": " << result.message;
    }
}

TEST(PolygonCheck, ReportsWhereAndWhichContours) {
    const CheckResult result =
        CheckOf({kSquare, {1, 1, 1, 5, 5, 5, 5, 1}, {3, 3, 3, 7, 7, 7, 7, 3}});
    EXPECT_EQ(result.contour, 1);
    EXPECT_EQ(result.otherContour, 2);
    // The hole edges cross at (3, 5) and (5, 3).
    EXPECT_TRUE((result.x == 3 && result.y == 5) || (result.x == 5 && result.y == 3))
        << result.x << ", " << result.y;
}

TEST(PolygonCheck, ReversedContourMustComeFirst) {
    Polygon polygon;
    polygon.AddContour(kSquare.data(), 4, false, false);
    const Contour hole = {1, 1, 3, 1, 3, 3, 1, 3};  // reversed on reading: clockwise
    polygon.AddContour(hole.data(), 4, true, false);
    polygon.Finish();
    EXPECT_EQ(polygon.Check(), CHECK_BAD_NUMBERING);
}

TEST(PolygonCheck, ExactOnNearlyTouchingEdges) {
    // A hole vertex a hair inside or exactly on the boundary's slanted edge.
    const double hair = std::ldexp(1.0, -50);
    const Contour triangle = {0, 0, 8, 0, 0, 8};
    EXPECT_EQ(CheckOf({triangle, {1, 1, 1, 2, 4 - hair, 4 - hair}}).code, CHECK_OK);
    EXPECT_EQ(CheckOf({triangle, {1, 1, 1, 2, 4, 4}}).code, CHECK_SELF_INTERSECTION);
    EXPECT_EQ(CheckOf({triangle, {1, 1, 1, 2, 4 + hair, 4}}).code, CHECK_SELF_INTERSECTION);
}

// Everything the check accepts triangulates: many random polygons with
// holes, triangulated first in a child process (where ending cannot hurt),
// then here, tile for tile.
TEST(PolygonCheckDeathTest, AcceptedPolygonsAllTriangulate) {
    std::vector<std::vector<Contour>> accepted;
    for (std::uint32_t seed = 1; seed <= 300; ++seed) {
        const SBenchPolygon shape =
            MakeRandomPolygonWithHoles(4 + seed % 40, seed % 12, 3 + seed % 9, seed);
        std::vector<Contour> contours = kwtest::Flatten(shape);
        // Snap to a coarse grid so that collinear and equal-height vertices occur.
        if (seed % 3 == 0) {
            for (Contour& contour : contours) {
                for (double& value : contour) {
                    value = std::round(value * 64) / 64;
                }
            }
        }
        Polygon polygon;
        if (Build(polygon, contours) && polygon.Check() == CHECK_OK) {
            accepted.push_back(contours);
        }
    }
    ASSERT_GT(accepted.size(), 250u);
    const auto triangulateAll = [&accepted]() {
        for (const std::vector<Contour>& contours : accepted) {
            Polygon polygon;
            Build(polygon, contours);
            polygon.triangulation();
        }
        std::exit(0);
    };
    EXPECT_EXIT(triangulateAll(), testing::ExitedWithCode(0), "");
    for (const std::vector<Contour>& contours : accepted) {
        kwtest::ExpectTriangulationTiles(contours, true);
    }
}

// Polygons whose vertices and edges come within rounding errors of each
// other: whatever the check accepts triangulates, without ending the process
// (which would end this test), into tiles. Some are refused only for the
// sweep's rounding.
TEST(PolygonCheck, AcceptedNearDegeneratePolygonsTriangulate) {
    int accepted = 0, refusedForRounding = 0;
    for (std::uint32_t seed = 1; seed <= 3000; ++seed) {
        const std::vector<Contour> contours =
            kwtest::Flatten(MakeNearDegeneratePolygon(seed % 3 != 0, seed));
        Polygon polygon;
        CheckResult result;
        if (!Build(polygon, contours) || polygon.Check(&result) != CHECK_OK) {
            refusedForRounding += result.message.find("sweep") != std::string::npos;
            continue;
        }
        ++accepted;
        kwtest::ExpectTriangulationTiles(contours, true);
    }
    EXPECT_GT(accepted, 1000);
    EXPECT_GT(refusedForRounding, 5);
}

// Valid random polygons spoiled in one way each: the check names that way.
TEST(PolygonCheck, NamesEachSpoilingOfValidPolygons) {
    int spoiled = 0;
    for (std::uint32_t seed = 1; seed <= 60; ++seed) {
        const std::vector<Contour> valid =
            kwtest::Flatten(MakeRandomPolygonWithHoles(8 + seed % 20, 2 + seed % 5, 5, seed));
        if (valid.size() < 3) {
            continue;
        }
        ++spoiled;
        std::vector<Contour> reversed = valid;  // the first hole counter-clockwise
        reversed[1].clear();
        for (std::size_t i = valid[1].size(); i >= 2; i -= 2) {
            reversed[1].push_back(valid[1][i - 2]);
            reversed[1].push_back(valid[1][i - 1]);
        }
        EXPECT_EQ(CheckOf(reversed).code, CHECK_WRONG_ORIENTATION) << seed;

        std::vector<Contour> moved = valid;  // the first hole far outside
        for (std::size_t i = 0; i < moved[1].size(); i += 2) {
            moved[1][i] += 10.0;
        }
        EXPECT_EQ(CheckOf(moved).code, CHECK_HOLE_OUTSIDE) << seed;

        std::vector<Contour> stacked = valid;  // the second hole on top of the first
        stacked[2] = stacked[1];
        for (std::size_t i = 0; i < stacked[2].size(); i += 2) {
            stacked[2][i] += 1e-3;
        }
        EXPECT_EQ(CheckOf(stacked).code, CHECK_SELF_INTERSECTION) << seed;

        std::vector<Contour> repeated = valid;  // a hole vertex on an outer vertex
        repeated[1][0] = repeated[0][0];
        repeated[1][1] = repeated[0][1];
        EXPECT_EQ(CheckOf(repeated).code, CHECK_DUPLICATED_POINT) << seed;
    }
    EXPECT_GT(spoiled, 40);
}
