// Error-free transformations of doubles and the expansions built from them:
// the rounded sum (product) of two doubles together with its exact rounding
// error, so that a + b = sum + error and a * b = product + error hold exactly
// under round-to-nearest while nothing overflows or underflows. An expansion
// is a sum of such doubles, ordered by increasing magnitude, whose components
// do not overlap; its sign is the sign of its largest component.
//
// Exact only when every product and sum is rounded on its own: a multiply
// and an add contracted into one fused instruction lose the very error these
// functions compute. The build turns contraction off for the sources named in
// kwcore_round_each_operation() (src/geometry/CMakeLists.txt), and defines
// KWCORE_FP_CONTRACT_OFF for them; any other source that includes this header,
// directly or not, stops here.
#pragma once

#if !defined(KWCORE_FP_CONTRACT_OFF)
#error \
    "Name this source in kwcore_round_each_operation(): error-free arithmetic needs -ffp-contract=off"
#endif

namespace kwErrorFreeArithmetic {

// Half an ulp of 1 (2^-53), the relative rounding error of one operation.
constexpr double kEpsilon = 1.0 / 9007199254740992.0;
// 2^27 + 1: splits a double into two halves of 26 significant bits each.
constexpr double kSplitter = 134217729.0;
// The forward error bound of the rounded 2x2 determinant ad - bc, relative to
// |ad| + |bc|.
constexpr double kDeterminantBound = (3.0 + 16.0 * kEpsilon) * kEpsilon;

// a + b = sum + error exactly.
inline void TwoSum(double a, double b, double& sum, double& error) {
    sum = a + b;
    const double bVirtual = sum - a;
    const double aVirtual = sum - bVirtual;
    error = (a - aVirtual) + (b - bVirtual);
}

// The rounding error of difference = a - b.
inline double TwoDiffTail(double a, double b, double difference) {
    const double bVirtual = a - difference;
    const double aVirtual = difference + bVirtual;
    return (a - aVirtual) + (bVirtual - b);
}

inline void Split(double a, double& high, double& low) {
    const double scaled = kSplitter * a;
    high = scaled - (scaled - a);
    low = a - high;
}

// a * b = product + error exactly (Dekker's product over split halves).
inline void TwoProduct(double a, double b, double& product, double& error) {
    product = a * b;
    double aHigh, aLow, bHigh, bLow;
    Split(a, aHigh, aLow);
    Split(b, bHigh, bLow);
    const double rest = product - aHigh * bHigh - aLow * bHigh - aHigh * bLow;
    error = aLow * bLow - rest;
}

// An expansion of at most Capacity components (two for each product added),
// grown in place. Zero components are kept: they change neither the sum nor
// the largest nonzero component, and not testing for them is cheaper on the
// short expansions of the predicates.
template <int Capacity>
class CExpansionT {
public:
    void Add(double value) {
        double carry = value;
        for (int i = 0; i < m_iCount; ++i) {
            double sum;
            TwoSum(carry, m_adComponent[i], sum, m_adComponent[i]);
            carry = sum;
        }
        m_adComponent[m_iCount++] = carry;
    }
    // Adds a * b exactly.
    void AddProduct(double a, double b) {
        double product, error;
        TwoProduct(a, b, product, error);
        Add(error);
        Add(product);
    }
    // The rounded sum of the components.
    double Estimate() const {
        double sum = 0.0;
        for (int i = 0; i < m_iCount; ++i) {
            sum += m_adComponent[i];
        }
        return sum;
    }
    // The largest nonzero component, whose sign is the exact value's.
    double Largest() const {
        for (int i = m_iCount - 1; i >= 0; --i) {
            if (m_adComponent[i] != 0.0) {
                return m_adComponent[i];
            }
        }
        return 0.0;
    }

private:
    double m_adComponent[Capacity];
    int m_iCount = 0;
};

}  // namespace kwErrorFreeArithmetic
