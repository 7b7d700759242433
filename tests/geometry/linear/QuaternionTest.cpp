// Quaternions: conversions, products, Exp and Log, interpolation, Align and
// the twist decompositions.
#include <cmath>
#include <limits>

#include "GeometryTestTypes.h"

namespace {

template <class Q, class V3>
Q RandomRotation(TestValues& values) {
    V3 axis(values.Next(), values.Next(), values.Next());
    axis.Normalize();
    typedef std::remove_reference_t<decltype(axis[0])> Real;
    return Q(axis, Real(3 * values.Next()));
}

}  // namespace

#define EXPECT_QUATERNION_NEAR(a, b, tolerance) EXPECT_COMPONENTS_NEAR(a, b, 4, tolerance)

template <class Pair>
class QuaternionTest : public ::testing::Test {};
TYPED_TEST_SUITE(QuaternionTest, GeometryPairs);

TYPED_TEST(QuaternionTest, MatrixConversionsRoundTripInEveryBranch) {
    GEOMETRY_PAIR_TYPES;
    EXPECT_EQ(Q(), Q::ZERO);
    EXPECT_EQ(Q::IDENTITY, Q(1, 0, 0, 0));
    // Positive trace, then each diagonal entry the largest (half turns).
    const Q cases[] = {Q(V3(Real(0.6), 0, Real(0.8)), Real(0.9)), Q(0, 1, 0, 0), Q(0, 0, 1, 0),
                       Q(0, 0, 0, 1), Q(V3(0, Real(0.6), Real(-0.8)), Real(3))};
    for (const Q& q : cases) {
        M3 m;
        q.ToRotationMatrix(m);
        const Q back(m);
        EXPECT_LE(
            std::fmin(MaxComponentDifference(back, q, 4), MaxComponentDifference(back, -q, 4)),
            tolerance);
        M4 m4 = M4::IDENTITY * Real(7);
        q.ToRotationMatrix(m4);
        EXPECT_EQ(m4(3, 3), Real(1));
        EXPECT_EQ(m4(0, 3), Real(0));
        EXPECT_QUATERNION_NEAR(Q(m4), back, 0);
        V3 columns[3];
        q.ToRotationMatrix(columns);
        EXPECT_EQ(columns[1], V3(m.GetColumn(1)));
        EXPECT_QUATERNION_NEAR(Q(columns), back, 0);
        // The rotation of a vector is the matrix's.
        const V3 v(Real(0.3), Real(-2), Real(1.5));
        EXPECT_COMPONENTS_NEAR(V3(q * v), V3(m * v), 3, 4 * tolerance);
    }
    const V3 turned =
        Q(V3(Real(0), Real(0), Real(1)), Math::HALF_PI) * V3(Real(1), Real(0), Real(0));
    EXPECT_NEAR(turned[1], 1, 1e-7);
    const V4 turned4 = Q(V4(0, 0, 1, 0), Math::HALF_PI) * V4(1, 0, 0, 5);
    EXPECT_NEAR(turned4[1], 1, 1e-7);
    EXPECT_EQ(turned4[3], Real(5));
}

TYPED_TEST(QuaternionTest, ProductsComposeLikeMatrices) {
    GEOMETRY_PAIR_TYPES;
    TestValues values(21);
    const Q a = RandomRotation<Q, V3>(values), b = RandomRotation<Q, V3>(values);
    M3 ma, mb, mab;
    a.ToRotationMatrix(ma);
    b.ToRotationMatrix(mb);
    (a * b).ToRotationMatrix(mab);
    EXPECT_MATRIX_NEAR(mab, M3(ma * mb), 3, 4 * tolerance);
    EXPECT_QUATERNION_NEAR(a * a.Inverse(), Q::IDENTITY, tolerance);
    EXPECT_QUATERNION_NEAR(a.Conjugate(), a.Inverse(), tolerance);
    EXPECT_EQ(Q::ZERO.Inverse(), Q::ZERO);
    EXPECT_QUATERNION_NEAR(Q(2, 0, 0, 0).Inverse(), Q(Real(0.5), 0, 0, 0), 0);
    EXPECT_EQ(Q(1, 2, 3, 4) / Real(0),
              Q(Math::MAX_REAL, Math::MAX_REAL, Math::MAX_REAL, Math::MAX_REAL));
    EXPECT_EQ(Q(1, 2, 3, 4) + Q(1, 1, 1, 1) - Q(1, 1, 1, 1) * Real(2), Q(0, 1, 2, 3));
    Q unit(0, 3, 0, 4);
    EXPECT_EQ(unit.Normalize(), Real(5));
    EXPECT_QUATERNION_NEAR(unit, Q(0, Real(0.6), 0, Real(0.8)), tolerance);
    Q tiny(Real(1e-8), 0, 0, 0);
    EXPECT_EQ(tiny.Normalize(), Real(0));
    EXPECT_EQ(tiny, Q::ZERO);
}

