// CKWQuaternionT: a quaternion (w, x, y, z) for rotations in space.
//
// A unit quaternion (cos(a/2), sin(a/2) * axis) rotates by a about the unit
// axis, counter-clockwise as the matrices do; q * v rotates a vector and
// ToRotationMatrix gives the matching matrix. Slerp keeps the hemisphere the
// caller chose: it never flips q toward the shorter arc. Exact comparison and
// ordering compare the components' bytes. Interpolation and the conversions
// are inline here so that hosts inline them in their loops.
//
//   typedef CKWQuaternionT<float, double> Q;
//   Q q(CKWVector3T<float, double>(0, 0, 1), HALF_PI);        // 90 degrees about z
//   CKWVector3T<float, double> v = q * CKWVector3T<float, double>(1, 0, 0);  // (0, 1, 0)
//   Q half;
//   half.Slerp(0.5f, Q::IDENTITY, q);                         // 45 degrees about z
#pragma once

#include <cstring>

#include "kwcore/geometry/linear/CKWMathT.h"
#include "kwcore/geometry/linear/CKWMatrix3T.h"
#include "kwcore/geometry/linear/CKWMatrix4T.h"
#include "kwcore/geometry/linear/CKWTupleT.h"
#include "kwcore/geometry/linear/CKWVector3T.h"
#include "kwcore/geometry/linear/CKWVector4T.h"
#include "kwcore/platform/Export.h"

template <class Real, class Other>
class KWCORE_API CKWQuaternionT {
    typedef CKWMathT<Real, Other> Math;

public:
    typedef CKWVector3T<Real, Other> Vector3;
    typedef CKWVector4T<Real, Other> Vector4;
    typedef CKWMatrix3T<Real, Other> Matrix3;
    typedef CKWMatrix4T<Real, Other> Matrix4;

    // The zero quaternion, like the other value types.
    CKWQuaternionT() { Set(Real(0), Real(0), Real(0), Real(0)); }
    CKWQuaternionT(Real w, Real x, Real y, Real z) { Set(w, x, y, z); }
    CKWQuaternionT(const CKWQuaternionT& q) = default;
    CKWQuaternionT& operator=(const CKWQuaternionT& q) = default;
    // The rotation by angle about a unit axis (x, y, z of a four-vector).
    CKWQuaternionT(const Vector3& axis, Real angle) { FromAxisAngle(axis, angle); }
    CKWQuaternionT(const Vector4& axis, Real angle) { FromAxisAngle(axis, angle); }
    // The rotation of a rotation matrix (the upper 3x3 of a 4x4 matrix).
    explicit CKWQuaternionT(const Matrix3& rotation) { FromRotationMatrix(rotation); }
    explicit CKWQuaternionT(const Matrix4& rotation) { FromRotationMatrix(rotation); }
    // The rotation whose matrix has these three columns.
    explicit CKWQuaternionT(const Vector3 columns[3]) { FromRotationMatrix(columns); }

    Real W() const { return m_afTuple[0]; }
    Real X() const { return m_afTuple[1]; }
    Real Y() const { return m_afTuple[2]; }
    Real Z() const { return m_afTuple[3]; }
    Real& W() { return m_afTuple[0]; }
    Real& X() { return m_afTuple[1]; }
    Real& Y() { return m_afTuple[2]; }
    Real& Z() { return m_afTuple[3]; }
    // Component i in the order w, x, y, z.
    Real& operator[](int i) { return m_afTuple[i]; }
    Real operator[](int i) const { return m_afTuple[i]; }
    operator Real*() { return m_afTuple; }
    operator const Real*() const { return m_afTuple; }

    KW_DECLARE_BYTE_COMPARISONS(CKWQuaternionT)

