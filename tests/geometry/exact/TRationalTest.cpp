// Exact rationals: binary fractions from doubles, arithmetic checked against
// identities and against long double where that is exact.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>

#include "kwcore/geometry/exact/TRational.h"

using kwRationalArithmetic::TInteger;
using kwRationalArithmetic::TRational;

using R16 = TRational<16>;
using R32 = TRational<32>;

TEST(TRationalTest, DoublesConvertExactlyAndReduced) {
    const R16 half = R16::FromDouble(0.5);
    EXPECT_TRUE(half.GetNumerator() == TInteger<16>(1));
    EXPECT_TRUE(half.GetDenominator() == TInteger<16>(2));
    EXPECT_TRUE(R16::FromDouble(-12.0).GetDenominator() == TInteger<16>(1));
    EXPECT_TRUE(R16::FromDouble(-12.0) == R16(-12));
    EXPECT_TRUE(R16::FromDouble(0.1) > R16(1, 10));  // 0.1 is stored a little above 1/10
    EXPECT_TRUE(R16::FromDouble(0.1f) > R16::FromDouble(0.1));
    EXPECT_TRUE(R16::FromDouble(std::nan("")) == R16(0));
    EXPECT_TRUE(R16::FromDouble(INFINITY) == R16(0));
    EXPECT_TRUE(R32::FromDouble(std::ldexp(1.0, -1000)) > R32(0));
    EXPECT_TRUE(R32::FromDouble(std::ldexp(1.0, 900)) > R32::FromDouble(std::ldexp(1.0, 899)));
}

TEST(TRationalTest, ArithmeticIsExact) {
    std::mt19937_64 random(5);
    std::uniform_real_distribution<double> coordinate(-1000.0, 1000.0);
    for (int k = 0; k < 3000; ++k) {
        const double a = coordinate(random), b = coordinate(random), c = coordinate(random);
        const R32 x = R32::FromDouble(a), y = R32::FromDouble(b), z = R32::FromDouble(c);
        ASSERT_TRUE((x + y) - y == x);
        ASSERT_TRUE((x + y) * z == x * z + y * z);
        ASSERT_TRUE((x * y) / y == x);
        ASSERT_TRUE(x / y * y == x);
        ASSERT_EQ(x < y, a < b);
        ASSERT_EQ(x - y > R32(0), a > b);
        // Products of two doubles are exact in long double only when it has 106 bits;
        // the sign of a*b - c is exact in rationals and decided here against fma.
        const double residual = std::fma(a, b, -c);
        if (residual != 0.0) {
            ASSERT_EQ(x * y - z > R32(0), residual > 0);
        }
    }
}

TEST(TRationalTest, GeneralFractions) {
    R16 sum;
    for (int i = 1; i <= 20; ++i) {
        sum += R16(1, i * (i + 1));  // telescopes to 20/21
    }
    EXPECT_TRUE(sum == R16(20, 21));
    EXPECT_TRUE(R16(2, -4) == R16(-1, 2));
    EXPECT_TRUE(R16(3, 0) == R16(0));  // a zero denominator gives 0
    EXPECT_TRUE(R16(5) / R16(0) == R16(0));
    EXPECT_TRUE(R16(-1, 3) < R16(-1, 4));
    EXPECT_EQ(R16(-7, 9).GetSign(), -1);
    R16 value(7, 3);
    value -= R16(1, 3);
    value *= R16(3, 4);
    value /= R16(1, 2);
    EXPECT_TRUE(value == R16(3));
    EXPECT_TRUE(-value == R16(-3));
}
