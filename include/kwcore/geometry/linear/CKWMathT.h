// CKWMathT<Real, Other>: the geometry kernel's scalar math.
//
// Only static members: the kernel's constants, thin wrappers over the runtime
// math library, rounding and tolerance rules, planar angle and construction
// helpers, fast approximations and special functions. Real is the working
// precision; Other is the opposite precision of the pair. The library exports
// CKWMathT<float, double> and CKWMathT<double, float>.
//
// Every named constant holds its single-precision value in both pairs, so
// tolerances and pi behave alike whichever pair a host uses.
//
//   using Math = CKWMathT<float, double>;
//   float a = Math::NormalizeAngle(-0.5f * Math::PI);   // 1.5 pi
//   bool same = Math::Approx_Equal(1.06f, 1.14f, 1);     // true: both round to 1.1
#pragma once

#include <cmath>

#include "kwcore/platform/Export.h"

template <class Real, class Other>
class KWCORE_API CKWPoint2T;
template <class Real, class Other>
class KWCORE_API CKWPoint4T;

template <class Real, class Other>
class KWCORE_API CKWMathT {
public:
    using Point2 = CKWPoint2T<Real, Other>;
    using Point4 = CKWPoint4T<Real, Other>;

    CKWMathT& operator=(const CKWMathT&) { return *this; }

    static const Real EPSILON;         // 2^-23, the kernel's one absolute tolerance
    static const Real ZERO_TOLERANCE;  // 1e-6
    static const Real MAX_REAL;        // the largest finite float, in both pairs
    static const Real PI;
    static const Real TWO_PI;
    static const Real HALF_PI;
    static const Real QUARTER_PI;
    static const Real INV_PI;
    static const Real INV_TWO_PI;  // 2/pi, not 1/(2 pi): kept for compatibility
    static const Real E;
    static const Real DEG_TO_RAD;
    static const Real RAD_TO_DEG;
    static const Real ONE_DEGREE;
    static const Real TWO_DEGREES;
    static const Real THREE_DEGREES;
    static const Real FIVE_DEGREES;
    static const Real TEN_DEGREES;

    // Runtime math. ACos and ASin clamp their argument to [-1, 1].
    static Real ACos(Real x) { return std::acos(Clamp1(x)); }
    static Real ASin(Real x) { return std::asin(Clamp1(x)); }
    static Real ATan(Real x) { return std::atan(x); }
    static Real ATan2(Real y, Real x) { return std::atan2(y, x); }
    static Real Ceil(Real x) { return std::ceil(x); }
    static Real Cos(Real x) { return std::cos(x); }
    static Real Exp(Real x) { return std::exp(x); }
    static Real FAbs(Real x) { return std::fabs(x); }
    static Real Floor(Real x) { return std::floor(x); }
    static Real FMod(Real x, Real y) { return std::fmod(x, y); }
    static Real InvSqrt(Real x) { return Real(1) / std::sqrt(x); }
    static Real Log(Real x) { return std::log(x); }
    static Real Pow(Real base, Real exponent) { return std::pow(base, exponent); }
    static Real Sin(Real x) { return std::sin(x); }
    static Real Sqr(Real x) { return x * x; }
    static Real Sqrt(Real x) { return std::sqrt(x); }
    static Real Tan(Real x) { return std::tan(x); }
    static int Abs(int x) { return x < 0 ? -x : x; }
    static int Sign(int x) { return x > 0 ? 1 : (x < 0 ? -1 : 0); }
    static Real Sign(Real x) { return x > Real(0) ? Real(1) : (x < Real(0) ? Real(-1) : Real(0)); }
    static Real SimpleABS(const Real& x) { return x < Real(0) ? -x : x; }
    static void Swap(Real& a, Real& b) {
        Real t = a;
        a = b;
        b = t;
    }

    // Angle units. RadToDeg and ConvertToDeg use the factor 57.29577951308,
    // which differs in its last digits from RAD_TO_DEG; both are kept.
    static Real DegToRad(const Real& degrees) { return degrees * DEG_TO_RAD; }
    static Real RadToDeg(const Real& radians) { return radians * Real(57.29577951308); }
    static void ConvertToDeg(Real& angle) { angle = RadToDeg(angle); }
    static void ConvertToRad(Real& angle) { angle = DegToRad(angle); }

