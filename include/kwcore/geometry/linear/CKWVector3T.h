// CKWVector3T<Real, Other>: a three-dimensional vector (x, y, z).
//
// CKWVectorT<3> with its components named (construction and Set from 3 values
// of either precision or whole numbers, X(), Y(), Z(), SetX to SetZ, the text
// form "%f,%f,%f" and ZERO, from CKWNamedTupleT), arithmetic that keeps the
// type and the right-handed cross product (from CKWNamedVectorT), and
// orthonormal bases.
//
//   CKWVector3T<float, double> z = CKWVector3T<float, double>::UNIT_X.Cross(
//       CKWVector3T<float, double>::UNIT_Y);   // (0, 0, 1)
//   z.FromString("1, 2");                       // (1, 2, 1): z keeps its value
#pragma once

#include "kwcore/geometry/linear/CKWNamedVectorT.h"

template <class Real, class Other>
class KWCORE_API CKWVector3T : public CKWNamedVectorT<CKWVector3T, 3, Real, Other> {
public:
    using CKWNamedVectorT<CKWVector3T, 3, Real, Other>::CKWNamedVectorT;

    // Gram-Schmidt in the order u, v, w; each normalized by the kernel's rule.
    static void Orthonormalize(CKWVector3T& u, CKWVector3T& v, CKWVector3T& w);
    static void Orthonormalize(CKWVector3T* threeVectors);
    // u and v become unit vectors that with w form a right-handed orthonormal
    // basis (u x v = w); w is normalized first unless unitLengthW says it is.
    static void GenerateOrthonormalBasis(CKWVector3T& u, CKWVector3T& v, CKWVector3T& w,
                                         bool unitLengthW);

    static const CKWVector3T UNIT_X, UNIT_Y, UNIT_Z;
};

#if !defined(_WIN32)
extern template class CKWVector3T<float, double>;
extern template class CKWVector3T<double, float>;
#endif
