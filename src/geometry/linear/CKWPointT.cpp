// The exported point instantiations (exported through their declarations in the headers).
#include "CKWPointT.inl"

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
