// CKWTriangulateEarClipping and its exported instantiations.
#include "kwcore/geometry/triangulation/CKWTriangulateEarClipping.h"

#include <climits>
#include <cmath>
#include <new>

#include "KWReflexVertexIndex.h"

using kwRationalArithmetic::Query;

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
    raiIndex = new (std::nothrow) int[3 * static_cast<std::size_t>(iVQuantity - 1)];
    if (raiIndex == nullptr) {
        return;
    }
    Triangulate(iVQuantity, akPoint, eQueryType, fEpsilon, raiIndex);
    // The query and all scratch data live only as long as the construction.
    delete m_pkQuery;
    m_pkQuery = nullptr;
    delete m_pkReflexIndex;
    m_pkReflexIndex = nullptr;
    delete[] m_akScaled;
    m_akScaled = nullptr;
    std::vector<double>().swap(m_kIndexX);
    std::vector<double>().swap(m_kIndexY);
    std::vector<SVertex>().swap(m_kVertex);
}

template <class Real, class Other>
CKWTriangulateEarClipping<Real, Other>::~CKWTriangulateEarClipping() {
    delete m_pkQuery;
    delete m_pkReflexIndex;
    delete[] m_akScaled;
}

template <class Real, class Other>
void CKWTriangulateEarClipping<Real, Other>::PrepareQuery(int iVQuantity, const Vector2* akPoint,
                                                          Query::Type eQueryType, Real fEpsilon) {
    using namespace kwRationalArithmetic;
    const auto count = static_cast<std::size_t>(iVQuantity);
    m_kIndexX.resize(count);
    m_kIndexY.resize(count);
    if (eQueryType == Query::QT_RATIONAL || eQueryType == Query::QT_FILTERED) {
        if (eQueryType == Query::QT_RATIONAL) {
            m_pkQuery = new Query2TRational<Real, Other>(iVQuantity, akPoint);
        } else {
            m_pkQuery = new Query2Filtered<Real, Other>(iVQuantity, akPoint, fEpsilon);
        }
        // As the exact arithmetic reads them: non-finite values count as 0.
        for (std::size_t i = 0; i < count; ++i) {
            const double x = static_cast<double>(akPoint[i].X());
            const double y = static_cast<double>(akPoint[i].Y());
            m_kIndexX[i] = std::isfinite(x) ? x : 0.0;
            m_kIndexY[i] = std::isfinite(y) ? y : 0.0;
        }
        return;
    }
    Vector2 minimum, maximum;
    Vector2::ComputeExtremes(iVQuantity, akPoint, minimum, maximum);
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
    m_akScaled = new Vector2[count];
    for (std::size_t i = 0; i < count; ++i) {
        const Vector2 scaled((akPoint[i].X() - minimum.X()) * factor,
                             (akPoint[i].Y() - minimum.Y()) * factor);
        m_akScaled[i] = scaled;
        double x = static_cast<double>(scaled.X());
        double y = static_cast<double>(scaled.Y());
        if (eQueryType == Query::QT_INT64) {
            x = static_cast<double>(Query2Int64<Real, Other>::Truncate(scaled.X()));
            y = static_cast<double>(Query2Int64<Real, Other>::Truncate(scaled.Y()));
        } else if (eQueryType == Query::QT_INTEGER) {
            x = Query2TInteger<Real, Other>::Truncate(scaled.X());
            y = Query2TInteger<Real, Other>::Truncate(scaled.Y());
        }
        m_kIndexX[i] = std::isfinite(x) ? x : 0.0;
        m_kIndexY[i] = std::isfinite(y) ? y : 0.0;
    }
    if (eQueryType == Query::QT_INT64) {
        m_pkQuery = new Query2Int64<Real, Other>(iVQuantity, m_akScaled);
    } else if (eQueryType == Query::QT_INTEGER) {
        m_pkQuery = new Query2TInteger<Real, Other>(iVQuantity, m_akScaled);
    } else {
        m_pkQuery = new Query2<Real, Other>(iVQuantity, m_akScaled);
    }
}

