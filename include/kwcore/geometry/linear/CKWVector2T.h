// CKWVector2T<Real, Other>: a two-dimensional vector (x, y).
//
// Adds the planar operations to CKWVectorT<2>: the perpendicular (y, -x), the
// scalar cross product Kross, the signed angle between two vectors. Its
// Cross is the perpendicular of this vector (the plane's only direction
// orthogonal to it) and ignores its argument. Arithmetic keeps the type.
//
//   CKWVector2T<float, double> a(1, 0), b(0, 1);
//   float k = a.Kross(b);             // 1: b lies counter-clockwise of a
//   float angle = a.AngleBetween(b);  // pi/2
#pragma once

#include "kwcore/geometry/linear/CKWVectorT.h"

template <class Real, class Other>
class KWCORE_API CKWVector2T : public CKWVectorT<2, Real, Other> {
    using Base = CKWVectorT<2, Real, Other>;

public:
    using Math = CKWMathT<Real, Other>;

    constexpr CKWVector2T() = default;
    constexpr CKWVector2T(const CKWVector2T& v) = default;
    constexpr CKWVector2T(const Base& v) : Base(v) {}
    constexpr CKWVector2T(Real x, Real y) { this->Assign(x, y); }
    CKWVector2T& operator=(const CKWVector2T& v) = default;

    void Set(Real x, Real y) { this->Assign(x, y); }
    Real X() const { return this->m_aTuple[0]; }
    Real& X() { return this->m_aTuple[0]; }
    Real Y() const { return this->m_aTuple[1]; }
    Real& Y() { return this->m_aTuple[1]; }

    KW_DECLARE_VECTOR_ARITHMETIC(CKWVector2T)

    CKWVector2T Perp() const { return CKWVector2T(Y(), -X()); }
    CKWVector2T UnitPerp() const { return Perp().GetNormalized(); }
    Real Kross(const Base& v) const { return X() * v[1] - Y() * v[0]; }
    // The signed angle from this vector to v, in (-pi, pi], positive
    // counter-clockwise; 0 when either vector is zero.
    Real AngleBetween(const Base& v) const { return std::atan2(Kross(v), this->Dot(v)); }

    Base Cross(const Base&) const final { return Perp(); }
    Base UnitCross(const Base&) const final { return UnitPerp(); }

    // Gram-Schmidt: u normalized, then v made orthogonal to u and normalized.
    static void Orthonormalize(CKWVector2T& u, CKWVector2T& v);
    // u becomes the perpendicular of v; v is normalized first unless the
    // caller says it has unit length already.
    static void GenerateOrthonormalBasis(CKWVector2T& u, CKWVector2T& v, bool unitLengthV);
    // Component-wise minimum and maximum of count points; both are zero when
    // count < 1 or points is null.
    static void ComputeExtremes(int count, const CKWVector2T* points, CKWVector2T& min,
                                CKWVector2T& max);

    static const CKWVector2T ZERO;
    static const CKWVector2T UNIT_X;
    static const CKWVector2T UNIT_Y;
};

#if !defined(_WIN32)
extern template class CKWVector2T<float, double>;
extern template class CKWVector2T<double, float>;
#endif
