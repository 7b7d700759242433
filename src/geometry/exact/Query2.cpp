// The kwRationalArithmetic queries and their exported instantiations.
#include "kwcore/geometry/exact/Query2.h"

#include <cmath>
#include <limits>

#include "KWExactLineSign.h"

namespace kwRationalArithmetic {

namespace {

template <class Value>
int SignOf(const Value& value) {
    return value > Value(0) ? 1 : (value < Value(0) ? -1 : 0);
}

// Wrapping 64-bit arithmetic: defined for every input, exact without overflow.
inline std::int64_t Wrap(std::uint64_t bits) {
    return static_cast<std::int64_t>(bits);
}
inline std::int64_t Sub(std::int64_t a, std::int64_t b) {
    return Wrap(static_cast<std::uint64_t>(a) - static_cast<std::uint64_t>(b));
}
inline std::int64_t Add(std::int64_t a, std::int64_t b) {
    return Wrap(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
}
inline std::int64_t Mul(std::int64_t a, std::int64_t b) {
    return Wrap(static_cast<std::uint64_t>(a) * static_cast<std::uint64_t>(b));
}

// x^2 + y^2: the third column of the lifted circle determinant.
template <class Int>
Int Lift(const Int& x, const Int& y) {
    return x * x + y * y;
}

// ToTriangle from the point's sides of the three edge lines, asked lazily
// (toLine(a, b) is ToLine(p, a, b)). Inside a counter-clockwise triangle
// means left of v1->v2 and v0->v1 and right of v0->v2; any clear answer the
// other way decides "outside".
template <class ToLine>
int TriangleSide(ToLine toLine, int iV0, int iV1, int iV2) {
    const int sign0 = toLine(iV1, iV2);
    if (sign0 > 0) {
        return 1;
    }
    const int sign1 = toLine(iV0, iV2);
    if (sign1 < 0) {
        return 1;
    }
    const int sign2 = toLine(iV0, iV1);
    if (sign2 > 0) {
        return 1;
    }
    return (sign0 != 0 && sign1 != 0 && sign2 != 0) ? -1 : 0;
}

}  // namespace

Query::~Query() = default;

// ---------------------------------------------------------------- Query2

template <class Real, class Other>
Query2<Real, Other>::Query2(int iVQuantity, const Vector2* akVertex)
    : m_iVQuantity(iVQuantity), m_akVertex(akVertex) {}

template <class Real, class Other>
Query2<Real, Other>::~Query2() = default;

template <class Real, class Other>
int Query2<Real, Other>::ToLine(const Vector2& rkP, int iV0, int iV1) const {
    const Vector2& v0 = m_akVertex[iV0];
    const Vector2& v1 = m_akVertex[iV1];
    const Real det = Det2(rkP.X() - v0.X(), rkP.Y() - v0.Y(), v1.X() - v0.X(), v1.Y() - v0.Y());
    return SignOf(det);
}

template <class Real, class Other>
int Query2<Real, Other>::ToLine(int i, int iV0, int iV1) const {
    return ToLine(m_akVertex[i], iV0, iV1);
}

template <class Real, class Other>
int Query2<Real, Other>::ToTriangle(const Vector2& rkP, int iV0, int iV1, int iV2) const {
    return TriangleSide([this, &rkP](int iA, int iB) { return ToLine(rkP, iA, iB); }, iV0, iV1,
                        iV2);
}

template <class Real, class Other>
int Query2<Real, Other>::ToTriangle(int i, int iV0, int iV1, int iV2) const {
    return ToTriangle(m_akVertex[i], iV0, iV1, iV2);
}

template <class Real, class Other>
int Query2<Real, Other>::ToCircumcircle(const Vector2& rkP, int iV0, int iV1, int iV2) const {
    const Vector2& v0 = m_akVertex[iV0];
    const Vector2& v1 = m_akVertex[iV1];
    const Vector2& v2 = m_akVertex[iV2];
    const Real x0 = v0.X() - rkP.X(), y0 = v0.Y() - rkP.Y();
    const Real x1 = v1.X() - rkP.X(), y1 = v1.Y() - rkP.Y();
    const Real x2 = v2.X() - rkP.X(), y2 = v2.Y() - rkP.Y();
    const Real det = Det3(x0, y0, Lift(x0, y0), x1, y1, Lift(x1, y1), x2, y2, Lift(x2, y2));
    // Positive for a point inside the circle of a counter-clockwise triangle.
    return -SignOf(det);
}

template <class Real, class Other>
int Query2<Real, Other>::ToCircumcircle(int i, int iV0, int iV1, int iV2) const {
    return ToCircumcircle(m_akVertex[i], iV0, iV1, iV2);
}

template <class Real, class Other>
Real Query2<Real, Other>::Dot(Real fX0, Real fY0, Real fX1, Real fY1) {
    return fX0 * fX1 + fY0 * fY1;
}

template <class Real, class Other>
Real Query2<Real, Other>::Det2(Real fX0, Real fY0, Real fX1, Real fY1) {
    return fX0 * fY1 - fY0 * fX1;
}

template <class Real, class Other>
Real Query2<Real, Other>::Det3(Real fX0, Real fY0, Real fZ0, Real fX1, Real fY1, Real fZ1, Real fX2,
                               Real fY2, Real fZ2) {
    return fX0 * (fY1 * fZ2 - fY2 * fZ1) - fY0 * (fX1 * fZ2 - fX2 * fZ1) +
           fZ0 * (fX1 * fY2 - fX2 * fY1);
}

// ---------------------------------------------------------------- Query2Int64

template <class Real, class Other>
Query2Int64<Real, Other>::Query2Int64(int iVQuantity, const Vector2* akVertex)
    : Query2<Real, Other>(iVQuantity, akVertex) {}

template <class Real, class Other>
std::int64_t Query2Int64<Real, Other>::Truncate(Real fValue) {
    const double value = static_cast<double>(fValue);
    if (!(value == value)) {
        return 0;
    }
    // 2^63 is exact in double; anything at or beyond it saturates.
    const double limit = 9223372036854775808.0;
    if (value >= limit) {
        return std::numeric_limits<std::int64_t>::max();
    }
    if (value <= -limit) {
        return std::numeric_limits<std::int64_t>::min();
    }
    return static_cast<std::int64_t>(value);
}

template <class Real, class Other>
std::int64_t Query2Int64<Real, Other>::Det2(std::int64_t iX0, std::int64_t iY0, std::int64_t iX1,
                                            std::int64_t iY1) {
    return Sub(Mul(iX0, iY1), Mul(iY0, iX1));
}

template <class Real, class Other>
std::int64_t Query2Int64<Real, Other>::Det3(std::int64_t iX0, std::int64_t iY0, std::int64_t iZ0,
                                            std::int64_t iX1, std::int64_t iY1, std::int64_t iZ1,
                                            std::int64_t iX2, std::int64_t iY2, std::int64_t iZ2) {
    const std::int64_t c0 = Mul(iX0, Det2(iY1, iZ1, iY2, iZ2));
    const std::int64_t c1 = Mul(iY0, Det2(iX1, iZ1, iX2, iZ2));
    const std::int64_t c2 = Mul(iZ0, Det2(iX1, iY1, iX2, iY2));
    return Add(Sub(c0, c1), c2);
}

template <class Real, class Other>
int Query2Int64<Real, Other>::ToLine(const Vector2& rkP, int iV0, int iV1) const {
    const Vector2& v0 = this->m_akVertex[iV0];
    const Vector2& v1 = this->m_akVertex[iV1];
    const std::int64_t x0 = Truncate(v0.X()), y0 = Truncate(v0.Y());
    const std::int64_t det = Det2(Sub(Truncate(rkP.X()), x0), Sub(Truncate(rkP.Y()), y0),
                                  Sub(Truncate(v1.X()), x0), Sub(Truncate(v1.Y()), y0));
    return SignOf(det);
}

template <class Real, class Other>
int Query2Int64<Real, Other>::ToCircumcircle(const Vector2& rkP, int iV0, int iV1, int iV2) const {
    const std::int64_t px = Truncate(rkP.X()), py = Truncate(rkP.Y());
    std::int64_t row[3][3];
    const int vertex[3] = {iV0, iV1, iV2};
    for (int k = 0; k < 3; ++k) {
        const Vector2& v = this->m_akVertex[vertex[k]];
        const std::int64_t x = Sub(Truncate(v.X()), px), y = Sub(Truncate(v.Y()), py);
        row[k][0] = x;
        row[k][1] = y;
        row[k][2] = Add(Mul(x, x), Mul(y, y));
    }
    const std::int64_t det = Det3(row[0][0], row[0][1], row[0][2], row[1][0], row[1][1], row[1][2],
                                  row[2][0], row[2][1], row[2][2]);
    return -SignOf(det);
}

// ---------------------------------------------------------------- Query2TInteger

namespace {

// ToLine on integer-valued doubles in TInteger<N>.
template <int N>
int IntegerToLine(const double p[2], const double v0[2], const double v1[2]) {
    typedef TInteger<N> Int;
    const Int x0 = Int::FromDouble(v0[0]), y0 = Int::FromDouble(v0[1]);
    const Int dx0 = Int::FromDouble(p[0]) - x0, dy0 = Int::FromDouble(p[1]) - y0;
    const Int dx1 = Int::FromDouble(v1[0]) - x0, dy1 = Int::FromDouble(v1[1]) - y0;
    return SignOf(dx0 * dy1 - dy0 * dx1);
}

template <int N>
int IntegerToCircumcircle(const double p[2], const double* const v[3]) {
    typedef TInteger<N> Int;
    const Int px = Int::FromDouble(p[0]), py = Int::FromDouble(p[1]);
    Int x[3], y[3], z[3];
    for (int k = 0; k < 3; ++k) {
        x[k] = Int::FromDouble(v[k][0]) - px;
        y[k] = Int::FromDouble(v[k][1]) - py;
        z[k] = Lift(x[k], y[k]);
    }
    const Int det = x[0] * (y[1] * z[2] - y[2] * z[1]) - y[0] * (x[1] * z[2] - x[2] * z[1]) +
                    z[0] * (x[1] * y[2] - x[2] * y[1]);
    return -SignOf(det);
}

inline bool AllBelow(const double* values, int count, double limit) {
    for (int k = 0; k < count; ++k) {
        if (!(std::fabs(values[k]) < limit)) {
            return false;
        }
    }
    return true;
}

}  // namespace

template <class Real, class Other>
Query2TInteger<Real, Other>::Query2TInteger(int iVQuantity, const Vector2* akVertex)
    : Query2<Real, Other>(iVQuantity, akVertex) {}

template <class Real, class Other>
double Query2TInteger<Real, Other>::Truncate(Real fValue) {
    const double value = static_cast<double>(fValue);
    return std::isfinite(value) ? std::trunc(value) : 0.0;
}

template <class Real, class Other>
int Query2TInteger<Real, Other>::ToLine(const Vector2& rkP, int iV0, int iV1) const {
    const Vector2& v0 = this->m_akVertex[iV0];
    const Vector2& v1 = this->m_akVertex[iV1];
    const double values[6] = {Truncate(rkP.X()), Truncate(rkP.Y()), Truncate(v0.X()),
                              Truncate(v0.Y()),  Truncate(v1.X()),  Truncate(v1.Y())};
    // Differences below 2^62 and products below 2^124 fit four words.
    if (AllBelow(values, 6, 2305843009213693952.0)) {
        return IntegerToLine<4>(values, values + 2, values + 4);
    }
    return IntegerToLine<16>(values, values + 2, values + 4);
}

template <class Real, class Other>
int Query2TInteger<Real, Other>::ToCircumcircle(const Vector2& rkP, int iV0, int iV1,
                                                int iV2) const {
    const Vector2& v0 = this->m_akVertex[iV0];
    const Vector2& v1 = this->m_akVertex[iV1];
    const Vector2& v2 = this->m_akVertex[iV2];
    const double values[8] = {Truncate(rkP.X()), Truncate(rkP.Y()), Truncate(v0.X()),
                              Truncate(v0.Y()),  Truncate(v1.X()),  Truncate(v1.Y()),
                              Truncate(v2.X()),  Truncate(v2.Y())};
    const double* const vertices[3] = {values + 2, values + 4, values + 6};
    return IntegerToCircumcircle<32>(values, vertices);
}

// ---------------------------------------------------------------- Query2TRational

template <class Real, class Other>
Query2TRational<Real, Other>::Query2TRational(int iVQuantity, const Vector2* akVertex)
    : Query2<Real, Other>(iVQuantity, akVertex) {}

template <class Real, class Other>
Query2TRational<Real, Other>::~Query2TRational() = default;

template <class Real, class Other>
typename Query2TRational<Real, Other>::RVector2 Query2TRational<Real, Other>::ToRVector(
    const Vector2& rkP) {
    RVector2 result;
    result[0] = Rational::FromDouble(static_cast<double>(rkP.X()));
    result[1] = Rational::FromDouble(static_cast<double>(rkP.Y()));
    return result;
}

template <class Real, class Other>
void Query2TRational<Real, Other>::Convert(int iCount, int* aiIndex) const {
    if (m_aiRSlot.empty()) {
        m_aiRSlot.assign(static_cast<std::size_t>(this->m_iVQuantity), -1);
    }
    for (int k = 0; k < iCount; ++k) {
        int& slot = m_aiRSlot[static_cast<std::size_t>(aiIndex[k])];
        if (slot < 0) {
            slot = static_cast<int>(m_akRVertex.size());
            m_akRVertex.push_back(ToRVector(this->m_akVertex[aiIndex[k]]));
        }
    }
}

template <class Real, class Other>
int Query2TRational<Real, Other>::ToLine(const Vector2& rkP, int iV0, int iV1) const {
    int index[2] = {iV0, iV1};
    Convert(2, index);
    return ToLine(ToRVector(rkP), iV0, iV1);
}

template <class Real, class Other>
int Query2TRational<Real, Other>::ToLine(int i, int iV0, int iV1) const {
    int index[3] = {i, iV0, iV1};
    Convert(3, index);
    return ToLine(RVertex(i), iV0, iV1);
}

template <class Real, class Other>
int Query2TRational<Real, Other>::ToTriangle(const Vector2& rkP, int iV0, int iV1, int iV2) const {
    int index[3] = {iV0, iV1, iV2};
    Convert(3, index);
    return ToTriangle(ToRVector(rkP), iV0, iV1, iV2);
}

template <class Real, class Other>
int Query2TRational<Real, Other>::ToTriangle(int i, int iV0, int iV1, int iV2) const {
    int index[4] = {i, iV0, iV1, iV2};
    Convert(4, index);
    return ToTriangle(RVertex(i), iV0, iV1, iV2);
}

template <class Real, class Other>
int Query2TRational<Real, Other>::ToCircumcircle(const Vector2& rkP, int iV0, int iV1,
                                                 int iV2) const {
    int index[3] = {iV0, iV1, iV2};
    Convert(3, index);
    return ToCircumcircle(ToRVector(rkP), iV0, iV1, iV2);
}

template <class Real, class Other>
int Query2TRational<Real, Other>::ToCircumcircle(int i, int iV0, int iV1, int iV2) const {
    int index[4] = {i, iV0, iV1, iV2};
    Convert(4, index);
    return ToCircumcircle(RVertex(i), iV0, iV1, iV2);
}

template <class Real, class Other>
int Query2TRational<Real, Other>::ToLine(const RVector2& rkP, int iV0, int iV1) const {
    const RVector2& v0 = RVertex(iV0);
    const RVector2& v1 = RVertex(iV1);
    return Det2(rkP[0] - v0[0], rkP[1] - v0[1], v1[0] - v0[0], v1[1] - v0[1]).GetSign();
}

template <class Real, class Other>
int Query2TRational<Real, Other>::ToTriangle(const RVector2& rkP, int iV0, int iV1, int iV2) const {
    return TriangleSide([this, &rkP](int iA, int iB) { return ToLine(rkP, iA, iB); }, iV0, iV1,
                        iV2);
}

template <class Real, class Other>
int Query2TRational<Real, Other>::ToCircumcircle(const RVector2& rkP, int iV0, int iV1,
                                                 int iV2) const {
    Rational x[3], y[3], z[3];
    const int vertex[3] = {iV0, iV1, iV2};
    for (int k = 0; k < 3; ++k) {
        const RVector2& v = RVertex(vertex[k]);
        x[k] = v[0] - rkP[0];
        y[k] = v[1] - rkP[1];
        z[k] = Lift(x[k], y[k]);
    }
    return -Det3(x[0], y[0], z[0], x[1], y[1], z[1], x[2], y[2], z[2]).GetSign();
}

template <class Real, class Other>
typename Query2TRational<Real, Other>::Rational Query2TRational<Real, Other>::Det2(
    const Rational& rkX0, const Rational& rkY0, const Rational& rkX1, const Rational& rkY1) {
    return rkX0 * rkY1 - rkY0 * rkX1;
}

template <class Real, class Other>
typename Query2TRational<Real, Other>::Rational Query2TRational<Real, Other>::Det3(
    const Rational& rkX0, const Rational& rkY0, const Rational& rkZ0, const Rational& rkX1,
    const Rational& rkY1, const Rational& rkZ1, const Rational& rkX2, const Rational& rkY2,
    const Rational& rkZ2) {
    return rkX0 * Det2(rkY1, rkZ1, rkY2, rkZ2) - rkY0 * Det2(rkX1, rkZ1, rkX2, rkZ2) +
           rkZ0 * Det2(rkX1, rkY1, rkX2, rkY2);
}

// ---------------------------------------------------------------- Query2Filtered

template <class Real, class Other>
Query2Filtered<Real, Other>::Query2Filtered(int iVQuantity, const Vector2* akVertex,
                                            Real fUncertainty)
    : Query2<Real, Other>(iVQuantity, akVertex),
      m_kRQuery(iVQuantity, akVertex),
      m_fUncertainty(fUncertainty) {}

template <class Real, class Other>
Query2Filtered<Real, Other>::~Query2Filtered() = default;

template <class Real, class Other>
int Query2Filtered<Real, Other>::ToLine(const Vector2& rkP, int iV0, int iV1) const {
    const Vector2& v0 = this->m_akVertex[iV0];
    const Vector2& v1 = this->m_akVertex[iV1];
    const Real x0 = rkP.X() - v0.X(), y0 = rkP.Y() - v0.Y();
    const Real x1 = v1.X() - v0.X(), y1 = v1.Y() - v0.Y();
    const Real length0 = std::sqrt(x0 * x0 + y0 * y0);
    const Real length1 = std::sqrt(x1 * x1 + y1 * y1);
    const Real det = this->Det2(x0, y0, x1, y1);
    if (!(std::fabs(det) >= m_fUncertainty * length0 * length1)) {
        // Exactly decided, cheaply where the differences are exact in
        // double, else by rationals.
        int sign = 0;
        if (kwErrorFreeArithmetic::ExactLineSign(rkP.X(), rkP.Y(), v0.X(), v0.Y(), v1.X(), v1.Y(),
                                                 sign)) {
            return sign;
        }
        return m_kRQuery.ToLine(rkP, iV0, iV1);
    }
    return SignOf(det);
}

template <class Real, class Other>
int Query2Filtered<Real, Other>::ToCircumcircle(const Vector2& rkP, int iV0, int iV1,
                                                int iV2) const {
    const Vector2& v0 = this->m_akVertex[iV0];
    const Vector2& v1 = this->m_akVertex[iV1];
    const Vector2& v2 = this->m_akVertex[iV2];
    const Real x0 = v0.X() - rkP.X(), y0 = v0.Y() - rkP.Y();
    const Real x1 = v1.X() - rkP.X(), y1 = v1.Y() - rkP.Y();
    const Real x2 = v2.X() - rkP.X(), y2 = v2.Y() - rkP.Y();
    const Real z0 = Lift(x0, y0), z1 = Lift(x1, y1), z2 = Lift(x2, y2);
    const Real det = this->Det3(x0, y0, z0, x1, y1, z1, x2, y2, z2);
    // The product of the row lengths bounds the determinant (Hadamard).
    const Real scale = std::sqrt(x0 * x0 + y0 * y0 + z0 * z0) *
                       std::sqrt(x1 * x1 + y1 * y1 + z1 * z1) *
                       std::sqrt(x2 * x2 + y2 * y2 + z2 * z2);
    if (!(std::fabs(det) >= m_fUncertainty * scale)) {
        return m_kRQuery.ToCircumcircle(rkP, iV0, iV1, iV2);
    }
    return -SignOf(det);
}

template class Query2<float, double>;
template class Query2<double, float>;
template class Query2Int64<float, double>;
template class Query2Int64<double, float>;
template class Query2TInteger<float, double>;
template class Query2TInteger<double, float>;
template class Query2TRational<float, double>;
template class Query2TRational<double, float>;
template class Query2Filtered<float, double>;
template class Query2Filtered<double, float>;

}  // namespace kwRationalArithmetic
