// Eigen-, singular-value and QDU decompositions: each reconstructs its input,
// with the factors of the promised shape, on ordinary and degenerate input.
#include <algorithm>
#include <initializer_list>
#include <limits>
#include <vector>

#include "GeometryTestTypes.h"

namespace {

template <class M3>
M3 Symmetric(const M3& m) {
    return M3(m + m.Transpose());
}

// Matrices whose decompositions are easy to get wrong.
template <class M3>
std::vector<M3> HardMatrices() {
    return {M3::ZERO,
            M3::IDENTITY,
            M3(2, 0, 0, 0, -3, 0, 0, 0, 1),          // diagonal, unsorted
            M3(1, 2, 3, 2, 4, 6, 3, 6, 9),           // rank one, symmetric
            M3(2, 1, 0, 1, 2, 0, 0, 0, 3),           // repeated eigenvalue 3
            M3(0, 1, 0, 0, 0, 1, 0, 0, 0),           // nilpotent, zero diagonal
            M3(1, 1, 1, 0, 0, 0, 0, 0, 0),           // zero rows
            M3(1, 2, 3, 1, 2, 3, 1, 2, 3.000001f)};  // nearly rank one
}

// The hard matrices, 30 of test values from seed, then the extra ones.
template <class M3>
std::vector<M3> TestMatrices(unsigned seed, std::initializer_list<M3> extra = {}) {
    TestValues values(seed);
    std::vector<M3> inputs = HardMatrices<M3>();
    for (int i = 0; i < 30; ++i) {
        inputs.push_back(RandomMatrix<M3, 3>(values));
    }
    inputs.insert(inputs.end(), extra);
    return inputs;
}

template <class M3>
bool IsDiagonal(const M3& m) {
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 3; ++c) {
            if (r != c && m(r, c) != 0) {
                return false;
            }
        }
    }
    return true;
}

}  // namespace

template <class Pair>
class MatrixDecompositionTest : public ::testing::Test {};
TYPED_TEST_SUITE(MatrixDecompositionTest, GeometryPairs);

TYPED_TEST(MatrixDecompositionTest, EigenDecompositionReconstructsSymmetricInput) {
    GEOMETRY_PAIR_TYPES;
    for (const M3& input : TestMatrices<M3>(3)) {
        const M3 m = Symmetric(input);
        M3 rotation, diagonal;
        m.EigenDecomposition(rotation, diagonal);
        ASSERT_TRUE(IsDiagonal(diagonal));
        EXPECT_LE(diagonal(0, 0), diagonal(1, 1));
        EXPECT_LE(diagonal(1, 1), diagonal(2, 2));
        EXPECT_NEAR(rotation.Determinant(), 1, tolerance);
        EXPECT_MATRIX_NEAR(rotation.TransposeTimes(rotation), M3::IDENTITY, 3, tolerance);
        EXPECT_MATRIX_NEAR(M3(rotation * diagonal).TimesTranspose(rotation), m, 3, 8 * tolerance);
#if KWCORE_TEST_WITH_EIGEN
        const Eigen::SelfAdjointEigenSolver<Eigen::Matrix<Real, 3, 3>> oracle(ToEigen<3, Real>(m));
        for (int k = 0; k < 3; ++k) {
            EXPECT_NEAR(diagonal(k, k), oracle.eigenvalues()(k), 8 * tolerance);
        }
#endif
    }
    M2 rotation2, diagonal2;
    const M2 m2(Real(2), Real(-1), Real(-1), Real(5));
    m2.EigenDecomposition(rotation2, diagonal2);
    EXPECT_LT(diagonal2(0, 0), diagonal2(1, 1));
    EXPECT_NEAR(rotation2.Determinant(), 1, tolerance);
    EXPECT_MATRIX_NEAR(M2(M2(rotation2 * diagonal2).TimesTranspose(rotation2)), m2, 2,
                       8 * tolerance);
}

