// The exported bound instantiations (exported through their declarations in
// the header).
#include "kwcore/geometry/linear/CKWBound2T.h"

template class CKWBound2T<float, double>;
template class CKWBound2T<double, float>;
