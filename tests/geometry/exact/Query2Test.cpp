// Sign tests of every query kind: sides of lines, triangles and circles, and
// the inputs on which only exact arithmetic gets the sign right.

// Point arrays here are std::vectors of the geometry vector type, always
// destroyed as that exact type, so clang's warning about destroying a
// polymorphic type without a virtual destructor does not apply.
#if defined(__clang__)
#pragma clang diagnostic ignored "-Wdelete-non-abstract-non-virtual-dtor"
#endif

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>
#include <vector>

#include "GeometryTestTypes.h"
#include "kwcore/geometry/exact/Query2.h"

using namespace kwRationalArithmetic;

namespace {

// Every kind of query over the same vertices, in the order of their types.
template <class Real, class Other>
std::vector<std::unique_ptr<Query2<Real, Other>>> AllQueries(
    const std::vector<CKWVector2T<Real, Other>>& v) {
    const int n = static_cast<int>(v.size());
    std::vector<std::unique_ptr<Query2<Real, Other>>> queries;
    queries.emplace_back(new Query2Int64<Real, Other>(n, v.data()));
    queries.emplace_back(new Query2TInteger<Real, Other>(n, v.data()));
    queries.emplace_back(new Query2TRational<Real, Other>(n, v.data()));
    queries.emplace_back(new Query2<Real, Other>(n, v.data()));
    queries.emplace_back(new Query2Filtered<Real, Other>(n, v.data(), Real(1e-5)));
    return queries;
}

template <class Pair>
class Query2Test : public ::testing::Test {};
TYPED_TEST_SUITE(Query2Test, GeometryPairs);

}  // namespace

TYPED_TEST(Query2Test, EveryKindAgreesOnClearCases) {
    typedef typename TypeParam::V2 V;
    // 0..2: a counter-clockwise triangle; 3..: probe points.
    const std::vector<V> v = {V(0, 0), V(8, 0),  V(0, 8), V(2, 2), V(6, 6),
                              V(4, 0), V(-1, 3), V(4, 4), V(1, 7), V(4, -4)};
    int kind = 0;
    for (const auto& query : AllQueries(v)) {
        SCOPED_TRACE(kind);
        EXPECT_EQ(query->GetType(), static_cast<Query::Type>(kind++));
        // Right of 0 -> 1 is below the x axis.
        EXPECT_EQ(query->ToLine(9, 0, 1), 1);
        EXPECT_EQ(query->ToLine(3, 0, 1), -1);
        EXPECT_EQ(query->ToLine(5, 0, 1), 0);
        EXPECT_EQ(query->ToLine(V(3, -1), 0, 1), 1);
        EXPECT_EQ(query->ToTriangle(3, 0, 1, 2), -1);
        EXPECT_EQ(query->ToTriangle(4, 0, 1, 2), 1);
        EXPECT_EQ(query->ToTriangle(5, 0, 1, 2), 0);  // on an edge
        EXPECT_EQ(query->ToTriangle(7, 0, 1, 2), 0);  // on the hypotenuse
        EXPECT_EQ(query->ToTriangle(0, 0, 1, 2), 0);  // a corner
        EXPECT_EQ(query->ToTriangle(6, 0, 1, 2), 1);
        EXPECT_EQ(query->ToTriangle(V(1, 1), 0, 1, 2), -1);
        // The circle through (0,0), (8,0), (0,8): centre (4,4), radius^2 32.
        EXPECT_EQ(query->ToCircumcircle(3, 0, 1, 2), -1);
        EXPECT_EQ(query->ToCircumcircle(4, 0, 1, 2), -1);
        EXPECT_EQ(query->ToCircumcircle(9, 0, 1, 2), 1);
        EXPECT_EQ(query->ToCircumcircle(V(8, 8), 0, 1, 2), 0);
        EXPECT_EQ(query->ToCircumcircle(V(9, 9), 0, 1, 2), 1);
    }
}

TYPED_TEST(Query2Test, IntegerKindsTruncateTowardZero) {
    typedef typename TypeParam::V2 V;
    typedef typename TypeParam::Real Real;
    const std::vector<V> v = {V(0, 0), V(10, 0), V(Real(5.9), Real(0.9)),
                              V(Real(-0.9), Real(-0.5))};
    const auto queries = AllQueries(v);
    // (5.9, 0.9) truncates onto the line, (-0.9, -0.5) onto the origin.
    EXPECT_EQ(queries[Query::QT_INT64]->ToLine(2, 0, 1), 0);
    EXPECT_EQ(queries[Query::QT_INTEGER]->ToLine(2, 0, 1), 0);
    EXPECT_EQ(queries[Query::QT_INTEGER]->ToTriangle(3, 0, 1, 2), 0);
    EXPECT_EQ(queries[Query::QT_RATIONAL]->ToLine(2, 0, 1), -1);
    EXPECT_EQ(queries[Query::QT_REAL]->ToLine(2, 0, 1), -1);
}

