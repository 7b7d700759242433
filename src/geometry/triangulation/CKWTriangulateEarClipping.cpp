// CKWTriangulateEarClipping and its exported instantiations. The constructor
// runs one CEarClipperT, which holds the query, the vertex records and the
// lists for the length of the construction.
#include "kwcore/geometry/triangulation/CKWTriangulateEarClipping.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <vector>

#include "KWReflexVertexIndex.h"

using kwRationalArithmetic::Query;
using kwRationalArithmetic::Query2;
using kwRationalArithmetic::Query2Filtered;
using kwRationalArithmetic::Query2Int64;
using kwRationalArithmetic::Query2TInteger;
using kwRationalArithmetic::Query2TRational;

namespace {

// How many binary places, from the leading bit of the largest coordinate to
// the lowest bit set in any coordinate, the exact line test can hold: its
// products of coordinate differences must fit TRational<32>'s 1024 bits.
const int kExactSpan = 500;

// The binary exponents of the leading and of the lowest set bit of a finite,
// nonzero value.
void BitRange(double value, int& leading, int& lowest) {
    leading = std::ilogb(value);
    const double mantissa = std::ldexp(std::fabs(value), 52 - leading);  // an integer below 2^53
    const auto bits = static_cast<std::uint64_t>(mantissa);
    lowest = leading - 52 + std::ilogb(static_cast<double>(bits & (~bits + 1)));
}

// The power of two the exact queries see the points scaled by: 0 while
// every bit set lies within 2^(max_exponent / 5) of 1 either way, where
// neither the rationals nor the filter's products can leave their range;
// else the power that takes the largest coordinate into [1, 2), raised where
// the lowest bit would drop below what Real holds. The scaled points keep
// every bit, and the queries decide as on the points given. False when the
// coordinates span more than kExactSpan places.
template <class Real, class Vector2>
bool ExactScale(int count, const Vector2* points, int& power) {
    Real largest = 0, smallest = std::numeric_limits<Real>::max();
    for (int i = 0; i < count; ++i) {
        for (Real value : {points[i].X(), points[i].Y()}) {
            const Real magnitude = std::fabs(value);
            if (magnitude > Real(0) && magnitude <= std::numeric_limits<Real>::max()) {
                largest = std::max(largest, magnitude);
                smallest = std::min(smallest, magnitude);
            }
        }
    }
    power = 0;
    if (largest == Real(0)) {
        return true;
    }
    const int leading = std::ilogb(largest);
    const int smallestBit =
        std::numeric_limits<Real>::min_exponent - std::numeric_limits<Real>::digits;
    // Every bit of a value lies at most digits - 1 places below its leading
    // bit: usually that settles it without looking at the bits themselves.
    int lowest = std::ilogb(smallest) - (std::numeric_limits<Real>::digits - 1);
    if (leading - lowest > std::min(kExactSpan, -smallestBit)) {
        lowest = INT_MAX;
        for (int i = 0; i < count; ++i) {
            for (Real value : {points[i].X(), points[i].Y()}) {
                if (std::isfinite(value) && value != Real(0)) {
                    int top = 0, bottom = 0;
                    BitRange(static_cast<double>(value), top, bottom);
                    lowest = std::min(lowest, bottom);
                }
            }
        }
        if (leading - lowest > kExactSpan) {
            return false;
        }
    }
    const int window = std::numeric_limits<Real>::max_exponent / 5;
    if (leading > window || lowest < -window) {
        power = std::max(-leading, smallestBit - lowest);
    }
    return true;
}

template <class Real, class Other>
class CEarClipperT {
public:
    typedef CKWVector2T<Real, Other> Vector2;

    // Builds the query and the coordinates the reflex index works on.
    CEarClipperT(int iVQuantity, const Vector2* akPoint, Query::Type eQueryType, Real fEpsilon);
    // False when the query cannot decide exactly on these points.
    bool Ready() const { return m_spQuery != nullptr; }
    // Writes the n - 2 triangles to aiIndex.
    void Triangulate(int* aiIndex);

private:
    // One polygon vertex: its neighbours in the remaining polygon ring, its
    // links in the convex or the reflex list, and in the ear ring (-1: none).
    struct SVertex {
        bool isEar = false;
        bool isReflexListed = false;
        int ringPrev = -1, ringNext = -1;  // the remaining polygon
        int listPrev = -1, listNext = -1;  // the convex or the reflex list
        int earPrev = -1, earNext = -1;    // the ear ring
    };

