// kwRationalArithmetic::TRational and TRVector, and their exported instantiations.
#include "kwcore/geometry/exact/TRational.h"

#include <cmath>

namespace kwRationalArithmetic {

template <int N>
TRational<N>::TRational(std::int64_t iNumerator) : m_Numerator(iNumerator), m_Denominator(1) {}

template <int N>
TRational<N>::TRational(std::int64_t iNumerator, std::int64_t iDenominator)
    : m_Numerator(iNumerator), m_Denominator(iDenominator) {
    Normalize();
}

template <int N>
TRational<N>::TRational(const TInteger<N>& numerator, const TInteger<N>& denominator)
    : m_Numerator(numerator), m_Denominator(denominator) {
    Normalize();
}

template <int N>
TRational<N> TRational<N>::FromDouble(double d) {
    TRational result;
    if (!std::isfinite(d) || d == 0.0) {
        return result;
    }
    // d = m * 2^(e - 53) with m an integer of 53 bits.
    int exponent = 0;
    const double fraction = std::frexp(d, &exponent);
    auto mantissa = static_cast<std::int64_t>(std::ldexp(fraction, 53));
    int power = exponent - 53;
    while ((mantissa & 1) == 0) {
        mantissa /= 2;
        ++power;
    }
    result.m_Numerator = TInteger<N>(mantissa);
    if (power >= 0) {
        result.m_Numerator <<= power;
    } else if (-power < TInteger<N>::BITS - 1) {
        result.m_Denominator <<= -power;
    } else {
        // Below the smallest magnitude N words can hold.
        result.m_Numerator = TInteger<N>(0);
    }
    return result;
}

template <int N>
void TRational<N>::Normalize() {
    if (m_Denominator.IsZero()) {
        m_Numerator = TInteger<N>(0);
        m_Denominator = TInteger<N>(1);
        return;
    }
    if (m_Denominator.IsNegative()) {
        m_Numerator = -m_Numerator;
        m_Denominator = -m_Denominator;
    }
    EliminatePowersOfTwo();
}

template <int N>
void TRational<N>::EliminatePowersOfTwo() {
    const int numeratorBit = m_Numerator.GetTrailingBit();
    if (numeratorBit < 0) {
        m_Denominator = TInteger<N>(1);
        return;
    }
    const int denominatorBit = m_Denominator.GetTrailingBit();
    const int common = numeratorBit < denominatorBit ? numeratorBit : denominatorBit;
    if (common > 0) {
        m_Numerator >>= common;
        m_Denominator >>= common;
    }
}

template <int N>
int TRational<N>::DenominatorPowerOfTwo() const {
    const int trailing = m_Denominator.GetTrailingBit();
    return trailing == m_Denominator.GetLeadingBit() ? trailing : -1;
}

template <int N>
TRational<N> TRational<N>::operator-() const {
    TRational result(*this);
    result.m_Numerator = -m_Numerator;
    return result;
}

template <int N>
TRational<N>& TRational<N>::operator+=(const TRational& other) {
    const int power = DenominatorPowerOfTwo();
    const int otherPower = other.DenominatorPowerOfTwo();
    if (power >= 0 && otherPower >= 0) {
        // Binary fractions: bring both to the larger denominator by shifting.
        if (power >= otherPower) {
            TInteger<N> scaled = other.m_Numerator;
            scaled <<= power - otherPower;
            m_Numerator += scaled;
        } else {
            m_Numerator <<= otherPower - power;
            m_Numerator += other.m_Numerator;
            m_Denominator = other.m_Denominator;
        }
    } else if (m_Denominator == other.m_Denominator) {
        m_Numerator += other.m_Numerator;
    } else {
        m_Numerator = m_Numerator * other.m_Denominator + other.m_Numerator * m_Denominator;
        m_Denominator *= other.m_Denominator;
    }
    EliminatePowersOfTwo();
    return *this;
}

template <int N>
TRational<N>& TRational<N>::operator-=(const TRational& other) {
    return *this += -other;
}

template <int N>
TRational<N>& TRational<N>::operator*=(const TRational& other) {
    m_Numerator *= other.m_Numerator;
    m_Denominator *= other.m_Denominator;
    EliminatePowersOfTwo();
    return *this;
}

template <int N>
TRational<N>& TRational<N>::operator/=(const TRational& other) {
    const TInteger<N> numerator = m_Numerator * other.m_Denominator;
    m_Denominator *= other.m_Numerator;
    m_Numerator = numerator;
    Normalize();
    return *this;
}

template <int N>
TRational<N> TRational<N>::operator+(const TRational& other) const {
    TRational result(*this);
    result += other;
    return result;
}

template <int N>
TRational<N> TRational<N>::operator-(const TRational& other) const {
    TRational result(*this);
    result -= other;
    return result;
}

template <int N>
TRational<N> TRational<N>::operator*(const TRational& other) const {
    TRational result(*this);
    result *= other;
    return result;
}

template <int N>
TRational<N> TRational<N>::operator/(const TRational& other) const {
    TRational result(*this);
    result /= other;
    return result;
}

template <int N>
int TRational<N>::Compare(const TRational& other) const {
    const int sign = m_Numerator.GetSign();
    const int otherSign = other.m_Numerator.GetSign();
    if (sign != otherSign) {
        return sign < otherSign ? -1 : 1;
    }
    if (sign == 0) {
        return 0;
    }
    if (m_Denominator == other.m_Denominator) {
        return m_Numerator.Compare(other.m_Numerator);
    }
    // Denominators are positive, so cross products keep the order.
    return (m_Numerator * other.m_Denominator).Compare(other.m_Numerator * m_Denominator);
}

template class TRational<16>;
template class TRational<32>;
template class TRVector<2, 16>;
template class TRVector<2, 32>;

}  // namespace kwRationalArithmetic
