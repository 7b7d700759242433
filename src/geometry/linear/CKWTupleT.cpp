// CKWTupleT: the out-of-line members and the tuples of both scalar pairs in
// two, three and four dimensions, instantiated once for every host.
#include "kwcore/geometry/linear/CKWTupleT.h"

#include "KWTupleText.h"

template <int N, class Real, class Other>
void CKWTupleT<N, Real, Other>::MakeUnit(int i) {
    *this = CKWTupleT();
    if (i >= 0 && i < N) {
        m_aTuple[i] = Real(1);
    }
}

template <int N, class Real, class Other>
bool CKWTupleT<N, Real, Other>::ApproxEqualTuple(const CKWTupleT& t, int digits) const {
    for (int i = 0; i < N; ++i) {
        if (!CKWMathT<Real, Other>::Approx_Equal(m_aTuple[i], t.m_aTuple[i], digits)) {
            return false;
        }
    }
    return true;
}

template <int N, class Real, class Other>
CString CKWTupleT<N, Real, Other>::FormatTuple() const {
    return kwTupleText::Format(m_aTuple, N);
}

template <int N, class Real, class Other>
int CKWTupleT<N, Real, Other>::ParseTuple(const CString& text) {
    return kwTupleText::Parse(text, m_aTuple, N);
}

template class CKWTupleT<2, float, double>;
template class CKWTupleT<3, float, double>;
template class CKWTupleT<4, float, double>;
template class CKWTupleT<2, double, float>;
template class CKWTupleT<3, double, float>;
template class CKWTupleT<4, double, float>;
