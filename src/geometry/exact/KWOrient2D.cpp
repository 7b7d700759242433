// Adaptive orientation test in floating-point expansion arithmetic.
//
// An expansion is a sum of doubles, ordered by increasing magnitude, whose
// components do not overlap; its sign is the sign of its largest component.
// The error-free transformations below (sum, difference and product of two
// doubles as a rounded value plus its exact error) build such expansions
// without any wider type, under round-to-nearest double arithmetic.
#include "kwcore/geometry/exact/KWOrient2D.h"

#include <cmath>

namespace kwPolygonTriangulation {
namespace {

// Half an ulp of 1 (2^-53), the relative rounding error of one operation.
constexpr double kEpsilon = 1.0 / 9007199254740992.0;
// 2^27 + 1: splits a double into two halves of 26 significant bits each.
constexpr double kSplitter = 134217729.0;
// Forward error bounds of the three stages, relative to |detleft| + |detright|
// (the last one relative to the stage's own estimate).
constexpr double kBoundA = (3.0 + 16.0 * kEpsilon) * kEpsilon;
constexpr double kBoundB = (2.0 + 12.0 * kEpsilon) * kEpsilon;
constexpr double kBoundC = (9.0 + 64.0 * kEpsilon) * kEpsilon * kEpsilon;
constexpr double kResultBound = (3.0 + 8.0 * kEpsilon) * kEpsilon;

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

// Adds one double to an expansion of `count` components; drops zero
// components. h may not alias e. Returns the new count.
int GrowExpansion(int count, const double* e, double b, double* h) {
    int out = 0;
    double running = b;
    for (int i = 0; i < count; ++i) {
        double error;
        TwoSum(running, e[i], running, error);
        if (error != 0.0) {
            h[out++] = error;
        }
    }
    if (running != 0.0 || out == 0) {
        h[out++] = running;
    }
    return out;
}

// Expansion accumulator of at most 32 components, enough for the orientation
// determinant's sixteen exact products.
class CExpansion {
public:
    void Add(double value) {
        double grown[kCapacity];
        m_count = GrowExpansion(m_count, m_components, value, grown);
        for (int i = 0; i < m_count; ++i) {
            m_components[i] = grown[i];
        }
    }
    // Adds a * b exactly.
    void AddProduct(double a, double b) {
        double product, error;
        TwoProduct(a, b, product, error);
        Add(error);
        Add(product);
    }
    double Estimate() const {
        double sum = 0.0;
        for (int i = 0; i < m_count; ++i) {
            sum += m_components[i];
        }
        return sum;
    }
    double Largest() const { return m_count > 0 ? m_components[m_count - 1] : 0.0; }

private:
    static constexpr int kCapacity = 32;
    double m_components[kCapacity] = {};
    int m_count = 0;
};

// The rounded differences and their rounding errors.
struct SDifferences {
    double acx, acy, bcx, bcy;
    double acxTail, acyTail, bcxTail, bcyTail;
};

SDifferences Differences(double ax, double ay, double bx, double by, double cx, double cy) {
    SDifferences d;
    d.acx = ax - cx;
    d.bcx = bx - cx;
    d.acy = ay - cy;
    d.bcy = by - cy;
    d.acxTail = TwoDiffTail(ax, cx, d.acx);
    d.bcxTail = TwoDiffTail(bx, cx, d.bcx);
    d.acyTail = TwoDiffTail(ay, cy, d.acy);
    d.bcyTail = TwoDiffTail(by, cy, d.bcy);
    return d;
}

// The exact determinant as an expansion: with each difference written as
// rounded value plus tail, the product terms of
// (acx + acxTail)(bcy + bcyTail) - (acy + acyTail)(bcx + bcxTail).
CExpansion ExactDeterminant(const SDifferences& d) {
    CExpansion exact;
    exact.AddProduct(d.acx, d.bcy);
    exact.AddProduct(-d.acy, d.bcx);
    exact.AddProduct(d.acx, d.bcyTail);
    exact.AddProduct(d.acxTail, d.bcy);
    exact.AddProduct(-d.acy, d.bcxTail);
    exact.AddProduct(-d.acyTail, d.bcx);
    exact.AddProduct(d.acxTail, d.bcyTail);
    exact.AddProduct(-d.acyTail, d.bcxTail);
    return exact;
}

// The stages after the first: the exact head products, then the first-order
// tail correction, then the exact value.
double AdaptiveOrientation(double ax, double ay, double bx, double by, double cx, double cy,
                           double detSum) {
    const SDifferences d = Differences(ax, ay, bx, by, cx, cy);

    CExpansion head;
    head.AddProduct(d.acx, d.bcy);
    head.AddProduct(-d.acy, d.bcx);
    double det = head.Estimate();
    double bound = kBoundB * detSum;
    if (det >= bound || -det >= bound) {
        return det;
    }
    if (d.acxTail == 0.0 && d.acyTail == 0.0 && d.bcxTail == 0.0 && d.bcyTail == 0.0) {
        // The differences were exact, so the head is the whole determinant.
        return head.Largest();
    }

    bound = kBoundC * detSum + kResultBound * std::fabs(det);
    det += (d.acx * d.bcyTail + d.bcy * d.acxTail) - (d.acy * d.bcxTail + d.bcx * d.acyTail);
    if (det >= bound || -det >= bound) {
        return det;
    }
    return ExactDeterminant(d).Largest();
}

}  // namespace

double orient2d(double ax, double ay, double bx, double by, double cx, double cy) {
    const double detLeft = (ax - cx) * (by - cy);
    const double detRight = (ay - cy) * (bx - cx);
    const double det = detLeft - detRight;

    // When the two products differ in sign (or one is zero) the subtraction
    // cannot cancel, and the rounded sign is right.
    double detSum;
    if (detLeft > 0.0) {
        if (detRight <= 0.0) {
            return det;
        }
        detSum = detLeft + detRight;
    } else if (detLeft < 0.0) {
        if (detRight >= 0.0) {
            return det;
        }
        detSum = -detLeft - detRight;
    } else {
        return det;
    }

    const double bound = kBoundA * detSum;
    if (det >= bound || -det >= bound) {
        return det;
    }
    return AdaptiveOrientation(ax, ay, bx, by, cx, cy, detSum);
}

double orient2dExact(double ax, double ay, double bx, double by, double cx, double cy) {
    return ExactDeterminant(Differences(ax, ay, bx, by, cx, cy)).Largest();
}

}  // namespace kwPolygonTriangulation
