// CKWMatrix4T: a 4x4 matrix for homogeneous transforms: rotation, scaling
// and translation builders, determinant and inverse.
//
// Homogeneous points are columns (x, y, z, 1); a translation lives in the
// last column. Inverse gives ZERO when |determinant| <= EPSILON.
//
//   typedef CKWMatrix4T<float, double> M4;
//   M4 move = M4::BuildTranslationMatrix(CKWVector4T<float, double>(1, 2, 3, 0));
//   // move * (0, 0, 0, 1) = (1, 2, 3, 1)
#pragma once

#include "kwcore/geometry/linear/CKWMatrixT.h"
#include "kwcore/geometry/linear/CKWVector4T.h"

// Vector extensions with __builtin_shufflevector: clang, and GCC from 12 on.
#if !defined(KWCORE_MATRIX4_LANES) && (defined(__clang__) || (defined(__GNUC__) && __GNUC__ >= 12))
#define KWCORE_MATRIX4_LANES 1
#endif

template <class Real, class Other>
class KWCORE_API CKWMatrix4T : public CKWMatrixT<4, Real, Other> {
    typedef CKWMatrixT<4, Real, Other> Base;
    typedef CKWMathT<Real, Other> Math;

public:
    typedef CKWVector4T<Real, Other> Vector4;

    // The zero matrix.
    CKWMatrix4T() : Base(true) {}
    CKWMatrix4T(const CKWMatrix4T& m) = default;
    CKWMatrix4T(const Base& m) : Base(m) {}
    CKWMatrix4T& operator=(const CKWMatrix4T& m) = default;
    // Entries in row order.
    CKWMatrix4T(Real m00, Real m01, Real m02, Real m03, Real m10, Real m11, Real m12, Real m13,
                Real m20, Real m21, Real m22, Real m23, Real m30, Real m31, Real m32, Real m33);
    // Sixteen entries in row order when rowMajor is true, else in column order.
    CKWMatrix4T(const Real* entries, bool rowMajor);

    // Expanded along row 0.
    Real Determinant() const;
    // The transposed cofactor matrix.
    CKWMatrix4T Adjoint() const {
        CKWMatrix4T adjoint;
        Cofactors(adjoint.m_afEntry);
        return adjoint;
    }
    // The adjugate divided by the determinant (expanded along row 0 with the
    // same cofactors); ZERO when |det| <= EPSILON or it is not a number.
    CKWMatrix4T Inverse() const {
        CKWMatrix4T inverse;
        Real* a = inverse.m_afEntry;
        Cofactors(a);
        const Real* m = this->m_afEntry;
        const Real det = m[0] * a[0] + m[1] * a[4] + m[2] * a[8] + m[3] * a[12];
        if (!(Math::FAbs(det) > Math::EPSILON)) {
            return CKWMatrix4T();
        }
        inverse *= Real(1) / det;
        return inverse;
    }

    // The rotation by angle about axis (x, y, z; normalized here), through
    // the quaternion of axis and angle.
    static CKWMatrix4T BuildRotationMatrix(Real angle, const Vector4& axis);
    // The diagonal matrix (s.x, s.y, s.z, 1).
    static CKWMatrix4T BuildScalingMatrix(const Vector4& scale);
    // The identity with its last column (t.x, t.y, t.z, 1).
    static CKWMatrix4T BuildTranslationMatrix(const Vector4& translation);

    static const CKWMatrix4T ZERO;
    static const CKWMatrix4T IDENTITY;

private:
#if KWCORE_MATRIX4_LANES
    // Rows of the adjugate in the lanes from first on, from the columns g of
    // the rows named above and the rows p and q whose minors they need.
    template <class Lanes>
    static void AdjugateLanes(const Lanes g[4], const Lanes p[4], const Lanes q[4], Lanes sign,
                              Real* a, int first) {
        const Lanes k0 = p[0] * q[1] - p[1] * q[0], k1 = p[0] * q[2] - p[2] * q[0];
        const Lanes k2 = p[0] * q[3] - p[3] * q[0], k3 = p[1] * q[2] - p[2] * q[1];
        const Lanes k4 = p[1] * q[3] - p[3] * q[1], k5 = p[2] * q[3] - p[3] * q[2];
        const Lanes rows[4] = {(g[1] * k5 - g[2] * k4 + g[3] * k3) * sign,
                               (g[0] * k5 - g[2] * k2 + g[3] * k1) * -sign,
                               (g[0] * k4 - g[1] * k2 + g[3] * k0) * sign,
                               (g[0] * k3 - g[1] * k1 + g[2] * k0) * -sign};
        for (int r = 0; r < 4; ++r) {
            std::memcpy(a + 4 * r + first, &rows[r], sizeof(Lanes));
        }
    }
#endif

