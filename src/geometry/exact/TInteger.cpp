// The exported instantiations of kwRationalArithmetic::TInteger.
#include "TInteger.inl"

namespace kwRationalArithmetic {

template class TInteger<2>;
template class TInteger<4>;
template class TInteger<16>;
template class TInteger<32>;

}  // namespace kwRationalArithmetic
