// Vectors: arithmetic, normalization, cross products and bases.
#include <gtest/gtest.h>

#include <cmath>

#include "GeometryPrinters.h"
#include "kwcore/geometry/linear/CKWVector2T.h"
#include "kwcore/geometry/linear/CKWVector3T.h"
#include "kwcore/geometry/linear/CKWVector4T.h"

namespace {

using V2f = CKWVector2T<float, double>;
using V3f = CKWVector3T<float, double>;
using V3d = CKWVector3T<double, float>;
using V4f = CKWVector4T<float, double>;
using V4d = CKWVector4T<double, float>;

template <class V>
class VectorPairs : public ::testing::Test {};
using Vector3Types = ::testing::Types<V3f, V3d>;
TYPED_TEST_SUITE(VectorPairs, Vector3Types);

TYPED_TEST(VectorPairs, NormalizeFollowsTheEpsilonRule) {
    using V = TypeParam;
    V zero(0, 0, 0);
    EXPECT_EQ(zero.Normalize(), 0);
    EXPECT_EQ(zero, V::ZERO);
    V tiny(1e-8, 0.0, 0.0);
    EXPECT_EQ(tiny.Normalize(), 0);
    EXPECT_EQ(tiny, V::ZERO);
    V small(1e-6, 0.0, 0.0);
    EXPECT_GT(small.Normalize(), 0);
    EXPECT_NEAR(small.X(), 1, 1e-6);
    V v(3, 0, 4);
    EXPECT_NEAR(v.GetNormalized().Length(), 1, 1e-6);
    EXPECT_NEAR(v.Normalize(), 5, 1e-6);
    EXPECT_NEAR(v.Z(), 0.8, 1e-6);
}

TYPED_TEST(VectorPairs, DivisionByZeroGivesMaxReal) {
    using V = TypeParam;
    using Math = typename V::Math;
    V v(1, 2, 3);
    V q = v / 0;
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(q[i], Math::MAX_REAL);
    }
    v /= 2;
    EXPECT_EQ(v, V(0.5, 1.0, 1.5));
}

TYPED_TEST(VectorPairs, CrossProductIsRightHandedAndKeepsTheType) {
    using V = TypeParam;
    EXPECT_EQ(V::UNIT_X.Cross(V::UNIT_Y), V::UNIT_Z);
    EXPECT_EQ(V::UNIT_Y.Cross(V::UNIT_Z), V::UNIT_X);
    V a(1, 2, 3), b(4, 5, 6);
    EXPECT_EQ(a.Cross(b), V(-3, 6, -3));
    // Arithmetic results are still three-dimensional vectors.
    EXPECT_EQ((a + b).Cross(a - b), V(6, -12, 6));
    EXPECT_EQ((2 * a).Cross(b), V(-6, 12, -6));
    EXPECT_EQ(a.UnitCross(a), V::ZERO);
    EXPECT_NEAR(a.UnitCross(b).Length(), 1, 1e-6);
}

TEST(Vector, VirtualCrossDispatchesThroughTheBase) {
    using Base = CKWVectorT<3, float, double>;
    V3f x = V3f::UNIT_X;
    const Base& base = x;
    EXPECT_EQ(V3f(base.Cross(V3f::UNIT_Y)), V3f::UNIT_Z);
    // The generic template has no cross product.
    Base plain = Base::UNIT(0);
    EXPECT_EQ(plain.Cross(Base::UNIT(1)), Base::ZERO());
    EXPECT_EQ(plain.UnitCross(Base::UNIT(1)), Base::ZERO());
    // A copy sliced to the base loses the derived cross product.
    CKWVectorT<4, double, float> four = V4d::UNIT_X;
    EXPECT_EQ(four.Cross(V4d::UNIT_Y), (CKWVectorT<4, double, float>::ZERO()));
    EXPECT_EQ(V4d::UNIT_X.Cross(V4d::UNIT_Y), V4d::UNIT_Z);
    EXPECT_EQ(V4f(1, 0, 0, 5).Cross(V4f(0, 1, 0, 7)), V4f(0, 0, 1, 0));
}

