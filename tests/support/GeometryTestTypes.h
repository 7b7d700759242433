// The two scalar pairs the library exports, for typed tests of the matrices
// and quaternions, with tolerances that suit each precision, and the checks
// those tests share.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <ostream>
#include <type_traits>

#include "GeometryPrinters.h"
#include "kwcore/geometry/linear/CKWMatrix2T.h"
#include "kwcore/geometry/linear/CKWMatrix3T.h"
#include "kwcore/geometry/linear/CKWMatrix4T.h"
#include "kwcore/geometry/linear/CKWQuaternionT.h"

#if __has_include(<eigen3/Eigen/Dense>) && __has_include(<eigen3/Eigen/Geometry>)
#include <eigen3/Eigen/Dense>
#include <eigen3/Eigen/Geometry>
#define KWCORE_TEST_WITH_EIGEN 1
#endif

template <class RealType, class OtherType>
struct GeometryPair {
    typedef RealType Real;
    typedef OtherType Other;
    typedef CKWMathT<Real, Other> Math;
    typedef CKWVector2T<Real, Other> V2;
    typedef CKWVector3T<Real, Other> V3;
    typedef CKWVector4T<Real, Other> V4;
    typedef CKWMatrix2T<Real, Other> M2;
    typedef CKWMatrix3T<Real, Other> M3;
    typedef CKWMatrix4T<Real, Other> M4;
    typedef CKWQuaternionT<Real, Other> Q;
    // Round-off allowed in a short computation on values of order 1.
    static constexpr Real kTolerance = sizeof(Real) == 4 ? Real(2e-5) : Real(1e-11);
};

// Failure messages show the entries, not the address of the conversion.
template <class Real, class Other>
void PrintTo(const CKWMatrix2T<Real, Other>& m, std::ostream* os) {
    PrintEntries("", static_cast<const Real*>(m), 4, os);
}
template <class Real, class Other>
void PrintTo(const CKWMatrix3T<Real, Other>& m, std::ostream* os) {
    PrintEntries("", static_cast<const Real*>(m), 9, os);
}
template <class Real, class Other>
void PrintTo(const CKWMatrix4T<Real, Other>& m, std::ostream* os) {
    PrintEntries("", static_cast<const Real*>(m), 16, os);
}
template <class Real, class Other>
void PrintTo(const CKWQuaternionT<Real, Other>& q, std::ostream* os) {
    PrintEntries("", static_cast<const Real*>(q), 4, os);
}

typedef ::testing::Types<GeometryPair<float, double>, GeometryPair<double, float>> GeometryPairs;

// Fixed pseudo-random values in [-1, 1], the same on every run.
class TestValues {
public:
    explicit TestValues(unsigned seed) : m_state(seed) {}
    double Next() {
        m_state = m_state * 1664525u + 1013904223u;
        return (m_state >> 8) / double(1 << 23) - 1.0;
    }

private:
    unsigned m_state;
};

// An N x N matrix of test values, with diagonalShift added on the diagonal.
template <class Matrix, int N>
Matrix RandomMatrix(TestValues& values, double diagonalShift = 0) {
    Matrix m;
    using Real = std::remove_reference_t<decltype(m(0, 0))>;
    for (int r = 0; r < N; ++r) {
        for (int c = 0; c < N; ++c) {
            m(r, c) = Real(values.Next() + (r == c ? diagonalShift : 0));
        }
    }
    return m;
}

#if KWCORE_TEST_WITH_EIGEN
// The oracle's copy of N x N entries in row order.
template <int N, class Real>
Eigen::Matrix<Real, N, N, Eigen::RowMajor> ToEigen(const Real* entries) {
    return Eigen::Map<const Eigen::Matrix<Real, N, N, Eigen::RowMajor>>(entries);
}
#endif

// The largest difference of the first count components, of any two values
// indexed by [] (vectors, quaternions, arrays).
template <class A, class B>
double MaxComponentDifference(const A& a, const B& b, int count) {
    double most = 0;
    for (int i = 0; i < count; ++i) {
        most = std::fmax(most, std::fabs(double(a[i]) - double(b[i])));
    }
    return most;
}

// The same for the n x n entries of two matrices indexed by (r, c).
template <class MatrixA, class MatrixB>
double MaxDifference(const MatrixA& a, const MatrixB& b, int n) {
    double most = 0;
    for (int r = 0; r < n; ++r) {
        for (int c = 0; c < n; ++c) {
            most = std::fmax(most, std::fabs(double(a(r, c)) - double(b(r, c))));
        }
    }
    return most;
}

// The pair's types by short names inside a TYPED_TEST.
#define GEOMETRY_PAIR_TYPES                                 \
    using Real [[maybe_unused]] = typename TypeParam::Real; \
    using Math [[maybe_unused]] = typename TypeParam::Math; \
    using V2 [[maybe_unused]] = typename TypeParam::V2;     \
    using V3 [[maybe_unused]] = typename TypeParam::V3;     \
    using V4 [[maybe_unused]] = typename TypeParam::V4;     \
    using M2 [[maybe_unused]] = typename TypeParam::M2;     \
    using M3 [[maybe_unused]] = typename TypeParam::M3;     \
    using M4 [[maybe_unused]] = typename TypeParam::M4;     \
    using Q [[maybe_unused]] = typename TypeParam::Q;       \
    [[maybe_unused]] const double tolerance = TypeParam::kTolerance

#define EXPECT_MATRIX_NEAR(a, b, n, tolerance) EXPECT_LE(MaxDifference(a, b, n), tolerance)
#define EXPECT_COMPONENTS_NEAR(a, b, count, tolerance) \
    EXPECT_LE(MaxComponentDifference(a, b, count), tolerance)

// A rotation of type Rotation about axis by each angle gives back the angle
// and the axis.
template <class Rotation, class V3>
void ExpectAxisAngleRoundTrips(const V3& axis, std::initializer_list<double> angles,
                               double angleTolerance, double axisTolerance) {
    for (const double angle : angles) {
        SCOPED_TRACE(angle);
        V3 back;
        std::remove_reference_t<decltype(back[0])> backAngle;
        Rotation(axis, decltype(backAngle)(angle)).ToAxisAngle(back, backAngle);
        EXPECT_NEAR(backAngle, angle, angleTolerance);
        EXPECT_COMPONENTS_NEAR(back, axis, 3, axisTolerance);
    }
}
