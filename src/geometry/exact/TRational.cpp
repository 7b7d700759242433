// The exported instantiations of kwRationalArithmetic::TRational and TRVector.
#include "TRational.inl"

namespace kwRationalArithmetic {

template class TRational<16>;
template class TRational<32>;
template class TRVector<2, 16>;
template class TRVector<2, 32>;

}  // namespace kwRationalArithmetic
