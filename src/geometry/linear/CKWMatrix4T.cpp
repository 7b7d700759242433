// CKWMatrix4T: the out-of-line members and the 4x4 matrices of both scalar
// pairs, instantiated once for every host.

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

template <class Real, class Other>
Real CKWMatrix4T<Real, Other>::Determinant() const {
    return this->DeterminantWith(Adjoint());
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