    void PrepareExactQuery(const Vector2* akPoint, Query::Type eQueryType, Real fEpsilon);
    void PrepareScaledQuery(const Vector2* akPoint, Query::Type eQueryType);
    // Links the vertex ring and sorts every vertex into the convex or the
    // reflex list.
    void Classify();
    void WriteFan(int* aiOut) const;
    // Indexes the reflex vertices and rings the convex vertices that are ears.
    void FindEars();
    void ClipEars(int* aiOut);

    SVertex& Vertex(int i) { return m_vertices[static_cast<std::size_t>(i)]; }
    const SVertex& Vertex(int i) const { return m_vertices[static_cast<std::size_t>(i)]; }
    bool IsConvex(int i) const;
    bool IsEar(int i);
    // Appends i to the list from riFirst to riLast linked through the two
    // fields (the convex and reflex lists, or the ear ring before it closes).
    void Append(int i, int& riFirst, int& riLast, int SVertex::*piPrev, int SVertex::*piNext);
    void AppendConvex(int i);
    void AppendReflex(int i);
    void AppendEar(int i);
    // A new ear in the closed ring, just before the first one.
    void AddEar(int i);
    void RemoveFromRing(int i);
    void RemoveEar(int i);
    void RemoveReflex(int i);
    // Writes the triangle of ear i and takes i out of the vertex ring.
    void Clip(int i, int*& raiOut);
    // After a clip: re-examines a former neighbour of the clipped vertex.
    void Update(int i);

