// CKWPoint3T<Real, Other>: a position in space (x, y, z).
//
// CKWPointT<3> with its components named: construction and Set from 3 values
// of either precision or whole numbers, X(), Y(), Z(), SetX to SetZ, the text
// form "%f,%f,%f" and ZERO, all from CKWNamedTupleT.
//
//   CKWPoint3T<float, double> p(7, 8, 9);
//   p.FromString(" 1 , 2 ");         // (1, 2, 9): z had no piece and keeps its value
#pragma once

#include "kwcore/geometry/linear/CKWNamedTupleT.h"
#include "kwcore/geometry/linear/CKWPointT.h"

template <class Real, class Other>
class KWCORE_API CKWPoint3T : public CKWNamedTupleT<CKWPoint3T, CKWPointT, 3, Real, Other> {
public:
    using CKWNamedTupleT<CKWPoint3T, CKWPointT, 3, Real, Other>::CKWNamedTupleT;
};