    CKWQuaternionT operator+(const CKWQuaternionT& q) const {
        return CKWQuaternionT(m_afTuple[0] + q.m_afTuple[0], m_afTuple[1] + q.m_afTuple[1],
                              m_afTuple[2] + q.m_afTuple[2], m_afTuple[3] + q.m_afTuple[3]);
    }
    CKWQuaternionT operator-(const CKWQuaternionT& q) const {
        return CKWQuaternionT(m_afTuple[0] - q.m_afTuple[0], m_afTuple[1] - q.m_afTuple[1],
                              m_afTuple[2] - q.m_afTuple[2], m_afTuple[3] - q.m_afTuple[3]);
    }
    CKWQuaternionT operator-() const {
        return CKWQuaternionT(-m_afTuple[0], -m_afTuple[1], -m_afTuple[2], -m_afTuple[3]);
    }
    CKWQuaternionT operator*(Real s) const {
        return CKWQuaternionT(m_afTuple[0] * s, m_afTuple[1] * s, m_afTuple[2] * s,
                              m_afTuple[3] * s);
    }
    // Division by exactly 0 gives MAX_REAL in every component, as for vectors.
    CKWQuaternionT operator/(Real s) const {
        CKWQuaternionT quotient(*this);
        quotient /= s;
        return quotient;
    }
    CKWQuaternionT& operator+=(const CKWQuaternionT& q) { return *this = *this + q; }
    CKWQuaternionT& operator-=(const CKWQuaternionT& q) { return *this = *this - q; }
    CKWQuaternionT& operator*=(Real s) { return *this = *this * s; }
    CKWQuaternionT& operator/=(Real s) {
        kwTupleArithmetic::Divide<4, Real, Other>(m_afTuple, s);
        return *this;
    }

    // The Hamilton product: (*this * q) rotates by q first, then by *this.
    CKWQuaternionT operator*(const CKWQuaternionT& q) const {
        const Real* a = m_afTuple;
        const Real* b = q.m_afTuple;
        return CKWQuaternionT(a[0] * b[0] - a[1] * b[1] - a[2] * b[2] - a[3] * b[3],
                              a[0] * b[1] + a[1] * b[0] + a[2] * b[3] - a[3] * b[2],
                              a[0] * b[2] + a[2] * b[0] + a[3] * b[1] - a[1] * b[3],
                              a[0] * b[3] + a[3] * b[0] + a[1] * b[2] - a[2] * b[1]);
    }
    // The vector rotated by this unit quaternion (the same as the matrix).
    Vector3 operator*(const Vector3& v) const {
        Real out[3];
        Rotate(static_cast<const Real*>(v), out);
        return Vector3(out[0], out[1], out[2]);
    }
    // x, y, z rotated; w kept.
    Vector4 operator*(const Vector4& v) const {
        Real out[3];
        Rotate(static_cast<const Real*>(v), out);
        return Vector4(out[0], out[1], out[2], v[3]);
    }

    // The four-component dot product.
    Real Dot(const CKWQuaternionT& q) const {
        return m_afTuple[0] * q.m_afTuple[0] + m_afTuple[1] * q.m_afTuple[1] +
               m_afTuple[2] * q.m_afTuple[2] + m_afTuple[3] * q.m_afTuple[3];
    }
    Real SquaredLength() const { return Dot(*this); }
    Real Length() const { return Math::Sqrt(Dot(*this)); }
    // Scales to unit length and returns the former length; at or below
    // EPSILON the quaternion becomes ZERO and 0 is returned.
    Real Normalize();
    // The conjugate divided by the squared length; ZERO when the length is at
    // or below EPSILON.
    CKWQuaternionT Inverse() const;
    // (w, -x, -y, -z): the inverse of a unit quaternion.
    CKWQuaternionT Conjugate() const {
        return CKWQuaternionT(m_afTuple[0], -m_afTuple[1], -m_afTuple[2], -m_afTuple[3]);
    }
    // For (w, a * u) with a unit u: (cos a, sin a * u); the vector part is
    // kept as it is when |sin a| < EPSILON. w is ignored.
    CKWQuaternionT Exp() const;
    // For a unit (cos a, sin a * u): (0, a * u); the vector part is kept as it
    // is when |w| >= 1 or |sin a| < EPSILON.
    CKWQuaternionT Log() const;

