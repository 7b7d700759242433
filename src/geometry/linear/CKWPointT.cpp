// The exported point instantiations. The named points have no out-of-line
// code of their own (CKWNamedTupleT is inline), so only CKWPointT is declared
// extern in its header.

#include "kwcore/geometry/linear/CKWPoint2T.h"
#include "kwcore/geometry/linear/CKWPoint3T.h"
#include "kwcore/geometry/linear/CKWPoint4T.h"

template class CKWPointT<2, float, double>;
template class CKWPointT<3, float, double>;
template class CKWPointT<4, float, double>;
template class CKWPointT<2, double, float>;
template class CKWPointT<3, double, float>;
template class CKWPointT<4, double, float>;
template class CKWPoint2T<float, double>;
template class CKWPoint2T<double, float>;
template class CKWPoint3T<float, double>;
template class CKWPoint3T<double, float>;
template class CKWPoint4T<float, double>;
template class CKWPoint4T<double, float>;
