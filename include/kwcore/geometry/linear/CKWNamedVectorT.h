// CKWNamedVectorT: what CKWVector2T, CKWVector3T and CKWVector4T share beyond
// the names of their components (which come from CKWNamedTupleT).
//
// Arithmetic keeps the named type, so that results keep its members (X(),
// Cross, ...): +, - (binary and unary), * and / by a scalar, scalar * vector
// and GetNormalized return a Named. The compound assignments are those of
// CKWVectorT.
//
// The virtual Cross and UnitCross of CKWVectorT are overridden here by
// dimension: in the plane the perpendicular (y, -x), which ignores its
// argument; in space the right-handed cross product; in four dimensions that
// of the x, y, z parts, with w = 0. UnitCross normalizes the cross product
// (zero when the vectors are parallel). From three dimensions on, Cross and
// UnitCross of a Named keep the type.
//
//   CKWVector3T<float, double> a(1, 0, 0), b(0, 1, 0);
//   CKWVector3T<float, double> c = (a + b).Cross(b);   // (0, 0, 1)
#pragma once

#include <type_traits>

#include "kwcore/geometry/linear/CKWNamedTupleT.h"
#include "kwcore/geometry/linear/CKWVectorT.h"

template <template <class, class> class Named, int N, class Real, class Other,
          KWComponentInput Input = KWComponentInput::EitherPrecision>
class CKWNamedVectorT : public CKWNamedTupleT<Named, CKWVectorT, N, Real, Other, Input> {
    using Components = CKWNamedTupleT<Named, CKWVectorT, N, Real, Other, Input>;
    using Generic = CKWVectorT<N, Real, Other>;
    using Self = Named<Real, Other>;

public:
    using Components::Components;

    Self operator+(const Generic& v) const { return Generic::operator+(v); }
    Self operator-(const Generic& v) const { return Generic::operator-(v); }
    Self operator-() const { return Generic::operator-(); }
    Self operator*(Real s) const { return Generic::operator*(s); }
    Self operator/(Real s) const { return Generic::operator/(s); }
    friend Self operator*(Real s, const Self& v) { return v * s; }
    Self GetNormalized() const { return Generic::GetNormalized(); }

    Generic Cross(const Generic& v) const final { return CrossOf(v); }
    Generic UnitCross(const Generic& v) const final { return CrossOf(v).GetNormalized(); }
    template <int M = N, std::enable_if_t<(M >= 3), int> = 0>
    Self Cross(const Self& v) const {
        return CrossOf(v);
    }
    template <int M = N, std::enable_if_t<(M >= 3), int> = 0>
    Self UnitCross(const Self& v) const {
        return CrossOf(v).GetNormalized();
    }

private:
    Self CrossOf(const Generic& v) const {
        const Real* a = this->m_aTuple;
        if constexpr (N == 2) {
            return Self(a[1], -a[0]);
        } else {
            Self r;
            r[0] = a[1] * v[2] - a[2] * v[1];
            r[1] = a[2] * v[0] - a[0] * v[2];
            r[2] = a[0] * v[1] - a[1] * v[0];
            return r;
        }
    }
};
