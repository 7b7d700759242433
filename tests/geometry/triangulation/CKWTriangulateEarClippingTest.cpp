// Ear clipping: the documented small cases, and the indexed implementation
// against a straightforward one (every reflex vertex tested for every ear) on
// many random polygons, for every query kind and both precisions.

// Point arrays here are std::vectors of the geometry vector type, always
// destroyed as that exact type, so clang's warning about destroying a
// polymorphic type without a virtual destructor does not apply.
#if defined(__clang__)
#pragma clang diagnostic ignored "-Wdelete-non-abstract-non-virtual-dtor"
#endif

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <list>
#include <memory>
#include <random>
#include <vector>

#include "GeometryTestTypes.h"
#include "kwcore/geometry/triangulation/CKWTriangulateEarClipping.h"

using kwRationalArithmetic::Query;

namespace {

typedef std::vector<int> Triangles;

// The clipping order written out directly: scaled coordinates per query
// kind, then every ear test against the whole reflex set.
template <class Real, class Other>
class CReferenceEarClipping {
public:
    typedef CKWVector2T<Real, Other> V;

    CReferenceEarClipping(const std::vector<V>& points, Query::Type type, Real epsilon)
        : m_n(static_cast<int>(points.size())) {
        MakeQuery(points, type, epsilon);
        m_prev.resize(points.size());
        m_next.resize(points.size());
        for (int i = 0; i < m_n; ++i) {
            m_prev[At(i)] = (i + m_n - 1) % m_n;
            m_next[At(i)] = (i + 1) % m_n;
        }
        m_reflex.assign(points.size(), false);
        m_isEar.assign(points.size(), false);
        std::vector<int> convex;
        for (int i = 0; i < m_n; ++i) {
            if (Convex(i)) {
                convex.push_back(i);
            } else {
                m_reflex[At(i)] = true;
            }
        }
        if (convex.size() == points.size()) {
            for (int i = 1; i + 1 < m_n; ++i) {
                Emit(0, i, i + 1);
            }
            return;
        }
        for (int i : convex) {
            if (Ear(i)) {
                m_ears.push_back(i);
                m_isEar[At(i)] = true;
            }
        }
        int ear = m_ears.empty() ? 0 : m_ears.front();
        int prev = m_prev[At(ear)], next = m_next[At(ear)];
        Clip(ear);
        for (int k = 0; k < m_n - 4; ++k) {
            Update(prev);
            Update(next);
            DropEar(ear);
            ear = m_ears.empty() ? next : m_ears.front();
            prev = m_prev[At(ear)];
            next = m_next[At(ear)];
            Clip(ear);
        }
        if (m_n > 3) {
            DropEar(ear);
            const int last = m_ears.empty() ? next : m_ears.front();
            Emit(m_prev[At(last)], last, m_next[At(last)]);
        }
    }

    Triangles m_triangles;

private:
    static std::size_t At(int i) { return static_cast<std::size_t>(i); }

    void MakeQuery(const std::vector<V>& points, Query::Type type, Real epsilon) {
        using namespace kwRationalArithmetic;
        if (type == Query::QT_RATIONAL) {
            m_query.reset(new Query2TRational<Real, Other>(m_n, points.data()));
            return;
        }
        if (type == Query::QT_FILTERED) {
            m_query.reset(new Query2Filtered<Real, Other>(m_n, points.data(), epsilon));
            return;
        }
        V lo, hi;
        V::ComputeExtremes(m_n, points.data(), lo, hi);
        const Real rx = hi.X() - lo.X(), ry = hi.Y() - lo.Y();
        const Real r = rx >= ry ? rx : ry;
        const Real factor = type == Query::QT_INT64     ? r * Real(1 << 20)
                            : type == Query::QT_INTEGER ? r * Real(1 << 24)
                                                        : r;
        for (const V& p : points) {
            m_scaled.push_back(V((p.X() - lo.X()) * factor, (p.Y() - lo.Y()) * factor));
        }
        if (type == Query::QT_INT64) {
            m_query.reset(new Query2Int64<Real, Other>(m_n, m_scaled.data()));
        } else if (type == Query::QT_INTEGER) {
            m_query.reset(new Query2TInteger<Real, Other>(m_n, m_scaled.data()));
        } else {
            m_query.reset(new Query2<Real, Other>(m_n, m_scaled.data()));
        }
    }

    bool Convex(int i) const { return m_query->ToLine(i, m_prev[At(i)], m_next[At(i)]) > 0; }

    bool Ear(int i) const {
        for (int r = 0; r < m_n; ++r) {
            if (m_reflex[At(r)] && m_query->ToTriangle(r, m_prev[At(i)], i, m_next[At(i)]) < 0) {
                return false;
            }
        }
        return true;
    }

