// The matrices of both scalar pairs, instantiated once for every host.
#include "kwcore/geometry/linear/CKWMatrixT.h"

template class CKWMatrixT<2, float, double>;
template class CKWMatrixT<3, float, double>;
template class CKWMatrixT<4, float, double>;
template class CKWMatrixT<2, double, float>;
template class CKWMatrixT<3, double, float>;
template class CKWMatrixT<4, double, float>;
