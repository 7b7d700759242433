// CKWQuaternionT: the out-of-line members and the quaternions of both scalar
// pairs, instantiated once for every host.

#include <cmath>

#include "kwcore/geometry/linear/CKWQuaternionT.h"

template <class Real, class Other>
const CKWQuaternionT<Real, Other> CKWQuaternionT<Real, Other>::IDENTITY(Real(1), Real(0), Real(0),
                                                                        Real(0));
template <class Real, class Other>
const CKWQuaternionT<Real, Other> CKWQuaternionT<Real, Other>::ZERO(Real(0), Real(0), Real(0),
                                                                    Real(0));
template <class Real, class Other>
const int CKWQuaternionT<Real, Other>::ms_iNext[3] = {1, 2, 0};

template <class Real, class Other>
Real CKWQuaternionT<Real, Other>::Normalize() {
    const Real length = Length();
    if (!(length > Math::EPSILON)) {
        *this = ZERO;
        return Real(0);
    }
    *this *= Real(1) / length;
    return length;
}

template <class Real, class Other>
CKWQuaternionT<Real, Other> CKWQuaternionT<Real, Other>::Inverse() const {
    const Real squared = SquaredLength();
    if (!(Math::Sqrt(squared) > Math::EPSILON)) {
        return ZERO;
    }
    return Conjugate() * (Real(1) / squared);
}

template <class Real, class Other>
CKWQuaternionT<Real, Other> CKWQuaternionT<Real, Other>::Exp() const {
    const Real x = m_afTuple[1], y = m_afTuple[2], z = m_afTuple[3];
    const Real angle = Math::Sqrt(x * x + y * y + z * z);
    const Real sinAngle = Math::Sin(angle);
    CKWQuaternionT result(Math::Cos(angle), x, y, z);
    if (Math::FAbs(sinAngle) >= Math::EPSILON) {
        const Real coeff = sinAngle / angle;
        for (int i = 1; i < 4; ++i) {
            result.m_afTuple[i] *= coeff;
        }
    }
    return result;
}

template <class Real, class Other>
CKWQuaternionT<Real, Other> CKWQuaternionT<Real, Other>::Log() const {
    CKWQuaternionT result(Real(0), m_afTuple[1], m_afTuple[2], m_afTuple[3]);
    if (Math::FAbs(m_afTuple[0]) < Real(1)) {
        const Real angle = Math::ACos(m_afTuple[0]);
        const Real sinAngle = Math::Sin(angle);
        if (Math::FAbs(sinAngle) >= Math::EPSILON) {
            const Real coeff = angle / sinAngle;
            for (int i = 1; i < 4; ++i) {
                result.m_afTuple[i] *= coeff;
            }
        }
    }
    return result;
}

template <class Real, class Other>
void CKWQuaternionT<Real, Other>::FromRotationMatrix(const Matrix3& rotation) {
    const Matrix3& m = rotation;
    const Real trace = m(0, 0) + m(1, 1) + m(2, 2);
    if (trace > Real(0)) {
        Real root = Math::Sqrt(trace + Real(1));
        m_afTuple[0] = Real(0.5) * root;
        root = Real(0.5) / root;
        m_afTuple[1] = (m(2, 1) - m(1, 2)) * root;
        m_afTuple[2] = (m(0, 2) - m(2, 0)) * root;
        m_afTuple[3] = (m(1, 0) - m(0, 1)) * root;
        return;
    }
    // The largest diagonal entry gives the best-conditioned component.
    int i = 0;
    if (m(1, 1) > m(0, 0)) {
        i = 1;
    }
    if (m(2, 2) > m(i, i)) {
        i = 2;
    }
    const int j = ms_iNext[i];
    const int k = ms_iNext[j];
    Real root = Math::Sqrt(m(i, i) - m(j, j) - m(k, k) + Real(1));
    Real* xyz = m_afTuple + 1;
    xyz[i] = Real(0.5) * root;
    root = Real(0.5) / root;
    m_afTuple[0] = (m(k, j) - m(j, k)) * root;
    xyz[j] = (m(j, i) + m(i, j)) * root;
    xyz[k] = (m(k, i) + m(i, k)) * root;
}

template <class Real, class Other>
void CKWQuaternionT<Real, Other>::FromRotationMatrix(const Matrix4& rotation) {
    const Matrix4& m = rotation;
    FromRotationMatrix(
        Matrix3(m(0, 0), m(0, 1), m(0, 2), m(1, 0), m(1, 1), m(1, 2), m(2, 0), m(2, 1), m(2, 2)));
}

template <class Real, class Other>
void CKWQuaternionT<Real, Other>::FromRotationMatrix(const Vector3 columns[3]) {
    FromRotationMatrix(Matrix3(columns, true));
}

template <class Real, class Other>
void CKWQuaternionT<Real, Other>::FromRotationMatrix(const Vector4 columns[3]) {
    const Vector3 three[3] = {Vector3(columns[0][0], columns[0][1], columns[0][2]),
                              Vector3(columns[1][0], columns[1][1], columns[1][2]),
                              Vector3(columns[2][0], columns[2][1], columns[2][2])};
    FromRotationMatrix(three);
}

template <class Real, class Other>
void CKWQuaternionT<Real, Other>::ToRotationMatrix(Vector3 columns[3]) const {
    Matrix3 rotation;
    ToRotationMatrix(rotation);
    for (int c = 0; c < 3; ++c) {
        columns[c] = rotation.GetColumn(c);
    }
}

