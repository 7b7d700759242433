// The exported instantiations of the kwRationalArithmetic queries.
#include "Query2.inl"

namespace kwRationalArithmetic {

Query::~Query() = default;

template class Query2<float, double>;
template class Query2<double, float>;
template class Query2Int64<float, double>;
template class Query2Int64<double, float>;
template class Query2TInteger<float, double>;
template class Query2TInteger<double, float>;
template class Query2TRational<float, double>;
template class Query2TRational<double, float>;
template class Query2Filtered<float, double>;
template class Query2Filtered<double, float>;

}  // namespace kwRationalArithmetic
