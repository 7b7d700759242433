// The exported vector instantiations (exported through their declarations in the headers).
#include "CKWVectorT.inl"

template class CKWVectorT<2, float, double>;
template class CKWVectorT<3, float, double>;
template class CKWVectorT<4, float, double>;
template class CKWVectorT<2, double, float>;
template class CKWVectorT<3, double, float>;
template class CKWVectorT<4, double, float>;
template class CKWVector2T<float, double>;
template class CKWVector2T<double, float>;
template class CKWVector3T<float, double>;
template class CKWVector3T<double, float>;
template class CKWVector4T<float, double>;
template class CKWVector4T<double, float>;
