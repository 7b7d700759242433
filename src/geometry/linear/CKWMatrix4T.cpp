// CKWMatrix4T: the out-of-line members and the 4x4 matrices of both scalar
// pairs, instantiated once for every host.

#include <cstring>

#include "kwcore/geometry/linear/CKWMatrix4T.h"
#include "kwcore/geometry/linear/CKWQuaternionT.h"

template <class Real, class Other>
const CKWMatrix4T<Real, Other> CKWMatrix4T<Real, Other>::ZERO;
template <class Real, class Other>
const CKWMatrix4T<Real, Other> CKWMatrix4T<Real, Other>::IDENTITY(
    CKWMatrixT<4, Real, Other>(false));

template <class Real, class Other>
CKWMatrix4T<Real, Other>::CKWMatrix4T(Real m00, Real m01, Real m02, Real m03, Real m10, Real m11,
                                      Real m12, Real m13, Real m20, Real m21, Real m22, Real m23,
                                      Real m30, Real m31, Real m32, Real m33) {
    const Real entries[16] = {m00, m01, m02, m03, m10, m11, m12, m13,
                              m20, m21, m22, m23, m30, m31, m32, m33};
    *this = CKWMatrix4T(entries, true);
}

template <class Real, class Other>
CKWMatrix4T<Real, Other>::CKWMatrix4T(const Real* entries, bool rowMajor) {
    this->SetEntries(entries, rowMajor);
}

namespace {

// The cofactors of a 4x4 matrix M, in groups of adjugate columns (lanes) that
// share one formula: column j of the adjugate holds kSign[j] times the
// cofactors taken from row kFrom[j] of M and the 2x2 minors of rows
// kMinorRows[j] and kMinorRows[j] + 1 (columns 0 and 1 from rows 1 and 0 and
// the minors of rows 2-3; columns 2 and 3 from rows 3 and 2 and the minors of
// rows 0-1).
constexpr int kFrom[4] = {1, 0, 3, 2};
constexpr int kMinorRows[4] = {2, 2, 0, 0};
constexpr int kSign[4] = {1, -1, 1, -1};

// Rows 0 to 3 of the adjugate in the lanes of one group of columns. Entry c
// of g, p and q holds, lane by lane, the column-c entries of the row the
// cofactors come from and of the two rows of the minors. Lanes is Real for
// one column or a vector of several.
template <class Lanes>
void AdjugateLanes(const Lanes g[4], const Lanes p[4], const Lanes q[4], Lanes sign,
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
void StoreLanes(const Lanes rows[4], Real* a, int first) {
    for (int r = 0; r < 4; ++r) {
        std::memcpy(a + 4 * r + first, &rows[r], sizeof(Lanes));
    }
}

// One column at a time.
template <class Real>
void ScalarAdjugate(const Real* m, Real* a) {
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
void LanesAdjugate(const float* m, float* a) {
    typedef float Lanes __attribute__((vector_size(16)));
    Lanes r[4];
    std::memcpy(r, m, sizeof(r));
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
void LanesAdjugate(const double* m, double* a) {
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

template <class Real>
void Adjugate(const Real* m, Real* a) {
#if KWCORE_MATRIX_LANES
    LanesAdjugate(m, a);
#else
    ScalarAdjugate(m, a);
#endif
}

}  // namespace

template <class Real, class Other>
void CKWMatrix4T<Real, Other>::Cofactors(Real* a) const {
    Adjugate(this->m_afEntry, a);
}

template <class Real, class Other>
CKWMatrix4T<Real, Other> CKWMatrix4T<Real, Other>::Adjoint() const {
    CKWMatrix4T adjoint;
    Adjugate(this->m_afEntry, adjoint.m_afEntry);
    return adjoint;
}

template <class Real, class Other>
Real CKWMatrix4T<Real, Other>::Determinant() const {
    return this->DeterminantWith(Adjoint());
}

template <class Real, class Other>
CKWMatrix4T<Real, Other> CKWMatrix4T<Real, Other>::Inverse() const {
    return this->InverseWith(Adjoint());
}

template <class Real, class Other>
CKWMatrix4T<Real, Other> CKWMatrix4T<Real, Other>::BuildRotationMatrix(Real angle,
                                                                       const Vector4& axis) {
    CKWVector3T<Real, Other> unit(axis[0], axis[1], axis[2]);
    unit.Normalize();
    CKWMatrix4T rotation;
    CKWQuaternionT<Real, Other>(unit, angle).ToRotationMatrix(rotation);
    return rotation;
}

template <class Real, class Other>
CKWMatrix4T<Real, Other> CKWMatrix4T<Real, Other>::BuildScalingMatrix(const Vector4& scale) {
    const Real diag[4] = {scale[0], scale[1], scale[2], Real(1)};
    CKWMatrix4T scaling;
    scaling.MakeDiagonal(diag);
    return scaling;
}

template <class Real, class Other>
CKWMatrix4T<Real, Other> CKWMatrix4T<Real, Other>::BuildTranslationMatrix(
    const Vector4& translation) {
    CKWMatrix4T moving = IDENTITY;
    moving(0, 3) = translation[0];
    moving(1, 3) = translation[1];
    moving(2, 3) = translation[2];
    return moving;
}

template class CKWMatrix4T<float, double>;
template class CKWMatrix4T<double, float>;
