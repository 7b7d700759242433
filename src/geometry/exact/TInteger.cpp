// kwRationalArithmetic::TInteger and its exported instantiations.
#include "kwcore/geometry/exact/TInteger.h"

#include <cmath>
#include <cstring>

namespace kwRationalArithmetic {

template <int N>
TInteger<N>::TInteger(std::int64_t iValue) {
    std::uint64_t bits = static_cast<std::uint64_t>(iValue);
    const std::uint16_t fill = iValue < 0 ? 0xFFFFu : 0u;
    for (int i = 0; i < BLOCKS; ++i) {
        if (i < 4) {
            m_ausBlock[i] = static_cast<std::uint16_t>(bits & 0xFFFFu);
            bits >>= 16;
        } else {
            m_ausBlock[i] = fill;
        }
    }
}

template <int N>
TInteger<N> TInteger<N>::FromDouble(double d) {
    TInteger result;
    if (!std::isfinite(d)) {
        return result;
    }
    const bool negative = d < 0;
    double magnitude = std::trunc(std::fabs(d));
    if (magnitude < 1.0) {
        return result;
    }
    // magnitude = m * 2^e with m an integer of at most 53 bits.
    int exponent = 0;
    const double fraction = std::frexp(magnitude, &exponent);
    const auto mantissa = static_cast<std::int64_t>(std::ldexp(fraction, 53));
    result = TInteger(mantissa);
    if (exponent >= 53) {
        result <<= exponent - 53;
    } else {
        result >>= 53 - exponent;
    }
    return negative ? -result : result;
}

template <int N>
TInteger<N> TInteger<N>::operator-() const {
    TInteger result;
    unsigned int carry = 1;
    for (int i = 0; i < BLOCKS; ++i) {
        const unsigned int sum = (~static_cast<unsigned int>(m_ausBlock[i]) & 0xFFFFu) + carry;
        result.m_ausBlock[i] = static_cast<std::uint16_t>(sum);
        carry = sum >> 16;
    }
    return result;
}

template <int N>
TInteger<N> TInteger<N>::operator+(const TInteger& other) const {
    TInteger result(*this);
    result += other;
    return result;
}

template <int N>
TInteger<N> TInteger<N>::operator-(const TInteger& other) const {
    TInteger result(*this);
    result -= other;
    return result;
}

template <int N>
TInteger<N>& TInteger<N>::operator+=(const TInteger& other) {
    unsigned int carry = 0;
    for (int i = 0; i < BLOCKS; ++i) {
        const unsigned int sum =
            static_cast<unsigned int>(m_ausBlock[i]) + other.m_ausBlock[i] + carry;
        m_ausBlock[i] = static_cast<std::uint16_t>(sum);
        carry = sum >> 16;
    }
    return *this;
}

template <int N>
TInteger<N>& TInteger<N>::operator-=(const TInteger& other) {
    // a - b = a + ~b + 1
    unsigned int carry = 1;
    for (int i = 0; i < BLOCKS; ++i) {
        const unsigned int sum = static_cast<unsigned int>(m_ausBlock[i]) +
                                 (~static_cast<unsigned int>(other.m_ausBlock[i]) & 0xFFFFu) +
                                 carry;
        m_ausBlock[i] = static_cast<std::uint16_t>(sum);
        carry = sum >> 16;
    }
    return *this;
}

template <int N>
TInteger<N> TInteger<N>::operator*(const TInteger& other) const {
    // Schoolbook product of the magnitudes over their used blocks only, so
    // small values in a wide integer multiply cheaply; the sign comes last.
    const TInteger a = Magnitude();
    const TInteger b = other.Magnitude();
    int usedA = BLOCKS;
    while (usedA > 0 && a.m_ausBlock[usedA - 1] == 0) {
        --usedA;
    }
    int usedB = BLOCKS;
    while (usedB > 0 && b.m_ausBlock[usedB - 1] == 0) {
        --usedB;
    }
    TInteger product;
    for (int i = 0; i < usedA; ++i) {
        const std::uint32_t ai = a.m_ausBlock[i];
        if (ai == 0) {
            continue;
        }
        std::uint32_t carry = 0;
        int k = i;
        for (int j = 0; j < usedB && k < BLOCKS; ++j, ++k) {
            // 0xFFFF * 0xFFFF + 0xFFFF + 0xFFFF fits in 32 bits.
            const std::uint32_t t = ai * b.m_ausBlock[j] + product.m_ausBlock[k] + carry;
            product.m_ausBlock[k] = static_cast<std::uint16_t>(t);
            carry = t >> 16;
        }
        for (; carry != 0 && k < BLOCKS; ++k) {
            const std::uint32_t t = product.m_ausBlock[k] + carry;
            product.m_ausBlock[k] = static_cast<std::uint16_t>(t);
            carry = t >> 16;
        }
    }
    return IsNegative() != other.IsNegative() ? -product : product;
}

template <int N>
TInteger<N>& TInteger<N>::operator*=(const TInteger& other) {
    *this = *this * other;
    return *this;
}

template <int N>
TInteger<N>& TInteger<N>::operator>>=(int iShift) {
    const std::uint16_t fill = IsNegative() ? 0xFFFFu : 0u;
    if (iShift <= 0) {
        return iShift < 0 ? (*this <<= -iShift) : *this;
    }
    if (iShift >= BITS) {
        std::memset(m_ausBlock, fill == 0 ? 0 : 0xFF, sizeof(m_ausBlock));
        return *this;
    }
    const int blockShift = iShift / 16;
    const int bitShift = iShift % 16;
    for (int i = 0; i < BLOCKS; ++i) {
        const int low = i + blockShift;
        const unsigned int lo = low < BLOCKS ? m_ausBlock[low] : fill;
        const unsigned int hi = low + 1 < BLOCKS ? m_ausBlock[low + 1] : fill;
        const unsigned int both = lo | (hi << 16);
        m_ausBlock[i] = static_cast<std::uint16_t>(both >> bitShift);
    }
    return *this;
}

template <int N>
TInteger<N>& TInteger<N>::operator<<=(int iShift) {
    if (iShift <= 0) {
        return iShift < 0 ? (*this >>= -iShift) : *this;
    }
    if (iShift >= BITS) {
        std::memset(m_ausBlock, 0, sizeof(m_ausBlock));
        return *this;
    }
    const int blockShift = iShift / 16;
    const int bitShift = iShift % 16;
    for (int i = BLOCKS - 1; i >= 0; --i) {
        const int high = i - blockShift;
        const unsigned int hi = high >= 0 ? m_ausBlock[high] : 0u;
        const unsigned int lo = high - 1 >= 0 ? m_ausBlock[high - 1] : 0u;
        const unsigned int both = (hi << 16) | lo;
        m_ausBlock[i] = static_cast<std::uint16_t>(both >> (16 - bitShift));
    }
    return *this;
}

template <int N>
std::uint32_t TInteger<N>::GetWord(int i) const {
    if (i < 0 || i >= N) {
        return IsNegative() && i >= N ? 0xFFFFFFFFu : 0u;
    }
    return static_cast<std::uint32_t>(m_ausBlock[2 * i]) |
           (static_cast<std::uint32_t>(m_ausBlock[2 * i + 1]) << 16);
}

template <int N>
bool TInteger<N>::IsZero() const {
    for (int i = 0; i < BLOCKS; ++i) {
        if (m_ausBlock[i] != 0) {
            return false;
        }
    }
    return true;
}

template <int N>
int TInteger<N>::GetSign() const {
    if (IsNegative()) {
        return -1;
    }
    return IsZero() ? 0 : 1;
}

template <int N>
int TInteger<N>::GetTrailingBlock() const {
    for (int i = 0; i < BLOCKS; ++i) {
        if (m_ausBlock[i] != 0) {
            return i;
        }
    }
    return -1;
}

template <int N>
int TInteger<N>::GetTrailingBit() const {
    const int block = GetTrailingBlock();
    if (block < 0) {
        return -1;
    }
    unsigned int value = m_ausBlock[block];
    int bit = 0;
    while ((value & 1u) == 0) {
        value >>= 1;
        ++bit;
    }
    return 16 * block + bit;
}

template <int N>
int TInteger<N>::GetLeadingBit() const {
    const TInteger magnitude = Magnitude();
    for (int i = BLOCKS - 1; i >= 0; --i) {
        unsigned int value = magnitude.m_ausBlock[i];
        if (value != 0) {
            int bit = 15;
            while ((value & 0x8000u) == 0) {
                value <<= 1;
                --bit;
            }
            return 16 * i + bit;
        }
    }
    return -1;
}

template <int N>
int TInteger<N>::Compare(const TInteger& other) const {
    const bool negative = IsNegative();
    if (negative != other.IsNegative()) {
        return negative ? -1 : 1;
    }
    // Same sign: two's complement forms order like unsigned numbers.
    for (int i = BLOCKS - 1; i >= 0; --i) {
        if (m_ausBlock[i] != other.m_ausBlock[i]) {
            return m_ausBlock[i] < other.m_ausBlock[i] ? -1 : 1;
        }
    }
    return 0;
}

template class TInteger<2>;
template class TInteger<4>;
template class TInteger<16>;
template class TInteger<32>;

}  // namespace kwRationalArithmetic
