// CKWPoint2T<Real, Other>: a planar position (x, y).
//
// CKWPointT<2> with its components named: construction and Set from 2 values
// of either precision or whole numbers, X(), Y(), SetX, SetY, the text form
// "%f,%f" and ZERO, all from CKWNamedTupleT.
//
//   CKWPoint2T<double, float> p(1, 2);
//   CString text = p.ToString();   // "1.000000,2.000000"
#pragma once

#include "kwcore/geometry/linear/CKWNamedTupleT.h"
#include "kwcore/geometry/linear/CKWPointT.h"

template <class Real, class Other>
class KWCORE_API CKWPoint2T : public CKWNamedTupleT<CKWPoint2T, CKWPointT, 2, Real, Other> {
public:
    using CKWNamedTupleT<CKWPoint2T, CKWPointT, 2, Real, Other>::CKWNamedTupleT;
};
