// CKWMatrix3T: a 3x3 matrix: rotations about an axis and by Euler angles,
// inverse, and the eigen-, singular-value and QDU decompositions.
//
// Rotations turn counter-clockwise about their axis when applied as M * v.
// FromEulerAnglesXYZ(x, y, z) is Rx(x) * Ry(y) * Rz(z), and every other order
// is the product in the order its name spells. The ToEulerAngles functions
// return false at gimbal lock (middle angle +-pi/2), with the last angle 0.
// Inverse gives ZERO when |determinant| <= EPSILON.
//
//   CKWMatrix3T<float, double> r(CKWVector3T<float, double>(0, 0, 1), HALF_PI);
//   CKWVector3T<float, double> y = r * CKWVector3T<float, double>(1, 0, 0);  // (0, 1, 0)
#pragma once

#include "kwcore/geometry/linear/CKWMatrixT.h"
#include "kwcore/geometry/linear/CKWVector3T.h"

template <class Real, class Other>
class KWCORE_API CKWMatrix3T : public CKWMatrixT<3, Real, Other> {
    typedef CKWMatrixT<3, Real, Other> Base;
    typedef CKWMathT<Real, Other> Math;

public:
    typedef CKWVector3T<Real, Other> Vector3;

    // The zero matrix.
    CKWMatrix3T() : Base(true) {}
    CKWMatrix3T(const CKWMatrix3T& m) = default;
    CKWMatrix3T(const Base& m) : Base(m) {}
    CKWMatrix3T& operator=(const CKWMatrix3T& m) = default;
    // Entries in row order.
    CKWMatrix3T(Real m00, Real m01, Real m02, Real m10, Real m11, Real m12, Real m20, Real m21,
                Real m22) {
        Real* m = this->m_afEntry;
        m[0] = m00;
        m[1] = m01;
        m[2] = m02;
        m[3] = m10;
        m[4] = m11;
        m[5] = m12;
        m[6] = m20;
        m[7] = m21;
        m[8] = m22;
    }
    // The diagonal matrix (d0, d1, d2).
    CKWMatrix3T(Real d0, Real d1, Real d2) { MakeDiagonal(d0, d1, d2); }
    // FromAxisAngle(axis, angle).
    CKWMatrix3T(const Vector3& axis, Real angle) { FromAxisAngle(axis, angle); }
    // The tensor product u * v^T.
    CKWMatrix3T(const Vector3& u, const Vector3& v) { MakeTensorProduct(u, v); }
    // u, v, w as rows (columns false) or as columns (columns true).
    CKWMatrix3T(const Vector3& u, const Vector3& v, const Vector3& w, bool columns);
    CKWMatrix3T(const Vector3* vectors, bool columns);
    // Nine entries in row order when rowMajor is true, else in column order.
    CKWMatrix3T(const Real* entries, bool rowMajor);

    using Base::MakeDiagonal;
    void MakeDiagonal(Real d0, Real d1, Real d2) {
        const Real diag[3] = {d0, d1, d2};
        Base::MakeDiagonal(diag);
    }
    void MakeTensorProduct(const Vector3& u, const Vector3& v);

    // The rotation by angle about axis, which must have unit length (it is
    // used as given).
    void FromAxisAngle(const Vector3& axis, Real angle);
    // The axis (unit length) and angle in [0, pi] of a rotation matrix. The
    // angle is taken from the quaternion of the matrix, which stays accurate
    // near 0 and pi; with no rotation at all the axis is (1, 0, 0).
    void ToAxisAngle(Vector3& axis, Real& angle) const;

    // Axes 0, 1, 2 are x, y, z.
    void FromEulerAnglesXYZ(Real x, Real y, Real z) { FromEulerAngles(0, 1, 2, x, y, z); }
    void FromEulerAnglesXZY(Real x, Real z, Real y) { FromEulerAngles(0, 2, 1, x, z, y); }
    void FromEulerAnglesYXZ(Real y, Real x, Real z) { FromEulerAngles(1, 0, 2, y, x, z); }
    void FromEulerAnglesYZX(Real y, Real z, Real x) { FromEulerAngles(1, 2, 0, y, z, x); }
    void FromEulerAnglesZXY(Real z, Real x, Real y) { FromEulerAngles(2, 0, 1, z, x, y); }
    void FromEulerAnglesZYX(Real z, Real y, Real x) { FromEulerAngles(2, 1, 0, z, y, x); }
    // The angles in the order of the name; false at gimbal lock, also when the
    // sine entry is infinite or not a number (middle angle HALF_PI then).
    bool ToEulerAnglesXYZ(Real& x, Real& y, Real& z) const {
        return ToEulerAngles(0, 1, 2, x, y, z);
    }
    bool ToEulerAnglesXZY(Real& x, Real& z, Real& y) const {
        return ToEulerAngles(0, 2, 1, x, z, y);
    }
    bool ToEulerAnglesYXZ(Real& y, Real& x, Real& z) const {
        return ToEulerAngles(1, 0, 2, y, x, z);
    }
    bool ToEulerAnglesYZX(Real& y, Real& z, Real& x) const {
        return ToEulerAngles(1, 2, 0, y, z, x);
    }
    bool ToEulerAnglesZXY(Real& z, Real& x, Real& y) const {
        return ToEulerAngles(2, 0, 1, z, x, y);
    }
    bool ToEulerAnglesZYX(Real& z, Real& y, Real& x) const {
        return ToEulerAngles(2, 1, 0, z, y, x);
    }

