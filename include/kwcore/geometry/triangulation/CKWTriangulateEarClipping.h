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
// QT_RATIONAL and QT_FILTERED (uncertainty fEpsilon) see the points as given.
//
// Input outside the contract (clockwise or self-intersecting contours,
// repeated points, NaN) gives triangles that do not cover the polygon, but
// still n - 2 triples of indices in [0, n); when no ear is left the next
// vertex of the ring is clipped. Fewer than 3 points, no points or an unknown
// query type give a null array.
//
//   using kwRationalArithmetic::Query;
//   int* indices = nullptr;
//   CKWTriangulateEarClipping<double, float> clip(n, points, Query::QT_FILTERED, 1e-12, indices);
//   for (int t = 0; t < n - 2; ++t) { indices[3 * t], indices[3 * t + 1], indices[3 * t + 2] }
//   delete[] indices;
#pragma once

#include <vector>

#include "kwcore/geometry/exact/Query2.h"
#include "kwcore/geometry/linear/CKWVector2T.h"
#include "kwcore/platform/Export.h"

namespace kwEarClipping {
class CReflexVertexIndex;
}

template <class Real, class Other>
class KWCORE_API CKWTriangulateEarClipping {
public:
    typedef CKWVector2T<Real, Other> Vector2;

    CKWTriangulateEarClipping(int iVQuantity, const Vector2* akPoint,
                              kwRationalArithmetic::Query::Type eQueryType, Real fEpsilon,
                              int*& raiIndex);
    ~CKWTriangulateEarClipping();

    CKWTriangulateEarClipping(const CKWTriangulateEarClipping&) = delete;
    CKWTriangulateEarClipping& operator=(const CKWTriangulateEarClipping&) = delete;

private:
    // One polygon vertex: its neighbours in the remaining polygon ring, its
    // links in the convex or the reflex list, and in the ear ring (-1: none).
    struct SVertex {
        bool IsConvex = false;
        bool IsEar = false;
        bool IsReflexListed = false;
        int VPrev = -1, VNext = -1;
        int SPrev = -1, SNext = -1;
        int EPrev = -1, ENext = -1;
    };

    void Triangulate(int iVQuantity, const Vector2* akPoint,
                     kwRationalArithmetic::Query::Type eQueryType, Real fEpsilon, int* aiIndex);
    // Builds the query and the coordinates the reflex index works on.
    void PrepareQuery(int iVQuantity, const Vector2* akPoint,
                      kwRationalArithmetic::Query::Type eQueryType, Real fEpsilon);

    SVertex& V(int i) { return m_kVertex[static_cast<std::size_t>(i)]; }
    bool IsConvex(int i);
    bool IsEar(int i);
    void InsertAfterC(int i);
    void InsertAfterR(int i);
    void InsertBeforeE(int i);
    void InsertEndE(int i);
    void RemoveV(int i);
    int RemoveE(int i);
    void RemoveR(int i);
    // Writes the triangle of ear i and takes i out of the vertex ring.
    void Clip(int i, int*& raiOut);
    // After a clip: re-examines a former neighbour of the clipped vertex.
    void Update(int i);

    kwRationalArithmetic::Query2<Real, Other>* m_pkQuery = nullptr;
    Vector2* m_akScaled = nullptr;  // scaled coordinates, for the types that scale
    std::vector<double> m_kIndexX, m_kIndexY;
    kwEarClipping::CReflexVertexIndex* m_pkReflexIndex = nullptr;
    std::vector<SVertex> m_kVertex;
    int m_iCFirst = -1, m_iCLast = -1;
    int m_iRFirst = -1, m_iRLast = -1;
    int m_iEFirst = -1, m_iELast = -1;
};

extern template class CKWTriangulateEarClipping<float, double>;
extern template class CKWTriangulateEarClipping<double, float>;
