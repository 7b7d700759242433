// kwRationalArithmetic::TInteger: a signed fixed-size integer of N 32-bit
// words, kept as 2N 16-bit blocks in two's complement, least significant block
// first. It carries the exact sign tests of the ear-clipping queries, so it is
// a plain value type with no allocation.
//
// Arithmetic wraps modulo 2^(32N) like unsigned machine integers do: callers
// pick N large enough for the magnitudes they combine (the queries bound their
// inputs so that they never overflow). Exported for N = 2, 4, 16 and 32.
//
//   TInteger<4> a(1 << 30), b(-3);
//   a *= a;                        // 2^60
//   a *= TInteger<4>(1LL << 40);   // 2^100, beyond 64 bits
//   bool negative = (a * b) < TInteger<4>(0);
#pragma once

#include <cstdint>

#include "kwcore/platform/Export.h"

namespace kwRationalArithmetic {

template <int N>
class KWCORE_API TRational;

template <int N>
class KWCORE_API TInteger {
public:
    static constexpr int BLOCKS = 2 * N;
    static constexpr int BITS = 32 * N;

    TInteger(std::int64_t iValue = 0);
    // The value of d truncated toward zero; 0 for NaN and infinities, and the
    // value modulo 2^(32N) when it does not fit.
    static TInteger FromDouble(double d);

    TInteger operator-() const;
    TInteger operator+(const TInteger& other) const;
    TInteger operator-(const TInteger& other) const;
    TInteger operator*(const TInteger& other) const;
    TInteger& operator+=(const TInteger& other);
    TInteger& operator-=(const TInteger& other);
    TInteger& operator*=(const TInteger& other);
    // Arithmetic shift: rounds toward minus infinity.
    TInteger& operator>>=(int iShift);
    TInteger& operator<<=(int iShift);

    bool operator==(const TInteger& other) const { return Compare(other) == 0; }
    bool operator!=(const TInteger& other) const { return Compare(other) != 0; }
    bool operator<(const TInteger& other) const { return Compare(other) < 0; }
    bool operator>(const TInteger& other) const { return Compare(other) > 0; }
    bool operator<=(const TInteger& other) const { return Compare(other) <= 0; }
    bool operator>=(const TInteger& other) const { return Compare(other) >= 0; }

    // Word i (0 = least significant) of the two's complement form.
    std::uint32_t GetWord(int i) const;

private:
    friend class TRational<N>;

    // -1, 0 or +1.
    int GetSign() const;
    // Index of the lowest nonzero block, or -1 for zero.
    int GetTrailingBlock() const;
    // Index of the lowest set bit, or -1 for zero.
    int GetTrailingBit() const;
    // Index of the highest set bit of the magnitude, or -1 for zero.
    int GetLeadingBit() const;
    // Block i as an unsigned value, and block i set from the low 16 bits of v.
    unsigned int ToUnsignedInt(int i) const { return m_ausBlock[i]; }
    void FromUnsignedInt(int i, unsigned int v) { m_ausBlock[i] = static_cast<std::uint16_t>(v); }
    // Signed three-way comparison: -1, 0 or +1.
    int Compare(const TInteger& other) const;
    bool IsNegative() const { return (m_ausBlock[BLOCKS - 1] & 0x8000u) != 0; }
    bool IsZero() const;
    // The magnitude, valid as an unsigned number even for -2^(32N-1).
    TInteger Magnitude() const { return IsNegative() ? -*this : *this; }

    std::uint16_t m_ausBlock[BLOCKS];
};

extern template class TInteger<2>;
extern template class TInteger<4>;
extern template class TInteger<16>;
extern template class TInteger<32>;

}  // namespace kwRationalArithmetic
