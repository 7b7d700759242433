// kwMatrixKernels: the inline kernels of the square matrices, which hosts'
// compilers need to keep matrix products and 4x4 inverses in their loops.
//
// Not an interface of its own: CKWMatrixT and CKWMatrix4T call these. Where
// the compiler offers vector extensions (clang, GCC from 12 on) the 4x4
// kernels run in lanes; elsewhere they run one entry or one column at a time.
// Both ways compute the same sums in the same order, so they give the same
// bits.
#pragma once

#include <cstring>

// Vector extensions with __builtin_shufflevector: clang, and GCC from 12 on.
#if !defined(KWCORE_MATRIX_LANES) && (defined(__clang__) || (defined(__GNUC__) && __GNUC__ >= 12))
#define KWCORE_MATRIX_LANES 1
#endif

namespace kwMatrixKernels {

// out = M * in for a row-major N x N matrix, each row's sum taken in column
// order.
template <int N, class Real>
inline void RowsTimesColumn(const Real* m, const Real* in, Real* out) {
    for (int r = 0; r < N; ++r) {
        Real sum = m[N * r] * in[0];
        for (int c = 1; c < N; ++c) {
            sum += m[N * r + c] * in[c];
        }
        out[r] = sum;
    }
}

#if KWCORE_MATRIX_LANES
// The 4x4 float product in four lanes, which hosts inline in their loops: the
// rows' products are transposed so that each row's sum is taken in column
// order, with the same bits as above.
template <>
inline void RowsTimesColumn<4, float>(const float* m, const float* in, float* out) {
    typedef float Lanes __attribute__((vector_size(16)));
    Lanes column, p[4];
    std::memcpy(&column, in, sizeof(Lanes));
    for (int r = 0; r < 4; ++r) {
        std::memcpy(&p[r], m + 4 * r, sizeof(Lanes));
        p[r] *= column;
    }
    const Lanes low01 = __builtin_shufflevector(p[0], p[1], 0, 4, 1, 5);
    const Lanes low23 = __builtin_shufflevector(p[2], p[3], 0, 4, 1, 5);
    const Lanes high01 = __builtin_shufflevector(p[0], p[1], 2, 6, 3, 7);
    const Lanes high23 = __builtin_shufflevector(p[2], p[3], 2, 6, 3, 7);
    const Lanes sum = __builtin_shufflevector(low01, low23, 0, 1, 4, 5) +
                      __builtin_shufflevector(low01, low23, 2, 3, 6, 7) +
                      __builtin_shufflevector(high01, high23, 0, 1, 4, 5) +
                      __builtin_shufflevector(high01, high23, 2, 3, 6, 7);
    std::memcpy(out, &sum, sizeof(Lanes));
}
#endif

// The cofactors of a 4x4 matrix M, in groups of adjugate columns (lanes) that
// share one formula: column j of the adjugate holds kSign[j] times the
// cofactors taken from row kFrom[j] of M and the 2x2 minors of rows
// kMinorRows[j] and kMinorRows[j] + 1 (columns 0 and 1 from rows 1 and 0 and
// the minors of rows 2-3; columns 2 and 3 from rows 3 and 2 and the minors of
// rows 0-1).
inline constexpr int kFrom[4] = {1, 0, 3, 2};
inline constexpr int kMinorRows[4] = {2, 2, 0, 0};
inline constexpr int kSign[4] = {1, -1, 1, -1};

// Rows 0 to 3 of the adjugate in the lanes of one group of columns. Entry c
// of g, p and q holds, lane by lane, the column-c entries of the row the
// cofactors come from and of the two rows of the minors. Lanes is Real for
// one column or a vector of several.
template <class Lanes>
inline void AdjugateLanes(const Lanes g[4], const Lanes p[4], const Lanes q[4], Lanes sign,
                          Lanes rows[4]) {
    const Lanes k0 = p[0] * q[1] - p[1] * q[0], k1 = p[0] * q[2] - p[2] * q[0];
    const Lanes k2 = p[0] * q[3] - p[3] * q[0], k3 = p[1] * q[2] - p[2] * q[1];
    const Lanes k4 = p[1] * q[3] - p[3] * q[1], k5 = p[2] * q[3] - p[3] * q[2];
    rows[0] = (g[1] * k5 - g[2] * k4 + g[3] * k3) * sign;
    rows[1] = (g[0] * k5 - g[2] * k2 + g[3] * k1) * -sign;
    rows[2] = (g[0] * k4 - g[1] * k2 + g[3] * k0) * sign;
    rows[3] = (g[0] * k3 - g[1] * k1 + g[2] * k0) * -sign;
}

// Writes rows 0 to 3 of a group of lanes into the adjugate a from column
// first on.
template <class Lanes, class Real>
inline void StoreLanes(const Lanes rows[4], Real* a, int first) {
    for (int r = 0; r < 4; ++r) {
        std::memcpy(a + 4 * r + first, &rows[r], sizeof(Lanes));
    }
}

// One column at a time.
template <class Real>
inline void ScalarAdjugate(const Real* m, Real* a) {
    for (int j = 0; j < 4; ++j) {
        Real g[4], p[4], q[4], rows[4];
        for (int c = 0; c < 4; ++c) {
            g[c] = m[4 * kFrom[j] + c];
            p[c] = m[4 * kMinorRows[j] + c];
            q[c] = m[4 * kMinorRows[j] + 4 + c];
        }
        AdjugateLanes(g, p, q, Real(kSign[j]), rows);
        StoreLanes(rows, a, j);
    }
}

#if KWCORE_MATRIX_LANES
// The four columns at once, gathered by shuffles of the rows: a transpose of
// rows 1, 0, 3, 2 for g, one shuffle each for p and q.
inline void LanesAdjugate(const float* m, float* a) {
    typedef float Lanes __attribute__((vector_size(16)));
    Lanes r[4];
    for (int i = 0; i < 4; ++i) {
        std::memcpy(&r[i], m + 4 * i, sizeof(Lanes));
    }
#define KWCORE_SHUFFLE __builtin_shufflevector
    const Lanes low10 = KWCORE_SHUFFLE(r[1], r[0], 0, 4, 1, 5);
    const Lanes high10 = KWCORE_SHUFFLE(r[1], r[0], 2, 6, 3, 7);
    const Lanes low32 = KWCORE_SHUFFLE(r[3], r[2], 0, 4, 1, 5);
    const Lanes high32 = KWCORE_SHUFFLE(r[3], r[2], 2, 6, 3, 7);
    const Lanes g[4] = {
        KWCORE_SHUFFLE(low10, low32, 0, 1, 4, 5), KWCORE_SHUFFLE(low10, low32, 2, 3, 6, 7),
        KWCORE_SHUFFLE(high10, high32, 0, 1, 4, 5), KWCORE_SHUFFLE(high10, high32, 2, 3, 6, 7)};
    const Lanes p[4] = {
        KWCORE_SHUFFLE(r[2], r[0], 0, 0, 4, 4), KWCORE_SHUFFLE(r[2], r[0], 1, 1, 5, 5),
        KWCORE_SHUFFLE(r[2], r[0], 2, 2, 6, 6), KWCORE_SHUFFLE(r[2], r[0], 3, 3, 7, 7)};
    const Lanes q[4] = {
        KWCORE_SHUFFLE(r[3], r[1], 0, 0, 4, 4), KWCORE_SHUFFLE(r[3], r[1], 1, 1, 5, 5),
        KWCORE_SHUFFLE(r[3], r[1], 2, 2, 6, 6), KWCORE_SHUFFLE(r[3], r[1], 3, 3, 7, 7)};
#undef KWCORE_SHUFFLE
    Lanes rows[4];
    AdjugateLanes(g, p, q, Lanes{1, -1, 1, -1}, rows);
    StoreLanes(rows, a, 0);
}

// Two columns at a time, a 16-byte vector holding two doubles: columns 0 and
// 1, then 2 and 3, from the left and right halves of the rows.
inline void LanesAdjugate(const double* m, double* a) {
    typedef double Lanes __attribute__((vector_size(16)));
    Lanes left[4], right[4];
    for (int r = 0; r < 4; ++r) {
        std::memcpy(&left[r], m + 4 * r, sizeof(Lanes));
        std::memcpy(&right[r], m + 4 * r + 2, sizeof(Lanes));
    }
    for (int first = 0; first < 4; first += 2) {
        const int upper = kFrom[first], lower = kFrom[first + 1];
        const int pRow = kMinorRows[first], qRow = pRow + 1;
#define KWCORE_SHUFFLE __builtin_shufflevector
        const Lanes g[4] = {KWCORE_SHUFFLE(left[upper], left[lower], 0, 2),
                            KWCORE_SHUFFLE(left[upper], left[lower], 1, 3),
                            KWCORE_SHUFFLE(right[upper], right[lower], 0, 2),
                            KWCORE_SHUFFLE(right[upper], right[lower], 1, 3)};
        const Lanes p[4] = {KWCORE_SHUFFLE(left[pRow], left[pRow], 0, 0),
                            KWCORE_SHUFFLE(left[pRow], left[pRow], 1, 1),
                            KWCORE_SHUFFLE(right[pRow], right[pRow], 0, 0),
                            KWCORE_SHUFFLE(right[pRow], right[pRow], 1, 1)};
        const Lanes q[4] = {KWCORE_SHUFFLE(left[qRow], left[qRow], 0, 0),
                            KWCORE_SHUFFLE(left[qRow], left[qRow], 1, 1),
                            KWCORE_SHUFFLE(right[qRow], right[qRow], 0, 0),
                            KWCORE_SHUFFLE(right[qRow], right[qRow], 1, 1)};
#undef KWCORE_SHUFFLE
        Lanes rows[4];
        AdjugateLanes(g, p, q, Lanes{1, -1}, rows);
        StoreLanes(rows, a, first);
    }
}
#endif

// a = the adjugate (the transposed cofactor matrix) of the row-major 4x4 m.
template <class Real>
inline void Adjugate4(const Real* m, Real* a) {
#if KWCORE_MATRIX_LANES
    LanesAdjugate(m, a);
#else
    ScalarAdjugate(m, a);
#endif
}

}  // namespace kwMatrixKernels
