// The quaternions of both scalar pairs, instantiated once for every host.
#include "CKWQuaternionT.inl"

template class CKWQuaternionT<float, double>;
template class CKWQuaternionT<double, float>;