template <class Real, class Other>
void CKWQuaternionT<Real, Other>::ToRotationMatrix(Vector4 columns[3]) const {
    Matrix3 rotation;
    ToRotationMatrix(rotation);
    for (int c = 0; c < 3; ++c) {
        columns[c] = Vector4(rotation(0, c), rotation(1, c), rotation(2, c), Real(0));
    }
}

template <class Real, class Other>
void CKWQuaternionT<Real, Other>::ToAxisAngle(Vector3& axis, Real& angle) const {
    const Real x = m_afTuple[1], y = m_afTuple[2], z = m_afTuple[3];
    const Real length = Math::Sqrt(x * x + y * y + z * z);
    if (!(length > Real(0))) {
        axis = Vector3(Real(1), Real(0), Real(0));
        angle = Real(0);
        return;
    }
    // atan2 keeps full precision where acos(w) would lose it (near 0 and pi).
    angle = Real(2) * Math::ATan2(length, m_afTuple[0]);
    const Real inv = Real(1) / length;
    axis = Vector3(x * inv, y * inv, z * inv);
}

template <class Real, class Other>
void CKWQuaternionT<Real, Other>::ToAxisAngle(Vector4& axis, Real& angle) const {
    Vector3 three;
    ToAxisAngle(three, angle);
    axis = Vector4(three[0], three[1], three[2], Real(0));
}

template <class Real, class Other>
CKWQuaternionT<Real, Other>& CKWQuaternionT<Real, Other>::SlerpExtraSpins(Real t,
                                                                          const CKWQuaternionT& p,
                                                                          const CKWQuaternionT& q,
                                                                          int spins) {
    const Real angle = Math::ACos(p.Dot(q));
    if (!(Math::FAbs(angle) >= Math::EPSILON)) {
        return *this = p;
    }
    const Real phase = Math::PI * Real(spins) * t;
    const Real inv = Real(1) / Math::Sin(angle);
    const Real coeff0 = Math::Sin((Real(1) - t) * angle - phase) * inv;
    const Real coeff1 = Math::Sin(t * angle + phase) * inv;
    return *this = p * coeff0 + q * coeff1;
}

template <class Real, class Other>
CKWQuaternionT<Real, Other>& CKWQuaternionT<Real, Other>::GetIntermediate(
    const CKWQuaternionT& q0, const CKWQuaternionT& q1, const CKWQuaternionT& q2) {
    // a = q1 exp(-(log(q1^-1 q0) + log(q1^-1 q2)) / 4)
    const CKWQuaternionT inverse = q1.Conjugate();
    const CKWQuaternionT sum = (inverse * q0).Log() + (inverse * q2).Log();
    return *this = q1 * (sum * Real(-0.25)).Exp();
}

template <class Real, class Other>
CKWQuaternionT<Real, Other>& CKWQuaternionT<Real, Other>::Squad(Real t, const CKWQuaternionT& q0,
                                                                const CKWQuaternionT& a0,
                                                                const CKWQuaternionT& a1,
                                                                const CKWQuaternionT& q1) {
    CKWQuaternionT outer, inner;
    outer.Slerp(t, q0, q1);
    inner.Slerp(t, a0, a1);
    return Slerp(Real(2) * t * (Real(1) - t), outer, inner);
}

template <class Real, class Other>
CKWQuaternionT<Real, Other>& CKWQuaternionT<Real, Other>::Align(const Vector3& v1,
                                                                const Vector3& v2) {
    // The half-way vector b: the rotation by 2 angle(v1, b) about v1 x b.
    Vector3 half = v1 + v2;
    if (half.Normalize() > Real(0)) {
        const Vector3 axis = v1.Cross(half);
        Set(v1.Dot(half), axis[0], axis[1], axis[2]);
        return *this;
    }
    // Opposite vectors: a half turn about an axis perpendicular to v1, made
    // from the coordinate axis least aligned with it.
    Vector3 axis;
    if (Math::FAbs(v1[0]) >= Math::FAbs(v1[1])) {
        axis = Vector3(-v1[2], Real(0), v1[0]);
    } else {
        axis = Vector3(Real(0), v1[2], -v1[1]);
    }
    if (axis.Normalize() == Real(0)) {
        axis = Vector3(Real(1), Real(0), Real(0));
    }
    Set(Real(0), axis[0], axis[1], axis[2]);
    return *this;
}

namespace {

// The part of q about the unit axis: (w, (v . axis) axis) normalized; the
// identity when that part is (nearly) nothing.
template <class Quaternion, class Vector3, class Real>
Quaternion Twist(const Quaternion& q, const Vector3& axis) {
    const Real along = q.X() * axis[0] + q.Y() * axis[1] + q.Z() * axis[2];
    Quaternion twist(q.W(), along * axis[0], along * axis[1], along * axis[2]);
    if (twist.Normalize() == Real(0)) {
        return Quaternion::IDENTITY;
    }
    return twist;
}

}  // namespace

template <class Real, class Other>
void CKWQuaternionT<Real, Other>::DecomposeTwistTimesNoTwist(const Vector3& axis,
                                                             CKWQuaternionT& twist,
                                                             CKWQuaternionT& noTwist) const {
    twist = Twist<CKWQuaternionT, Vector3, Real>(*this, axis);
    noTwist = twist.Conjugate() * *this;
}

template <class Real, class Other>
void CKWQuaternionT<Real, Other>::DecomposeNoTwistTimesTwist(const Vector3& axis,
                                                             CKWQuaternionT& noTwist,
                                                             CKWQuaternionT& twist) const {
    twist = Twist<CKWQuaternionT, Vector3, Real>(*this, axis);
    noTwist = *this * twist.Conjugate();
}

template class CKWQuaternionT<float, double>;
template class CKWQuaternionT<double, float>;
