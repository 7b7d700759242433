// Building Polygons from plain coordinates and checking their triangles.
#pragma once

#include <vector>

#include "PolygonGenerators.h"
#include "kwcore/geometry/KWPolygonTriangulation.h"

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

}  // namespace kwtest