TYPED_TEST(QuaternionTest, AxisAngleRoundTripsNearZeroAndHalfTurn) {
    GEOMETRY_PAIR_TYPES;
    ExpectAxisAngleRoundTrips<Q>(V3(Real(0.48), Real(0.6), Real(-0.64)),
                                 {1e-6, 0.5, 3.14159, 3.14159265358979, 4.0}, tolerance, tolerance);
    V4 axis4;
    Real angle;
    Q::IDENTITY.ToAxisAngle(axis4, angle);
    EXPECT_EQ(axis4, V4(1, 0, 0, 0));
    EXPECT_EQ(angle, Real(0));
}

TYPED_TEST(QuaternionTest, ExpAndLogFollowTheSmallAngleRules) {
    GEOMETRY_PAIR_TYPES;
    const Q q(V3(0, Real(0.6), Real(0.8)), Real(1.2));
    const Q log = q.Log();
    EXPECT_EQ(log.W(), Real(0));
    EXPECT_NEAR(log.Y(), 0.6 * 0.6, tolerance);
    EXPECT_QUATERNION_NEAR(log.Exp(), q, tolerance);
    // |sin| below EPSILON: the vector part is kept as it is.
    EXPECT_EQ(Q(Real(5), Real(1e-9), 0, 0).Exp().X(), Real(1e-9));
    EXPECT_EQ(Q(1, Real(1e-9), 0, 0).Log(), Q(0, Real(1e-9), 0, 0));
    EXPECT_EQ(Q(2, 1, 2, 3).Log(), Q(0, 1, 2, 3));
}

TYPED_TEST(QuaternionTest, SlerpKeepsTheCallersHemisphere) {
    GEOMETRY_PAIR_TYPES;
    const Q p(V3(Real(1), Real(0), Real(0)), Real(0.4)),
        q(V3(Real(1), Real(0), Real(0)), Real(1.4));
    Q result;
    EXPECT_EQ(result.Slerp(Real(0.5), p, p), p);
    EXPECT_QUATERNION_NEAR(result.Slerp(Real(0.25), p, q),
                           Q(V3(Real(1), Real(0), Real(0)), Real(0.65)), tolerance);
    EXPECT_QUATERNION_NEAR(result.Slerp(Real(1), p, q), q, tolerance);
    // Toward -q the arc is long: half way is far from p and q alike.
    result.Slerp(Real(0.5), p, -q);
    EXPECT_LT(std::fabs(result.Dot(p)), 0.9);
#if KWCORE_TEST_WITH_EIGEN
    const Eigen::Quaternion<Real> ep(p.W(), p.X(), p.Y(), p.Z()), eq(q.W(), q.X(), q.Y(), q.Z());
    const Eigen::Quaternion<Real> expected = ep.slerp(Real(0.7), eq);
    EXPECT_QUATERNION_NEAR(result.Slerp(Real(0.7), p, q),
                           Q(expected.w(), expected.x(), expected.y(), expected.z()), tolerance);
#endif
    // Extra spins: none is Slerp; each adds a half turn of the quaternion.
    Q spun;
    EXPECT_QUATERNION_NEAR(spun.SlerpExtraSpins(Real(0.3), p, q, 0), result.Slerp(Real(0.3), p, q),
                           tolerance);
    EXPECT_QUATERNION_NEAR(spun.SlerpExtraSpins(Real(1), p, q, 1), -q, 1e-6);
    EXPECT_QUATERNION_NEAR(spun.SlerpExtraSpins(Real(0), p, q, 1), p, tolerance);
}