    // Writes the adjugate from the twelve 2x2 minors of rows 0-1 and 2-3.
    void Cofactors(Real* a) const {
        const Real* m = this->m_afEntry;
#if KWCORE_MATRIX4_LANES
        // The adjugate in groups of lanes, each computed exactly as the scalar
        // formulas below (negation and the order of the sums included), so
        // both paths give the same bits. Lanes 0 and 1 of a row use rows 1 and
        // 0 and the minors of rows 2-3; lanes 2 and 3 use rows 3 and 2 and the
        // minors of rows 0-1. A 16-byte vector holds four floats or two
        // doubles.
        if constexpr (sizeof(Real) == 4) {
            typedef float Lanes __attribute__((vector_size(16)));
            Lanes r0, r1, r2, r3;
            std::memcpy(&r0, m, sizeof(Lanes));
            std::memcpy(&r1, m + 4, sizeof(Lanes));
            std::memcpy(&r2, m + 8, sizeof(Lanes));
            std::memcpy(&r3, m + 12, sizeof(Lanes));
            // The lanes by shuffles of the four rows: a transpose for g,
            // one shuffle each for p and q.
#define KWCORE_SHUFFLE __builtin_shufflevector
            const Lanes low10 = KWCORE_SHUFFLE(r1, r0, 0, 4, 1, 5);
            const Lanes high10 = KWCORE_SHUFFLE(r1, r0, 2, 6, 3, 7);
            const Lanes low32 = KWCORE_SHUFFLE(r3, r2, 0, 4, 1, 5);
            const Lanes high32 = KWCORE_SHUFFLE(r3, r2, 2, 6, 3, 7);
            const Lanes g[4] = {KWCORE_SHUFFLE(low10, low32, 0, 1, 4, 5),
                                KWCORE_SHUFFLE(low10, low32, 2, 3, 6, 7),
                                KWCORE_SHUFFLE(high10, high32, 0, 1, 4, 5),
                                KWCORE_SHUFFLE(high10, high32, 2, 3, 6, 7)};
            const Lanes p[4] = {
                KWCORE_SHUFFLE(r2, r0, 0, 0, 4, 4), KWCORE_SHUFFLE(r2, r0, 1, 1, 5, 5),
                KWCORE_SHUFFLE(r2, r0, 2, 2, 6, 6), KWCORE_SHUFFLE(r2, r0, 3, 3, 7, 7)};
            const Lanes q[4] = {
                KWCORE_SHUFFLE(r3, r1, 0, 0, 4, 4), KWCORE_SHUFFLE(r3, r1, 1, 1, 5, 5),
                KWCORE_SHUFFLE(r3, r1, 2, 2, 6, 6), KWCORE_SHUFFLE(r3, r1, 3, 3, 7, 7)};
#undef KWCORE_SHUFFLE
            AdjugateLanes(g, p, q, Lanes{1, -1, 1, -1}, a, 0);
        } else {
            typedef double Lanes __attribute__((vector_size(16)));
            // The left and right halves of the rows.
            Lanes left[4], right[4];
            for (int r = 0; r < 4; ++r) {
                std::memcpy(&left[r], m + 4 * r, sizeof(Lanes));
                std::memcpy(&right[r], m + 4 * r + 2, sizeof(Lanes));
            }
            for (int half = 0; half < 2; ++half) {
                const int upper = half ? 3 : 1, lower = half ? 2 : 0;
                const int pRow = half ? 0 : 2, qRow = pRow + 1;
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
                AdjugateLanes(g, p, q, Lanes{1, -1}, a, 2 * half);
            }
        }
#else
        const Real s0 = m[0] * m[5] - m[1] * m[4];
        const Real s1 = m[0] * m[6] - m[2] * m[4];
        const Real s2 = m[0] * m[7] - m[3] * m[4];
        const Real s3 = m[1] * m[6] - m[2] * m[5];
        const Real s4 = m[1] * m[7] - m[3] * m[5];
        const Real s5 = m[2] * m[7] - m[3] * m[6];
        const Real c0 = m[8] * m[13] - m[9] * m[12];
        const Real c1 = m[8] * m[14] - m[10] * m[12];
        const Real c2 = m[8] * m[15] - m[11] * m[12];
        const Real c3 = m[9] * m[14] - m[10] * m[13];
        const Real c4 = m[9] * m[15] - m[11] * m[13];
        const Real c5 = m[10] * m[15] - m[11] * m[14];
        a[0] = m[5] * c5 - m[6] * c4 + m[7] * c3;
        a[1] = -m[1] * c5 + m[2] * c4 - m[3] * c3;
        a[2] = m[13] * s5 - m[14] * s4 + m[15] * s3;
        a[3] = -m[9] * s5 + m[10] * s4 - m[11] * s3;
        a[4] = -m[4] * c5 + m[6] * c2 - m[7] * c1;
        a[5] = m[0] * c5 - m[2] * c2 + m[3] * c1;
        a[6] = -m[12] * s5 + m[14] * s2 - m[15] * s1;
        a[7] = m[8] * s5 - m[10] * s2 + m[11] * s1;
        a[8] = m[4] * c4 - m[5] * c2 + m[7] * c0;
        a[9] = -m[0] * c4 + m[1] * c2 - m[3] * c0;
        a[10] = m[12] * s4 - m[13] * s2 + m[15] * s0;
        a[11] = -m[8] * s4 + m[9] * s2 - m[11] * s0;
        a[12] = -m[4] * c3 + m[5] * c1 - m[6] * c0;
        a[13] = m[0] * c3 - m[1] * c1 + m[2] * c0;
        a[14] = -m[12] * s3 + m[13] * s1 - m[14] * s0;
        a[15] = m[8] * s3 - m[9] * s1 + m[10] * s0;
#endif
    }
};

#if !defined(_WIN32)
extern template class CKWMatrix4T<float, double>;
extern template class CKWMatrix4T<double, float>;
#endif
