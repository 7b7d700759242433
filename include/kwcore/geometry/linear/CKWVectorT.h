// CKWVectorT<N, Real, Other>: a fixed-size vector of N components (x, y, z, w).
//
// A value type with a virtual table whose two slots are Cross and UnitCross;
// the generic template answers both with the zero vector and CKWVector2T,
// CKWVector3T and CKWVector4T override them. Everything else is inline and
// non-virtual, so arrays of vectors cost no allocation and no call per
// element. The default vector is zero.
//
// Equality and ordering compare the component bytes (0 and -0 differ; a NaN
// equals itself when its bits match): a total order for sorted containers,
// not the numeric order. Normalize sets a vector no longer than EPSILON to
// zero (so also one with a NaN component; an infinite component gives NaN
// components); division by an exact 0 gives MAX_REAL in every component.
//
//   CKWVector3T<float, double> v(3, 0, 4);
//   float length = v.Normalize();   // 5; v is (0.6, 0, 0.8)
#pragma once

#include <cstring>

#include "kwcore/geometry/linear/CKWMathT.h"

template <int N, class Real, class Other>
class KWCORE_API CKWPointT;

template <int N, class Real, class Other>
class KWCORE_API CKWVectorT {
public:
    using Math = CKWMathT<Real, Other>;

    constexpr CKWVectorT() : m_aTuple{} {}
    CKWVectorT(const CKWVectorT& v) = default;
    // From N components; a null pointer gives the zero vector.
    explicit CKWVectorT(const Real* tuple) : m_aTuple{} {
        if (tuple) {
            for (int i = 0; i < N; ++i) {
                m_aTuple[i] = tuple[i];
            }
        }
    }
    // The vector from the origin to the point.
    explicit CKWVectorT(const CKWPointT<N, Real, Other>& p) {
        for (int i = 0; i < N; ++i) {
            m_aTuple[i] = p[i];
        }
    }

    CKWVectorT& operator=(const CKWVectorT& v) = default;

    int GetN() const { return N; }
    const Real* GetTuple() const { return m_aTuple; }
    Real* GetTuple() { return m_aTuple; }
    operator const Real*() const { return m_aTuple; }
    operator Real*() { return m_aTuple; }
    // i must lie in [0, N).
    Real operator[](int i) const { return m_aTuple[i]; }
    Real& operator[](int i) { return m_aTuple[i]; }

    bool operator==(const CKWVectorT& v) const { return CompareArrays(v) == 0; }
    bool operator!=(const CKWVectorT& v) const { return CompareArrays(v) != 0; }
    bool operator<(const CKWVectorT& v) const { return CompareArrays(v) < 0; }
    bool operator<=(const CKWVectorT& v) const { return CompareArrays(v) < 1; }
    bool operator>(const CKWVectorT& v) const { return CompareArrays(v) > 0; }
    bool operator>=(const CKWVectorT& v) const { return CompareArrays(v) >= 0; }
    // Component-wise Math::Approx_Equal(a, b, digits).
    bool Approx_Equal(const CKWVectorT& v, int digits) const;

    CKWVectorT operator+(const CKWVectorT& v) const {
        CKWVectorT r;
        for (int i = 0; i < N; ++i) {
            r.m_aTuple[i] = m_aTuple[i] + v.m_aTuple[i];
        }
        return r;
    }
    CKWVectorT operator-(const CKWVectorT& v) const {
        CKWVectorT r;
        for (int i = 0; i < N; ++i) {
            r.m_aTuple[i] = m_aTuple[i] - v.m_aTuple[i];
        }
        return r;
    }
    CKWVectorT operator-() const {
        CKWVectorT r;
        for (int i = 0; i < N; ++i) {
            r.m_aTuple[i] = -m_aTuple[i];
        }
        return r;
    }
    CKWVectorT operator*(Real s) const {
        CKWVectorT r(*this);
        r *= s;
        return r;
    }
    CKWVectorT operator/(Real s) const {
        CKWVectorT r(*this);
        r /= s;
        return r;
    }
    friend CKWVectorT operator*(Real s, const CKWVectorT& v) { return v * s; }

    CKWVectorT& operator+=(const CKWVectorT& v) {
        for (int i = 0; i < N; ++i) {
            m_aTuple[i] += v.m_aTuple[i];
        }
        return *this;
    }
    CKWVectorT& operator-=(const CKWVectorT& v) {
        for (int i = 0; i < N; ++i) {
            m_aTuple[i] -= v.m_aTuple[i];
        }
        return *this;
    }
    CKWVectorT& operator*=(Real s) {
        for (int i = 0; i < N; ++i) {
            m_aTuple[i] *= s;
        }
        return *this;
    }
    CKWVectorT& operator/=(Real s) {
        if (s == Real(0)) {
            for (int i = 0; i < N; ++i) {
                m_aTuple[i] = Math::MAX_REAL;
            }
            return *this;
        }
        return *this *= Real(1) / s;
    }

    Real SquaredLength() const {
        Real sum = 0;
        for (int i = 0; i < N; ++i) {
            sum += m_aTuple[i] * m_aTuple[i];
        }
        return sum;
    }
    Real Length() const { return std::sqrt(SquaredLength()); }
    Real Dot(const CKWVectorT& v) const {
        Real sum = 0;
        for (int i = 0; i < N; ++i) {
            sum += m_aTuple[i] * v.m_aTuple[i];
        }
        return sum;
    }
    // Scales to unit length and returns the former length; a vector no longer
    // than EPSILON becomes zero and 0 is returned.
    Real Normalize() {
        Real length = Length();
        if (length > Math::EPSILON) {
            *this *= Real(1) / length;
            return length;
        }
        for (int i = 0; i < N; ++i) {
            m_aTuple[i] = 0;
        }
        return 0;
    }
    CKWVectorT GetNormalized() const {
        CKWVectorT r(*this);
        r.Normalize();
        return r;
    }

    static CKWVectorT ZERO() { return CKWVectorT(); }
    // Component i set to 1, the others 0; an index outside [0, N) gives zero.
    static CKWVectorT UNIT(int i) {
        CKWVectorT r;
        if (i >= 0 && i < N) {
            r.m_aTuple[i] = 1;
        }
        return r;
    }

    virtual CKWVectorT Cross(const CKWVectorT& v) const;
    virtual CKWVectorT UnitCross(const CKWVectorT& v) const;

protected:
    // Byte-wise comparison of the components in memory order.
    int CompareArrays(const CKWVectorT& v) const {
        return std::memcmp(m_aTuple, v.m_aTuple, N * sizeof(Real));
    }

    Real m_aTuple[N];
};

#if !defined(_WIN32)
extern template class CKWVectorT<2, float, double>;
extern template class CKWVectorT<3, float, double>;
extern template class CKWVectorT<4, float, double>;
extern template class CKWVectorT<2, double, float>;
extern template class CKWVectorT<3, double, float>;
extern template class CKWVectorT<4, double, float>;
#endif
