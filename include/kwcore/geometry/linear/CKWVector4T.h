// CKWVector4T<Real, Other>: a four-dimensional vector (x, y, z, w).
//
// CKWVectorT<4> with its components named (construction and Set from 4 Real
// values, X() to W(), SetX to SetW, the text form "%f,%f,%f,%f" and ZERO, from
// CKWNamedTupleT), arithmetic that keeps the type and a cross product (from
// CKWNamedVectorT), and the unit vectors. Homogeneous directions carry w = 0;
// Cross is the three-dimensional cross product of the x, y, z parts, with
// w = 0.
//
//   CKWVector4T<double, float> d(1, 0, 0, 0);
//   CKWVector4T<double, float> up = d.Cross(CKWVector4T<double, float>::UNIT_Y);  // (0, 0, 1, 0)
#pragma once

#include "kwcore/geometry/linear/CKWNamedVectorT.h"

template <class Real, class Other>
class KWCORE_API CKWVector4T
    : public CKWNamedVectorT<CKWVector4T, 4, Real, Other, KWComponentInput::RealOnly> {
    using NamedVector = CKWNamedVectorT<CKWVector4T, 4, Real, Other, KWComponentInput::RealOnly>;

public:
    using NamedVector::NamedVector;

    static const CKWVector4T UNIT_X, UNIT_Y, UNIT_Z, UNIT_W;
};

#if !defined(_WIN32)
extern template class CKWVector4T<float, double>;
extern template class CKWVector4T<double, float>;
#endif
