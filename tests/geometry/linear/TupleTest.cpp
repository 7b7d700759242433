// The component storage that points and vectors share: their layouts, and
// that access, comparison and conversion behave alike on both.
#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

#include "GeometryPrinters.h"
#include "kwcore/geometry/linear/CKWPoint2T.h"
#include "kwcore/geometry/linear/CKWPoint3T.h"
#include "kwcore/geometry/linear/CKWPoint4T.h"
#include "kwcore/geometry/linear/CKWVector2T.h"
#include "kwcore/geometry/linear/CKWVector3T.h"
#include "kwcore/geometry/linear/CKWVector4T.h"

namespace {

// What a vector has always been: a virtual-table pointer, then N components.
template <int N, class Real>
struct VectorLayout {
    virtual ~VectorLayout() = default;
    Real tuple[N];
};

template <int N, class Real, class Other, class NamedPoint, class NamedVector>
constexpr bool HasTheKnownLayout() {
    using Point = CKWPointT<N, Real, Other>;
    using Vector = CKWVectorT<N, Real, Other>;
    static_assert(sizeof(Point) == N * sizeof(Real), "a point is its components");
    static_assert(std::is_standard_layout_v<Point> && std::is_trivially_copyable_v<Point>);
    static_assert(!std::is_polymorphic_v<Point>, "points have no virtual table");
    static_assert(sizeof(NamedPoint) == sizeof(Point), "named points add no data");
    static_assert(sizeof(Vector) == sizeof(VectorLayout<N, Real>), "vptr and components");
    static_assert(sizeof(NamedVector) == sizeof(Vector), "named vectors add no data");
    static_assert(!std::is_convertible_v<Point, Vector>, "a point becomes a vector explicitly");
    static_assert(!std::is_default_constructible_v<CKWTupleT<N, Real, Other>>,
                  "the shared tuple is no value of its own");
    return true;
}

static_assert(
    HasTheKnownLayout<2, float, double, CKWPoint2T<float, double>, CKWVector2T<float, double>>());
static_assert(
    HasTheKnownLayout<3, float, double, CKWPoint3T<float, double>, CKWVector3T<float, double>>());
static_assert(
    HasTheKnownLayout<4, float, double, CKWPoint4T<float, double>, CKWVector4T<float, double>>());
static_assert(
    HasTheKnownLayout<2, double, float, CKWPoint2T<double, float>, CKWVector2T<double, float>>());
static_assert(
    HasTheKnownLayout<3, double, float, CKWPoint3T<double, float>, CKWVector3T<double, float>>());
static_assert(
    HasTheKnownLayout<4, double, float, CKWPoint4T<double, float>, CKWVector4T<double, float>>());

template <class Pair>
class TuplePairs : public ::testing::Test {};
using TupleTypes = ::testing::Types<std::pair<float, double>, std::pair<double, float>>;
TYPED_TEST_SUITE(TuplePairs, TupleTypes);

TYPED_TEST(TuplePairs, ComponentsSitWhereTheyAlwaysDid) {
    using Real = typename TypeParam::first_type;
    using Other = typename TypeParam::second_type;
    CKWPoint4T<Real, Other> p(1, 2, 3, 4);
    EXPECT_EQ(static_cast<const void*>(p.GetTuple()), static_cast<const void*>(&p));
    const Real* components = p;
    EXPECT_EQ(components[3], Real(4));

    CKWVector4T<Real, Other> v(1, 2, 3, 4);
    VectorLayout<4, Real> reference;
    const auto offset = [](const void* part, const void* whole) {
        return static_cast<const char*>(part) - static_cast<const char*>(whole);
    };
    EXPECT_EQ(offset(v.GetTuple(), &v), offset(reference.tuple, &reference));
    EXPECT_EQ(v.GetN(), 4);
    EXPECT_EQ(p.GetN(), 4);
}

TYPED_TEST(TuplePairs, PointsAndVectorsConvertComponentForComponent) {
    using Real = typename TypeParam::first_type;
    using Other = typename TypeParam::second_type;
    using Point = CKWPointT<3, Real, Other>;
    using Vector = CKWVectorT<3, Real, Other>;
    const CKWPoint3T<Real, Other> p(Real(1.5), Real(-2), Real(0.25));
    const Vector fromOrigin(p);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(fromOrigin[i], p[i]);
    }
    EXPECT_EQ(Point::ZERO() + fromOrigin, p);
    EXPECT_EQ(p - Point::ZERO(), fromOrigin);
    EXPECT_EQ(Vector(p.GetTuple()), fromOrigin);
    EXPECT_EQ(Point(fromOrigin.GetTuple()), p);
    EXPECT_EQ(Point(nullptr), Point::ZERO());
    EXPECT_EQ(Vector(nullptr), Vector::ZERO());
}