    std::unique_ptr<Query2<Real, Other>> m_spQuery;
    std::unique_ptr<Vector2[]> m_spScaled;  // the coordinates the query sees
    std::vector<double> m_indexX, m_indexY;
    std::unique_ptr<kwEarClipping::CReflexVertexIndex> m_spReflexIndex;
    std::vector<SVertex> m_vertices;
    int m_iConvexFirst = -1, m_iConvexLast = -1;
    int m_iReflexFirst = -1, m_iReflexLast = -1;
    int m_iEarFirst = -1, m_iEarLast = -1;
};

template <class Real, class Other>
CEarClipperT<Real, Other>::CEarClipperT(int iVQuantity, const Vector2* akPoint,
                                        Query::Type eQueryType, Real fEpsilon)
    : m_indexX(static_cast<std::size_t>(iVQuantity)),
      m_indexY(static_cast<std::size_t>(iVQuantity)),
      m_vertices(static_cast<std::size_t>(iVQuantity)) {
    if (eQueryType == Query::QT_RATIONAL || eQueryType == Query::QT_FILTERED) {
        PrepareExactQuery(akPoint, eQueryType, fEpsilon);
    } else {
        PrepareScaledQuery(akPoint, eQueryType);
    }
}

// The exact queries work on the points scaled by a power of two where they
// lie far from 1, which changes no sign they compute (and no decision of the
// filter, whose test is homogeneous), but keeps the rationals within their
// words and the filter's products clear of overflow and underflow.
template <class Real, class Other>
void CEarClipperT<Real, Other>::PrepareExactQuery(const Vector2* akPoint, Query::Type eQueryType,
                                                  Real fEpsilon) {
    const int count = static_cast<int>(m_vertices.size());
    int power = 0;
    if (!ExactScale<Real>(count, akPoint, power)) {
        return;
    }
    const Vector2* points = akPoint;
    if (power != 0) {
        m_spScaled.reset(new Vector2[m_vertices.size()]);
        for (std::size_t i = 0; i < m_vertices.size(); ++i) {
            m_spScaled[i] =
                Vector2(std::ldexp(akPoint[i].X(), power), std::ldexp(akPoint[i].Y(), power));
        }
        points = m_spScaled.get();
    }
    // As the exact arithmetic reads them: non-finite values count as 0.
    for (std::size_t i = 0; i < m_vertices.size(); ++i) {
        const double x = static_cast<double>(points[i].X());
        const double y = static_cast<double>(points[i].Y());
        m_indexX[i] = std::isfinite(x) ? x : 0.0;
        m_indexY[i] = std::isfinite(y) ? y : 0.0;
    }
    if (eQueryType == Query::QT_RATIONAL) {
        m_spQuery.reset(new Query2TRational<Real, Other>(count, points));
    } else {
        m_spQuery.reset(new Query2Filtered<Real, Other>(count, points, fEpsilon));
    }
}

template <class Real, class Other>
void CEarClipperT<Real, Other>::PrepareScaledQuery(const Vector2* akPoint, Query::Type eQueryType) {
    const int count = static_cast<int>(m_vertices.size());
    Vector2 minimum, maximum;
    Vector2::ComputeExtremes(count, akPoint, minimum, maximum);
    const Real rangeX = maximum.X() - minimum.X();
    const Real rangeY = maximum.Y() - minimum.Y();
    const Real range = rangeX >= rangeY ? rangeX : rangeY;
    // The factor multiplies by the extent rather than dividing by it; the
    // integer queries' results depend on exactly this scaling.
    Real factor = range;
    if (eQueryType == Query::QT_INT64) {
        factor = range * static_cast<Real>(1 << 20);
    } else if (eQueryType == Query::QT_INTEGER) {
        factor = range * static_cast<Real>(1 << 24);
    }
    m_spScaled.reset(new Vector2[m_vertices.size()]);
    for (std::size_t i = 0; i < m_vertices.size(); ++i) {
        const Vector2 scaled((akPoint[i].X() - minimum.X()) * factor,
                             (akPoint[i].Y() - minimum.Y()) * factor);
        m_spScaled[i] = scaled;
        double x = static_cast<double>(scaled.X());
        double y = static_cast<double>(scaled.Y());
        if (eQueryType == Query::QT_INT64) {
            x = static_cast<double>(Query2Int64<Real, Other>::Truncate(scaled.X()));
            y = static_cast<double>(Query2Int64<Real, Other>::Truncate(scaled.Y()));
        } else if (eQueryType == Query::QT_INTEGER) {
            x = Query2TInteger<Real, Other>::Truncate(scaled.X());
            y = Query2TInteger<Real, Other>::Truncate(scaled.Y());
        }
        m_indexX[i] = std::isfinite(x) ? x : 0.0;
        m_indexY[i] = std::isfinite(y) ? y : 0.0;
    }
    if (eQueryType == Query::QT_INT64) {
        m_spQuery.reset(new Query2Int64<Real, Other>(count, m_spScaled.get()));
    } else if (eQueryType == Query::QT_INTEGER) {
        m_spQuery.reset(new Query2TInteger<Real, Other>(count, m_spScaled.get()));
    } else {
        m_spQuery.reset(new Query2<Real, Other>(count, m_spScaled.get()));
    }
}

template <class Real, class Other>
void CEarClipperT<Real, Other>::Triangulate(int* aiIndex) {
    Classify();
    if (m_iReflexFirst == -1) {
        WriteFan(aiIndex);
        return;
    }
    FindEars();
    ClipEars(aiIndex);
}

template <class Real, class Other>
void CEarClipperT<Real, Other>::Classify() {
    const int n = static_cast<int>(m_vertices.size());
    for (int i = 0; i < n; ++i) {
        Vertex(i).ringPrev = i == 0 ? n - 1 : i - 1;
        Vertex(i).ringNext = i == n - 1 ? 0 : i + 1;
    }
    for (int i = 0; i < n; ++i) {
        if (IsConvex(i)) {
            AppendConvex(i);
        } else {
            AppendReflex(i);
        }
    }
}

template <class Real, class Other>
void CEarClipperT<Real, Other>::WriteFan(int* aiOut) const {
    const int n = static_cast<int>(m_vertices.size());
    for (int i = 1; i + 1 < n; ++i) {
        *aiOut++ = 0;
        *aiOut++ = i;
        *aiOut++ = i + 1;
    }
}

template <class Real, class Other>
void CEarClipperT<Real, Other>::FindEars() {
    std::vector<int> reflex;
    for (int i = m_iReflexFirst; i != -1; i = Vertex(i).listNext) {
        reflex.push_back(i);
    }
    m_spReflexIndex.reset(new kwEarClipping::CReflexVertexIndex(
        m_indexX.data(), m_indexY.data(), static_cast<int>(m_vertices.size())));
    m_spReflexIndex->Build(reflex);

    for (int i = m_iConvexFirst; i != -1; i = Vertex(i).listNext) {
        if (IsEar(i)) {
            AppendEar(i);
        }
    }
    if (m_iEarFirst != -1) {
        Vertex(m_iEarFirst).earPrev = m_iEarLast;
        Vertex(m_iEarLast).earNext = m_iEarFirst;
    }
}

template <class Real, class Other>
void CEarClipperT<Real, Other>::ClipEars(int* aiOut) {
    const int n = static_cast<int>(m_vertices.size());
    // Without an ear (input outside the contract) the clip falls back on the
    // clipped vertex's successor, or on vertex 0 at the start.
    int ear = m_iEarFirst != -1 ? m_iEarFirst : 0;
    int prev = Vertex(ear).ringPrev;
    int next = Vertex(ear).ringNext;
    Clip(ear, aiOut);
    for (int k = 0; k < n - 4; ++k) {
        Update(prev);
        Update(next);
        if (Vertex(ear).isEar) {
            RemoveEar(ear);
        }
        ear = m_iEarFirst != -1 ? m_iEarFirst : next;
        prev = Vertex(ear).ringPrev;
        next = Vertex(ear).ringNext;
        Clip(ear, aiOut);
    }
    if (n > 3) {
        if (Vertex(ear).isEar) {
            RemoveEar(ear);
        }
        const int last = m_iEarFirst != -1 ? m_iEarFirst : next;
        *aiOut++ = Vertex(last).ringPrev;
        *aiOut++ = last;
        *aiOut++ = Vertex(last).ringNext;
    }
}

template <class Real, class Other>
void CEarClipperT<Real, Other>::Clip(int i, int*& raiOut) {
    *raiOut++ = Vertex(i).ringPrev;
    *raiOut++ = i;
    *raiOut++ = Vertex(i).ringNext;
    RemoveFromRing(i);
    if (Vertex(i).isReflexListed) {
        RemoveReflex(i);
    }
}

template <class Real, class Other>
void CEarClipperT<Real, Other>::Update(int i) {
    if (!Vertex(i).isEar) {
        if (IsConvex(i)) {
            if (Vertex(i).isReflexListed) {
                RemoveReflex(i);
            }
            if (IsEar(i)) {
                AddEar(i);
            }
        }
    } else if (!IsEar(i)) {
        RemoveEar(i);
    }
}

template <class Real, class Other>
bool CEarClipperT<Real, Other>::IsConvex(int i) const {
    const SVertex& vertex = Vertex(i);
    return m_spQuery->ToLine(i, vertex.ringPrev, vertex.ringNext) > 0;
}

template <class Real, class Other>
bool CEarClipperT<Real, Other>::IsEar(int i) {
    SVertex& vertex = Vertex(i);
    if (m_iReflexFirst == -1) {
        vertex.isEar = true;
        return true;
    }
    const int prev = vertex.ringPrev;
    const int next = vertex.ringNext;
    const Query2<Real, Other>* query = m_spQuery.get();
    // Reflex vertices on the triangle's boundary do not block the ear. The
    // triangle's own corners are skipped: with a zero difference vector every
    // query finds them on the boundary, and the filtered query would pay for
    // an exact evaluation to say so.
    vertex.isEar = !m_spReflexIndex->AnyInside(prev, i, next, [query, prev, i, next](int r) {
        return r != prev && r != next && query->ToTriangle(r, prev, i, next) < 0;
    });
    return vertex.isEar;
}

template <class Real, class Other>
void CEarClipperT<Real, Other>::Append(int i, int& riFirst, int& riLast, int SVertex::*piPrev,
                                       int SVertex::*piNext) {
    if (riFirst == -1) {
        riFirst = i;
    } else {
        Vertex(riLast).*piNext = i;
        Vertex(i).*piPrev = riLast;
    }
    riLast = i;
}

template <class Real, class Other>
void CEarClipperT<Real, Other>::AppendConvex(int i) {
    Append(i, m_iConvexFirst, m_iConvexLast, &SVertex::listPrev, &SVertex::listNext);
}

template <class Real, class Other>
void CEarClipperT<Real, Other>::AppendReflex(int i) {
    Append(i, m_iReflexFirst, m_iReflexLast, &SVertex::listPrev, &SVertex::listNext);
    Vertex(i).isReflexListed = true;
}

template <class Real, class Other>
void CEarClipperT<Real, Other>::AppendEar(int i) {
    Append(i, m_iEarFirst, m_iEarLast, &SVertex::earPrev, &SVertex::earNext);
}

template <class Real, class Other>
void CEarClipperT<Real, Other>::AddEar(int i) {
    if (m_iEarFirst == -1) {
        m_iEarFirst = m_iEarLast = i;
        Vertex(i).earPrev = Vertex(i).earNext = i;
        return;
    }
    // Just before the first ear: at the end of the ring.
    Vertex(i).earPrev = m_iEarLast;
    Vertex(i).earNext = m_iEarFirst;
    Vertex(m_iEarLast).earNext = i;
    Vertex(m_iEarFirst).earPrev = i;
    m_iEarLast = i;
}

template <class Real, class Other>
void CEarClipperT<Real, Other>::RemoveFromRing(int i) {
    const int prev = Vertex(i).ringPrev;
    const int next = Vertex(i).ringNext;
    Vertex(prev).ringNext = next;
    Vertex(next).ringPrev = prev;
}

template <class Real, class Other>
void CEarClipperT<Real, Other>::RemoveEar(int i) {
    SVertex& vertex = Vertex(i);
    const int prev = vertex.earPrev;
    const int next = vertex.earNext;
    vertex.isEar = false;
    vertex.earPrev = vertex.earNext = -1;
    if (next == i) {
        m_iEarFirst = m_iEarLast = -1;
        return;
    }
    Vertex(prev).earNext = next;
    Vertex(next).earPrev = prev;
    if (i == m_iEarFirst) {
        m_iEarFirst = next;
    }
    if (i == m_iEarLast) {
        m_iEarLast = prev;
    }
}

template <class Real, class Other>
void CEarClipperT<Real, Other>::RemoveReflex(int i) {
    SVertex& vertex = Vertex(i);
    if (vertex.listPrev != -1) {
        Vertex(vertex.listPrev).listNext = vertex.listNext;
    } else {
        m_iReflexFirst = vertex.listNext;
    }
    if (vertex.listNext != -1) {
        Vertex(vertex.listNext).listPrev = vertex.listPrev;
    } else {
        m_iReflexLast = vertex.listPrev;
    }
    vertex.listPrev = vertex.listNext = -1;
    vertex.isReflexListed = false;
    m_spReflexIndex->Remove(i);
}

}  // namespace

template <class Real, class Other>
CKWTriangulateEarClipping<Real, Other>::CKWTriangulateEarClipping(int iVQuantity,
                                                                  const Vector2* akPoint,
                                                                  Query::Type eQueryType,
                                                                  Real fEpsilon, int*& raiIndex) {
    raiIndex = nullptr;
    if (iVQuantity < 3 || iVQuantity > INT_MAX / 3 || akPoint == nullptr ||
        eQueryType < Query::QT_INT64 || eQueryType > Query::QT_FILTERED) {
        return;
    }
    CEarClipperT<Real, Other> clipper(iVQuantity, akPoint, eQueryType, fEpsilon);
    if (!clipper.Ready()) {
        return;
    }
    raiIndex = new (std::nothrow) int[3 * static_cast<std::size_t>(iVQuantity - 1)];
    if (raiIndex != nullptr) {
        clipper.Triangulate(raiIndex);
    }
}

template <class Real, class Other>
CKWTriangulateEarClipping<Real, Other>::~CKWTriangulateEarClipping() = default;

template class CKWTriangulateEarClipping<float, double>;
template class CKWTriangulateEarClipping<double, float>;