TEST(Vector, Arithmetic) {
    EXPECT_EQ(V3d(1.5f, 2.5f, 3.5f), V3d(1.5, 2.5, 3.5));
    EXPECT_EQ(V3f(0.1, 0.2, 0.3).X(), 0.1f);
    V3f a(1, 2, 3), b(4, 5, 6);
    EXPECT_EQ(a + b - V3f(1, 1, 1), V3f(4, 6, 8));
    EXPECT_EQ(-a * 2, V3f(-2, -4, -6));
    EXPECT_EQ(2.0f * a, a * 2);
    EXPECT_EQ(a.Dot(b), 32.0f);
    a += b;
    a -= V3f(1, 1, 1);
    a *= 0.5f;
    EXPECT_EQ(a, V3f(2, 3, 4));
    EXPECT_EQ((CKWVectorT<3, float, double>::UNIT(2)), V3f::UNIT_Z);
}

TEST(Vector, NonFiniteComponentsPropagate) {
    V3d inf(HUGE_VAL, 0.0, 0.0);
    EXPECT_TRUE(std::isinf(inf.Length()));
    // inf * (1/inf) is NaN: a vector with an infinite component normalizes to NaN.
    V3d n = inf.GetNormalized();
    EXPECT_TRUE(std::isnan(n.X()));
    V3d nan(std::nan(""), 1.0, 0.0);
    EXPECT_EQ(nan.Normalize(), 0.0);  // NaN length is not above EPSILON
    EXPECT_EQ(nan, V3d::ZERO);
}

TEST(Vector2, PlanarOperations) {
    V2f a(1, 0), b(0, 1);
    EXPECT_EQ(a.Perp(), V2f(0, -1));
    EXPECT_EQ(V2f(3, 4).UnitPerp(), V2f(0.8f, -0.6f));
    EXPECT_EQ(a.Kross(b), 1.0f);
    EXPECT_FLOAT_EQ(a.AngleBetween(b), (CKWMathT<float, double>::HALF_PI));
    EXPECT_FLOAT_EQ(b.AngleBetween(a), (-CKWMathT<float, double>::HALF_PI));
    EXPECT_EQ(a.AngleBetween(V2f::ZERO), 0.0f);
    EXPECT_EQ(V2f(a.Cross(b)), a.Perp());

    V2f u(2, 0), v(1, 1);
    V2f::Orthonormalize(u, v);
    EXPECT_EQ(u, V2f::UNIT_X);
    EXPECT_EQ(v, V2f::UNIT_Y);
    V2f w, d(0, 2);
    V2f::GenerateOrthonormalBasis(w, d, false);
    EXPECT_EQ(d, V2f::UNIT_Y);
    EXPECT_EQ(w, V2f(1.0f, -0.0f));  // the perpendicular of (0, 1)

    const V2f points[] = {V2f(1, 5), V2f(-2, 3), V2f(4, -1)};
    V2f min, max;
    V2f::ComputeExtremes(3, points, min, max);
    EXPECT_EQ(min, V2f(-2, -1));
    EXPECT_EQ(max, V2f(4, 5));
    V2f::ComputeExtremes(0, points, min, max);
    EXPECT_EQ(min, V2f::ZERO);
}

TEST(Vector3, OrthonormalBases) {
    V3d u(2, 0, 0), v(1, 3, 0), w(1, 1, 5);
    V3d::Orthonormalize(u, v, w);
    EXPECT_EQ(u, V3d::UNIT_X);
    EXPECT_EQ(v, V3d::UNIT_Y);
    EXPECT_EQ(w, V3d::UNIT_Z);
    for (const V3d& axis : {V3d(0, 0, 3), V3d(1, 2, 3), V3d(-5, 0.1, 0), V3d(0, -1, 0)}) {
        V3d a, b, c = axis;
        V3d::GenerateOrthonormalBasis(a, b, c, false);
        EXPECT_NEAR(c.Length(), 1, 1e-12);
        EXPECT_NEAR(a.Length(), 1, 1e-12);
        EXPECT_NEAR(a.Dot(c), 0, 1e-12);
        EXPECT_NEAR(b.Dot(a), 0, 1e-12);
        EXPECT_TRUE(a.Cross(b).Approx_Equal(c, 9));
    }
}

}  // namespace