TYPED_TEST(TuplePairs, PointsAndVectorsCompareAlike) {
    using Real = typename TypeParam::first_type;
    using Other = typename TypeParam::second_type;
    // Pairs of component lists, each ordered by bytes as the first is
    // against the second: equal, -0 against 0, and numerically smaller but
    // greater in memory order.
    const Real lists[][3] = {{1, 2, 3}, {1, 2, 3}, {0, 0, -0.0}, {0, 0, 0}, {1, 0, 0}, {2, 0, 0}};
    for (int k = 0; k < 6; k += 2) {
        const CKWPointT<3, Real, Other> p(lists[k]), q(lists[k + 1]);
        const CKWVectorT<3, Real, Other> u(lists[k]), v(lists[k + 1]);
        EXPECT_EQ(p == q, u == v) << k;
        EXPECT_EQ(p != q, u != v) << k;
        EXPECT_EQ(p < q, u < v) << k;
        EXPECT_EQ(p <= q, u <= v) << k;
        EXPECT_EQ(p > q, u > v) << k;
        EXPECT_EQ(p >= q, u >= v) << k;
    }
    EXPECT_TRUE((CKWPoint3T<Real, Other>(0, 0, -0.0) != CKWPoint3T<Real, Other>(0, 0, 0)));
    EXPECT_TRUE((CKWVector3T<Real, Other>(0, 0, -0.0) > CKWVector3T<Real, Other>(0, 0, 0)));
}

TYPED_TEST(TuplePairs, UnitAndApproxEqualAgreeForPointsAndVectors) {
    using Real = typename TypeParam::first_type;
    using Other = typename TypeParam::second_type;
    using Point = CKWPointT<2, Real, Other>;
    using Vector = CKWVectorT<2, Real, Other>;
    for (int i = -1; i <= 2; ++i) {
        for (int c = 0; c < 2; ++c) {
            const Real expected = i == c ? Real(1) : Real(0);
            EXPECT_EQ(Point::UNIT(i)[c], expected) << i;
            EXPECT_EQ(Vector::UNIT(i)[c], expected) << i;
        }
    }
    EXPECT_EQ(Point::ZERO(), Point(nullptr));
    EXPECT_EQ(Vector::ZERO(), Vector(nullptr));
    // Equal after rounding to one digit in x only: y decides.
    const CKWPoint2T<Real, Other> a(Real(1.06), Real(3)), b(Real(1.14), Real(3)),
        c(Real(1.14), Real(3.2));
    EXPECT_TRUE(a.Approx_Equal(b, 1));
    EXPECT_FALSE(a.Approx_Equal(c, 1));
    EXPECT_TRUE(a.Approx_Equal(c, 0));
    const CKWVector2T<Real, Other> u(a.X(), a.Y()), v(b.X(), b.Y()), w(c.X(), c.Y());
    EXPECT_TRUE(u.Approx_Equal(v, 1));
    EXPECT_FALSE(u.Approx_Equal(w, 1));
    EXPECT_TRUE(u.Approx_Equal(w, 0));
}

}  // namespace
