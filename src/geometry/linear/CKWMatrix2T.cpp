// The 2x2 matrices of both scalar pairs, instantiated once for every host.
#include "CKWMatrix2T.inl"

template class CKWMatrix2T<float, double>;
template class CKWMatrix2T<double, float>;