    Real Determinant() const {
        const Real* m = this->m_afEntry;
        return m[0] * (m[4] * m[8] - m[5] * m[7]) + m[1] * (m[5] * m[6] - m[3] * m[8]) +
               m[2] * (m[3] * m[7] - m[4] * m[6]);
    }
    // The transposed cofactor matrix.
    CKWMatrix3T Adjoint() const {
        const Real* m = this->m_afEntry;
        return CKWMatrix3T(
            m[4] * m[8] - m[5] * m[7], m[2] * m[7] - m[1] * m[8], m[1] * m[5] - m[2] * m[4],
            m[5] * m[6] - m[3] * m[8], m[0] * m[8] - m[2] * m[6], m[2] * m[3] - m[0] * m[5],
            m[3] * m[7] - m[4] * m[6], m[1] * m[6] - m[0] * m[7], m[0] * m[4] - m[1] * m[3]);
    }
    // The adjugate divided by the determinant (expanded along row 0); ZERO
    // when |det| <= EPSILON or the determinant is not a number.
    CKWMatrix3T Inverse() const { return this->InverseWith(Adjoint()); }

    // Gram-Schmidt on the columns in order 0, 1, 2 (a zero column stays zero).
    void Orthonormalize();

    // For a symmetric matrix: *this = rotation * diagonal * rotation^T, the
    // eigenvalues ascending on the diagonal and the eigenvectors in the
    // columns of a proper rotation (tridiagonalization, then QL with implicit
    // shifts). Only the upper triangle is read. When the iteration does not
    // converge (entries infinite or not numbers), rotation is IDENTITY and
    // diagonal holds the input's diagonal.
    void EigenDecomposition(CKWMatrix3T& rotation, CKWMatrix3T& diagonal) const;
    // *this = left * diagonal * rightTranspose with orthogonal left and right
    // and the singular values descending and non-negative on the diagonal
    // (bidiagonalization, then Golub-Kahan steps). Entries that are infinite
    // or not numbers give factors that are not numbers, after a bounded
    // number of steps.
    void SingularValueDecomposition(CKWMatrix3T& left, CKWMatrix3T& diagonal,
                                    CKWMatrix3T& rightTranspose) const;
    // Sets *this to left * diagonal * rightTranspose.
    void SingularValueComposition(const CKWMatrix3T& left, const CKWMatrix3T& diagonal,
                                  const CKWMatrix3T& rightTranspose);
    // *this = q * d * u: q a rotation (Gram-Schmidt on the columns), d
    // diagonal, u upper triangular with ones on its diagonal. A column that
    // depends on the ones before it gives a 0 in d.
    void QDUDecomposition(CKWMatrix3T& q, CKWMatrix3T& d, CKWMatrix3T& u) const;

    // The rotation t of the way from r0 to r1 along the shortest arc:
    // r0 * rotation(axis, t * angle) with the axis and angle of r0^T * r1.
    static CKWMatrix3T Slerp(Real t, const CKWMatrix3T& r0, const CKWMatrix3T& r1);

    static const CKWMatrix3T ZERO;
    static const CKWMatrix3T IDENTITY;

protected:
    // Householder reduction of a symmetric matrix: *this = q * T * q^T with
    // T tridiagonal (diag[0..2], subDiag[0..1]; subDiag[2] is set to 0).
    void Tridiagonalize(Real diag[3], Real subDiag[3], CKWMatrix3T& q) const;
    // Diagonalizes the tridiagonal matrix in place by QL steps with implicit
    // shifts, turning the columns of q into the eigenvectors. False when it
    // does not converge within its iteration limit.
    static bool QLAlgorithm(Real diag[3], Real subDiag[3], CKWMatrix3T& q);
    // Householder reduction: *this = left * b * rightTranspose with b upper
    // bidiagonal.
    void Bidiagonalize(CKWMatrix3T& left, CKWMatrix3T& b, CKWMatrix3T& right) const;
    // One implicit-shift step on the unreduced block lo..hi of the upper
    // bidiagonal b, accumulating the rotations in left and right.
    static void GolubKahanStep(CKWMatrix3T& left, CKWMatrix3T& b, CKWMatrix3T& right, int lo,
                               int hi);

private:
    // The rotations about axes i, j, k in that order (Ri(a) Rj(b) Rk(c)).
    void FromEulerAngles(int i, int j, int k, Real a, Real b, Real c);
    bool ToEulerAngles(int i, int j, int k, Real& a, Real& b, Real& c) const;
};

#if !defined(_WIN32)
extern template class CKWMatrix3T<float, double>;
extern template class CKWMatrix3T<double, float>;
#endif