    void Update(int i) {
        if (!m_isEar[At(i)]) {
            if (Convex(i)) {
                m_reflex[At(i)] = false;
                if (Ear(i)) {
                    m_ears.push_back(i);
                    m_isEar[At(i)] = true;
                }
            }
        } else if (!Ear(i)) {
            DropEar(i);
        }
    }

    void DropEar(int i) {
        if (m_isEar[At(i)]) {
            m_ears.remove(i);
            m_isEar[At(i)] = false;
        }
    }

    void Clip(int i) {
        Emit(m_prev[At(i)], i, m_next[At(i)]);
        m_next[At(m_prev[At(i)])] = m_next[At(i)];
        m_prev[At(m_next[At(i)])] = m_prev[At(i)];
        m_reflex[At(i)] = false;
    }

    void Emit(int a, int b, int c) { m_triangles.insert(m_triangles.end(), {a, b, c}); }

    int m_n;
    std::vector<V> m_scaled;
    std::unique_ptr<kwRationalArithmetic::Query2<Real, Other>> m_query;
    std::vector<int> m_prev, m_next;
    std::vector<bool> m_reflex, m_isEar;
    std::list<int> m_ears;
};

template <class Real>
Real Epsilon() {
    return std::is_same<Real, float>::value ? Real(1e-5) : Real(1e-12);
}

// The clipper's triangles, with the filter's epsilon of the precision.
template <class Real, class Other>
Triangles Clip(const std::vector<CKWVector2T<Real, Other>>& points, Query::Type type) {
    int* indices = nullptr;
    CKWTriangulateEarClipping<Real, Other> clip(static_cast<int>(points.size()), points.data(),
                                                type, Epsilon<Real>(), indices);
    Triangles triangles;
    if (indices != nullptr) {
        triangles.assign(indices, indices + 3 * (points.size() - 2));
    }
    delete[] indices;
    return triangles;
}

const Query::Type kAllTypes[] = {Query::QT_INT64, Query::QT_INTEGER, Query::QT_RATIONAL,
                                 Query::QT_REAL, Query::QT_FILTERED};

template <class P>
class EarClippingTest : public ::testing::Test {
public:
    typedef typename P::Real Real;
    typedef typename P::Other Other;
    typedef CKWVector2T<Real, Other> V;

    static std::vector<V> Make(const std::vector<std::pair<double, double>>& xy) {
        std::vector<V> points;
        for (const auto& p : xy) {
            points.push_back(V(static_cast<Real>(p.first), static_cast<Real>(p.second)));
        }
        return points;
    }

    // Star-shaped: sorted random angles, random radii (many reflex vertices).
    static std::vector<V> Star(std::mt19937& random, int n, double radius, bool grid) {
        std::uniform_real_distribution<double> unit(0.0, 1.0);
        std::vector<double> angles;
        for (int i = 0; i < n; ++i) {
            angles.push_back(6.283185307179586 * unit(random));
        }
        std::sort(angles.begin(), angles.end());
        std::vector<V> points;
        for (double angle : angles) {
            const double r = radius * (0.15 + 0.85 * unit(random));
            double x = r * std::cos(angle), y = r * std::sin(angle);
            if (grid) {
                x = std::round(x);
                y = std::round(y);
            }
            points.push_back(V(static_cast<Real>(x), static_cast<Real>(y)));
        }
        return points;
    }

    // The indexed clipper and the reference agree triangle for triangle.
    static void ExpectSameAsReference(const std::vector<V>& points, Query::Type type) {
        const Triangles fast = Clip(points, type);
        CReferenceEarClipping<Real, Other> reference(points, type, Epsilon<Real>());
        ASSERT_EQ(fast, reference.m_triangles) << "query " << type << ", " << points.size();
    }

    static double SignedArea(const std::vector<V>& p, int a, int b, int c) {
        const auto& A = p[static_cast<std::size_t>(a)];
        const auto& B = p[static_cast<std::size_t>(b)];
        const auto& C = p[static_cast<std::size_t>(c)];
        return 0.5 * ((double(B.X()) - A.X()) * (double(C.Y()) - A.Y()) -
                      (double(B.Y()) - A.Y()) * (double(C.X()) - A.X()));
    }
};

TYPED_TEST_SUITE(EarClippingTest, GeometryPairs);

}  // namespace

TYPED_TEST(EarClippingTest, ConvexPolygonGivesTheFan) {
    const auto square = TestFixture::Make({{0, 0}, {1, 0}, {1, 1}, {0, 1}});
    for (Query::Type type : kAllTypes) {
        EXPECT_EQ(Clip(square, type), (Triangles{0, 1, 2, 0, 2, 3}));
    }
    const auto triangle = TestFixture::Make({{0, 0}, {3, 1}, {1, 2}});
    EXPECT_EQ(Clip(triangle, Query::QT_FILTERED), (Triangles{0, 1, 2}));
}

