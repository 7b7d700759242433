// CKWMatrix2T: the out-of-line members and the 2x2 matrices of both scalar
// pairs, instantiated once for every host.

#include "kwcore/geometry/linear/CKWMatrix2T.h"

template <class Real, class Other>
const CKWMatrix2T<Real, Other> CKWMatrix2T<Real, Other>::ZERO(Real(0), Real(0), Real(0), Real(0));
template <class Real, class Other>
const CKWMatrix2T<Real, Other> CKWMatrix2T<Real, Other>::IDENTITY(Real(1), Real(0), Real(0),
                                                                  Real(1));

template <class Real, class Other>
CKWMatrix2T<Real, Other>::CKWMatrix2T(const Vector2& u, const Vector2& v, bool columns) {
    const Real* vectors[2] = {u, v};
    this->SetVectors(vectors, columns);
}

template <class Real, class Other>
CKWMatrix2T<Real, Other>::CKWMatrix2T(const Vector2* vectors, bool columns) {
    const Real* components[2] = {vectors[0], vectors[1]};
    this->SetVectors(components, columns);
}

template <class Real, class Other>
CKWMatrix2T<Real, Other>::CKWMatrix2T(const Real* entries, bool rowMajor) {
    this->SetEntries(entries, rowMajor);
}

template <class Real, class Other>
void CKWMatrix2T<Real, Other>::MakeTensorProduct(const Vector2& u, const Vector2& v) {
    this->SetTensorProduct(u, v);
}

template <class Real, class Other>
void CKWMatrix2T<Real, Other>::FromAngle(Real angle) {
    const Real cosAngle = Math::Cos(angle);
    const Real sinAngle = Math::Sin(angle);
    Real* m = this->m_afEntry;
    m[0] = cosAngle;
    m[1] = -sinAngle;
    m[2] = -sinAngle;
    m[3] = cosAngle;
}

template <class Real, class Other>
Real CKWMatrix2T<Real, Other>::ToAngle() const {
    return Math::ATan2(this->m_afEntry[2], this->m_afEntry[0]);
}

template <class Real, class Other>
void CKWMatrix2T<Real, Other>::Orthonormalize() {
    Vector2 column0 = this->GetColumn(0);
    column0.Normalize();
    Vector2 column1 = this->GetColumn(1);
    column1 = column1 - column0 * column0.Dot(column1);
    column1.Normalize();
    this->SetColumn(0, column0);
    this->SetColumn(1, column1);
}

template <class Real, class Other>
void CKWMatrix2T<Real, Other>::EigenDecomposition(CKWMatrix2T& rotation,
                                                  CKWMatrix2T& diagonal) const {
    // One Jacobi rotation by theta, tan(2 theta) = 2 m01 / (m00 - m11),
    // diagonalizes a symmetric 2x2 matrix.
    const Real a = (*this)(0, 0), b = (*this)(0, 1), d = (*this)(1, 1);
    const Real theta = Real(0.5) * Math::ATan2(Real(2) * b, a - d);
    const Real c = Math::Cos(theta), s = Math::Sin(theta);
    Real e0 = c * c * a + Real(2) * c * s * b + s * s * d;
    Real e1 = s * s * a - Real(2) * c * s * b + c * c * d;
    Vector2 v0(c, s), v1(-s, c);
    if (e1 < e0) {
        // Swap, negating one column so that the rotation stays proper.
        const Real e = e0;
        e0 = e1;
        e1 = e;
        const Vector2 v = v0;
        v0 = v1;
        v1 = -v;
    }
    rotation = CKWMatrix2T(v0, v1, true);
    diagonal.MakeDiagonal(e0, e1);
}

template class CKWMatrix2T<float, double>;
template class CKWMatrix2T<double, float>;
