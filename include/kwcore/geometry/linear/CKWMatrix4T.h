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
    CKWMatrix4T Inverse() const { return this->InverseWith(Adjoint()); }

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
    // Writes the adjugate (the transposed cofactor matrix) to a.
    void Cofactors(Real* a) const { kwMatrixKernels::Adjugate4(this->m_afEntry, a); }
};

#if !defined(_WIN32)
extern template class CKWMatrix4T<float, double>;
extern template class CKWMatrix4T<double, float>;
#endif