TYPED_TEST(EarClippingTest, LShapeCoversItselfWithoutTheReflexVertexInside) {
    // Vertex 3 is the reflex corner; it lies inside the triangle of vertex 0.
    const auto shape = TestFixture::Make({{0, 0}, {4, 0}, {4, 1}, {1, 1}, {1, 4}, {0, 4}});
    for (Query::Type type : kAllTypes) {
        const Triangles t = Clip(shape, type);
        ASSERT_EQ(t.size(), 12u);
        double area = 0;
        for (std::size_t k = 0; k < t.size(); k += 3) {
            const double a = TestFixture::SignedArea(shape, t[k], t[k + 1], t[k + 2]);
            EXPECT_GT(a, 0) << type;
            area += a;
            const bool inside = TestFixture::SignedArea(shape, t[k], t[k + 1], 3) > 0 &&
                                TestFixture::SignedArea(shape, t[k + 1], t[k + 2], 3) > 0 &&
                                TestFixture::SignedArea(shape, t[k + 2], t[k], 3) > 0;
            EXPECT_FALSE(inside) << type;
        }
        EXPECT_DOUBLE_EQ(area, 7.0) << type;
        TestFixture::ExpectSameAsReference(shape, type);
    }
}

TYPED_TEST(EarClippingTest, ReflexVertexOnTheEarsEdgeDoesNotBlockIt) {
    // Reflex vertex 3 = (2, 2) lies on the diagonal of ear 0 and of ear 1.
    const auto shape = TestFixture::Make({{0, 0}, {4, 0}, {4, 4}, {2, 2}, {0, 4}});
    for (Query::Type type : kAllTypes) {
        const Triangles t = Clip(shape, type);
        ASSERT_EQ(t.size(), 9u);
        EXPECT_EQ((Triangles{t[0], t[1], t[2]}), (Triangles{4, 0, 1})) << type;
    }
}

TYPED_TEST(EarClippingTest, MatchesReferenceOnRandomPolygons) {
    std::mt19937 random(2024);
    // Radius 7 keeps the 64-bit query exact (extent below 2^5).
    for (int round = 0; round < 60; ++round) {
        const int n = 4 + round % 37;
        const bool grid = round % 3 == 0;
        const auto star =
            TestFixture::Star(random, n, grid ? 7.0 : 7.0 * (round % 5 + 1) / 5, grid);
        for (Query::Type type : kAllTypes) {
            TestFixture::ExpectSameAsReference(star, type);
        }
    }
}

TYPED_TEST(EarClippingTest, MatchesReferenceOnLargerPolygons) {
    std::mt19937 random(99);
    typedef typename TypeParam::Real Real;
    for (int round = 0; round < 4; ++round) {
        auto star = TestFixture::Star(random, 400 + 300 * round, 7.0, false);
        for (Query::Type type : {Query::QT_REAL, Query::QT_FILTERED, Query::QT_INT64}) {
            TestFixture::ExpectSameAsReference(star, type);
        }
    }
    // A comb: long rows of reflex vertices under long thin ears.
    std::vector<typename TestFixture::V> comb = {{0, 0}};
    const int teeth = 150;
    for (int k = 1; k < 6; ++k) {
        comb.push_back({Real(2 * teeth) * Real(k) / 6, Real(-0.2)});
    }
    comb.push_back({Real(2 * teeth - 1), 0});
    for (int k = teeth - 1; k >= 0; --k) {
        const Real top = Real(2 + (k * 7919) % 13 / 5.0);
        comb.push_back({Real(2 * k + 1), 1});
        comb.push_back({Real(2 * k + 1), top});
        comb.push_back({Real(2 * k), top});
        comb.push_back({Real(2 * k), 1});
    }
    for (Query::Type type : {Query::QT_REAL, Query::QT_FILTERED, Query::QT_RATIONAL}) {
        TestFixture::ExpectSameAsReference(comb, type);
    }
}