TYPED_TEST(Query2Test, MultiWordIntegersStayExactWhereInt64Wraps) {
    typedef typename TypeParam::V2 V;
    typedef typename TypeParam::Real Real;
    const Real big = std::ldexp(Real(1), 40);
    // Det2 = -2^30 * 2^40 = -2^70, which is 0 modulo 2^64.
    const std::vector<V> v = {V(0, 0), V(big, 0), V(0, std::ldexp(Real(1), 30)),
                              V(std::ldexp(Real(1), 100), std::ldexp(Real(1), 101))};
    const auto queries = AllQueries(v);
    EXPECT_EQ(queries[Query::QT_INT64]->ToLine(2, 0, 1), 0);
    EXPECT_EQ(queries[Query::QT_INTEGER]->ToLine(2, 0, 1), -1);
    EXPECT_EQ(queries[Query::QT_RATIONAL]->ToLine(2, 0, 1), -1);
    // Beyond four words the integer query widens.
    EXPECT_EQ(queries[Query::QT_INTEGER]->ToLine(3, 0, 1), -1);
    EXPECT_EQ(queries[Query::QT_INTEGER]->ToLine(1, 0, 3), 1);
}

TYPED_TEST(Query2Test, ExactKindsDecideNearlyCollinearPoints) {
    typedef typename TypeParam::V2 V;
    typedef typename TypeParam::Real Real;
    // Points next to the line through (12, 12) and (24, 24): the true side is
    // the sign of y - x, which the rounded determinant often misses.
    std::vector<V> v = {V(12, 12), V(24, 24)};
    const Real step = std::numeric_limits<Real>::epsilon();
    for (int i = 0; i < 16; ++i) {
        for (int j = 0; j < 16; ++j) {
            v.push_back(V(Real(0.5) + Real(i) * step, Real(0.5) + Real(j) * step));
        }
    }
    const auto queries = AllQueries(v);
    int wrongInFloat = 0;
    for (int k = 2; k < static_cast<int>(v.size()); ++k) {
        const Real dy = v[static_cast<std::size_t>(k)].Y() - v[static_cast<std::size_t>(k)].X();
        const int exact = dy > 0 ? -1 : (dy < 0 ? 1 : 0);
        ASSERT_EQ(queries[Query::QT_RATIONAL]->ToLine(k, 0, 1), exact) << k;
        ASSERT_EQ(queries[Query::QT_FILTERED]->ToLine(k, 0, 1), exact) << k;
        wrongInFloat += queries[Query::QT_REAL]->ToLine(k, 0, 1) != exact;
    }
    EXPECT_GT(wrongInFloat, 0);
}

TYPED_TEST(Query2Test, FilterAnswersZeroOnTheLine) {
    typedef typename TypeParam::V2 V;
    typedef typename TypeParam::Real Real;
    // Points exactly on y = 3x (every coordinate exact), at scales so far
    // apart that p - v0 rounds: the plain determinant is then often nonzero.
    const int digits = std::numeric_limits<Real>::digits;
    // a has digits - 2 significant bits ending far below those of t.
    const Real a = std::ldexp(std::ldexp(Real(1), digits - 2) - 12345, -(digits + 4));
    std::vector<V> v = {V(a, 3 * a), V(2, 6)};
    for (int k = 1; k <= 200; ++k) {
        const Real t = 1 + std::ldexp(Real(k), -(digits - 4));
        v.push_back(V(t, 3 * t));
    }
    const auto queries = AllQueries(v);
    int nonzeroInFloat = 0;
    for (int k = 2; k < static_cast<int>(v.size()); ++k) {
        ASSERT_EQ(queries[Query::QT_FILTERED]->ToLine(k, 0, 1), 0) << k;
        ASSERT_EQ(queries[Query::QT_RATIONAL]->ToLine(k, 0, 1), 0) << k;
        nonzeroInFloat += queries[Query::QT_REAL]->ToLine(k, 0, 1) != 0;
    }
    EXPECT_GT(nonzeroInFloat, 0);
}

