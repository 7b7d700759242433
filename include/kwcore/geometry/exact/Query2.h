// kwRationalArithmetic queries: the sign tests of planar algorithms (which
// side of a line, of a triangle, of a circumcircle a point lies on), each
// evaluated in one kind of arithmetic. A query refers to the caller's vertex
// array and never owns it.
//
//   Query2             Real floating point
//   Query2Int64        64-bit integers on the coordinates truncated toward zero
//   Query2TInteger     exact multi-word integers on the truncated coordinates
//   Query2TRational    exact rationals on the coordinates as given
//   Query2Filtered     Real floating point, exact rationals when the result is
//                      within the caller's uncertainty band
//
// Results: ToLine(p, v0, v1) is +1 when p lies to the right of the directed
// line v0 -> v1, -1 to its left, 0 on it. ToTriangle(p, v0, v1, v2), for a
// counter-clockwise triangle, is +1 outside, -1 strictly inside, 0 on the
// boundary. ToCircumcircle, for a counter-clockwise triangle, is +1 outside
// the circle through v0, v1, v2, -1 inside, 0 on it. The index forms take
// vertex i as the point. Indices are not checked.
//
//   kwRationalArithmetic::Query2Filtered<double, float> query(n, points, 1e-10);
//   bool convex = query.ToLine(i, prev, next) > 0;   // CCW polygon, vertex i convex
#pragma once

#include <cstdint>
#include <vector>

#include "kwcore/geometry/exact/TInteger.h"
#include "kwcore/geometry/exact/TRational.h"
#include "kwcore/geometry/linear/CKWVector2T.h"
#include "kwcore/platform/Export.h"

namespace kwRationalArithmetic {

class KWCORE_API Query {
public:
    // The arithmetic of a query, also the triangulator's choice of query.
    enum Type {
        QT_INT64 = 0,     // Query2Int64
        QT_INTEGER = 1,   // Query2TInteger
        QT_RATIONAL = 2,  // Query2TRational
        QT_REAL = 3,      // Query2
        QT_FILTERED = 4   // Query2Filtered
    };

    virtual ~Query();
    virtual Type GetType() const = 0;
};

template <class Real, class Other>
class KWCORE_API Query2 : public Query {
public:
    typedef CKWVector2T<Real, Other> Vector2;

    Query2(int iVQuantity, const Vector2* akVertex);
    ~Query2() override;

    Type GetType() const override { return QT_REAL; }
    int GetQuantity() const { return m_iVQuantity; }
    const Vector2* GetVertices() const { return m_akVertex; }

    virtual int ToLine(const Vector2& rkP, int iV0, int iV1) const;
    virtual int ToLine(int i, int iV0, int iV1) const;
    virtual int ToTriangle(const Vector2& rkP, int iV0, int iV1, int iV2) const;
    virtual int ToTriangle(int i, int iV0, int iV1, int iV2) const;
    virtual int ToCircumcircle(const Vector2& rkP, int iV0, int iV1, int iV2) const;
    virtual int ToCircumcircle(int i, int iV0, int iV1, int iV2) const;

protected:
    static Real Dot(Real fX0, Real fY0, Real fX1, Real fY1);
    // x0*y1 - y0*x1.
    static Real Det2(Real fX0, Real fY0, Real fX1, Real fY1);
    // The 3x3 determinant of the nine values in row order.
    static Real Det3(Real fX0, Real fY0, Real fZ0, Real fX1, Real fY1, Real fZ1, Real fX2, Real fY2,
                     Real fZ2);

    int m_iVQuantity;
    const Vector2* m_akVertex;
};

// What each query below declares alike: its vector type, the index forms of
// ToLine and ToCircumcircle kept from Query2 beside the point forms it
// evaluates in its own arithmetic, and its type. Undefined at the end.
#define KWCORE_QUERY2_POINT_FORMS(eType)                             \
    typedef CKWVector2T<Real, Other> Vector2;                        \
    using Query2<Real, Other>::ToLine;                               \
    using Query2<Real, Other>::ToCircumcircle;                       \
    Query::Type GetType() const override {                           \
        return Query::eType;                                         \
    }                                                                \
    int ToLine(const Vector2& rkP, int iV0, int iV1) const override; \
    int ToCircumcircle(const Vector2& rkP, int iV0, int iV1, int iV2) const override

// 64-bit integer arithmetic on the coordinates truncated toward zero
// (saturated at the int64 range; NaN counts as 0). Products wrap modulo 2^64,
// so the answers are exact only while |coordinates| stay below 2^30 (lines)
// and 2^13 (circles): the caller keeps coordinates in that range.
template <class Real, class Other>
class KWCORE_API Query2Int64 : public Query2<Real, Other> {
public:
    KWCORE_QUERY2_POINT_FORMS(QT_INT64);

