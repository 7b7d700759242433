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

#include "kwcore/geometry/CKWMatrixT.h"
#include "kwcore/geometry/CKWVector4T.h"

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
#if defined(__GNUC__)
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
#if defined(__GNUC__)
        // The adjugate in groups of lanes, each computed exactly as the scalar
        // formulas below (negation and the order of the sums included), so
        // both paths give the same bits. Lanes 0 and 1 of a row use rows 1 and
        // 0 and the minors of rows 2-3; lanes 2 and 3 use rows 3 and 2 and the
        // minors of rows 0-1. A 16-byte vector holds four floats or two
        // doubles.
        if constexpr (sizeof(Real) == 4) {
            typedef float Lanes __attribute__((vector_size(16)));
            const Lanes g[4] = {{m[4], m[0], m[12], m[8]},
                                {m[5], m[1], m[13], m[9]},
                                {m[6], m[2], m[14], m[10]},
                                { m[7],
                                  m[3],
                                  m[15],
                                  m[11] }};
            const Lanes p[4] = {{m[8], m[8], m[0], m[0]},
                                {m[9], m[9], m[1], m[1]},
                                {m[10], m[10], m[2], m[2]},
                                { m[11],
                                  m[11],
                                  m[3],
                                  m[3] }};
            const Lanes q[4] = {{m[12], m[12], m[4], m[4]},
                                {m[13], m[13], m[5], m[5]},
                                {m[14], m[14], m[6], m[6]},
                                { m[15],
                                  m[15],
                                  m[7],
                                  m[7] }};
            AdjugateLanes(g, p, q, Lanes{1, -1, 1, -1}, a, 0);
        } else {
            typedef double Lanes __attribute__((vector_size(16)));
            for (int half = 0; half < 2; ++half) {
                const Real* upper = m + (half ? 12 : 4);
                const Real* lower = m + (half ? 8 : 0);
                const Real* minors = m + (half ? 0 : 8);
                const Lanes g[4] = {{upper[0], lower[0]},
                                    {upper[1], lower[1]},
                                    {upper[2], lower[2]},
                                    { upper[3],
                                      lower[3] }};
                const Lanes p[4] = {{minors[0], minors[0]},
                                    {minors[1], minors[1]},
                                    {minors[2], minors[2]},
                                    { minors[3],
                                      minors[3] }};
                const Lanes q[4] = {{minors[4], minors[4]},
                                    {minors[5], minors[5]},
                                    {minors[6], minors[6]},
                                    { minors[7],
                                      minors[7] }};
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
