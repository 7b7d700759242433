// Matrices: layout, products, comparisons, inverses, rotations and the
// homogeneous builders.
#include <cstring>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "GeometryTestTypes.h"

namespace {

const double kPi = 3.14159265358979323846;

}  // namespace

template <class Pair>
class MatrixTest : public ::testing::Test {};
TYPED_TEST_SUITE(MatrixTest, GeometryPairs);

TYPED_TEST(MatrixTest, ConstructsZeroOrIdentityAndKeepsRowOrder) {
    GEOMETRY_PAIR_TYPES;
    const CKWMatrixT<3, Real, typename TypeParam::Other> zero(true), identity(false);
    EXPECT_EQ(M3(zero), M3::ZERO);
    EXPECT_EQ(M3(identity), M3::IDENTITY);
    EXPECT_EQ(M3(), M3::ZERO);
    EXPECT_EQ(M4(), M4::ZERO);
    EXPECT_EQ(M2::IDENTITY, M2(Real(1), Real(1)));

    const Real entries[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    const M3 m(entries, true);
    EXPECT_EQ(m, M3(1, 2, 3, 4, 5, 6, 7, 8, 9));
    EXPECT_EQ(m[1][2], Real(6));
    EXPECT_EQ(m(2, 0), Real(7));
    EXPECT_EQ(static_cast<const Real*>(m)[5], Real(6));
    Real columnMajor[9];
    m.GetColumnMajor(columnMajor);
    EXPECT_EQ(M3(columnMajor, false), m);
    EXPECT_EQ(columnMajor[1], Real(4));

    const V3 u(Real(1), Real(2), Real(3)), v(Real(4), Real(5), Real(6)),
        w(Real(7), Real(8), Real(9));
    EXPECT_EQ(M3(u, v, w, false), m);
    EXPECT_EQ(M3(u, v, w, true), m.Transpose());
    EXPECT_EQ(V3(m.GetColumn(1)), V3(Real(2), Real(5), Real(8)));
    EXPECT_EQ(V3(m.GetRow(1)), v);
    EXPECT_EQ(M3(u, v)(1, 2), Real(12));  // tensor product u v^T
    EXPECT_EQ(M2(V2(1, 2), V2(3, 4), true)(0, 1), Real(3));
}

TYPED_TEST(MatrixTest, AppliesToColumnsAndRowVectors) {
    GEOMETRY_PAIR_TYPES;
    const M3 quarterTurn(V3(Real(0), Real(0), Real(1)), Math::HALF_PI);
    const V3 column = quarterTurn * V3(Real(1), Real(0), Real(0));
    const V3 row = V3(Real(1), Real(0), Real(0)) * quarterTurn;
    EXPECT_NEAR(column[0], 0, 1e-7);
    EXPECT_NEAR(column[1], 1, 1e-7);
    EXPECT_NEAR(row[1], -1, 1e-7);

    TestValues values(7);
    const M3 a = RandomMatrix<M3, 3>(values), b = RandomMatrix<M3, 3>(values);
    const V3 x(Real(0.3), Real(-0.7), Real(0.2));
    EXPECT_COMPONENTS_NEAR(V3(a * b * x), V3(a * V3(b * x)), 3, tolerance);
    EXPECT_MATRIX_NEAR(a.TransposeTimes(b), a.Transpose() * b, 3, tolerance);
    EXPECT_MATRIX_NEAR(a.TimesTranspose(b), a * b.Transpose(), 3, tolerance);
    EXPECT_NEAR(a.QForm(x, x), x.Dot(a * x), tolerance);

    typedef CKWPointT<3, Real, typename TypeParam::Other> P3;
    const Real coordinates[3] = {0, 2, 5};
    const P3 p = quarterTurn * P3(coordinates);
    EXPECT_NEAR(p[0], -2, 1e-6);
    EXPECT_NEAR(p[2], 5, 1e-6);
}

#if KWCORE_TEST_WITH_EIGEN
TYPED_TEST(MatrixTest, MultipliesAndInvertsLikeEigen) {
    GEOMETRY_PAIR_TYPES;
    typedef Eigen::Matrix<Real, 4, 4, Eigen::RowMajor> E4;
    typedef Eigen::Matrix<Real, 3, 3, Eigen::RowMajor> E3;
    TestValues values(11);
    for (int trial = 0; trial < 20; ++trial) {
        const M4 a = RandomMatrix<M4, 4>(values, 2.5), b = RandomMatrix<M4, 4>(values);
        const E4 ea = ToEigen<4, Real>(a), eb = ToEigen<4, Real>(b);
        EXPECT_MATRIX_NEAR(M4(a * b), E4(ea * eb), 4, 4 * tolerance);
        EXPECT_MATRIX_NEAR(a.Inverse(), E4(ea.inverse()), 4, 4 * tolerance);
        EXPECT_NEAR(a.Determinant(), ea.determinant(), 10 * tolerance);
        EXPECT_MATRIX_NEAR(M4(a.Adjoint()), M4(a.Inverse() * a.Determinant()), 4, 10 * tolerance);

        const M3 c = RandomMatrix<M3, 3>(values, 2);
        const E3 ec = ToEigen<3, Real>(c);
        EXPECT_MATRIX_NEAR(c.Inverse(), E3(ec.inverse()), 3, tolerance);
        EXPECT_NEAR(c.Determinant(), ec.determinant(), tolerance);
        const M2 d = RandomMatrix<M2, 2>(values, 2);
        EXPECT_MATRIX_NEAR(M2(d * d.Inverse()), M2::IDENTITY, 2, tolerance);
    }
}
#endif

TYPED_TEST(MatrixTest, SingularInverseIsZero) {
    GEOMETRY_PAIR_TYPES;
    // Determinant 1e-8, below EPSILON; 2^-22 is above it.
    EXPECT_EQ(M2(Real(1e-4), Real(1e-4)).Inverse(), M2::ZERO);
    EXPECT_EQ(M3(Real(1), Real(1e-4), Real(1e-4)).Inverse(), M3::ZERO);
    const Real diag[4] = {1, 1, Real(1e-4), Real(1e-4)};
    M4 nearlySingular;
    nearlySingular.MakeDiagonal(diag);
    EXPECT_EQ(nearlySingular.Inverse(), M4::ZERO);
    EXPECT_NE(M3(Real(1), Real(1), Real(std::ldexp(1.0, -22))).Inverse(), M3::ZERO);

    M3 notANumber = M3::IDENTITY;
    notANumber(1, 1) = std::numeric_limits<Real>::quiet_NaN();
    EXPECT_EQ(notANumber.Inverse(), M3::ZERO);
}

TYPED_TEST(MatrixTest, ComparesBytesAndDividesByZeroToMaxReal) {
    GEOMETRY_PAIR_TYPES;
    M2 negativeZero;
    negativeZero(0, 0) = -Real(0);
    EXPECT_NE(negativeZero, M2::ZERO);
    EXPECT_TRUE(negativeZero > M2::ZERO || negativeZero < M2::ZERO);
    EXPECT_TRUE(M2::ZERO <= M2::ZERO && M2::ZERO >= M2::ZERO);
    EXPECT_EQ(M2::IDENTITY < M2::ZERO,
              std::memcmp(static_cast<const Real*>(M2::IDENTITY),
                          static_cast<const Real*>(M2::ZERO), 4 * sizeof(Real)) < 0);

    const M2 quotient = M2::IDENTITY / Real(0);
    EXPECT_EQ(quotient(0, 1), Math::MAX_REAL);
    EXPECT_EQ(M2(M2::IDENTITY / Real(4))(1, 1), Real(0.25));
    EXPECT_EQ(M2(Real(2) * M2::IDENTITY - M2::IDENTITY + M2::ZERO), M2::IDENTITY);
    EXPECT_EQ(M2(-M2::IDENTITY)(0, 0), Real(-1));
}

TYPED_TEST(MatrixTest, OrderTwoAngleMatrixIsSymmetric) {
    GEOMETRY_PAIR_TYPES;
    M2 m;
    m.FromAngle(Math::HALF_PI);
    EXPECT_NEAR(m(0, 0), 0, 1e-7);
    EXPECT_NEAR(m(0, 1), -1, 1e-7);
    EXPECT_EQ(m(1, 0), m(0, 1));
    EXPECT_EQ(M2(Real(0.3)), [] {
        M2 built;
        built.FromAngle(Real(0.3));
        return built;
    }());
    const Real c = std::cos(Real(0.3)), s = std::sin(Real(0.3));
    EXPECT_NEAR(M2(c, -s, s, c).ToAngle(), 0.3, tolerance);
}

namespace {

// One Euler order: the axes of its product and its two conversions.
template <class M3, class Real>
struct EulerOrder {
    const char* name;
    int axes[3];
    void (M3::*from)(Real, Real, Real);
    bool (M3::*to)(Real&, Real&, Real&) const;
};

template <class M3, class Real>
std::vector<EulerOrder<M3, Real>> EulerOrders() {
    return {{"XYZ", {0, 1, 2}, &M3::FromEulerAnglesXYZ, &M3::ToEulerAnglesXYZ},
            {"XZY", {0, 2, 1}, &M3::FromEulerAnglesXZY, &M3::ToEulerAnglesXZY},
            {"YXZ", {1, 0, 2}, &M3::FromEulerAnglesYXZ, &M3::ToEulerAnglesYXZ},
            {"YZX", {1, 2, 0}, &M3::FromEulerAnglesYZX, &M3::ToEulerAnglesYZX},
            {"ZXY", {2, 0, 1}, &M3::FromEulerAnglesZXY, &M3::ToEulerAnglesZXY},
            {"ZYX", {2, 1, 0}, &M3::FromEulerAnglesZYX, &M3::ToEulerAnglesZYX}};
}

template <class V3>
V3 Axis(int i) {
    V3 axis(0.0, 0.0, 0.0);
    axis[i] = 1;
    return axis;
}

}  // namespace

TYPED_TEST(MatrixTest, EulerAnglesRoundTripInEveryOrder) {
    GEOMETRY_PAIR_TYPES;
    M3 xyz;
    xyz.FromEulerAnglesXYZ(Real(0.1), Real(0.2), Real(0.3));
    Real x, y, z;
    EXPECT_TRUE(xyz.ToEulerAnglesXYZ(x, y, z));
    EXPECT_NEAR(x, 0.1, tolerance);
    EXPECT_NEAR(y, 0.2, tolerance);
    EXPECT_NEAR(z, 0.3, tolerance);

    const Real angles[3] = {Real(-2.5), Real(1.2), Real(0.7)};
    for (const auto& order : EulerOrders<M3, Real>()) {
        SCOPED_TRACE(order.name);
        M3 m;
        (m.*order.from)(angles[0], angles[1], angles[2]);
        const M3 product = M3(Axis<V3>(order.axes[0]), angles[0]) *
                           M3(Axis<V3>(order.axes[1]), angles[1]) *
                           M3(Axis<V3>(order.axes[2]), angles[2]);
        EXPECT_MATRIX_NEAR(m, product, 3, tolerance);
        Real back[3];
        EXPECT_TRUE((m.*order.to)(back[0], back[1], back[2]));
        EXPECT_COMPONENTS_NEAR(back, angles, 3, 4 * tolerance);
    }
}

TYPED_TEST(MatrixTest, EulerAnglesReportGimbalLock) {
    GEOMETRY_PAIR_TYPES;
    for (const auto& order : EulerOrders<M3, Real>()) {
        for (const Real sign : {Real(1), Real(-1)}) {
            SCOPED_TRACE(std::string(order.name) + (sign > 0 ? " +" : " -"));
            // An exact quarter turn in the middle: its sine entry is exactly +-1.
            const int j = order.axes[1];
            M3 quarter = M3::IDENTITY;
            const int p = (j + 1) % 3, q = (j + 2) % 3;
            quarter(p, p) = quarter(q, q) = 0;
            quarter(q, p) = sign;
            quarter(p, q) = -sign;
            const M3 locked = M3(Axis<V3>(order.axes[0]), Real(0.4)) * quarter *
                              M3(Axis<V3>(order.axes[2]), Real(0.25));
            Real a, b, c;
            EXPECT_FALSE((locked.*order.to)(a, b, c));
            EXPECT_EQ(c, Real(0));
            EXPECT_NEAR(b, sign * Math::HALF_PI, 1e-7);
            M3 rebuilt;
            (rebuilt.*order.from)(a, b, c);
            EXPECT_MATRIX_NEAR(rebuilt, locked, 3, 1e-6);
        }
    }
    // The entry that holds the sine at exactly 1: y = HALF_PI, z = 0.
    const M3 m(0, 0, 1, 0, 1, 0, -1, 0, 0);
    Real x, y, z;
    EXPECT_FALSE(m.ToEulerAnglesXYZ(x, y, z));
    EXPECT_EQ(y, Math::HALF_PI);
    EXPECT_EQ(z, Real(0));
    EXPECT_EQ(x, Real(0));
}

TYPED_TEST(MatrixTest, AxisAngleRoundTripsNearZeroAndHalfTurn) {
    GEOMETRY_PAIR_TYPES;
    ExpectAxisAngleRoundTrips<M3>(V3(Real(0.48), Real(-0.6), Real(0.64)),
                                  {1e-4, 0.5, 2.0, 3.14159, 3.141592}, tolerance,
                                  sizeof(Real) == 4 ? 2e-3 : 1e-7);
    V3 back;
    Real angle;
    M3::IDENTITY.ToAxisAngle(back, angle);
    EXPECT_EQ(angle, Real(0));
    EXPECT_EQ(back, V3(Real(1), Real(0), Real(0)));
    M3(Real(-1), Real(1), Real(-1)).ToAxisAngle(back, angle);  // half turn about y
    EXPECT_NEAR(angle, kPi, tolerance);
    EXPECT_NEAR(std::fabs(back[1]), 1, tolerance);
}

TYPED_TEST(MatrixTest, OrthonormalizesAndInterpolatesRotations) {
    GEOMETRY_PAIR_TYPES;
    TestValues values(5);
    M3 m = RandomMatrix<M3, 3>(values, 1);
    const V3 firstDirection = V3(m.GetColumn(0)).GetNormalized();
    m.Orthonormalize();
    EXPECT_MATRIX_NEAR(m.TransposeTimes(m), M3::IDENTITY, 3, tolerance);
    EXPECT_NEAR(V3(m.GetColumn(0)).Dot(firstDirection), 1, tolerance);
    M2 m2(Real(2), Real(1), Real(0.5), Real(1));
    m2.Orthonormalize();
    EXPECT_MATRIX_NEAR(M2(m2.TransposeTimes(m2)), M2::IDENTITY, 2, tolerance);

    const V3 axis(0.0, 1.0, 0.0);
    const M3 r0(axis, Real(0.2)), r1(axis, Real(1.0));
    EXPECT_MATRIX_NEAR(M3::Slerp(Real(0), r0, r1), r0, 3, tolerance);
    EXPECT_MATRIX_NEAR(M3::Slerp(Real(1), r0, r1), r1, 3, 4 * tolerance);
    EXPECT_MATRIX_NEAR(M3::Slerp(Real(0.5), r0, r1), M3(axis, Real(0.6)), 3, 4 * tolerance);
}

TYPED_TEST(MatrixTest, BuildsHomogeneousTransforms) {
    GEOMETRY_PAIR_TYPES;
    const V4 moved = M4::BuildTranslationMatrix(V4(1, 2, 3, 0)) * V4(0, 0, 0, 1);
    EXPECT_EQ(moved, V4(1, 2, 3, 1));
    EXPECT_EQ(V4(M4::BuildScalingMatrix(V4(2, 3, 4, 9)) * V4(1, 1, 1, 1)), V4(2, 3, 4, 1));
    const M4 rotation = M4::BuildRotationMatrix(Real(0.7), V4(0, 0, 5, 0));
    const M3 expected(V3(Real(0), Real(0), Real(1)), Real(0.7));
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 4; ++c) {
            EXPECT_NEAR(rotation(r, c), r < 3 && c < 3 ? expected(r, c) : (r == c ? 1 : 0),
                        tolerance);
        }
    }
}
