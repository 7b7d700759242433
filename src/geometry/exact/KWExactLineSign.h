// The exact side of a point relative to a line, for doubles, by error-free
// transformations: cheap where the coordinate differences are exact, and
// undecided (false) otherwise, where callers fall back on rationals.
#pragma once

#include <cmath>

#include "KWErrorFreeArithmetic.h"

namespace kwErrorFreeArithmetic {

inline int SignOf(double value) {
    return (value > 0) - (value < 0);
}

// a - b, when it is exact in double.
inline bool ExactDifference(double a, double b, double& difference) {
    double error;
    TwoSum(a, -b, difference, error);
    return error == 0;
}

// The sign of a * b - c * d, exactly.
inline int ExactProductDifferenceSign(double a, double b, double c, double d) {
    CExpansionT<4> exact;
    exact.AddProduct(a, b);
    exact.AddProduct(-c, d);
    return SignOf(exact.Largest());
}

// The exact sign of (p - v0) x (v1 - v0) when the coordinate differences are
// exact in double and no product leaves the safe range: the two products
// become two-term expansions and their difference is summed exactly. Returns
// false when it cannot decide (the caller then uses rationals).
inline bool ExactLineSign(double px, double py, double x0, double y0, double x1, double y1,
                          int& sign) {
    double d[4];
    if (!ExactDifference(px, x0, d[0]) || !ExactDifference(py, y0, d[1]) ||
        !ExactDifference(x1, x0, d[2]) || !ExactDifference(y1, y0, d[3])) {
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
    // rounding error can reach.
    const double left = d[0] * d[3];
    const double right = d[1] * d[2];
    const double determinant = left - right;
    const double bound = kDeterminantBound * (std::fabs(left) + std::fabs(right));
    if (determinant > bound || -determinant > bound) {
        sign = determinant > 0 ? 1 : -1;
        return true;
    }
    sign = ExactProductDifferenceSign(d[0], d[3], d[1], d[2]);
    return true;
}

}  // namespace kwErrorFreeArithmetic
