// Building Polygons from plain coordinates and checking their triangles.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <vector>

#include "PolygonGenerators.h"
#include "kwcore/geometry/exact/KWOrient2D.h"
#include "kwcore/geometry/triangulation/KWPolygonTriangulation.h"

namespace kwtest {

using Contour = std::vector<double>;  // x0, y0, x1, y1, ...

inline Contour Flatten(const SBenchContour& contour) {
    Contour flat;
    for (const SBenchPoint& p : contour) {
        flat.push_back(p.x);
        flat.push_back(p.y);
    }
    return flat;
}

// Adds the contours in order and finishes; false when one is refused.
inline bool Build(kwPolygonTriangulation::Polygon& polygon, const std::vector<Contour>& contours) {
    bool added = true;
    for (const Contour& contour : contours) {
        added = polygon.AddContour(contour.data(), contour.size() / 2, false, false) && added;
    }
    polygon.Finish();
    return added;
}

inline std::vector<Contour> Flatten(const SBenchPolygon& polygon) {
    std::vector<Contour> contours;
    for (const SBenchContour& contour : polygon.contours) {
        contours.push_back(Flatten(contour));
    }
    return contours;
}

// Twice the signed area of a contour.
inline double TwiceArea(const Contour& c) {
    double area = 0.0;
    const std::size_t n = c.size() / 2;
    for (std::size_t i = 0; i < n; ++i) {
        const std::size_t j = (i + 1) % n;
        area += c[2 * i] * c[2 * j + 1] - c[2 * j] * c[2 * i + 1];
    }
    return area;
}

// Twice the signed area of one triangle of a triangulated polygon.
inline double TwiceArea(kwPolygonTriangulation::Polygon& polygon,
                        const kwPolygonTriangulation::Triangle& t) {
    const kwPolygonTriangulation::Pointbase& a = *polygon.points()[t[0]];
    const kwPolygonTriangulation::Pointbase& b = *polygon.points()[t[1]];
    const kwPolygonTriangulation::Pointbase& c = *polygon.points()[t[2]];
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

// Triangulates with the progress report kept off the test output.
inline void Triangulate(kwPolygonTriangulation::Polygon& polygon) {
    testing::internal::CaptureStdout();
    polygon.triangulation();
    testing::internal::GetCapturedStdout();
}

// Every triangle counter-clockwise (zero area allowed only when allowFlat),
// each vertex used, the count n + 2h - 2, and the areas adding up to the
// polygon's.
inline void ExpectTiles(kwPolygonTriangulation::Polygon& polygon,
                        const std::vector<Contour>& contours, bool allowFlat = false) {
    double expectedArea = 0.0;
    std::size_t vertices = 0;
    for (const Contour& contour : contours) {
        expectedArea += TwiceArea(contour);
        vertices += contour.size() / 2;
    }
    ASSERT_EQ(polygon.triangleCount(), vertices + 2 * (contours.size() - 1) - 2);
    double area = 0.0;
    std::set<unsigned> used;
    for (const kwPolygonTriangulation::Triangle& t : polygon.triangles()) {
        // The turn exactly: slivers have rounded areas of either sign.
        const kwPolygonTriangulation::Pointbase& a = *polygon.points()[t[0]];
        const kwPolygonTriangulation::Pointbase& b = *polygon.points()[t[1]];
        const kwPolygonTriangulation::Pointbase& c = *polygon.points()[t[2]];
        const double turn = kwPolygonTriangulation::orient2d(a.x, a.y, b.x, b.y, c.x, c.y);
        if (allowFlat) {
            ASSERT_GE(turn, 0.0) << t[0] << " " << t[1] << " " << t[2];
        } else {
            ASSERT_GT(turn, 0.0) << t[0] << " " << t[1] << " " << t[2];
        }
        area += TwiceArea(polygon, t);
        used.insert(t.begin(), t.end());
    }
    EXPECT_EQ(used.size(), vertices);
    EXPECT_NEAR(area, expectedArea, 1e-9 * std::fabs(expectedArea));
}

// Builds the polygon, triangulates it and checks the tiles as above.
inline void ExpectTriangulationTiles(const std::vector<Contour>& contours, bool allowFlat = false) {
    kwPolygonTriangulation::Polygon polygon;
    ASSERT_TRUE(Build(polygon, contours));
    Triangulate(polygon);
    ExpectTiles(polygon, contours, allowFlat);
}

}  // namespace kwtest
