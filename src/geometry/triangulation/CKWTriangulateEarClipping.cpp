// The exported instantiations of CKWTriangulateEarClipping.
#include "CKWTriangulateEarClipping.inl"

template class CKWTriangulateEarClipping<float, double>;
template class CKWTriangulateEarClipping<double, float>;