    Query2Int64(int iVQuantity, const Vector2* akVertex);

    // The coordinate as the query sees it.
    static std::int64_t Truncate(Real fValue);

private:
    static std::int64_t Det2(std::int64_t iX0, std::int64_t iY0, std::int64_t iX1,
                             std::int64_t iY1);
    static std::int64_t Det3(std::int64_t iX0, std::int64_t iY0, std::int64_t iZ0, std::int64_t iX1,
                             std::int64_t iY1, std::int64_t iZ1, std::int64_t iX2, std::int64_t iY2,
                             std::int64_t iZ2);
};

// Exact integer arithmetic on the coordinates truncated toward zero (NaN and
// infinities count as 0): TInteger<4> while every coordinate is below 2^61 in
// magnitude, else TInteger<16> for lines (exact below 2^254) and TInteger<32>
// for circles (exact below 2^250).
template <class Real, class Other>
class KWCORE_API Query2TInteger : public Query2<Real, Other> {
public:
    KWCORE_QUERY2_POINT_FORMS(QT_INTEGER);

    Query2TInteger(int iVQuantity, const Vector2* akVertex);

    // The coordinate as the query sees it: an integer-valued double.
    static double Truncate(Real fValue);
};

// Exact rational arithmetic on the coordinates as given (NaN and infinities
// count as 0), in TRational<32>: the line and triangle tests are exact for
// any float coordinates, and for doubles while the leading bit of the largest
// coordinate lies at most 509 binary places above both 2^0 and the lowest bit
// set in any coordinate (scaling by a power of two, which keeps every sign,
// brings the largest near 1). Vertices are converted on first use and kept.
template <class Real, class Other>
class KWCORE_API Query2TRational : public Query2<Real, Other> {
public:
    KWCORE_QUERY2_POINT_FORMS(QT_RATIONAL);
    typedef TRational<32> Rational;
    typedef TRVector<2, 32> RVector2;

    Query2TRational(int iVQuantity, const Vector2* akVertex);
    ~Query2TRational() override;

    int ToLine(int i, int iV0, int iV1) const override;
    int ToTriangle(const Vector2& rkP, int iV0, int iV1, int iV2) const override;
    int ToTriangle(int i, int iV0, int iV1, int iV2) const override;
    int ToCircumcircle(int i, int iV0, int iV1, int iV2) const override;

private:
    // Converts the listed vertices that are not converted yet.
    void Convert(int iCount, int* aiIndex) const;
    const RVector2& RVertex(int i) const { return m_akRVertex[m_aiRSlot[i]]; }
    static RVector2 ToRVector(const Vector2& rkP);
    int ToLine(const RVector2& rkP, int iV0, int iV1) const;
    int ToTriangle(const RVector2& rkP, int iV0, int iV1, int iV2) const;
    int ToCircumcircle(const RVector2& rkP, int iV0, int iV1, int iV2) const;
    static Rational Det2(const Rational& rkX0, const Rational& rkY0, const Rational& rkX1,
                         const Rational& rkY1);
    static Rational Det3(const Rational& rkX0, const Rational& rkY0, const Rational& rkZ0,
                         const Rational& rkX1, const Rational& rkY1, const Rational& rkZ1,
                         const Rational& rkX2, const Rational& rkY2, const Rational& rkZ2);

    // Slot of each vertex in m_akRVertex, -1 until converted; both grow on
    // first use, so a query that never needs exactness costs nothing.
    mutable std::vector<int> m_aiRSlot;
    mutable std::vector<RVector2> m_akRVertex;
};

// Floating point first; when |det| < uncertainty * |p - v0| * |v1 - v0| (or
// the float result is not a number) the exact rational answer instead.
template <class Real, class Other>
class KWCORE_API Query2Filtered : public Query2<Real, Other> {
public:
    KWCORE_QUERY2_POINT_FORMS(QT_FILTERED);

    Query2Filtered(int iVQuantity, const Vector2* akVertex, Real fUncertainty);
    ~Query2Filtered() override;

private:
    Query2TRational<Real, Other> m_kRQuery;
    Real m_fUncertainty;
};

#undef KWCORE_QUERY2_POINT_FORMS

extern template class Query2<float, double>;
extern template class Query2<double, float>;
extern template class Query2Int64<float, double>;
extern template class Query2Int64<double, float>;
extern template class Query2TInteger<float, double>;
extern template class Query2TInteger<double, float>;
extern template class Query2TRational<float, double>;
extern template class Query2TRational<double, float>;
extern template class Query2Filtered<float, double>;
extern template class Query2Filtered<double, float>;

}  // namespace kwRationalArithmetic