    void FromRotationMatrix(const Matrix3& rotation);
    void FromRotationMatrix(const Matrix4& rotation);
    void FromRotationMatrix(const Vector3 columns[3]);
    void FromRotationMatrix(const Vector4 columns[3]);
    // The rotation matrix of this unit quaternion.
    void ToRotationMatrix(Matrix3& rotation) const {
        Real* m = static_cast<Real*>(rotation);
        RotationEntries(m, 3);
    }
    // The rotation in the upper 3x3, the rest as in the identity.
    void ToRotationMatrix(Matrix4& rotation) const {
        Real* m = static_cast<Real*>(rotation);
        RotationEntries(m, 4);
        m[3] = m[7] = m[11] = m[12] = m[13] = m[14] = Real(0);
        m[15] = Real(1);
    }
    void ToRotationMatrix(Vector3 columns[3]) const;
    // The columns' fourth components are 0.
    void ToRotationMatrix(Vector4 columns[3]) const;

    // The rotation by angle about a unit axis, used as given.
    void FromAxisAngle(const Vector3& axis, Real angle) {
        const Real half = Real(0.5) * angle;
        const Real s = Math::Sin(half);
        Set(Math::Cos(half), s * axis[0], s * axis[1], s * axis[2]);
    }
    void FromAxisAngle(const Vector4& axis, Real angle) {
        FromAxisAngle(Vector3(axis[0], axis[1], axis[2]), angle);
    }
    // angle = 2 atan2(|(x, y, z)|, w) in [0, 2 pi] and axis the unit (x, y,
    // z), so that FromAxisAngle gives this quaternion back (unit length
    // assumed). Accurate near 0 and pi; with no rotation the axis is (1, 0, 0).
    void ToAxisAngle(Vector3& axis, Real& angle) const;
    // As above, with the axis's fourth component 0.
    void ToAxisAngle(Vector4& axis, Real& angle) const;

    // Sets *this to p at t = 0 and q at t = 1 along the great arc through
    // them, and returns it: with a = acos(p . q), (p sin((1-t) a) + q sin(t a))
    // / sin a. When |a| < EPSILON (or a is not a number) the result is p.
    CKWQuaternionT& Slerp(Real t, const CKWQuaternionT& p, const CKWQuaternionT& q) {
        const Real cosAngle = p.Dot(q);
        const Real angle = Math::ACos(cosAngle);
        if (!(Math::FAbs(angle) >= Math::EPSILON)) {
            return *this = p;
        }
        const Real inv = Real(1) / Math::Sin(angle);
        const Real coeff0 = Math::Sin((Real(1) - t) * angle) * inv;
        const Real coeff1 = Math::Sin(t * angle) * inv;
        for (int i = 0; i < 4; ++i) {
            m_afTuple[i] = coeff0 * p.m_afTuple[i] + coeff1 * q.m_afTuple[i];
        }
        return *this;
    }
    // Slerp that turns spins extra half turns (pi each) on the way.
    CKWQuaternionT& SlerpExtraSpins(Real t, const CKWQuaternionT& p, const CKWQuaternionT& q,
                                    int spins);
    // The inner control point at q1 for Squad through q0, q1, q2 (unit).
    CKWQuaternionT& GetIntermediate(const CKWQuaternionT& q0, const CKWQuaternionT& q1,
                                    const CKWQuaternionT& q2);
    // Spherical cubic interpolation from q0 to q1 with the control points a0
    // and a1: Slerp(2t(1-t), Slerp(t, q0, q1), Slerp(t, a0, a1)).
    CKWQuaternionT& Squad(Real t, const CKWQuaternionT& q0, const CKWQuaternionT& a0,
                          const CKWQuaternionT& a1, const CKWQuaternionT& q1);
    // The shortest rotation taking unit v1 to unit v2; for opposite vectors,
    // the half turn about an axis perpendicular to v1.
    CKWQuaternionT& Align(const Vector3& v1, const Vector3& v2);

