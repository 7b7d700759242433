// CKWPoint4T<Real, Other>: a homogeneous position (x, y, z, w).
//
// CKWPointT<4> with its components named (construction and Set from 4 values
// of either precision or whole numbers, X() to W(), SetX to SetW, the text
// form "%f,%f,%f,%f" and ZERO, all from CKWNamedTupleT), a step in the plane
// and the conversion to a vector.
//
// A position carries w = 1; PolarBy sets it so.
//
//   CKWPoint4T<float, double> p(0, 0, 0, 1);
//   CKWPoint4T<float, double> q = p.PolarBy(CKWMathT<float, double>::HALF_PI, 2);  // (0, 2, 0, 1)
#pragma once

#include <cmath>

#include "kwcore/geometry/linear/CKWNamedTupleT.h"
#include "kwcore/geometry/linear/CKWPointT.h"
#include "kwcore/geometry/linear/CKWVector4T.h"

template <class Real, class Other>
class KWCORE_API CKWPoint4T : public CKWNamedTupleT<CKWPoint4T, CKWPointT, 4, Real, Other> {
public:
    using CKWNamedTupleT<CKWPoint4T, CKWPointT, 4, Real, Other>::CKWNamedTupleT;

    // (x + distance cos(angle), y + distance sin(angle), z, 1): the point
    // reached by stepping from this one in the plane.
    CKWPoint4T PolarBy(Real angle, Real distance) const {
        return CKWPoint4T(this->X() + distance * std::cos(angle),
                          this->Y() + distance * std::sin(angle), this->Z(), Real(1));
    }
    CKWVector4T<Real, Other> ToVector() const {
        return CKWVector4T<Real, Other>(this->X(), this->Y(), this->Z(), this->W());
    }
};
