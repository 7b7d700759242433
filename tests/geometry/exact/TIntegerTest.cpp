// Fixed-size integers: exact against the compiler's 64- and 128-bit integers,
// wrap-around beyond their width, shifts and ordering.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>

#include "kwcore/geometry/exact/TInteger.h"

using kwRationalArithmetic::TInteger;

namespace {

using Int128 = __int128;
using UInt128 = unsigned __int128;

TInteger<4> FromInt128(Int128 value) {
    const auto bits = static_cast<UInt128>(value);
    TInteger<4> result(static_cast<std::int64_t>(bits >> 64));
    result <<= 64;
    TInteger<4> high32(static_cast<std::int64_t>((bits >> 32) & 0xFFFFFFFFu));
    high32 <<= 32;
    return result + high32 + TInteger<4>(static_cast<std::int64_t>(bits & 0xFFFFFFFFu));
}

UInt128 Bits(const TInteger<4>& value) {
    UInt128 bits = 0;
    for (int i = 3; i >= 0; --i) {
        bits = (bits << 32) | value.GetWord(i);
    }
    return bits;
}

std::uint64_t Bits(const TInteger<2>& value) {
    return (static_cast<std::uint64_t>(value.GetWord(1)) << 32) | value.GetWord(0);
}

// Random values of every magnitude: the bit length is drawn first.
Int128 RandomInt128(std::mt19937_64& random) {
    const int bits = static_cast<int>(random() % 128);
    UInt128 value = (static_cast<UInt128>(random()) << 64) | random();
    if (bits < 127) {
        value &= (static_cast<UInt128>(1) << bits) - 1;
    }
    return (random() & 1) ? -static_cast<Int128>(value) : static_cast<Int128>(value);
}

}  // namespace

TEST(TIntegerTest, TwoWordsMatchWrappingInt64) {
    std::mt19937_64 random(7);
    for (int k = 0; k < 20000; ++k) {
        const auto a = static_cast<std::int64_t>(random() >> (random() % 64));
        const auto b = static_cast<std::int64_t>(random() >> (random() % 64)) * ((k & 1) ? -1 : 1);
        const auto ua = static_cast<std::uint64_t>(a);
        const auto ub = static_cast<std::uint64_t>(b);
        const TInteger<2> x(a), y(b);
        ASSERT_EQ(Bits(x + y), ua + ub);
        ASSERT_EQ(Bits(x - y), ua - ub);
        ASSERT_EQ(Bits(x * y), ua * ub);
        ASSERT_EQ(Bits(-y), 0 - ub);
        ASSERT_EQ(x < y, a < b);
        ASSERT_EQ(x > y, a > b);
        ASSERT_EQ(x == y, a == b);
    }
}

TEST(TIntegerTest, FourWordsMatchInt128) {
    std::mt19937_64 random(11);
    for (int k = 0; k < 20000; ++k) {
        const Int128 a = RandomInt128(random);
        const Int128 b = RandomInt128(random);
        const TInteger<4> x = FromInt128(a), y = FromInt128(b);
        ASSERT_EQ(Bits(x), static_cast<UInt128>(a));
        ASSERT_EQ(Bits(x + y), static_cast<UInt128>(a) + static_cast<UInt128>(b));
        ASSERT_EQ(Bits(x - y), static_cast<UInt128>(a) - static_cast<UInt128>(b));
        ASSERT_EQ(Bits(x * y), static_cast<UInt128>(a) * static_cast<UInt128>(b));
        ASSERT_EQ(x < y, a < b);
        ASSERT_EQ(x > y, a > b);
        const int shift = static_cast<int>(random() % 130);
        TInteger<4> right = x;
        right >>= shift;
        const Int128 expected = shift >= 128 ? (a < 0 ? -1 : 0) : (a >> shift);
        ASSERT_EQ(Bits(right), static_cast<UInt128>(expected)) << shift;
        TInteger<4> left = x;
        left <<= shift;
        ASSERT_EQ(Bits(left), shift >= 128 ? 0 : static_cast<UInt128>(a) << shift) << shift;
        TInteger<4> product = x;
        product *= y;
        ASSERT_TRUE(product == x * y);
    }
}

TEST(TIntegerTest, WideProductsAreExact) {
    // (a + b)(a - b) = a^2 - b^2 and associativity, on products far beyond 128 bits.
    std::mt19937_64 random(3);
    for (int k = 0; k < 2000; ++k) {
        TInteger<32> a(static_cast<std::int64_t>(random() >> 1));
        TInteger<32> b(-static_cast<std::int64_t>(random() >> 2));
        for (int power = 0; power < 6; ++power) {
            a *= TInteger<32>(static_cast<std::int64_t>(random() >> 2));
            b *= TInteger<32>(static_cast<std::int64_t>(random() >> 3));
        }
        ASSERT_TRUE((a + b) * (a - b) == a * a - b * b);
        const TInteger<32> c(static_cast<std::int64_t>(random()));
        ASSERT_TRUE((a * b) * c == a * (b * c));
        ASSERT_TRUE(a * b < TInteger<32>(0));
        ASSERT_TRUE(-(a * b) > a);
    }
}

TEST(TIntegerTest, WrapsModuloItsWidth) {
    TInteger<2> top(1);
    top <<= 63;
    EXPECT_TRUE(top < TInteger<2>(0));  // 2^63 wraps to -2^63
    EXPECT_TRUE(-top == top);
    EXPECT_TRUE(top * TInteger<2>(2) == TInteger<2>(0));
    TInteger<16> big(1);
    big <<= 510;
    EXPECT_TRUE(big > TInteger<16>(0));
    EXPECT_TRUE(big + big < TInteger<16>(0));
}

TEST(TIntegerTest, ConvertsDoublesByTruncation) {
    EXPECT_TRUE(TInteger<4>::FromDouble(2.9) == TInteger<4>(2));
    EXPECT_TRUE(TInteger<4>::FromDouble(-2.9) == TInteger<4>(-2));
    EXPECT_TRUE(TInteger<4>::FromDouble(0.75) == TInteger<4>(0));
    EXPECT_TRUE(TInteger<4>::FromDouble(std::nan("")) == TInteger<4>(0));
    EXPECT_TRUE(TInteger<4>::FromDouble(-INFINITY) == TInteger<4>(0));
    EXPECT_EQ(Bits(TInteger<4>::FromDouble(std::ldexp(3.0, 100))), static_cast<UInt128>(3) << 100);
    EXPECT_EQ(Bits(TInteger<4>::FromDouble(-std::ldexp(1.0, 70))),
              static_cast<UInt128>(-(static_cast<Int128>(1) << 70)));
    EXPECT_TRUE(TInteger<2>::FromDouble(9007199254740993.0) == TInteger<2>(9007199254740992LL));
}
