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

#include "kwcore/geometry/linear/CKWMathT.h"
#include "kwcore/geometry/linear/CKWTupleT.h"

template <int N, class Real, class Other>
class KWCORE_API CKWPointT;

template <int N, class Real, class Other>
class KWCORE_API CKWVectorT : public CKWTupleT<N, Real, Other> {
    using Tuple = CKWTupleT<N, Real, Other>;

public:
    using Math = CKWMathT<Real, Other>;

    constexpr CKWVectorT() : Tuple() {}
    CKWVectorT(const CKWVectorT& v) = default;
    // From N components; a null pointer gives the zero vector.
    explicit CKWVectorT(const Real* tuple) : Tuple(tuple) {}
    // The vector from the origin to the point.
    explicit CKWVectorT(const CKWPointT<N, Real, Other>& p) : Tuple(p.GetTuple()) {}

    CKWVectorT& operator=(const CKWVectorT& v) = default;

    KW_DECLARE_TUPLE_MEMBERS(CKWVectorT)

    CKWVectorT operator+(const CKWVectorT& v) const {
        CKWVectorT r(*this);
        r += v;
        return r;
    }
    CKWVectorT operator-(const CKWVectorT& v) const {
        CKWVectorT r(*this);
        r -= v;
        return r;
    }
    CKWVectorT operator-() const {
        CKWVectorT r;
        kwTupleArithmetic::Negate<N>(r.m_aTuple, this->m_aTuple);
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
        kwTupleArithmetic::Add<N>(this->m_aTuple, v.m_aTuple);
        return *this;
    }
    CKWVectorT& operator-=(const CKWVectorT& v) {
        kwTupleArithmetic::Subtract<N>(this->m_aTuple, v.m_aTuple);
        return *this;
    }
    CKWVectorT& operator*=(Real s) {
        kwTupleArithmetic::Scale<N>(this->m_aTuple, s);
        return *this;
    }
    CKWVectorT& operator/=(Real s) {
        kwTupleArithmetic::Divide<N, Real, Other>(this->m_aTuple, s);
        return *this;
    }

    Real SquaredLength() const { return Dot(*this); }
    Real Length() const { return std::sqrt(SquaredLength()); }
    Real Dot(const CKWVectorT& v) const {
        Real sum = 0;
        for (int i = 0; i < N; ++i) {
            sum += this->m_aTuple[i] * v.m_aTuple[i];
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
        for (Real& component : this->m_aTuple) {
            component = Real(0);
        }
        return 0;
    }
    CKWVectorT GetNormalized() const {
        CKWVectorT r(*this);
        r.Normalize();
        return r;
    }

    virtual CKWVectorT Cross(const CKWVectorT& v) const;
    virtual CKWVectorT UnitCross(const CKWVectorT& v) const;
};

#if !defined(_WIN32)
extern template class CKWVectorT<2, float, double>;
extern template class CKWVectorT<3, float, double>;
extern template class CKWVectorT<4, float, double>;
extern template class CKWVectorT<2, double, float>;
extern template class CKWVectorT<3, double, float>;
extern template class CKWVectorT<4, double, float>;
#endif
