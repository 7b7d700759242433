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
    // Writes the adjugate from the twelve 2x2 minors of rows 0-1 and 2-3.
    void Cofactors(Real* a) const {
        const Real* m = this->m_afEntry;
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
    }
};

#if !defined(_WIN32)
extern template class CKWMatrix4T<float, double>;
extern template class CKWMatrix4T<double, float>;
#endif
