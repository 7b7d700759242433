// Adaptive orientation test in floating-point expansion arithmetic: each
// stage refines the determinant with more of its exact terms until its sign
// is certain, under round-to-nearest double arithmetic and no wider type.
#include "kwcore/geometry/exact/KWOrient2D.h"

#include <cmath>

#include "KWErrorFreeArithmetic.h"

namespace kwPolygonTriangulation {
namespace {

using kwErrorFreeArithmetic::kDeterminantBound;
using kwErrorFreeArithmetic::kEpsilon;
using kwErrorFreeArithmetic::TwoDiffTail;

// Forward error bounds of the later stages, relative to |detleft| + |detright|
// (the last one relative to the stage's own estimate).
constexpr double kBoundB = (2.0 + 12.0 * kEpsilon) * kEpsilon;
constexpr double kBoundC = (9.0 + 64.0 * kEpsilon) * kEpsilon * kEpsilon;
constexpr double kResultBound = (3.0 + 8.0 * kEpsilon) * kEpsilon;

// Enough for the orientation determinant's sixteen exact products.
typedef kwErrorFreeArithmetic::CExpansionT<32> CExpansion;

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

    const double bound = kDeterminantBound * detSum;
    if (det >= bound || -det >= bound) {
        return det;
    }
    return AdaptiveOrientation(ax, ay, bx, by, cx, cy, detSum);
}

double orient2dExact(double ax, double ay, double bx, double by, double cx, double cy) {
    return ExactDeterminant(Differences(ax, ay, bx, by, cx, cy)).Largest();
}

}  // namespace kwPolygonTriangulation