    // Splits this unit quaternion into a rotation about the unit axis (the
    // twist) and one about an axis perpendicular to it (the no-twist part):
    // *this = twist * noTwist, or *this = noTwist * twist. When the rotation
    // has no part about the axis at all, twist is IDENTITY.
    void DecomposeTwistTimesNoTwist(const Vector3& axis, CKWQuaternionT& twist,
                                    CKWQuaternionT& noTwist) const;
    void DecomposeNoTwistTimesTwist(const Vector3& axis, CKWQuaternionT& noTwist,
                                    CKWQuaternionT& twist) const;

    static const CKWQuaternionT IDENTITY;
    static const CKWQuaternionT ZERO;

protected:
    // The cyclic successor of an axis index, for FromRotationMatrix.
    static const int ms_iNext[3];

    int CompareArrays(const CKWQuaternionT& q) const {
        return std::memcmp(m_afTuple, q.m_afTuple, sizeof(m_afTuple));
    }
    void Set(Real w, Real x, Real y, Real z) {
        m_afTuple[0] = w;
        m_afTuple[1] = x;
        m_afTuple[2] = y;
        m_afTuple[3] = z;
    }
    // The rotation matrix into the upper 3x3 of a row-major matrix whose rows
    // are stride entries apart.
    void RotationEntries(Real* m, int stride) const;
    // v + w t + u x t with u = (x, y, z) and t = 2 u x v.
    void Rotate(const Real* v, Real* out) const;

    Real m_afTuple[4];
};

template <class Real, class Other>
inline CKWQuaternionT<Real, Other> operator*(Real s, const CKWQuaternionT<Real, Other>& q) {
    return q * s;
}

// The rotation's inner loops, inline so that hosts' compilers keep
// ToRotationMatrix and the rotation of vectors in their loops.

template <class Real, class Other>
inline void CKWQuaternionT<Real, Other>::RotationEntries(Real* m, int stride) const {
    const Real w = m_afTuple[0], x = m_afTuple[1], y = m_afTuple[2], z = m_afTuple[3];
    const Real tx = x + x, ty = y + y, tz = z + z;
    const Real twx = tx * w, twy = ty * w, twz = tz * w;
    const Real txx = tx * x, txy = ty * x, txz = tz * x;
    const Real tyy = ty * y, tyz = tz * y, tzz = tz * z;
    Real* r0 = m;
    Real* r1 = m + stride;
    Real* r2 = m + 2 * stride;
    r0[0] = Real(1) - (tyy + tzz);
    r0[1] = txy - twz;
    r0[2] = txz + twy;
    r1[0] = txy + twz;
    r1[1] = Real(1) - (txx + tzz);
    r1[2] = tyz - twx;
    r2[0] = txz - twy;
    r2[1] = tyz + twx;
    r2[2] = Real(1) - (txx + tyy);
}

template <class Real, class Other>
inline void CKWQuaternionT<Real, Other>::Rotate(const Real* v, Real* out) const {
    const Real w = m_afTuple[0], x = m_afTuple[1], y = m_afTuple[2], z = m_afTuple[3];
    const Real tx = Real(2) * (y * v[2] - z * v[1]);
    const Real ty = Real(2) * (z * v[0] - x * v[2]);
    const Real tz = Real(2) * (x * v[1] - y * v[0]);
    out[0] = v[0] + w * tx + (y * tz - z * ty);
    out[1] = v[1] + w * ty + (z * tx - x * tz);
    out[2] = v[2] + w * tz + (x * ty - y * tx);
}

#if !defined(_WIN32)
extern template class CKWQuaternionT<float, double>;
extern template class CKWQuaternionT<double, float>;
#endif
