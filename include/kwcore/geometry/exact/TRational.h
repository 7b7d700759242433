// kwRationalArithmetic::TRational: an exact rational number, numerator over a
// positive denominator, both TInteger<N>. After every operation numerator and
// denominator lose their common power of two, which keeps the binary fractions
// built from floating-point coordinates as small as they can be; fractions
// with power-of-two denominators are added by shifting instead of by cross
// products for the same reason. No other common factor is removed.
//
// Values whose exact form outgrows N words wrap as TInteger does. A zero
// denominator (a quotient by zero) gives 0. Exported for N = 16 and 32;
// TRVector<D, N> holds D of them, exported for D = 2.
//
//   TRational<16> third(1, 3), x = TRational<16>::FromDouble(0.1);
//   bool below = (x - third) < TRational<16>(0);  // exact: 0.1 (as stored) < 1/3
#pragma once

#include <cstdint>

#include "kwcore/geometry/exact/TInteger.h"
#include "kwcore/platform/Export.h"

namespace kwRationalArithmetic {

template <int N>
class KWCORE_API TRational {
public:
    TRational(std::int64_t iNumerator = 0);
    TRational(std::int64_t iNumerator, std::int64_t iDenominator);
    TRational(const TInteger<N>& numerator, const TInteger<N>& denominator);
    // The exact value of d (every finite double is a binary fraction); 0 for
    // NaN and infinities.
    static TRational FromDouble(double d);

    const TInteger<N>& GetNumerator() const { return m_Numerator; }
    const TInteger<N>& GetDenominator() const { return m_Denominator; }

    TRational operator-() const;
    TRational operator+(const TRational& other) const;
    TRational operator-(const TRational& other) const;
    TRational operator*(const TRational& other) const;
    TRational operator/(const TRational& other) const;
    TRational& operator+=(const TRational& other);
    TRational& operator-=(const TRational& other);
    TRational& operator*=(const TRational& other);
    TRational& operator/=(const TRational& other);

    bool operator==(const TRational& other) const { return Compare(other) == 0; }
    bool operator!=(const TRational& other) const { return Compare(other) != 0; }
    bool operator<(const TRational& other) const { return Compare(other) < 0; }
    bool operator>(const TRational& other) const { return Compare(other) > 0; }
    bool operator<=(const TRational& other) const { return Compare(other) <= 0; }
    bool operator>=(const TRational& other) const { return Compare(other) >= 0; }

    // -1, 0 or +1: the sign of the value.
    int GetSign() const { return m_Numerator.GetSign(); }

private:
    // Makes the denominator positive (0 when it is zero) and reduces.
    void Normalize();
    // Divides numerator and denominator by their common power of two.
    void EliminatePowersOfTwo();
    // Exponent k when the denominator is 2^k, else -1.
    int DenominatorPowerOfTwo() const;
    int Compare(const TRational& other) const;

    TInteger<N> m_Numerator;
    TInteger<N> m_Denominator;
};

extern template class TRational<16>;
extern template class TRational<32>;

// D exact rational components, indexed from 0.
template <int D, int N>
class KWCORE_API TRVector {
public:
    TRational<N>& operator[](int i) { return m_aComponent[i]; }
    const TRational<N>& operator[](int i) const { return m_aComponent[i]; }

private:
    TRational<N> m_aComponent[D];
};

extern template class TRVector<2, 16>;
extern template class TRVector<2, 32>;

}  // namespace kwRationalArithmetic