TYPED_TEST(MatrixDecompositionTest, SingularValueDecompositionReconstructsInput) {
    GEOMETRY_PAIR_TYPES;
    const M3 wideRange =
        M3(V3(Real(1), Real(2), Real(2)), Real(0.3)) * M3(Real(1e3), Real(1), Real(1e-3));
    for (const M3& m : TestMatrices<M3>(9, {wideRange})) {
        M3 left, diagonal, rightTranspose;
        m.SingularValueDecomposition(left, diagonal, rightTranspose);
        ASSERT_TRUE(IsDiagonal(diagonal));
        EXPECT_GE(diagonal(2, 2), 0);
        EXPECT_GE(diagonal(1, 1), diagonal(2, 2));
        EXPECT_GE(diagonal(0, 0), diagonal(1, 1));
        EXPECT_MATRIX_NEAR(left.TransposeTimes(left), M3::IDENTITY, 3, tolerance);
        EXPECT_MATRIX_NEAR(rightTranspose.TimesTranspose(rightTranspose), M3::IDENTITY, 3,
                           tolerance);
        const double scale = std::max(1.0, double(diagonal(0, 0)));
        M3 composed;
        composed.SingularValueComposition(left, diagonal, rightTranspose);
        EXPECT_MATRIX_NEAR(composed, m, 3, 8 * tolerance * scale);
#if KWCORE_TEST_WITH_EIGEN
        const Eigen::JacobiSVD<Eigen::Matrix<Real, 3, 3>> oracle(ToEigen<3, Real>(m));
        for (int k = 0; k < 3; ++k) {
            EXPECT_NEAR(diagonal(k, k), oracle.singularValues()(k), 8 * tolerance * scale);
        }
#endif
    }
}

TYPED_TEST(MatrixDecompositionTest, QDUDecompositionReconstructsInput) {
    GEOMETRY_PAIR_TYPES;
    const M3 firstColumnZero = M3(0, 1, 0, 0, 0, 1, 0, 0, 0).Transpose();
    for (const M3& m : TestMatrices<M3>(13, {firstColumnZero})) {
        M3 q, d, u;
        m.QDUDecomposition(q, d, u);
        EXPECT_NEAR(q.Determinant(), 1, tolerance);
        EXPECT_MATRIX_NEAR(q.TransposeTimes(q), M3::IDENTITY, 3, tolerance);
        EXPECT_TRUE(IsDiagonal(d));
        for (int r = 0; r < 3; ++r) {
            EXPECT_EQ(u(r, r), Real(1));
            for (int c = 0; c < r; ++c) {
                EXPECT_EQ(u(r, c), Real(0));
            }
        }
        EXPECT_MATRIX_NEAR(M3(q * d * u), m, 3, 16 * tolerance);
    }
}

TYPED_TEST(MatrixDecompositionTest, NonFiniteInputEndsWithoutFactors) {
    GEOMETRY_PAIR_TYPES;
    for (const Real bad :
         {std::numeric_limits<Real>::quiet_NaN(), std::numeric_limits<Real>::infinity()}) {
        M3 m(1, 2, 3, 2, 5, 6, 3, 6, 9);
        m(1, 2) = m(2, 1) = bad;
        M3 rotation, diagonal, left, rightTranspose, q, d, u;
        m.EigenDecomposition(rotation, diagonal);
        EXPECT_EQ(rotation, M3::IDENTITY);
        EXPECT_EQ(diagonal(1, 1), Real(5));
        m.SingularValueDecomposition(left, diagonal, rightTranspose);
        m.QDUDecomposition(q, d, u);
        // The sine entry not a number: reported as at gimbal lock.
        M3 euler = M3::IDENTITY;
        euler(0, 2) = bad;
        Real x, y, z;
        EXPECT_FALSE(euler.ToEulerAnglesXYZ(x, y, z));
        EXPECT_EQ(y, Math::HALF_PI);
        EXPECT_EQ(z, Real(0));
    }
}
