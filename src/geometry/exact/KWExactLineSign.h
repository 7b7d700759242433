// The exact side of a point relative to a line, for doubles, by error-free
// transformations: cheap where the coordinate differences are exact, and
// undecided (false) otherwise, where callers fall back on rationals. Needs
// every operation rounded on its own (no contraction into fused
// multiply-adds), which the build sets for the sources that include it.
#pragma once

#include <cmath>

namespace kwRationalArithmetic {
namespace detail {

// Error-free transformations on doubles: a + b = sum + error exactly, and
// a * b = product + error exactly (Dekker's splitting; no fused multiply-add
// needed). Valid while nothing overflows or underflows, which the caller
// checks.
inline void TwoSum(double a, double b, double& sum, double& error) {
    sum = a + b;
    const double bVirtual = sum - a;
    const double aVirtual = sum - bVirtual;
    error = (a - aVirtual) + (b - bVirtual);
}

inline void Split(double a, double& high, double& low) {
    const double c = 134217729.0 * a;  // 2^27 + 1
    high = c - (c - a);
    low = a - high;
}

inline void TwoProduct(double a, double b, double& product, double& error) {
    product = a * b;
    double aHigh, aLow, bHigh, bLow;
    Split(a, aHigh, aLow);
    Split(b, bHigh, bLow);
    error = aLow * bLow - (((product - aHigh * bHigh) - aLow * bHigh) - aHigh * bLow);
}

inline int SignOf(double value) {
    return (value > 0) - (value < 0);
}

// The exact sign of (p - v0) x (v1 - v0) when the coordinate differences are
// exact in double and no product leaves the safe range: the two products
// become two-term expansions and their difference is summed exactly. Returns
// false when it cannot decide (the caller then uses rationals).
inline bool ExactLineSign(double px, double py, double x0, double y0, double x1, double y1,
                          int& sign) {
    double d[4], error;
    TwoSum(px, -x0, d[0], error);
    if (error != 0) {
        return false;
    }
    TwoSum(py, -y0, d[1], error);
    if (error != 0) {
        return false;
    }
    TwoSum(x1, -x0, d[2], error);
    if (error != 0) {
        return false;
    }
    TwoSum(y1, -y0, d[3], error);
    if (error != 0) {
        return false;
    }
    // When one product is zero or the two differ in sign, the signs of the
    // factors decide: points on axis-parallel lines never multiply.
    const int first = SignOf(d[0]) * SignOf(d[3]);
    const int second = SignOf(d[1]) * SignOf(d[2]);
    if (first == 0 || second == 0 || first != second) {
        sign = first != 0 ? first : -second;
        return true;
    }
    // Products of magnitudes within [2^-400, 2^400] keep Dekker's split exact.
    for (double value : d) {
        const double magnitude = std::fabs(value);
        if (!(magnitude < 0x1p400) || (magnitude != 0 && magnitude < 0x1p-400)) {
            return false;
        }
    }
    // The rounded determinant, when it is further from zero than its
    // rounding error can reach (the classic bound (3 + 16e)e of the
    // orientation test, e = 2^-53).
    const double left = d[0] * d[3];
    const double right = d[1] * d[2];
    const double determinant = left - right;
    const double bound = (3.0 + 16.0 * 0x1p-53) * 0x1p-53 * (std::fabs(left) + std::fabs(right));
    if (determinant > bound || -determinant > bound) {
        sign = determinant > 0 ? 1 : -1;
        return true;
    }
    double term[4];
    TwoProduct(d[0], d[3], term[2], term[0]);
    TwoProduct(-d[1], d[2], term[3], term[1]);
    // Grow an expansion from the four terms; its largest nonzero component
    // carries the sign of the exact sum.
    double expansion[4];
    int count = 0;
    for (double value : term) {
        double carry = value;
        for (int k = 0; k < count; ++k) {
            double sum;
            TwoSum(carry, expansion[k], sum, expansion[k]);
            carry = sum;
        }
        expansion[count++] = carry;
    }
    sign = 0;
    for (int k = count - 1; k >= 0; --k) {
        if (expansion[k] != 0) {
            sign = expansion[k] > 0 ? 1 : -1;
            break;
        }
    }
    return true;
}

}  // namespace detail
}  // namespace kwRationalArithmetic
