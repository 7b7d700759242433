// CKWMatrix2T: a 2x2 matrix with the planar builders, inverse and the
// eigen-decomposition of a symmetric matrix.
//
// FromAngle (and the constructor from an angle) keeps the kernel's own
// matrix [[cos a, -sin a], [-sin a, cos a]]: symmetric, and a rotation only
// when sin a is 0. Inverse gives ZERO when |determinant| <= EPSILON.
//
//   CKWMatrix2T<float, double> m(2.0f, 1.0f, 1.0f, 3.0f);  // rows (2, 1), (1, 3)
//   CKWMatrix2T<float, double> inverse = m.Inverse();
#pragma once

#include "kwcore/geometry/linear/CKWMatrixT.h"
#include "kwcore/geometry/linear/CKWVector2T.h"

template <class Real, class Other>
class KWCORE_API CKWMatrix2T : public CKWMatrixT<2, Real, Other> {
    typedef CKWMatrixT<2, Real, Other> Base;
    typedef CKWMathT<Real, Other> Math;

public:
    typedef CKWVector2T<Real, Other> Vector2;

    // The zero matrix.
    CKWMatrix2T() : Base(true) {}
    CKWMatrix2T(const CKWMatrix2T& m) = default;
    CKWMatrix2T(const Base& m) : Base(m) {}
    CKWMatrix2T& operator=(const CKWMatrix2T& m) = default;
    // Entries in row order.
    CKWMatrix2T(Real m00, Real m01, Real m10, Real m11) {
        this->m_afEntry[0] = m00;
        this->m_afEntry[1] = m01;
        this->m_afEntry[2] = m10;
        this->m_afEntry[3] = m11;
    }
    // The diagonal matrix (d0, d1).
    CKWMatrix2T(Real d0, Real d1) { MakeDiagonal(d0, d1); }
    // FromAngle(angle).
    explicit CKWMatrix2T(Real angle) { FromAngle(angle); }
    // The tensor product u * v^T.
    CKWMatrix2T(const Vector2& u, const Vector2& v) { MakeTensorProduct(u, v); }
    // u and v as rows (columns false) or as columns (columns true).
    CKWMatrix2T(const Vector2& u, const Vector2& v, bool columns);
    CKWMatrix2T(const Vector2* vectors, bool columns);
    // Four entries in row order when rowMajor is true, else in column order.
    CKWMatrix2T(const Real* entries, bool rowMajor);

    using Base::MakeDiagonal;
    void MakeDiagonal(Real d0, Real d1) {
        const Real diag[2] = {d0, d1};
        Base::MakeDiagonal(diag);
    }
    void MakeTensorProduct(const Vector2& u, const Vector2& v);

    // (0,0) = (1,1) = cos a; (0,1) = (1,0) = -sin a.
    void FromAngle(Real angle);
    // The angle of a rotation matrix [[cos a, -sin a], [sin a, cos a]]:
    // atan2(M(1,0), M(0,0)).
    Real ToAngle() const;

    Real Determinant() const {
        const Real* m = this->m_afEntry;
        return m[0] * m[3] - m[1] * m[2];
    }
    // The transposed cofactor matrix.
    CKWMatrix2T Adjoint() const {
        const Real* m = this->m_afEntry;
        return CKWMatrix2T(m[3], -m[1], -m[2], m[0]);
    }
    // The adjugate divided by the determinant (expanded along row 0); ZERO
    // when |det| <= EPSILON or the determinant is not a number.
    CKWMatrix2T Inverse() const { return this->InverseWith(Adjoint()); }

    // Gram-Schmidt on the columns (a zero column stays zero).
    void Orthonormalize();

    // For a symmetric matrix: *this = rotation * diagonal * rotation^T, the
    // eigenvalues ascending on the diagonal, the eigenvectors in the columns
    // of a proper rotation. Only the upper triangle is read.
    void EigenDecomposition(CKWMatrix2T& rotation, CKWMatrix2T& diagonal) const;

    static const CKWMatrix2T ZERO;
    static const CKWMatrix2T IDENTITY;
};

#if !defined(_WIN32)
extern template class CKWMatrix2T<float, double>;
extern template class CKWMatrix2T<double, float>;
#endif