TYPED_TEST(Query2Test, FilteredMatchesRationalOnRandomInput) {
    typedef typename TypeParam::V2 V;
    typedef typename TypeParam::Real Real;
    std::mt19937 random(17);
    std::uniform_real_distribution<double> coordinate(-100.0, 100.0);
    std::vector<V> v;
    for (int k = 0; k < 120; ++k) {
        // Every third point is (nearly) on the line through the previous two.
        if (k % 3 == 2) {
            const V& a = v[v.size() - 2];
            const V& b = v[v.size() - 1];
            const Real t = Real(coordinate(random) / 50.0);
            v.push_back(V(a.X() + t * (b.X() - a.X()), a.Y() + t * (b.Y() - a.Y())));
        } else {
            v.push_back(V(Real(coordinate(random)), Real(coordinate(random))));
        }
    }
    const auto queries = AllQueries(v);
    for (int k = 2; k < 120; k += 3) {
        ASSERT_EQ(queries[Query::QT_FILTERED]->ToLine(k, k - 2, k - 1),
                  queries[Query::QT_RATIONAL]->ToLine(k, k - 2, k - 1));
        for (int j = 0; j + 2 < 120; j += 7) {
            ASSERT_EQ(queries[Query::QT_FILTERED]->ToCircumcircle(k, j, j + 1, j + 2),
                      queries[Query::QT_RATIONAL]->ToCircumcircle(k, j, j + 1, j + 2));
        }
    }
}

TYPED_TEST(Query2Test, FilteredIsExactOnWideIntegers) {
    typedef typename TypeParam::V2 V;
    typedef typename TypeParam::Real Real;
    // Integers as wide as Real holds, with every third point on or next to
    // the line through the two before it: the products exceed the precision.
    const double top = std::ldexp(1.0, std::numeric_limits<Real>::digits);
    std::mt19937_64 random(23);
    std::uniform_real_distribution<double> coordinate(0.0, top);
    std::vector<V> v;
    for (int k = 0; k < 300; ++k) {
        if (k % 3 == 2) {
            const V& a = v[v.size() - 2];
            const V& b = v[v.size() - 1];
            const int t = static_cast<int>(random() % 5) - 2;
            const double x = double(a.X()) + t * (double(b.X()) - a.X()) + double(random() % 3) - 1;
            const double y = double(a.Y()) + t * (double(b.Y()) - a.Y());
            v.push_back(V(Real(std::fmod(std::fabs(x), top)), Real(std::fmod(std::fabs(y), top))));
        } else {
            v.push_back(
                V(Real(std::floor(coordinate(random))), Real(std::floor(coordinate(random)))));
        }
    }
    const auto queries = AllQueries(v);
    int zeros = 0;
    for (int k = 2; k < 300; k += 3) {
        const int exact = queries[Query::QT_RATIONAL]->ToLine(k, k - 2, k - 1);
        ASSERT_EQ(queries[Query::QT_FILTERED]->ToLine(k, k - 2, k - 1), exact) << k;
        zeros += exact == 0;
    }
    EXPECT_GT(zeros, 0);
}

TYPED_TEST(Query2Test, FilteredMatchesRationalAroundAxisParallelLines) {
    typedef typename TypeParam::V2 V;
    typedef typename TypeParam::Real Real;
    // Lines 0-1 (horizontal), 0-2 (vertical) and 0-3 (diagonal), and a grid
    // of points on, beside and across them, with signs of every mix.
    std::vector<V> v = {V(1, 1), V(5, 1), V(1, -7), V(-3, -3)};
    for (int x = -4; x <= 4; ++x) {
        for (int y = -4; y <= 4; ++y) {
            v.push_back(V(Real(1 + x * 0.5), Real(1 + y * 0.25)));
        }
    }
    const auto queries = AllQueries(v);
    for (int k = 4; k < static_cast<int>(v.size()); ++k) {
        for (int end = 1; end <= 3; ++end) {
            ASSERT_EQ(queries[Query::QT_FILTERED]->ToLine(k, 0, end),
                      queries[Query::QT_RATIONAL]->ToLine(k, 0, end))
                << k << " " << end;
            ASSERT_EQ(queries[Query::QT_FILTERED]->ToLine(k, end, 0),
                      queries[Query::QT_RATIONAL]->ToLine(k, end, 0))
                << k << " " << end;
        }
    }
}

TYPED_TEST(Query2Test, NonFiniteCoordinatesCountAsZero) {
    typedef typename TypeParam::V2 V;
    typedef typename TypeParam::Real Real;
    const Real nan = std::numeric_limits<Real>::quiet_NaN();
    const Real inf = std::numeric_limits<Real>::infinity();
    const std::vector<V> v = {V(nan, nan), V(4, 0), V(inf, -inf), V(2, -1)};
    const auto queries = AllQueries(v);
    for (int kind = Query::QT_INT64; kind <= Query::QT_RATIONAL; ++kind) {
        EXPECT_EQ(queries[static_cast<std::size_t>(kind)]->ToLine(2, 0, 1), 0) << kind;
        EXPECT_EQ(queries[static_cast<std::size_t>(kind)]->ToLine(3, 0, 1), 1) << kind;
    }
    EXPECT_EQ(queries[Query::QT_FILTERED]->ToLine(3, 0, 1), 1);
}