TYPED_TEST(QuaternionTest, SquadPassesThroughItsKeys) {
    GEOMETRY_PAIR_TYPES;
    TestValues values(17);
    const Q q0 = RandomRotation<Q, V3>(values), q1 = RandomRotation<Q, V3>(values);
    Q q2 = RandomRotation<Q, V3>(values);
    Q a0, a1, result;
    a0.GetIntermediate(q0, q0, q1);
    a1.GetIntermediate(q0, q1, q2);
    EXPECT_QUATERNION_NEAR(result.Squad(Real(0), q0, a0, a1, q1), q0, tolerance);
    EXPECT_QUATERNION_NEAR(result.Squad(Real(1), q0, a0, a1, q1), q1, 4 * tolerance);
    EXPECT_NEAR(result.Squad(Real(0.5), q0, a0, a1, q1).Length(), 1, tolerance);
    // On one great arc the control points lie on it too.
    const V3 axis(0.0, 0.0, 1.0);
    Q a;
    a.GetIntermediate(Q(axis, Real(0.2)), Q(axis, Real(0.5)), Q(axis, Real(0.8)));
    EXPECT_QUATERNION_NEAR(a, Q(axis, Real(0.5)), tolerance);
}

TYPED_TEST(QuaternionTest, AlignTurnsOneDirectionOntoAnother) {
    GEOMETRY_PAIR_TYPES;
    const V3 pairs[][2] = {{V3(Real(1), Real(0), Real(0)), V3(Real(0), Real(1), Real(0))},
                           {V3(0, Real(0.6), Real(0.8)), V3(Real(0.8), 0, Real(-0.6))},
                           {V3(Real(0), Real(0), Real(1)), V3(Real(0), Real(0), Real(1))},
                           {V3(Real(0), Real(0), Real(1)), V3(Real(0), Real(0), Real(-1))},
                           {V3(Real(0.6), Real(0.8), 0), V3(Real(-0.6), Real(-0.8), 0)}};
    for (const auto& pair : pairs) {
        Q q;
        q.Align(pair[0], pair[1]);
        EXPECT_NEAR(q.Length(), 1, tolerance);
        EXPECT_COMPONENTS_NEAR(V3(q * pair[0]), pair[1], 3, 4 * tolerance);
    }
}

TYPED_TEST(QuaternionTest, TwistDecompositionsRecompose) {
    GEOMETRY_PAIR_TYPES;
    TestValues values(29);
    const V3 axis(Real(0.6), 0, Real(0.8));
    for (int i = 0; i < 10; ++i) {
        const Q q = RandomRotation<Q, V3>(values);
        Q twist, noTwist;
        q.DecomposeTwistTimesNoTwist(axis, twist, noTwist);
        EXPECT_QUATERNION_NEAR(twist * noTwist, q, 4 * tolerance);
        // The twist turns about the axis; the rest leaves no turn about it.
        const V3 twistAxis(twist.X(), twist.Y(), twist.Z());
        EXPECT_NEAR(V3(twistAxis.Cross(axis)).Length(), 0, tolerance);
        EXPECT_NEAR(V3(noTwist.X(), noTwist.Y(), noTwist.Z()).Dot(axis), 0, 4 * tolerance);
        q.DecomposeNoTwistTimesTwist(axis, noTwist, twist);
        EXPECT_QUATERNION_NEAR(noTwist * twist, q, 4 * tolerance);
        EXPECT_NEAR(V3(noTwist.X(), noTwist.Y(), noTwist.Z()).Dot(axis), 0, 4 * tolerance);
    }
    // A half turn about a perpendicular axis has no twist at all.
    Q twist, noTwist;
    Q(0, 0, 1, 0).DecomposeTwistTimesNoTwist(axis, twist, noTwist);
    EXPECT_EQ(twist, Q::IDENTITY);
    EXPECT_EQ(noTwist, Q(0, 0, 1, 0));
}
