// CKWPointT<N, Real, Other>: a position of N components (x, y, z, w).
//
// A plain value type (no virtual functions). Points and vectors follow the
// affine rules: point + vector and point - vector are points, point - point
// is a vector. Equality and ordering compare the component bytes, as for
// CKWVectorT. The default point is the origin.
//
//   CKWPoint3T<float, double> p(1, 2, 3), q(4, 6, 3);
//   float d = (q - p).Length();                      // 5
//   CKWPoint3T<float, double> mid = p.AffineSum(0.5f, q);   // (2.5, 4, 3)
#pragma once

#include <cstring>

#include "kwcore/geometry/linear/CKWVectorT.h"

template <int N, class Real, class Other>
class KWCORE_API CKWPointT {
public:
    using Math = CKWMathT<Real, Other>;
    using Vector = CKWVectorT<N, Real, Other>;

    constexpr CKWPointT() : m_aTuple{} {}
    constexpr CKWPointT(const CKWPointT& p) = default;
    // From N components; a null pointer gives the origin.
    explicit CKWPointT(const Real* tuple) : m_aTuple{} {
        if (tuple) {
            for (int i = 0; i < N; ++i) {
                m_aTuple[i] = tuple[i];
            }
        }
    }

    CKWPointT& operator=(const CKWPointT& p) = default;

    int GetN() const { return N; }
    const Real* GetTuple() const { return m_aTuple; }
    Real* GetTuple() { return m_aTuple; }
    operator const Real*() const { return m_aTuple; }
    operator Real*() { return m_aTuple; }
    // i must lie in [0, N).
    Real operator[](int i) const { return m_aTuple[i]; }
    Real& operator[](int i) { return m_aTuple[i]; }

    bool operator==(const CKWPointT& p) const { return CompareArrays(p) == 0; }
    bool operator!=(const CKWPointT& p) const { return CompareArrays(p) != 0; }
    bool operator<(const CKWPointT& p) const { return CompareArrays(p) < 0; }
    bool operator<=(const CKWPointT& p) const { return CompareArrays(p) < 1; }
    bool operator>(const CKWPointT& p) const { return CompareArrays(p) > 0; }
    bool operator>=(const CKWPointT& p) const { return CompareArrays(p) >= 0; }
    // Component-wise Math::Approx_Equal(a, b, digits).
    bool Approx_Equal(const CKWPointT& p, int digits) const;

    CKWPointT operator+(const Vector& v) const {
        CKWPointT r;
        for (int i = 0; i < N; ++i) {
            r.m_aTuple[i] = m_aTuple[i] + v[i];
        }
        return r;
    }
    CKWPointT operator-(const Vector& v) const {
        CKWPointT r;
        for (int i = 0; i < N; ++i) {
            r.m_aTuple[i] = m_aTuple[i] - v[i];
        }
        return r;
    }
    Vector operator-(const CKWPointT& p) const {
        Vector r;
        for (int i = 0; i < N; ++i) {
            r[i] = m_aTuple[i] - p.m_aTuple[i];
        }
        return r;
    }
    CKWPointT operator-() const {
        CKWPointT r;
        for (int i = 0; i < N; ++i) {
            r.m_aTuple[i] = -m_aTuple[i];
        }
        return r;
    }
    // The affine combination (1 - t) * this + t * q: this at t = 0, q at 1.
    CKWPointT AffineSum(Real t, const CKWPointT& q) const {
        CKWPointT r;
        for (int i = 0; i < N; ++i) {
            r.m_aTuple[i] = (Real(1) - t) * m_aTuple[i] + t * q.m_aTuple[i];
        }
        return r;
    }

    static CKWPointT ZERO() { return CKWPointT(); }
    // Component i set to 1, the others 0; an index outside [0, N) gives zero.
    static CKWPointT UNIT(int i) {
        CKWPointT r;
        if (i >= 0 && i < N) {
            r.m_aTuple[i] = 1;
        }
        return r;
    }

protected:
    // Byte-wise comparison of the components in memory order.
    int CompareArrays(const CKWPointT& p) const {
        return std::memcmp(m_aTuple, p.m_aTuple, N * sizeof(Real));
    }

    Real m_aTuple[N];
};

#if !defined(_WIN32)
extern template class CKWPointT<2, float, double>;
extern template class CKWPointT<3, float, double>;
extern template class CKWPointT<4, float, double>;
extern template class CKWPointT<2, double, float>;
extern template class CKWPointT<3, double, float>;
extern template class CKWPointT<4, double, float>;
#endif
