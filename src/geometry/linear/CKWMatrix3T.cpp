// The 3x3 matrices of both scalar pairs, instantiated once for every host.
#include "CKWMatrix3T.inl"

template class CKWMatrix3T<float, double>;
template class CKWMatrix3T<double, float>;
