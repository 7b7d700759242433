// CKWVector2T<Real, Other>: a two-dimensional vector (x, y).
//
// CKWVectorT<2> with its components named (construction and Set from 2 Real
// values, X(), Y(), SetX, SetY, the text form "%f,%f" and ZERO, from
// CKWNamedTupleT), arithmetic that keeps the type and Cross (from
// CKWNamedVectorT: the perpendicular, the plane's only direction orthogonal to
// this vector, whatever the argument), and the planar operations: the
// perpendicular (y, -x), the scalar cross product Kross, the signed angle
// between two vectors.
//
//   CKWVector2T<float, double> a(1, 0), b(0, 1);
//   float k = a.Kross(b);             // 1: b lies counter-clockwise of a
//   float angle = a.AngleBetween(b);  // pi/2
#pragma once

#include <cmath>

#include "kwcore/geometry/linear/CKWNamedVectorT.h"

template <class Real, class Other>
class KWCORE_API CKWVector2T
    : public CKWNamedVectorT<CKWVector2T, 2, Real, Other, KWComponentInput::RealOnly> {
    using Base = CKWVectorT<2, Real, Other>;
    using NamedVector = CKWNamedVectorT<CKWVector2T, 2, Real, Other, KWComponentInput::RealOnly>;

public:
    using NamedVector::NamedVector;

    CKWVector2T Perp() const { return CKWVector2T(this->Y(), -this->X()); }
    CKWVector2T UnitPerp() const { return Perp().GetNormalized(); }
    Real Kross(const Base& v) const { return this->X() * v[1] - this->Y() * v[0]; }
    // The signed angle from this vector to v, in (-pi, pi], positive
    // counter-clockwise; 0 when either vector is zero.
    Real AngleBetween(const Base& v) const { return std::atan2(Kross(v), this->Dot(v)); }

    // Gram-Schmidt: u normalized, then v made orthogonal to u and normalized.
    static void Orthonormalize(CKWVector2T& u, CKWVector2T& v);
    // u becomes the perpendicular of v; v is normalized first unless the
    // caller says it has unit length already.
    static void GenerateOrthonormalBasis(CKWVector2T& u, CKWVector2T& v, bool unitLengthV);
    // Component-wise minimum and maximum of count points; both are zero when
    // count < 1 or points is null.
    static void ComputeExtremes(int count, const CKWVector2T* points, CKWVector2T& min,
                                CKWVector2T& max);

    static const CKWVector2T UNIT_X, UNIT_Y;
};

#if !defined(_WIN32)
extern template class CKWVector2T<float, double>;
extern template class CKWVector2T<double, float>;
#endif