    // Fast approximations: polynomials, cheaper than the runtime's functions.
    // Grade 0 is the cheaper, grade 1 the more accurate. Maximum absolute
    // errors on each domain, in double (float adds its own rounding, below
    // 3e-7); outside the domain the polynomial is still evaluated and stays
    // finite but drifts away from the function:
    //   FastSin0, FastSin1       [0, pi/2]   7e-5, 2e-11
    //   FastCos0, FastCos1       [0, pi/2]   6e-4, 3e-10
    //   FastTan0, FastTan1       [0, pi/4]   3e-4, 8e-9
    //   FastInvSin, FastInvCos   [-1, 1]     4e-5 (clamped outside)
    //   FastInvTan0, FastInvTan1 [-1, 1]     7e-4, 6e-9
    //   FastInvSqrt              x > 0       relative 1.8e-3
    static Real FastSin0(Real x);
    static Real FastSin1(Real x);
    static Real FastCos0(Real x);
    static Real FastCos1(Real x);
    static Real FastTan0(Real x);
    static Real FastTan1(Real x);
    static Real FastInvSin(Real x);
    static Real FastInvCos(Real x);
    static Real FastInvTan0(Real x);
    static Real FastInvTan1(Real x);
    static Real FastInvSqrt(Real x);

    // Special functions, computed in double and accurate to the precision of
    // Real (relative 1e-14 in double against the C++ library's tgamma, lgamma,
    // erf, erfc and cyl_bessel_i). Poles of Gamma and LogGamma (0 and the
    // negative integers) give +infinity, as does overflow; Gamma(-infinity)
    // and any NaN argument give NaN. IncompleteGamma(a, x) is the regularized
    // lower incomplete gamma function P(a, x): 0 for a <= 0, x <= 0 or
    // a = +infinity, 1 for x = +infinity; its series and continued fraction
    // stop after 100000 terms, far more than a up to 1e6 needs. ModBessel0
    // and ModBessel1 are I0 and I1.
    static Real Gamma(Real x);
    static Real LogGamma(Real x);
    static Real IncompleteGamma(Real a, Real x);
    static Real Erf(Real x);
    static Real Erfc(Real x);
    static Real ModBessel0(Real x);
    static Real ModBessel1(Real x);

    // Random numbers from the runtime's generator (shared state; reseeded
    // with srand when seed is non-zero).
    static Real UnitRandom(unsigned seed = 0);
    static Real SymmetricRandom(unsigned seed = 0);
    static Real IntervalRandom(Real min, Real max, unsigned seed = 0);

    // Rounding to a step: floor(x/step + 0.5) * step, in double. A zero step
    // returns x. The digits form uses step 10^-digits (negative digits round
    // to tens, hundreds, ...).
    static Real Round(Real x, Real step);
    static Real Round(Real x, int digits);
    // Equality after rounding, not a distance test: values on either side of
    // a rounding boundary are unequal however close they are.
    static bool Approx_Equal(Real a, Real b, Real step);
    static bool Approx_Equal(Real a, Real b, int digits);

    // Planar angles, in radians. NormalizeAngle maps into [0, 2 pi) and gives
    // 0 for magnitudes beyond 1e6 (and infinities); NaN stays NaN. GetAngle is
    // the direction of the step from (x1, y1) to (x2, y2) in [0, 2 pi);
    // coincident points give HALF_PI.
    static Real NormalizeAngle(Real angle);
    static Real GetAngle(Real x1, Real y1, Real x2, Real y2);
    static Real GetAngle(const Point4& from, const Point4& to);
    // The unsigned difference of two direction angles, in [0, pi].
    static Real GetIncludedAngle(Real angle1, Real angle2);
    // For the path p1 -> p2 -> p3: the angle at p2 on the left of the path and
    // on its right, each in [0, 2 pi) and summing to 2 pi (0 and 0 when p1 and
    // p3 leave p2 in the same direction), and the signed turn, pi minus the
    // left angle, in (-pi, pi] (positive for a counter-clockwise turn).
    static Real GetLeftAngle(Real x1, Real y1, Real x2, Real y2, Real x3, Real y3);
    static Real GetLeftAngle(const Point4& p1, const Point4& p2, const Point4& p3);
    static Real GetRightAngle(Real x1, Real y1, Real x2, Real y2, Real x3, Real y3);
    static Real GetRightAngle(const Point4& p1, const Point4& p2, const Point4& p3);
    static Real GetTurnAngle(Real x1, Real y1, Real x2, Real y2, Real x3, Real y3);
    static Real GetTurnAngle(const Point4& p1, const Point4& p2, const Point4& p3);
    // The direction of the vector (dx, dy), as GetAngle(0, 0, dx, dy).
    static Real GetDirectionAngle(Real dx, Real dy);

    // Result codes of the line classifications.
    enum {
        POINT_RIGHT = -1,     // right of the directed line a -> b
        POINT_ON_LINE = 0,    // within ZERO_TOLERANCE of the line
        POINT_LEFT = 1,       // left of the directed line
        LINE_DEGENERATE = 2,  // a line's two points coincide (within ZERO_TOLERANCE)
    };
    enum {
        LINES_DEGENERATE = -1,         // a segment or line of zero length
        SEGMENTS_DISJOINT = 0,         // not parallel, but the segments do not meet
        LINES_INTERSECT = 1,           // one common point, given back
        LINES_PARALLEL = 2,            // parallel and apart
        LINES_COLLINEAR = 3,           // on one line (segments: overlapping or touching)
        SEGMENTS_COLLINEAR_APART = 4,  // on one line, but the segments do not meet
    };

