// The component storage that points and vectors share, in every dimension and
// both pairs: layouts, construction, comparison, Approx_Equal and conversion.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
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

// The generic point and vector classes of one dimension and pair.
template <int Dimension, class RealType, class OtherType>
struct GenericTuples {
    static constexpr int N = Dimension;
    using Real = RealType;
    using Other = OtherType;
    using Point = CKWPointT<N, Real, Other>;
    using Vector = CKWVectorT<N, Real, Other>;
};
template <int N, class Real, class Other>
GenericTuples<N, Real, Other> GenericOf(const CKWPointT<N, Real, Other>&);

// A named point and vector class, with the generic ones they derive from.
template <class NamedPointType, class NamedVectorType>
struct TupleKind : decltype(GenericOf(std::declval<NamedPointType>())) {
    using NamedPoint = NamedPointType;
    using NamedVector = NamedVectorType;
};

template <class Kind>
class Tuples : public ::testing::Test {};
using TupleKinds =
    ::testing::Types<TupleKind<CKWPoint2T<float, double>, CKWVector2T<float, double>>,
                     TupleKind<CKWPoint3T<float, double>, CKWVector3T<float, double>>,
                     TupleKind<CKWPoint4T<float, double>, CKWVector4T<float, double>>,
                     TupleKind<CKWPoint2T<double, float>, CKWVector2T<double, float>>,
                     TupleKind<CKWPoint3T<double, float>, CKWVector3T<double, float>>,
                     TupleKind<CKWPoint4T<double, float>, CKWVector4T<double, float>>>;
TYPED_TEST_SUITE(Tuples, TupleKinds);

// What a vector has always been: a virtual-table pointer, then N components.
template <int N, class Real>
struct VectorLayout {
    virtual ~VectorLayout() = default;
    Real tuple[N];
};

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

// Runs check(a, b, row) on points, then on vectors, of the components
// lists[2 * row] and lists[2 * row + 1], for every row.
template <class Kind, class Check, std::size_t Rows>
void ForPairsOfPointsAndVectors(const typename Kind::Real (&lists)[Rows][Kind::N], Check check) {
    for (std::size_t k = 0; k + 1 < Rows; k += 2) {
        check(typename Kind::Point(lists[k]), typename Kind::Point(lists[k + 1]), k / 2);
        check(typename Kind::Vector(lists[k]), typename Kind::Vector(lists[k + 1]), k / 2);
    }
}

TYPED_TEST(Tuples, ComponentsSitWhereTheyAlwaysDid) {
    using Point = typename TypeParam::Point;
    using Vector = typename TypeParam::Vector;
    using Real = typename TypeParam::Real;
    constexpr int N = TypeParam::N;
    static_assert(sizeof(Point) == N * sizeof(Real), "a point is its components");
    static_assert(std::is_standard_layout_v<Point> && std::is_trivially_copyable_v<Point>);
    static_assert(!std::is_polymorphic_v<Point>, "points have no virtual table");
    static_assert(sizeof(typename TypeParam::NamedPoint) == sizeof(Point), "named add no data");
    static_assert(std::is_polymorphic_v<Vector>, "vectors have a virtual table");
    static_assert(sizeof(Vector) == sizeof(VectorLayout<N, Real>), "vptr and components");
    static_assert(std::is_base_of_v<Vector, typename TypeParam::NamedVector>);
    static_assert(sizeof(typename TypeParam::NamedVector) == sizeof(Vector), "named add no data");
    static_assert(!std::is_convertible_v<Point, Vector>, "a point becomes a vector explicitly");
    static_assert(!std::is_default_constructible_v<CKWTupleT<N, Real, typename TypeParam::Other>>,
                  "the shared tuple is no value of its own");

    Real components[N];
    for (int i = 0; i < N; ++i) {
        components[i] = Real(i + 1);
    }
    const Point p(components);
    const Vector v(components);
    EXPECT_EQ(static_cast<const void*>(p.GetTuple()), static_cast<const void*>(&p));
    EXPECT_EQ(static_cast<const Real*>(p)[N - 1], Real(N));
    const VectorLayout<N, Real> reference{};
    const auto offset = [](const void* part, const void* whole) {
        return static_cast<const char*>(part) - static_cast<const char*>(whole);
    };
    EXPECT_EQ(offset(v.GetTuple(), &v), offset(reference.tuple, &reference));
    EXPECT_EQ(static_cast<const Real*>(v)[N - 1], Real(N));
    EXPECT_EQ(v.GetN(), N);
    EXPECT_EQ(p.GetN(), N);
}

