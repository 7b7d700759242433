// CKWMatrixT: the out-of-line members and the matrices of both scalar pairs,
// instantiated once for every host.
#include "kwcore/geometry/linear/CKWMatrixT.h"

template <int N, class Real, class Other>
void CKWMatrixT<N, Real, Other>::SetEntries(const Real* entries, bool rowMajor) {
    for (int r = 0; r < N; ++r) {
        for (int c = 0; c < N; ++c) {
            m_afEntry[I(r, c)] = rowMajor ? entries[I(r, c)] : entries[I(c, r)];
        }
    }
}

template <int N, class Real, class Other>
void CKWMatrixT<N, Real, Other>::SetVectors(const Real* const* vectors, bool columns) {
    Real entries[N * N];
    for (int i = 0; i < N; ++i) {
        for (int j = 0; j < N; ++j) {
            entries[I(i, j)] = vectors[i][j];
        }
    }
    SetEntries(entries, !columns);
}

template <int N, class Real, class Other>
void CKWMatrixT<N, Real, Other>::SetTensorProduct(const Real* u, const Real* v) {
    for (int r = 0; r < N; ++r) {
        for (int c = 0; c < N; ++c) {
            m_afEntry[I(r, c)] = u[r] * v[c];
        }
    }
}

template class CKWMatrixT<2, float, double>;
template class CKWMatrixT<3, float, double>;
template class CKWMatrixT<4, float, double>;
template class CKWMatrixT<2, double, float>;
template class CKWMatrixT<3, double, float>;
template class CKWMatrixT<4, double, float>;
