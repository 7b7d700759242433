// The 4x4 matrices of both scalar pairs, instantiated once for every host.
#include "CKWMatrix4T.inl"

template class CKWMatrix4T<float, double>;
template class CKWMatrix4T<double, float>;