TYPED_TEST(Tuples, ComeFromAnArrayOrNullAndUnitsSetOneComponent) {
    using Real = typename TypeParam::Real;
    constexpr int N = TypeParam::N;
    const Real list[N] = {Real(1.5), Real(-2)};
    const auto check = [&](auto t) {
        using T = decltype(t);
        for (int i = 0; i < N; ++i) {
            EXPECT_EQ(t[i], list[i]) << i;
        }
        EXPECT_EQ(T(nullptr), T::ZERO());
        EXPECT_EQ(T(nullptr), T());
        for (int i = -1; i <= N; ++i) {
            for (int c = 0; c < N; ++c) {
                EXPECT_EQ(T::UNIT(i)[c], i == c ? Real(1) : Real(0)) << i;
            }
        }
    };
    check(typename TypeParam::Point(list));
    check(typename TypeParam::Vector(list));
}

// Pairs of component lists with the sign of their comparison: equal, -0
// against 0, 1 against 2 (greater in memory order: the high bytes of 1 hold
// more bits than those of 2), and a NaN against itself.
TYPED_TEST(Tuples, CompareComponentBytesInMemoryOrder) {
    using Real = typename TypeParam::Real;
    constexpr int N = TypeParam::N;
    const Real nan = std::nan("");
    const Real lists[][N] = {{1, 2}, {1, 2}, {0, -0.0}, {0, 0}, {1, 0}, {2, 0}, {nan, 1}, {nan, 1}};
    const int signs[] = {0, 1, 1, 0};
    ForPairsOfPointsAndVectors<TypeParam>(lists, [&](auto a, auto b, std::size_t row) {
        const int sign = signs[row];
        EXPECT_EQ(a == b, sign == 0) << row;
        EXPECT_EQ(a != b, sign != 0) << row;
        EXPECT_EQ(a < b, sign < 0) << row;
        EXPECT_EQ(a <= b, sign <= 0) << row;
        EXPECT_EQ(a > b, sign > 0) << row;
        EXPECT_EQ(a >= b, sign >= 0) << row;
        EXPECT_EQ((b < a), sign > 0) << row;
        // A total order: usable as a map key.
        std::map<decltype(a), int> keyed;
        keyed[a] = 1;
        keyed[b] = 2;
        keyed[a] = 3;
        EXPECT_EQ(keyed.size(), sign ? 2u : 1u) << row;
        EXPECT_EQ(keyed.begin()->second, sign > 0 ? 2 : 3) << row;
    });
}

// Equal after rounding each component to 1 digit, and to 0: the first
// component decides, or the last.
TYPED_TEST(Tuples, ApproxEqualRoundsEachComponent) {
    using Real = typename TypeParam::Real;
    constexpr int N = TypeParam::N;
    Real lists[][N] = {{1.06, 3}, {1.14, 3}, {1.04, 3}, {1.06, 3}, {1.06, 3}, {1.06, 3}};
    lists[5][N - 1] += Real(0.2);
    const bool equal[][2] = {{true, true}, {false, true}, {false, true}};  // 1 digit, 0 digits
    ForPairsOfPointsAndVectors<TypeParam>(lists, [&](auto a, auto b, std::size_t row) {
        EXPECT_EQ(a.Approx_Equal(b, 1), equal[row][0]) << row;
        EXPECT_EQ(a.Approx_Equal(b, 0), equal[row][1]) << row;
    });
}

TYPED_TEST(Tuples, PointsAndVectorsConvertComponentForComponent) {
    using Point = typename TypeParam::Point;
    using Vector = typename TypeParam::Vector;
    using Real = typename TypeParam::Real;
    Real components[TypeParam::N];
    for (int i = 0; i < TypeParam::N; ++i) {
        components[i] = Real(1.5) - Real(1.75) * Real(i);
    }
    const Point p(components);
    const Vector fromOrigin(p);
    for (int i = 0; i < TypeParam::N; ++i) {
        EXPECT_EQ(fromOrigin[i], p[i]);
    }
    EXPECT_EQ(Point::ZERO() + fromOrigin, p);
    EXPECT_EQ(p - Point::ZERO(), fromOrigin);
    EXPECT_EQ(Vector(p.GetTuple()), fromOrigin);
    EXPECT_EQ(Point(fromOrigin.GetTuple()), p);
}

// The named components, in the two pairs.
template <class Pair>
class TuplePairs : public ::testing::Test {};
using TupleTypes = ::testing::Types<std::pair<float, double>, std::pair<double, float>>;
TYPED_TEST_SUITE(TuplePairs, TupleTypes);

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

}  // namespace
