// CKWTriangulateEarClipping: triangulation of a simple polygon (one
// counter-clockwise contour, no holes) by ear clipping, with every sign test
// made by a kwRationalArithmetic query of the caller's choice. All the work
// happens in the constructor, which hands back the triangles as an index
// array.
//
// The result: n - 2 triangles in clipping order, three vertex indices each,
// every triangle counter-clockwise as (previous vertex, ear, next vertex). A
// convex polygon gives the fan (0, i, i + 1). The array holds 3(n - 1) ints,
// of which the last three are left unwritten; the caller releases it with
// delete[].
//
// Coordinates per query: QT_INT64 and QT_INTEGER see (p - min) * r * 2^20 and
// (p - min) * r * 2^24, truncated toward zero, and QT_REAL sees (p - min) * r,
// where min is the componentwise minimum and r the larger extent of the points.
// The factor grows with the extent instead of normalising it, so QT_INT64 is
// exact only while r stays below about 2^5 (QT_INTEGER far beyond); this is
// the established behaviour and callers rely on it.
// QT_RATIONAL and QT_FILTERED (uncertainty fEpsilon) see the points as given
// near 1 (within about 2^200 either way in double, 2^25 in float), else scaled
// by a power of two that takes the largest coordinate near 1: the same signs
// and filter decisions as on the points given, but exact at every scale.
// They refuse (a null array) a polygon whose coordinates span more than 500
// binary places, from the leading bit of the largest to the lowest bit set in
// any (say 1e-100 beside 1e60): the exact line test could not hold it.
//
// Input outside the contract (clockwise or self-intersecting contours,
// repeated points, NaN) gives triangles that do not cover the polygon, but
// still n - 2 triples of indices in [0, n); when no ear is left the next
// vertex of the ring is clipped. Fewer than 3 points, no points, an unknown
// query type or, for the exact queries, too wide a span give a null array.
//
//   using kwRationalArithmetic::Query;
//   int* indices = nullptr;
//   CKWTriangulateEarClipping<double, float> clip(n, points, Query::QT_FILTERED, 1e-12, indices);
//   for (int t = 0; t < n - 2; ++t) { indices[3 * t], indices[3 * t + 1], indices[3 * t + 2] }
//   delete[] indices;
#pragma once

#include "kwcore/geometry/exact/Query2.h"
#include "kwcore/geometry/linear/CKWVector2T.h"
#include "kwcore/platform/Export.h"

template <class Real, class Other>
class KWCORE_API CKWTriangulateEarClipping {
public:
    typedef CKWVector2T<Real, Other> Vector2;

    CKWTriangulateEarClipping(int iVQuantity, const Vector2* akPoint,
                              kwRationalArithmetic::Query::Type eQueryType, Real fEpsilon,
                              int*& raiIndex);
    // Nothing to release: the query, the vertex records and every scratch
    // array live only as long as the construction.
    ~CKWTriangulateEarClipping();

    CKWTriangulateEarClipping(const CKWTriangulateEarClipping&) = delete;
    CKWTriangulateEarClipping& operator=(const CKWTriangulateEarClipping&) = delete;
};

extern template class CKWTriangulateEarClipping<float, double>;
extern template class CKWTriangulateEarClipping<double, float>;