// The exact queries decide at every scale as at unit scale: a star on a grid
// that scaling by powers of two keeps exact, clipped far out and far in,
// gives the unit-scale reference's triangles. The scaled query kinds (whose
// factor follows the extent) agree with the reference on the points given.
TYPED_TEST(EarClippingTest, MatchesReferenceAtEveryScale) {
    typedef typename TypeParam::Real Real;
    typedef typename TestFixture::V V;
    // Near 1e-300, 1e-160, 1e-140, 1e160 and 1e300 (1e-30 and 1e30 in single precision).
    const std::vector<int> powers = sizeof(Real) == sizeof(float)
                                        ? std::vector<int>{-100, 100}
                                        : std::vector<int>{-997, -532, -465, 531, 996};
    std::mt19937 random(5);
    for (int round = 0; round < 3; ++round) {
        std::vector<V> unit = TestFixture::Star(random, 40 + 80 * round, 1.0, false);
        for (V& p : unit) {
            p = V(std::ldexp(std::round(std::ldexp(p.X(), 20)), -20),
                  std::ldexp(std::round(std::ldexp(p.Y(), 20)), -20));
        }
        for (int power : powers) {
            std::vector<V> scaled;
            for (const V& p : unit) {
                scaled.push_back(V(std::ldexp(p.X(), power), std::ldexp(p.Y(), power)));
            }
            for (Query::Type type : kAllTypes) {
                const bool exact = type == Query::QT_RATIONAL || type == Query::QT_FILTERED;
                CReferenceEarClipping<Real, typename TypeParam::Other> reference(
                    exact ? unit : scaled, type, Epsilon<Real>());
                ASSERT_EQ(Clip(scaled, type), reference.m_triangles)
                    << "query " << type << ", 2^" << power << ", " << unit.size();
            }
        }
    }
}

// The exact queries hold 500 binary places from the leading bit of the
// largest coordinate to the lowest bit set in any; beyond, they refuse.
TEST(EarClippingSpan, ExactQueriesRefuseWhatTheyCannotHoldExactly) {
    typedef CKWVector2T<double, float> V;
    const double big = std::ldexp(1.0, 250);
    const std::vector<V> held = {{0, 0}, {big, 0}, {big, big}, {std::ldexp(1.0, -250), big}};
    const std::vector<V> beyond = {{0, 0}, {big, 0}, {big, big}, {std::ldexp(1.0, -251), big}};
    const std::vector<V> wide = {{1e-300, 1e-300}, {1e300, 0}, {1e300, 1e300}, {0, 1e300}};
    for (Query::Type type : {Query::QT_RATIONAL, Query::QT_FILTERED}) {
        EXPECT_EQ(Clip(held, type), (Triangles{0, 1, 2, 0, 2, 3})) << type;
        EXPECT_TRUE(Clip(beyond, type).empty()) << type;
        EXPECT_TRUE(Clip(wide, type).empty()) << type;
    }
    EXPECT_EQ(Clip(wide, Query::QT_REAL).size(), 6u);
}

TYPED_TEST(EarClippingTest, InputOutsideTheContractStaysInRange) {
    typedef typename TypeParam::Real Real;
    typedef typename TestFixture::V V;
    std::mt19937 random(31);
    std::uniform_int_distribution<int> small(-3, 3);
    const Real nan = std::numeric_limits<Real>::quiet_NaN();
    for (int round = 0; round < 80; ++round) {
        const int n = 3 + round % 23;
        std::vector<V> points;
        for (int i = 0; i < n; ++i) {
            points.push_back(V(Real(small(random)), Real(small(random))));
        }
        if (round % 4 == 1) {
            std::reverse(points.begin(), points.end());
        } else if (round % 4 == 2) {
            points[static_cast<std::size_t>(round % n)] = V(nan, Real(1));
        } else if (round % 4 == 3) {
            for (int i = 0; i < n; ++i) {
                points[static_cast<std::size_t>(i)] = V(Real(i % 5), Real(2 * (i % 5)));
            }
        }
        for (Query::Type type : kAllTypes) {
            const Triangles t = Clip(points, type);
            ASSERT_EQ(t.size(), static_cast<std::size_t>(3 * (n - 2)));
            for (int index : t) {
                ASSERT_GE(index, 0);
                ASSERT_LT(index, n);
            }
            // Exact queries decide the same way as the reference whatever the input.
            if (type != Query::QT_REAL && round % 4 != 2) {
                TestFixture::ExpectSameAsReference(points, type);
            }
        }
    }
}

TYPED_TEST(EarClippingTest, RefusesWhatItCannotTriangulate) {
    typedef typename TypeParam::Real Real;
    const auto square = TestFixture::Make({{0, 0}, {1, 0}, {1, 1}, {0, 1}});
    // Too few points, an unknown query kind, no points.
    const struct {
        int n;
        const typename TestFixture::V* points;
        Query::Type type;
    } cases[] = {{2, square.data(), Query::QT_FILTERED},
                 {4, square.data(), static_cast<Query::Type>(5)},
                 {4, nullptr, Query::QT_REAL}};
    for (const auto& c : cases) {
        int* indices = reinterpret_cast<int*>(&indices);
        CKWTriangulateEarClipping<Real, typename TypeParam::Other> clip(c.n, c.points, c.type,
                                                                        Epsilon<Real>(), indices);
        EXPECT_EQ(indices, nullptr) << c.n << " " << c.type;
    }
}
