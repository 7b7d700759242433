// The orientation predicate of the polygon triangulation: the sign of the
// turn of three points, always correct although the points are doubles.
//
// The value is the floating-point determinant
//   (a.x - c.x) * (b.y - c.y) - (a.y - c.y) * (b.x - c.x)
// when its magnitude clears a forward error bound, and otherwise an adaptive
// evaluation in floating-point expansions that refines until the sign is
// certain (in the worst case the exact value). Only the sign is exact;
// positive means a, b, c turn counter-clockwise, zero means collinear.
//
//   if (kwPolygonTriangulation::orient2d(ax, ay, bx, by, cx, cy) > 0) { ... }
//
// Exact as long as no intermediate product overflows or underflows (inputs
// of magnitude between about 1e-140 and 1e150).
#pragma once

#include "kwcore/platform/Export.h"

namespace kwPolygonTriangulation {

// The adaptive test: the floating-point determinant when it is certain, else
// the refined value.
KWCORE_API double orient2d(double ax, double ay, double bx, double by, double cx, double cy);

// The exact determinant, rounded: the largest component of its exact
// expansion, so its sign is the determinant's. Slower; for checks.
KWCORE_API double orient2dExact(double ax, double ay, double bx, double by, double cx, double cy);

}  // namespace kwPolygonTriangulation