template <class Real, class Other>
void CKWTriangulateEarClipping<Real, Other>::Triangulate(int iVQuantity, const Vector2* akPoint,
                                                         Query::Type eQueryType, Real fEpsilon,
                                                         int* aiIndex) {
    PrepareQuery(iVQuantity, akPoint, eQueryType, fEpsilon);
    const int n = iVQuantity;
    m_kVertex.assign(static_cast<std::size_t>(n), SVertex());
    for (int i = 0; i < n; ++i) {
        V(i).VPrev = i == 0 ? n - 1 : i - 1;
        V(i).VNext = i == n - 1 ? 0 : i + 1;
    }
    for (int i = 0; i < n; ++i) {
        if (IsConvex(i)) {
            InsertAfterC(i);
        } else {
            InsertAfterR(i);
        }
    }

    int* out = aiIndex;
    if (m_iRFirst == -1) {
        for (int i = 1; i + 1 < n; ++i) {
            *out++ = 0;
            *out++ = i;
            *out++ = i + 1;
        }
        return;
    }

    std::vector<int> reflex;
    for (int i = m_iRFirst; i != -1; i = V(i).SNext) {
        reflex.push_back(i);
    }
    m_pkReflexIndex = new kwEarClipping::CReflexVertexIndex(m_kIndexX.data(), m_kIndexY.data(), n);
    m_pkReflexIndex->Build(reflex);

    for (int i = m_iCFirst; i != -1; i = V(i).SNext) {
        if (IsEar(i)) {
            InsertEndE(i);
        }
    }
    if (m_iEFirst != -1) {
        V(m_iEFirst).EPrev = m_iELast;
        V(m_iELast).ENext = m_iEFirst;
    }

    // Without an ear (input outside the contract) the clip falls back on the
    // clipped vertex's successor, or on vertex 0 at the start.
    int ear = m_iEFirst != -1 ? m_iEFirst : 0;
    int prev = V(ear).VPrev;
    int next = V(ear).VNext;
    Clip(ear, out);
    for (int k = 0; k < n - 4; ++k) {
        Update(prev);
        Update(next);
        if (V(ear).IsEar) {
            RemoveE(ear);
        }
        ear = m_iEFirst != -1 ? m_iEFirst : next;
        prev = V(ear).VPrev;
        next = V(ear).VNext;
        Clip(ear, out);
    }
    if (n > 3) {
        if (V(ear).IsEar) {
            RemoveE(ear);
        }
        const int last = m_iEFirst != -1 ? m_iEFirst : next;
        *out++ = V(last).VPrev;
        *out++ = last;
        *out++ = V(last).VNext;
    }
}

template <class Real, class Other>
void CKWTriangulateEarClipping<Real, Other>::Clip(int i, int*& raiOut) {
    *raiOut++ = V(i).VPrev;
    *raiOut++ = i;
    *raiOut++ = V(i).VNext;
    RemoveV(i);
    if (V(i).IsReflexListed) {
        RemoveR(i);
    }
}

template <class Real, class Other>
void CKWTriangulateEarClipping<Real, Other>::Update(int i) {
    if (!V(i).IsEar) {
        if (IsConvex(i)) {
            if (V(i).IsReflexListed) {
                RemoveR(i);
            }
            if (IsEar(i)) {
                InsertBeforeE(i);
            }
        }
    } else if (!IsEar(i)) {
        RemoveE(i);
    }
}

template <class Real, class Other>
bool CKWTriangulateEarClipping<Real, Other>::IsConvex(int i) {
    SVertex& vertex = V(i);
    vertex.IsConvex = m_pkQuery->ToLine(i, vertex.VPrev, vertex.VNext) > 0;
    return vertex.IsConvex;
}

