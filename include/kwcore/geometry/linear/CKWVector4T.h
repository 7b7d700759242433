// CKWVector4T<Real, Other>: a four-dimensional vector (x, y, z, w).
//
// Homogeneous directions carry w = 0. Cross is the three-dimensional cross
// product of the x, y, z parts with w = 0; UnitCross normalizes it.
//
//   CKWVector4T<double, float> d(1, 0, 0, 0);
//   CKWVector4T<double, float> up = d.Cross(CKWVector4T<double, float>::UNIT_Y);  // (0, 0, 1, 0)
#pragma once

#include "kwcore/geometry/linear/CKWVectorT.h"

template <class Real, class Other>
class KWCORE_API CKWVector4T : public CKWVectorT<4, Real, Other> {
    using Base = CKWVectorT<4, Real, Other>;

public:
    using Math = CKWMathT<Real, Other>;

    constexpr CKWVector4T() = default;
    constexpr CKWVector4T(const CKWVector4T& v) = default;
    constexpr CKWVector4T(const Base& v) : Base(v) {}
    constexpr CKWVector4T(Real x, Real y, Real z, Real w) { this->Assign(x, y, z, w); }
    CKWVector4T& operator=(const CKWVector4T& v) = default;

    void Set(Real x, Real y, Real z, Real w) { this->Assign(x, y, z, w); }
    Real X() const { return this->m_aTuple[0]; }
    Real& X() { return this->m_aTuple[0]; }
    Real Y() const { return this->m_aTuple[1]; }
    Real& Y() { return this->m_aTuple[1]; }
    Real Z() const { return this->m_aTuple[2]; }
    Real& Z() { return this->m_aTuple[2]; }
    Real W() const { return this->m_aTuple[3]; }
    Real& W() { return this->m_aTuple[3]; }

    KW_DECLARE_VECTOR_ARITHMETIC(CKWVector4T)

    Base Cross(const Base& v) const final { return CrossOf(v); }
    Base UnitCross(const Base& v) const final { return CrossOf(v).GetNormalized(); }
    CKWVector4T Cross(const CKWVector4T& v) const { return CrossOf(v); }
    CKWVector4T UnitCross(const CKWVector4T& v) const { return CrossOf(v).GetNormalized(); }

    static const CKWVector4T ZERO;
    static const CKWVector4T UNIT_X;
    static const CKWVector4T UNIT_Y;
    static const CKWVector4T UNIT_Z;
    static const CKWVector4T UNIT_W;

private:
    CKWVector4T CrossOf(const Base& v) const {
        return CKWVector4T(Y() * v[2] - Z() * v[1], Z() * v[0] - X() * v[2],
                           X() * v[1] - Y() * v[0], Real(0));
    }
};

#if !defined(_WIN32)
extern template class CKWVector4T<float, double>;
extern template class CKWVector4T<double, float>;
#endif
