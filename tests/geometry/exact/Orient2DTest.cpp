#include "kwcore/geometry/exact/KWOrient2D.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>

using kwPolygonTriangulation::orient2d;
using kwPolygonTriangulation::orient2dExact;

namespace {

using Int128 = __int128;

int Sign(double value) {
    return (value > 0.0) - (value < 0.0);
}
int Sign(Int128 value) {
    return (value > 0) - (value < 0);
}

// The exact sign for coordinates that are integer multiples of 2^-scale,
// with products that fit 128 bits.
int ExactSign(double ax, double ay, double bx, double by, double cx, double cy, int scale) {
    auto fixed = [scale](double v) { return static_cast<Int128>(std::ldexp(v, scale)); };
    const Int128 det = (fixed(ax) - fixed(cx)) * (fixed(by) - fixed(cy)) -
                       (fixed(ay) - fixed(cy)) * (fixed(bx) - fixed(cx));
    return Sign(det);
}

double PlainDeterminant(double ax, double ay, double bx, double by, double cx, double cy) {
    return (ax - cx) * (by - cy) - (ay - cy) * (bx - cx);
}

}  // namespace

TEST(Orient2D, SignOfPlainTurns) {
    EXPECT_GT(orient2d(0, 0, 1, 0, 0, 1), 0.0);
    EXPECT_LT(orient2d(0, 0, 0, 1, 1, 0), 0.0);
    EXPECT_EQ(orient2d(0, 0, 1, 1, 2, 2), 0.0);
    EXPECT_EQ(orient2d(1, 1, 1, 1, 3, 7), 0.0);
}

// Points a hair off the line y = x near (0.5, 0.5), against two far points on
// it: the plain determinant gets many of these wrong.
TEST(Orient2D, ExactWhereThePlainDeterminantFails) {
    const double ulp = std::ldexp(1.0, -53);
    int plainWrong = 0;
    for (int i = 0; i < 64; ++i) {
        for (int j = 0; j < 64; ++j) {
            const double ax = 0.5 + i * ulp;
            const double ay = 0.5 + j * ulp;
            const int exact = ExactSign(ax, ay, 12, 12, 24, 24, 53);
            ASSERT_EQ(Sign(orient2d(ax, ay, 12, 12, 24, 24)), exact) << i << ", " << j;
            ASSERT_EQ(Sign(orient2dExact(ax, ay, 12, 12, 24, 24)), exact) << i << ", " << j;
            plainWrong += Sign(PlainDeterminant(ax, ay, 12, 12, 24, 24)) != exact;
        }
    }
    EXPECT_GT(plainWrong, 100);  // the grid really is hard
}

// Third points rounded onto the line through two random points: exactly
// collinear only by chance, so every sign occurs and most are tiny.
TEST(Orient2D, ExactOnNearlyCollinearRandomPoints) {
    std::mt19937_64 engine(11);
    std::uniform_int_distribution<std::int64_t> coordinate(-(std::int64_t(1) << 40), std::int64_t(1)
                                                                                         << 40);
    int signs[3] = {0, 0, 0};
    for (int n = 0; n < 20000; ++n) {
        const double ax = std::ldexp(static_cast<double>(coordinate(engine)), -30);
        const double ay = std::ldexp(static_cast<double>(coordinate(engine)), -30);
        const double bx = std::ldexp(static_cast<double>(coordinate(engine)), -30);
        const double by = std::ldexp(static_cast<double>(coordinate(engine)), -30);
        const double t = std::ldexp(static_cast<double>(coordinate(engine)), -41);
        // Rounded to multiples of 2^-50, so the 128-bit check stays exact.
        const double cx = std::ldexp(std::round(std::ldexp(ax + t * (bx - ax), 50)), -50);
        const double cy = std::ldexp(std::round(std::ldexp(ay + t * (by - ay), 50)), -50);
        const int exact = ExactSign(ax, ay, bx, by, cx, cy, 50);
        ASSERT_EQ(Sign(orient2d(ax, ay, bx, by, cx, cy)), exact) << n;
        ASSERT_EQ(Sign(orient2d(bx, by, cx, cy, ax, ay)), exact) << n;
        ASSERT_EQ(Sign(orient2d(bx, by, ax, ay, cx, cy)), -exact) << n;
        ++signs[exact + 1];
    }
    EXPECT_GT(signs[0], 1000);
    EXPECT_GT(signs[2], 1000);
}

TEST(Orient2D, ExactForTinyAndHugeScales) {
    const double tiny = std::ldexp(1.0, -400);
    EXPECT_GT(orient2d(0, 0, tiny, 0, tiny, tiny), 0.0);
    const double huge = std::ldexp(1.0, 400);
    const double ulp = std::ldexp(huge, -52);
    EXPECT_GT(orient2d(huge, huge, 2 * huge, 2 * huge, huge, huge + ulp), 0.0);
    EXPECT_LT(orient2d(huge, huge, 2 * huge, 2 * huge, huge + ulp, huge), 0.0);
}