template <class Real, class Other>
bool CKWTriangulateEarClipping<Real, Other>::IsEar(int i) {
    SVertex& vertex = V(i);
    if (m_iRFirst == -1) {
        vertex.IsEar = true;
        return true;
    }
    const int prev = vertex.VPrev;
    const int next = vertex.VNext;
    const kwRationalArithmetic::Query2<Real, Other>* query = m_pkQuery;
    // Reflex vertices on the triangle's boundary do not block the ear. The
    // triangle's own corners are skipped: with a zero difference vector every
    // query finds them on the boundary, and the filtered query would pay for
    // an exact evaluation to say so.
    vertex.IsEar = !m_pkReflexIndex->AnyInside(prev, i, next, [query, prev, i, next](int r) {
        return r != prev && r != next && query->ToTriangle(r, prev, i, next) < 0;
    });
    return vertex.IsEar;
}

template <class Real, class Other>
void CKWTriangulateEarClipping<Real, Other>::InsertAfterC(int i) {
    if (m_iCFirst == -1) {
        m_iCFirst = i;
    } else {
        V(m_iCLast).SNext = i;
        V(i).SPrev = m_iCLast;
    }
    m_iCLast = i;
}

template <class Real, class Other>
void CKWTriangulateEarClipping<Real, Other>::InsertAfterR(int i) {
    if (m_iRFirst == -1) {
        m_iRFirst = i;
    } else {
        V(m_iRLast).SNext = i;
        V(i).SPrev = m_iRLast;
    }
    m_iRLast = i;
    V(i).IsReflexListed = true;
}

template <class Real, class Other>
void CKWTriangulateEarClipping<Real, Other>::InsertEndE(int i) {
    if (m_iEFirst == -1) {
        m_iEFirst = i;
    } else {
        V(m_iELast).ENext = i;
        V(i).EPrev = m_iELast;
    }
    m_iELast = i;
}

template <class Real, class Other>
void CKWTriangulateEarClipping<Real, Other>::InsertBeforeE(int i) {
    if (m_iEFirst == -1) {
        m_iEFirst = m_iELast = i;
        V(i).EPrev = V(i).ENext = i;
        return;
    }
    // Just before the first ear: at the end of the ring.
    V(i).EPrev = m_iELast;
    V(i).ENext = m_iEFirst;
    V(m_iELast).ENext = i;
    V(m_iEFirst).EPrev = i;
    m_iELast = i;
}

template <class Real, class Other>
void CKWTriangulateEarClipping<Real, Other>::RemoveV(int i) {
    const int prev = V(i).VPrev;
    const int next = V(i).VNext;
    V(prev).VNext = next;
    V(next).VPrev = prev;
}

template <class Real, class Other>
int CKWTriangulateEarClipping<Real, Other>::RemoveE(int i) {
    SVertex& vertex = V(i);
    const int prev = vertex.EPrev;
    const int next = vertex.ENext;
    vertex.IsEar = false;
    vertex.EPrev = vertex.ENext = -1;
    if (next == i) {
        m_iEFirst = m_iELast = -1;
        return -1;
    }
    V(prev).ENext = next;
    V(next).EPrev = prev;
    if (i == m_iEFirst) {
        m_iEFirst = next;
    }
    if (i == m_iELast) {
        m_iELast = prev;
    }
    return next;
}

template <class Real, class Other>
void CKWTriangulateEarClipping<Real, Other>::RemoveR(int i) {
    SVertex& vertex = V(i);
    if (vertex.SPrev != -1) {
        V(vertex.SPrev).SNext = vertex.SNext;
    } else {
        m_iRFirst = vertex.SNext;
    }
    if (vertex.SNext != -1) {
        V(vertex.SNext).SPrev = vertex.SPrev;
    } else {
        m_iRLast = vertex.SPrev;
    }
    vertex.SPrev = vertex.SNext = -1;
    vertex.IsReflexListed = false;
    m_pkReflexIndex->Remove(i);
}

template class CKWTriangulateEarClipping<float, double>;
template class CKWTriangulateEarClipping<double, float>;
