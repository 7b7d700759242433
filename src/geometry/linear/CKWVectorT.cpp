// The vectors' out-of-line template code and the exported vector
// instantiations (exported through their declarations in the headers).

#include "kwcore/geometry/linear/CKWPointT.h"
#include "kwcore/geometry/linear/CKWVector2T.h"
#include "kwcore/geometry/linear/CKWVector3T.h"
#include "kwcore/geometry/linear/CKWVector4T.h"

// The generic vector has no cross product of its own.
template <int N, class Real, class Other>
CKWVectorT<N, Real, Other> CKWVectorT<N, Real, Other>::Cross(const CKWVectorT&) const {
    return CKWVectorT();
}

template <int N, class Real, class Other>
CKWVectorT<N, Real, Other> CKWVectorT<N, Real, Other>::UnitCross(const CKWVectorT&) const {
    return CKWVectorT();
}

template <class Real, class Other>
const CKWVector2T<Real, Other> CKWVector2T<Real, Other>::UNIT_X(Real(1), Real(0));
template <class Real, class Other>
const CKWVector2T<Real, Other> CKWVector2T<Real, Other>::UNIT_Y(Real(0), Real(1));

template <class Real, class Other>
void CKWVector2T<Real, Other>::Orthonormalize(CKWVector2T& u, CKWVector2T& v) {
    u.Normalize();
    v -= u * u.Dot(v);
    v.Normalize();
}

template <class Real, class Other>
void CKWVector2T<Real, Other>::GenerateOrthonormalBasis(CKWVector2T& u, CKWVector2T& v,
                                                        bool unitLengthV) {
    if (!unitLengthV) {
        v.Normalize();
    }
    u = v.Perp();
}

template <class Real, class Other>
void CKWVector2T<Real, Other>::ComputeExtremes(int count, const CKWVector2T* points,
                                               CKWVector2T& min, CKWVector2T& max) {
    if (!points || count < 1) {
        min = CKWVector2T::ZERO;
        max = CKWVector2T::ZERO;
        return;
    }
    min = points[0];
    max = points[0];
    for (int i = 1; i < count; ++i) {
        for (int j = 0; j < 2; ++j) {
            if (points[i][j] < min[j]) {
                min[j] = points[i][j];
            } else if (points[i][j] > max[j]) {
                max[j] = points[i][j];
            }
        }
    }
}

template <class Real, class Other>
const CKWVector3T<Real, Other> CKWVector3T<Real, Other>::UNIT_X(Real(1), Real(0), Real(0));
template <class Real, class Other>
const CKWVector3T<Real, Other> CKWVector3T<Real, Other>::UNIT_Y(Real(0), Real(1), Real(0));
template <class Real, class Other>
const CKWVector3T<Real, Other> CKWVector3T<Real, Other>::UNIT_Z(Real(0), Real(0), Real(1));

template <class Real, class Other>
void CKWVector3T<Real, Other>::Orthonormalize(CKWVector3T& u, CKWVector3T& v, CKWVector3T& w) {
    u.Normalize();
    v -= u * u.Dot(v);
    v.Normalize();
    w -= u * u.Dot(w);
    w -= v * v.Dot(w);
    w.Normalize();
}

template <class Real, class Other>
void CKWVector3T<Real, Other>::Orthonormalize(CKWVector3T* threeVectors) {
    if (threeVectors) {
        Orthonormalize(threeVectors[0], threeVectors[1], threeVectors[2]);
    }
}

template <class Real, class Other>
void CKWVector3T<Real, Other>::GenerateOrthonormalBasis(CKWVector3T& u, CKWVector3T& v,
                                                        CKWVector3T& w, bool unitLengthW) {
    if (!unitLengthW) {
        w.Normalize();
    }
    // u is perpendicular to w, built from w's two larger components so it
    // never degenerates.
    if (std::fabs(w.X()) >= std::fabs(w.Y())) {
        Real inv = Real(1) / std::sqrt(w.X() * w.X() + w.Z() * w.Z());
        u.Set(-w.Z() * inv, Real(0), w.X() * inv);
    } else {
        Real inv = Real(1) / std::sqrt(w.Y() * w.Y() + w.Z() * w.Z());
        u.Set(Real(0), w.Z() * inv, -w.Y() * inv);
    }
    v = w.Cross(u);
}

template <class Real, class Other>
const CKWVector4T<Real, Other> CKWVector4T<Real, Other>::UNIT_X(Real(1), Real(0), Real(0), Real(0));
template <class Real, class Other>
const CKWVector4T<Real, Other> CKWVector4T<Real, Other>::UNIT_Y(Real(0), Real(1), Real(0), Real(0));
template <class Real, class Other>
const CKWVector4T<Real, Other> CKWVector4T<Real, Other>::UNIT_Z(Real(0), Real(0), Real(1), Real(0));
template <class Real, class Other>
const CKWVector4T<Real, Other> CKWVector4T<Real, Other>::UNIT_W(Real(0), Real(0), Real(0), Real(1));

template class CKWVectorT<2, float, double>;
template class CKWVectorT<3, float, double>;
template class CKWVectorT<4, float, double>;
template class CKWVectorT<2, double, float>;
template class CKWVectorT<3, double, float>;
template class CKWVectorT<4, double, float>;
template class CKWVector2T<float, double>;
template class CKWVector2T<double, float>;
template class CKWVector3T<float, double>;
template class CKWVector3T<double, float>;
template class CKWVector4T<float, double>;
template class CKWVector4T<double, float>;
