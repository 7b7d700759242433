// The exported scalar-math instantiations (exported through their declarations in the headers).
#include "CKWMathT.inl"

template class CKWMathT<float, double>;
template class CKWMathT<double, float>;
