// CKWPointT<N, Real, Other>: a position of N components (x, y, z, w).
//
// A plain value type (no virtual functions). Points and vectors follow the
// affine rules: point + vector and point - vector are points, point - point
// is a vector. Access, comparison and Approx_Equal come from CKWTupleT. The
// default point is the origin.
//
//   CKWPoint3T<float, double> p(1, 2, 3), q(4, 6, 3);
//   float d = (q - p).Length();                      // 5
//   CKWPoint3T<float, double> mid = p.AffineSum(0.5f, q);   // (2.5, 4, 3)
#pragma once

#include "kwcore/geometry/linear/CKWTupleT.h"
#include "kwcore/geometry/linear/CKWVectorT.h"

template <int N, class Real, class Other>
class KWCORE_API CKWPointT : public CKWTupleT<N, Real, Other> {
    using Tuple = CKWTupleT<N, Real, Other>;

public:
    using Math = CKWMathT<Real, Other>;
    using Vector = CKWVectorT<N, Real, Other>;

    constexpr CKWPointT() : Tuple() {}
    constexpr CKWPointT(const CKWPointT& p) = default;
    // From N components; a null pointer gives the origin.
    explicit CKWPointT(const Real* tuple) : Tuple(tuple) {}

    CKWPointT& operator=(const CKWPointT& p) = default;

    KW_DECLARE_TUPLE_MEMBERS(CKWPointT)

    CKWPointT operator+(const Vector& v) const {
        CKWPointT r(*this);
        kwTupleArithmetic::Add<N>(r.m_aTuple, v.GetTuple());
        return r;
    }
    CKWPointT operator-(const Vector& v) const {
        CKWPointT r(*this);
        kwTupleArithmetic::Subtract<N>(r.m_aTuple, v.GetTuple());
        return r;
    }
    Vector operator-(const CKWPointT& p) const {
        Vector r(*this);
        kwTupleArithmetic::Subtract<N>(r.GetTuple(), p.m_aTuple);
        return r;
    }
    CKWPointT operator-() const {
        CKWPointT r;
        kwTupleArithmetic::Negate<N>(r.m_aTuple, this->m_aTuple);
        return r;
    }
    // The affine combination (1 - t) * this + t * q: this at t = 0, q at 1.
    CKWPointT AffineSum(Real t, const CKWPointT& q) const {
        CKWPointT r;
        for (int i = 0; i < N; ++i) {
            r.m_aTuple[i] = (Real(1) - t) * this->m_aTuple[i] + t * q.m_aTuple[i];
        }
        return r;
    }
};

#if !defined(_WIN32)
extern template class CKWPointT<2, float, double>;
extern template class CKWPointT<3, float, double>;
extern template class CKWPointT<4, float, double>;
extern template class CKWPointT<2, double, float>;
extern template class CKWPointT<3, double, float>;
extern template class CKWPointT<4, double, float>;
#endif
