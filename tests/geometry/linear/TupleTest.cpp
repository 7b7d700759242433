// The component storage that points and vectors share: their layouts, and
// that access, comparison and conversion behave alike on both.
#include <gtest/gtest.h>

#include <string>
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

// The named classes add names, not data, and convert as they always did:
// from the generic form implicitly, between points and vectors not at all.
template <class Named, class Generic>
constexpr bool NamesWithoutData() {
    static_assert(sizeof(Named) == sizeof(Generic), "no data of its own");
    static_assert(std::is_standard_layout_v<Named> == std::is_standard_layout_v<Generic>);
    static_assert(std::is_trivially_copyable_v<Named> == std::is_trivially_copyable_v<Generic>);
    static_assert(std::is_convertible_v<Generic, Named>, "the generic form converts implicitly");
    static_assert(!std::is_aggregate_v<Named>, "built only through its constructors");
    return true;
}

static_assert(NamesWithoutData<CKWPoint2T<float, double>, CKWPointT<2, float, double>>());
static_assert(NamesWithoutData<CKWPoint3T<double, float>, CKWPointT<3, double, float>>());
static_assert(NamesWithoutData<CKWPoint4T<float, double>, CKWPointT<4, float, double>>());
static_assert(NamesWithoutData<CKWVector2T<double, float>, CKWVectorT<2, double, float>>());
static_assert(NamesWithoutData<CKWVector3T<float, double>, CKWVectorT<3, float, double>>());
static_assert(NamesWithoutData<CKWVector4T<double, float>, CKWVectorT<4, double, float>>());
static_assert(!std::is_convertible_v<CKWPoint3T<float, double>, CKWVector3T<float, double>>);
static_assert(!std::is_constructible_v<CKWVector3T<float, double>, CKWPoint3T<float, double>>);

// Points and CKWVector3T take whole numbers, Real values and Other values, and
// values of mixed precision fit neither list better; CKWVector2T and
// CKWVector4T take Real values only, so mixed precisions convert.
using P3f = CKWPoint3T<float, double>;
using V2f = CKWVector2T<float, double>;
using V3f = CKWVector3T<float, double>;
using V4f = CKWVector4T<float, double>;
static_assert(std::is_constructible_v<P3f, int, int, int> &&
              std::is_constructible_v<P3f, long, long, long>);
static_assert(std::is_constructible_v<V3f, float, float, float> &&
              std::is_constructible_v<V3f, double, double, double>);
static_assert(!std::is_constructible_v<P3f, double, float, double>);
static_assert(!std::is_constructible_v<V3f, int, long, int>);
static_assert(std::is_constructible_v<V2f, double, float> &&
              std::is_constructible_v<V4f, double, float, int, long>);
static_assert(!std::is_constructible_v<V2f, int, int, int>, "two components, no more");

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

TYPED_TEST(TuplePairs, NamedComponentsAreTheComponentsInOrder) {
    using Real = typename TypeParam::first_type;
    using Other = typename TypeParam::second_type;
    CKWPoint4T<Real, Other> p(1, 2, 3, 4);
    CKWVector4T<Real, Other> v(1, 2, 3, 4);
    const auto& cp = p;
    const auto& cv = v;
    const Real x[] = {cp.X(), cp.Y(), cp.Z(), cp.W(), cv.X(), cv.Y(), cv.Z(), cv.W()};
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(x[i], Real(i % 4 + 1)) << i;
    }
    p.SetX(5);
    v.SetY(6);
    p.SetZ(7);
    v.SetW(8);
    p.W() = 9;
    v.Z() = 10;
    EXPECT_EQ(p, (CKWPoint4T<Real, Other>(5, 2, 7, 9)));
    EXPECT_EQ(v, (CKWVector4T<Real, Other>(1, 6, 10, 8)));
}

TYPED_TEST(TuplePairs, PointsAndVectorsTakeValuesAndTextAlike) {
    using Real = typename TypeParam::first_type;
    using Other = typename TypeParam::second_type;
    using Vector = CKWVectorT<3, Real, Other>;
    const Other third = Other(1) / Other(3);
    CKWPoint3T<Real, Other> p(third, Other(-2), Other(0.1));
    CKWVector3T<Real, Other> v;
    v.Set(third, Other(-2), Other(0.1));
    EXPECT_EQ(p[0], static_cast<Real>(third));
    EXPECT_EQ(p[2], static_cast<Real>(Other(0.1)));
    EXPECT_EQ(Vector(p), v);
    EXPECT_EQ(std::string(p.ToString()), std::string(v.ToString()));
    EXPECT_EQ(p.FromString("7, 8"), 2);
    EXPECT_EQ(v.FromString("7, 8"), 2);
    EXPECT_EQ(Vector(p), v);
    EXPECT_EQ(p[2], static_cast<Real>(Other(0.1)));
}

TYPED_TEST(TuplePairs, NamedZeroIsTheGenericZero) {
    using Real = typename TypeParam::first_type;
    using Other = typename TypeParam::second_type;
    using Point2 = CKWPointT<2, Real, Other>;
    using Point3 = CKWPointT<3, Real, Other>;
    using Vector2 = CKWVectorT<2, Real, Other>;
    using Vector4 = CKWVectorT<4, Real, Other>;
    EXPECT_EQ((CKWPoint2T<Real, Other>::ZERO), Point2::ZERO());
    EXPECT_EQ((CKWPoint3T<Real, Other>::ZERO), Point3::ZERO());
    EXPECT_EQ((CKWVector2T<Real, Other>::ZERO), Vector2::ZERO());
    EXPECT_EQ((CKWVector4T<Real, Other>::ZERO), Vector4::ZERO());
}

}  // namespace