    // Planar constructions on x and y. Each returns 1 on success and 0 when
    // the input is degenerate (coincident points, points collinear to within
    // about 2^-24 radians, NaN, a null result pointer, a negative radius),
    // leaving the results untouched. Result points carry the z of the first
    // point defining the circle, arc or line, and w = 1. Angles are in
    // radians; start angles lie in [0, 2 pi); arc angles are signed, positive
    // counter-clockwise.
    static int GetCircleCenter(Real x1, Real y1, Real x2, Real y2, Real x3, Real y3, Real* cx,
                               Real* cy);
    static int GetCircleCenter(const Point4& p1, const Point4& p2, const Point4& p3,
                               Point4* center);
    static int Circle3Pts_to_CenterRadius(const Point4& p1, const Point4& p2, const Point4& p3,
                                          Point4* center, Real* radius);
    // Start, middle and end points of the arc.
    static int ArcCenterRadiusStartAngleArcAngle_to_StartMiddleEnd(const Point4& center,
                                                                   Real radius, Real startAngle,
                                                                   Real arcAngle, Point4* start,
                                                                   Point4* middle, Point4* end);
    // The arc leaving start in the direction directionAngle and ending at end.
    static int ArcStartDirectionEnd_to_CenterRadiusStartAngleArcAngle(
        const Point4& start, Real directionAngle, const Point4& end, Point4* center, Real* radius,
        Real* startAngle, Real* arcAngle);
    // The arc from start through middle to end.
    static int ArcStartMiddleEnd_to_CenterRadiusStartAngleArcAngle(
        const Point4& start, const Point4& middle, const Point4& end, Point4* center, Real* radius,
        Real* startAngle, Real* arcAngle);
    // As above with the end angle startAngle + arcAngle (below the start
    // angle for a clockwise arc, possibly beyond 2 pi).
    static int ArcStartMiddleEnd_to_CenterRadiusStartArcAngleEndArcAngle(
        const Point4& start, const Point4& middle, const Point4& end, Point4* center, Real* radius,
        Real* startAngle, Real* endAngle);

    // Side of (px, py) relative to the directed line a -> b: POINT_* codes.
    static int ClassifyPointToLine(Real px, Real py, Real ax, Real ay, Real bx, Real by);
    static int ClassifyPointToLine(const Point4& p, const Point4& a, const Point4& b);
    // Segments a1-a2 and b1-b2: LINES_* / SEGMENTS_* codes; the common point
    // (for LINES_INTERSECT) is written to intersection when it is not null.
    static int ClassifyLineToLine(const Point4& a1, const Point4& a2, const Point4& b1,
                                  const Point4& b2, Point4* intersection = nullptr);
    // Infinite lines through a1, a2 and b1, b2: LINES_DEGENERATE,
    // LINES_INTERSECT, LINES_PARALLEL or LINES_COLLINEAR.
    static int ClassifyInfiniteLineToInfiniteLine(const Point4& a1, const Point4& a2,
                                                  const Point4& b1, const Point4& b2,
                                                  Point4* intersection = nullptr);

    // Nearest points. On the infinite line through a and b (0 when a and b
    // coincide); on the segment a-b (a degenerate segment gives a); on the
    // open polyline of count points (0 for count < 1), with the index of the
    // segment (or 0 for a single point). t receives the segment parameter
    // in [0, 1] (or the line parameter) when not null.
    static int GetNearestPointOnLine(const Point4& p, const Point4& a, const Point4& b,
                                     Point4* nearest, Real* t = nullptr);
    static int GetNearestPoint(const Point4& p, const Point4& a, const Point4& b, Point4* nearest,
                               Real* t = nullptr);
    static int GetNearestPointOnPolyline(const Point4& p, const Point4* points, int count,
                                         Point4* nearest, int* segment = nullptr);

    // Length of the open polyline through count points (0 for count < 2).
    static Real GetPolylineLength(const Point4* points, int count);
    // Unsigned area of the polygon (0 for fewer than 3 points).
    static Real GetPolygonArea(const Point4* points, int count);
    // Even-odd containment of p in the closed polygon of count points. Points
    // within ZERO_TOLERANCE of an edge are inside when boundaryInside is true
    // and outside otherwise. Fewer than 3 points contain nothing.
    static bool PolygonContainsPoint(const Point2* points, int count, const Point2& p,
                                     bool boundaryInside);

protected:
    static Real Clamp1(Real x) { return x < Real(-1) ? Real(-1) : (x > Real(1) ? Real(1) : x); }
    // The series and continued-fraction halves of IncompleteGamma; each gives
    // P(a, x) and is accurate on its side of x = a + 1.
    static Real IncompleteGammaS(Real a, Real x);
    static Real IncompleteGammaCF(Real a, Real x);
};

#if !defined(_WIN32)
extern template class CKWMathT<float, double>;
extern template class CKWMathT<double, float>;
#endif
