// CKWMathT: the scalar math's template code and its two exported
// instantiations (exported through their declarations in the header).

#include <algorithm>
#include <cfloat>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "KWSpecialFunctions.h"
#include "kwcore/geometry/linear/CKWMathT.h"
#include "kwcore/geometry/linear/CKWPoint2T.h"
#include "kwcore/geometry/linear/CKWPoint4T.h"

// Every constant is the single-precision value, widened in the double pair.
template <class Real, class Other>
const Real CKWMathT<Real, Other>::EPSILON = Real(FLT_EPSILON);
template <class Real, class Other>
const Real CKWMathT<Real, Other>::ZERO_TOLERANCE = Real(1e-06f);
template <class Real, class Other>
const Real CKWMathT<Real, Other>::MAX_REAL = Real(FLT_MAX);
template <class Real, class Other>
const Real CKWMathT<Real, Other>::PI = Real(3.14159265358979323846f);
template <class Real, class Other>
const Real CKWMathT<Real, Other>::TWO_PI = Real(6.28318530717958647692f);
template <class Real, class Other>
const Real CKWMathT<Real, Other>::HALF_PI = Real(1.57079632679489661923f);
template <class Real, class Other>
const Real CKWMathT<Real, Other>::QUARTER_PI = Real(0.78539816339744830962f);
template <class Real, class Other>
const Real CKWMathT<Real, Other>::INV_PI = Real(0.31830988618379067154f);
template <class Real, class Other>
const Real CKWMathT<Real, Other>::INV_TWO_PI = Real(0.63661977236758134308f);
template <class Real, class Other>
const Real CKWMathT<Real, Other>::E = Real(2.71828182845904523536f);
// pi/180 and 180/pi from the single-precision pi, divided in Real: the two
// pairs differ here. The degree constants repeat the expression rather than
// read DEG_TO_RAD, so that all of them are constants at load time.
namespace {
template <class Real>
constexpr Real DegreeInRadians() {
    return Real(3.14159265358979323846f) / Real(180);
}
}  // namespace
template <class Real, class Other>
const Real CKWMathT<Real, Other>::DEG_TO_RAD = DegreeInRadians<Real>();
template <class Real, class Other>
const Real CKWMathT<Real, Other>::RAD_TO_DEG = Real(180) / Real(3.14159265358979323846f);
template <class Real, class Other>
const Real CKWMathT<Real, Other>::ONE_DEGREE = DegreeInRadians<Real>();
template <class Real, class Other>
const Real CKWMathT<Real, Other>::TWO_DEGREES = Real(2) * DegreeInRadians<Real>();
template <class Real, class Other>
const Real CKWMathT<Real, Other>::THREE_DEGREES = Real(3) * DegreeInRadians<Real>();
template <class Real, class Other>
const Real CKWMathT<Real, Other>::FIVE_DEGREES = Real(5) * DegreeInRadians<Real>();
template <class Real, class Other>
const Real CKWMathT<Real, Other>::TEN_DEGREES = Real(10) * DegreeInRadians<Real>();

// Fast approximations: near-minimax polynomials (fitted for this library by
// reweighted least squares on each function's domain), evaluated in Real.

namespace {
constexpr double kSin0[3] = {9.99696773433902914e-01, -1.65673079725274889e-01,
                             7.51437729912451537e-03};
constexpr double kSin1[6] = {9.99999999889852256e-01, -1.66666665414393447e-01,
                             8.33332926445991324e-03, -1.98407028627876082e-04,
                             2.75188556440114405e-06, -2.37947136019227307e-08};
constexpr double kCos0[3] = {9.99403541545636771e-01, -4.95581357552819508e-01,
                             3.67918480049542678e-02};
constexpr double kCos1[6] = {9.99999999780778797e-01, -4.99999993585751240e-01,
                             4.16666362604207707e-02, -1.38883614220805583e-03,
                             2.47601622372801950e-05, -2.60515082649448285e-07};
constexpr double kTan0[3] = {1.00251256442340432e+00, 3.03332589460359951e-01,
                             2.18770124921095736e-01};
constexpr double kTan1[7] = {1.00000014608760015e+00, 3.33324808513298882e-01,
                             1.33476716176218588e-01, 5.29139022952940683e-02,
                             2.57828935610807430e-02, 1.35622812641141980e-03,
                             1.02689809311348047e-02};
constexpr double kInvCos[4] = {1.57075834043023856e+00, -2.12875182798624411e-01,
                               7.68973826408116111e-02, -2.08920332388047555e-02};
constexpr double kInvTan0[3] = {9.95357954851966114e-01, -2.88690236097070396e-01,
                                7.93390390441846512e-02};
constexpr double kInvTan1[9] = {
    9.99999886383283537e-01,  -3.33325970294378662e-01, 1.99859067847094883e-01,
    -1.41612293108088309e-01, 1.04989464692378949e-01,  -7.23485811092216916e-02,
    3.97812315689712711e-02,  -1.44013624835425958e-02, 2.45672565719607336e-03};

template <class Real, int K>
Real Horner(const double (&c)[K], Real u) {
    Real sum = static_cast<Real>(c[K - 1]);
    for (int i = K - 2; i >= 0; --i) {
        sum = sum * u + static_cast<Real>(c[i]);
    }
    return sum;
}
}  // namespace

template <class Real, class Other>
Real CKWMathT<Real, Other>::FastSin0(Real x) {
    return x * Horner(kSin0, x * x);
}

template <class Real, class Other>
Real CKWMathT<Real, Other>::FastSin1(Real x) {
    return x * Horner(kSin1, x * x);
}

template <class Real, class Other>
Real CKWMathT<Real, Other>::FastCos0(Real x) {
    return Horner(kCos0, x * x);
}

template <class Real, class Other>
Real CKWMathT<Real, Other>::FastCos1(Real x) {
    return Horner(kCos1, x * x);
}

template <class Real, class Other>
Real CKWMathT<Real, Other>::FastTan0(Real x) {
    return x * Horner(kTan0, x * x);
}

template <class Real, class Other>
Real CKWMathT<Real, Other>::FastTan1(Real x) {
    return x * Horner(kTan1, x * x);
}

// acos(x) ~ sqrt(1 - x) p(x) on [0, 1]; negative x by acos(-x) = pi - acos(x).
template <class Real, class Other>
Real CKWMathT<Real, Other>::FastInvCos(Real x) {
    Real ax = Clamp1(std::fabs(x));
    Real root = std::sqrt(Real(1) - ax) * Horner(kInvCos, ax);
    return x < Real(0) ? PI - root : root;
}

template <class Real, class Other>
Real CKWMathT<Real, Other>::FastInvSin(Real x) {
    return HALF_PI - FastInvCos(x);
}

template <class Real, class Other>
Real CKWMathT<Real, Other>::FastInvTan0(Real x) {
    return x * Horner(kInvTan0, x * x);
}

template <class Real, class Other>
Real CKWMathT<Real, Other>::FastInvTan1(Real x) {
    return x * Horner(kInvTan1, x * x);
}

// The bit-level first guess of 1/sqrt(x) refined by one Newton step.
template <class Real, class Other>
Real CKWMathT<Real, Other>::FastInvSqrt(Real x) {
    Real half = Real(0.5) * x;
    Real y;
    if constexpr (sizeof(Real) == sizeof(std::uint32_t)) {
        std::uint32_t bits;
        std::memcpy(&bits, &x, sizeof bits);
        bits = 0x5f3759dfu - (bits >> 1);
        std::memcpy(&y, &bits, sizeof y);
    } else {
        std::uint64_t bits;
        std::memcpy(&bits, &x, sizeof bits);
        bits = 0x5fe6eb50c7b537a9ull - (bits >> 1);
        std::memcpy(&y, &bits, sizeof y);
    }
    return y * (Real(1.5) - half * y * y);
}

// Special functions: computed in double for both pairs.

template <class Real, class Other>
Real CKWMathT<Real, Other>::Gamma(Real x) {
    return static_cast<Real>(kwSpecialFunctions::Gamma(x));
}

template <class Real, class Other>
Real CKWMathT<Real, Other>::LogGamma(Real x) {
    return static_cast<Real>(kwSpecialFunctions::LogGamma(x));
}

template <class Real, class Other>
Real CKWMathT<Real, Other>::IncompleteGamma(Real a, Real x) {
    return static_cast<Real>(kwSpecialFunctions::IncompleteGamma(a, x));
}

template <class Real, class Other>
Real CKWMathT<Real, Other>::IncompleteGammaS(Real a, Real x) {
    return static_cast<Real>(kwSpecialFunctions::IncompleteGammaSeries(a, x));
}

template <class Real, class Other>
Real CKWMathT<Real, Other>::IncompleteGammaCF(Real a, Real x) {
    return static_cast<Real>(kwSpecialFunctions::IncompleteGammaFraction(a, x));
}

template <class Real, class Other>
Real CKWMathT<Real, Other>::Erf(Real x) {
    return static_cast<Real>(kwSpecialFunctions::Erf(x));
}

template <class Real, class Other>
Real CKWMathT<Real, Other>::Erfc(Real x) {
    return static_cast<Real>(kwSpecialFunctions::Erfc(x));
}

template <class Real, class Other>
Real CKWMathT<Real, Other>::ModBessel0(Real x) {
    return static_cast<Real>(kwSpecialFunctions::BesselI(0, x));
}

template <class Real, class Other>
Real CKWMathT<Real, Other>::ModBessel1(Real x) {
    return static_cast<Real>(kwSpecialFunctions::BesselI(1, x));
}

// Random numbers. The divisor is the generator's own maximum (32767 where the
// runtime's rand is 15-bit) so the result stays in [0, 1] on every platform.

template <class Real, class Other>
Real CKWMathT<Real, Other>::UnitRandom(unsigned seed) {
    if (seed != 0) {
        std::srand(seed);
    }
    return static_cast<Real>(static_cast<double>(std::rand()) / static_cast<double>(RAND_MAX));
}

template <class Real, class Other>
Real CKWMathT<Real, Other>::SymmetricRandom(unsigned seed) {
    return Real(2) * UnitRandom(seed) - Real(1);
}

template <class Real, class Other>
Real CKWMathT<Real, Other>::IntervalRandom(Real min, Real max, unsigned seed) {
    return min + (max - min) * UnitRandom(seed);
}

// Rounding.

template <class Real, class Other>
Real CKWMathT<Real, Other>::Round(Real x, Real step) {
    if (step == Real(0)) {
        return x;
    }
    double s = static_cast<double>(step);
    return static_cast<Real>(std::floor(static_cast<double>(x) / s + 0.5) * s);
}

template <class Real, class Other>
Real CKWMathT<Real, Other>::Round(Real x, int digits) {
    // The steps 0.1 .. 1e-10 are single-precision literals, kept as such.
    static const float kSteps[10] = {1e-1f, 1e-2f, 1e-3f, 1e-4f, 1e-5f,
                                     1e-6f, 1e-7f, 1e-8f, 1e-9f, 1e-10f};
    double step;
    if (digits >= 1 && digits <= 10) {
        step = static_cast<double>(kSteps[digits - 1]);
    } else {
        // 0.1 to the power |digits| by repeated squaring; inverted for
        // negative counts, so -2 rounds to hundreds.
        double base = 0.1;
        step = 1.0;
        unsigned n =
            digits < 0 ? 0u - static_cast<unsigned>(digits) : static_cast<unsigned>(digits);
        for (; n != 0; n >>= 1) {
            if (n & 1u) {
                step *= base;
            }
            base *= base;
        }
        if (digits < 0) {
            step = 1.0 / step;
        }
    }
    if (step == 0.0 || std::isinf(step)) {
        return x;
    }
    return static_cast<Real>(std::floor(static_cast<double>(x) / step + 0.5) * step);
}

template <class Real, class Other>
bool CKWMathT<Real, Other>::Approx_Equal(Real a, Real b, Real step) {
    return Round(a, step) == Round(b, step);
}

template <class Real, class Other>
bool CKWMathT<Real, Other>::Approx_Equal(Real a, Real b, int digits) {
    return Round(a, digits) == Round(b, digits);
}

// Planar angles.

template <class Real, class Other>
Real CKWMathT<Real, Other>::NormalizeAngle(Real angle) {
    // Beyond a million radians the loops would run too long and the result
    // would be meaningless anyway: such angles give 0.
    const Real limit = Real(1e6f);
    if (angle < Real(0)) {
        if (angle < -limit) {
            return 0;
        }
        while (angle < Real(0)) {
            angle += TWO_PI;
        }
    } else if (angle >= Real(0)) {
        if (angle > limit) {
            return 0;
        }
        while (angle >= TWO_PI) {
            angle -= TWO_PI;
        }
    }
    // Snap to 0 within 1e-6 of either end of the turn.
    const Real upper = Real(6.28318548f - 1e-6f);
    if (angle < Real(1e-6f) || angle > upper) {
        return 0;
    }
    return angle;
}

template <class Real, class Other>
Real CKWMathT<Real, Other>::GetAngle(Real x1, Real y1, Real x2, Real y2) {
    Real dx = x2 - x1;
    Real dy = y2 - y1;
    if (dx == Real(0)) {
        return dy >= Real(0) ? HALF_PI : -HALF_PI + TWO_PI;
    }
    Real a = std::atan(dy / dx);
    if (dx < Real(0)) {
        a = dy > Real(0) ? a + PI : a - PI;
    }
    if (a < Real(0)) {
        a += TWO_PI;
    }
    return a;
}

template <class Real, class Other>
Real CKWMathT<Real, Other>::GetAngle(const Point4& from, const Point4& to) {
    return GetAngle(from.X(), from.Y(), to.X(), to.Y());
}

template <class Real, class Other>
Real CKWMathT<Real, Other>::GetIncludedAngle(Real angle1, Real angle2) {
    Real d = std::fabs(std::fmod(angle2 - angle1, TWO_PI));
    return d > PI ? TWO_PI - d : d;
}

template <class Real, class Other>
Real CKWMathT<Real, Other>::GetLeftAngle(Real x1, Real y1, Real x2, Real y2, Real x3, Real y3) {
    return NormalizeAngle(GetAngle(x2, y2, x1, y1) - GetAngle(x2, y2, x3, y3));
}

template <class Real, class Other>
Real CKWMathT<Real, Other>::GetLeftAngle(const Point4& p1, const Point4& p2, const Point4& p3) {
    return GetLeftAngle(p1.X(), p1.Y(), p2.X(), p2.Y(), p3.X(), p3.Y());
}

template <class Real, class Other>
Real CKWMathT<Real, Other>::GetRightAngle(Real x1, Real y1, Real x2, Real y2, Real x3, Real y3) {
    return NormalizeAngle(TWO_PI - GetLeftAngle(x1, y1, x2, y2, x3, y3));
}

template <class Real, class Other>
Real CKWMathT<Real, Other>::GetRightAngle(const Point4& p1, const Point4& p2, const Point4& p3) {
    return GetRightAngle(p1.X(), p1.Y(), p2.X(), p2.Y(), p3.X(), p3.Y());
}

template <class Real, class Other>
Real CKWMathT<Real, Other>::GetTurnAngle(Real x1, Real y1, Real x2, Real y2, Real x3, Real y3) {
    Real turn = PI - GetLeftAngle(x1, y1, x2, y2, x3, y3);
    return turn <= -PI ? turn + TWO_PI : turn;
}

template <class Real, class Other>
Real CKWMathT<Real, Other>::GetTurnAngle(const Point4& p1, const Point4& p2, const Point4& p3) {
    return GetTurnAngle(p1.X(), p1.Y(), p2.X(), p2.Y(), p3.X(), p3.Y());
}

template <class Real, class Other>
Real CKWMathT<Real, Other>::GetDirectionAngle(Real dx, Real dy) {
    return GetAngle(Real(0), Real(0), dx, dy);
}

// Polylines and polygons.

template <class Real, class Other>
Real CKWMathT<Real, Other>::GetPolylineLength(const Point4* points, int count) {
    if (!points || count < 2) {
        return 0;
    }
    Real length = 0;
    for (int i = 1; i < count; ++i) {
        length += std::hypot(points[i].X() - points[i - 1].X(), points[i].Y() - points[i - 1].Y());
    }
    return length;
}

template <class Real, class Other>
Real CKWMathT<Real, Other>::GetPolygonArea(const Point4* points, int count) {
    if (!points || count < 3) {
        return 0;
    }
    Real sum = 0;
    for (int i = 0; i < count; ++i) {
        const Point4& previous = points[i == 0 ? count - 1 : i - 1];
        const Point4& next = points[i == count - 1 ? 0 : i + 1];
        sum += points[i].X() * (previous.Y() - next.Y());
    }
    return std::fabs(sum * Real(0.5));
}

template <class Real, class Other>
bool CKWMathT<Real, Other>::PolygonContainsPoint(const Point2* points, int count, const Point2& p,
                                                 bool boundaryInside) {
    if (!points || count < 3) {
        return false;
    }
    bool inside = false;
    for (int i = 0, j = count - 1; i < count; j = i++) {
        const Point2& a = points[j];
        const Point2& b = points[i];
        Real ex = b.X() - a.X();
        Real ey = b.Y() - a.Y();
        Real length = std::hypot(ex, ey);
        Real px = p.X() - a.X();
        Real py = p.Y() - a.Y();
        // On the edge: within the tolerance of the segment.
        Real t = length > Real(0) ? (px * ex + py * ey) / (length * length) : Real(0);
        t = t < Real(0) ? Real(0) : (t > Real(1) ? Real(1) : t);
        if (std::hypot(px - t * ex, py - t * ey) <= ZERO_TOLERANCE) {
            return boundaryInside;
        }
        // Even-odd rule: count edges crossing the horizontal ray to +x.
        if ((a.Y() > p.Y()) != (b.Y() > p.Y())) {
            Real xCross = a.X() + (p.Y() - a.Y()) * ex / ey;
            if (p.X() < xCross) {
                inside = !inside;
            }
        }
    }
    return inside;
}

// Circles and arcs.

template <class Real, class Other>
int CKWMathT<Real, Other>::GetCircleCenter(Real x1, Real y1, Real x2, Real y2, Real x3, Real y3,
                                           Real* cx, Real* cy) {
    if (!cx || !cy) {
        return 0;
    }
    // Relative to the first point, in double: the perpendicular bisectors of
    // p1p2 and p1p3 meet at the center.
    double bx = double(x2) - x1, by = double(y2) - y1;
    double qx = double(x3) - x1, qy = double(y3) - y1;
    double d = 2.0 * (bx * qy - by * qx);
    double scale = (bx * bx + by * by) * (qx * qx + qy * qy);
    // Collinear (or coincident) points have no circle: the doubled triangle
    // area must not vanish against the sides' lengths.
    if (!(std::fabs(d) > double(EPSILON) * std::sqrt(scale)) || !std::isfinite(d)) {
        return 0;
    }
    double b2 = bx * bx + by * by;
    double q2 = qx * qx + qy * qy;
    *cx = static_cast<Real>(x1 + (qy * b2 - by * q2) / d);
    *cy = static_cast<Real>(y1 + (bx * q2 - qx * b2) / d);
    return 1;
}

template <class Real, class Other>
int CKWMathT<Real, Other>::GetCircleCenter(const Point4& p1, const Point4& p2, const Point4& p3,
                                           Point4* center) {
    Real cx, cy;
    if (!center || !GetCircleCenter(p1.X(), p1.Y(), p2.X(), p2.Y(), p3.X(), p3.Y(), &cx, &cy)) {
        return 0;
    }
    center->Set(cx, cy, p1.Z(), Real(1));
    return 1;
}

template <class Real, class Other>
int CKWMathT<Real, Other>::Circle3Pts_to_CenterRadius(const Point4& p1, const Point4& p2,
                                                      const Point4& p3, Point4* center,
                                                      Real* radius) {
    Point4 c;
    if (!radius || !GetCircleCenter(p1, p2, p3, center ? center : &c)) {
        return 0;
    }
    const Point4& found = center ? *center : c;
    *radius = std::hypot(p1.X() - found.X(), p1.Y() - found.Y());
    return 1;
}

template <class Real, class Other>
int CKWMathT<Real, Other>::ArcCenterRadiusStartAngleArcAngle_to_StartMiddleEnd(
    const Point4& center, Real radius, Real startAngle, Real arcAngle, Point4* start,
    Point4* middle, Point4* end) {
    if (!start || !middle || !end || !(radius >= Real(0))) {
        return 0;
    }
    Point4 origin(center.X(), center.Y(), center.Z(), Real(1));
    *start = origin.PolarBy(startAngle, radius);
    *middle = origin.PolarBy(startAngle + arcAngle * Real(0.5), radius);
    *end = origin.PolarBy(startAngle + arcAngle, radius);
    return 1;
}

template <class Real, class Other>
int CKWMathT<Real, Other>::ArcStartDirectionEnd_to_CenterRadiusStartAngleArcAngle(
    const Point4& start, Real directionAngle, const Point4& end, Point4* center, Real* radius,
    Real* startAngle, Real* arcAngle) {
    if (!center || !radius || !startAngle || !arcAngle) {
        return 0;
    }
    // The center lies on the normal of the tangent at start and on the
    // perpendicular bisector of the chord: with the tangent t and chord c,
    // center = start + n * |c|^2 / (2 n.c), n the left normal of t.
    double tx = std::cos(double(directionAngle)), ty = std::sin(double(directionAngle));
    double nx = -ty, ny = tx;
    double chordX = double(end.X()) - start.X(), chordY = double(end.Y()) - start.Y();
    double chord2 = chordX * chordX + chordY * chordY;
    double nc = nx * chordX + ny * chordY;
    if (!(chord2 > 0.0) || !(std::fabs(nc) > double(EPSILON) * std::sqrt(chord2))) {
        return 0;
    }
    double k = chord2 / (2.0 * nc);
    double cx = start.X() + nx * k, cy = start.Y() + ny * k;
    double a0 = GetAngle(Real(cx), Real(cy), start.X(), start.Y());
    double a1 = GetAngle(Real(cx), Real(cy), end.X(), end.Y());
    // The arc turns left (counter-clockwise) when the center is on the left.
    double sweep = k > 0.0 ? a1 - a0 : a0 - a1;
    if (sweep <= 0.0) {
        sweep += 2.0 * double(PI);
    }
    center->Set(Real(cx), Real(cy), start.Z(), Real(1));
    *radius = static_cast<Real>(std::fabs(k));
    *startAngle = static_cast<Real>(a0);
    *arcAngle = static_cast<Real>(k > 0.0 ? sweep : -sweep);
    return 1;
}

template <class Real, class Other>
int CKWMathT<Real, Other>::ArcStartMiddleEnd_to_CenterRadiusStartAngleArcAngle(
    const Point4& start, const Point4& middle, const Point4& end, Point4* center, Real* radius,
    Real* startAngle, Real* arcAngle) {
    if (!startAngle || !arcAngle) {
        return 0;
    }
    Point4 c;
    Real r;
    if (!Circle3Pts_to_CenterRadius(start, middle, end, &c, &r)) {
        return 0;
    }
    Real a0 = GetAngle(c, start);
    Real am = GetAngle(c, middle);
    Real a1 = GetAngle(c, end);
    // Counter-clockwise sweeps from start to middle and to end: the arc runs
    // counter-clockwise when it meets the middle first.
    Real toMiddle = am - a0 < Real(0) ? am - a0 + TWO_PI : am - a0;
    Real toEnd = a1 - a0 < Real(0) ? a1 - a0 + TWO_PI : a1 - a0;
    if (center) {
        *center = c;
    }
    if (radius) {
        *radius = r;
    }
    *startAngle = a0;
    *arcAngle = toMiddle <= toEnd ? toEnd : toEnd - TWO_PI;
    return 1;
}

template <class Real, class Other>
int CKWMathT<Real, Other>::ArcStartMiddleEnd_to_CenterRadiusStartArcAngleEndArcAngle(
    const Point4& start, const Point4& middle, const Point4& end, Point4* center, Real* radius,
    Real* startAngle, Real* endAngle) {
    Real a0, sweep;
    if (!endAngle || !ArcStartMiddleEnd_to_CenterRadiusStartAngleArcAngle(
                         start, middle, end, center, radius, &a0, &sweep)) {
        return 0;
    }
    if (startAngle) {
        *startAngle = a0;
    }
    *endAngle = a0 + sweep;
    return 1;
}

// Lines.

template <class Real, class Other>
int CKWMathT<Real, Other>::ClassifyPointToLine(Real px, Real py, Real ax, Real ay, Real bx,
                                               Real by) {
    double dx = double(bx) - ax, dy = double(by) - ay;
    double length = std::hypot(dx, dy);
    if (!(length > double(ZERO_TOLERANCE))) {
        return LINE_DEGENERATE;
    }
    // Signed distance of p from the line, positive on the left.
    double distance = (dx * (double(py) - ay) - dy * (double(px) - ax)) / length;
    if (std::fabs(distance) <= double(ZERO_TOLERANCE)) {
        return POINT_ON_LINE;
    }
    return distance > 0.0 ? POINT_LEFT : POINT_RIGHT;
}

template <class Real, class Other>
int CKWMathT<Real, Other>::ClassifyPointToLine(const Point4& p, const Point4& a, const Point4& b) {
    return ClassifyPointToLine(p.X(), p.Y(), a.X(), a.Y(), b.X(), b.Y());
}

template <class Real, class Other>
int CKWMathT<Real, Other>::ClassifyInfiniteLineToInfiniteLine(const Point4& a1, const Point4& a2,
                                                              const Point4& b1, const Point4& b2,
                                                              Point4* intersection) {
    int sideB1 = ClassifyPointToLine(b1, a1, a2);
    int sideB2 = ClassifyPointToLine(b2, a1, a2);
    if (sideB1 == LINE_DEGENERATE || ClassifyPointToLine(a1, b1, b2) == LINE_DEGENERATE) {
        return LINES_DEGENERATE;
    }
    double ux = double(a2.X()) - a1.X(), uy = double(a2.Y()) - a1.Y();
    double vx = double(b2.X()) - b1.X(), vy = double(b2.Y()) - b1.Y();
    double denominator = ux * vy - uy * vx;
    // Parallel when b's direction has no sideways component against a's,
    // relative to the lengths.
    if (std::fabs(denominator) <= double(EPSILON) * std::hypot(ux, uy) * std::hypot(vx, vy)) {
        return sideB1 == POINT_ON_LINE && sideB2 == POINT_ON_LINE ? LINES_COLLINEAR
                                                                  : LINES_PARALLEL;
    }
    if (intersection) {
        double wx = double(b1.X()) - a1.X(), wy = double(b1.Y()) - a1.Y();
        double s = (wx * vy - wy * vx) / denominator;
        intersection->Set(Real(a1.X() + s * ux), Real(a1.Y() + s * uy), a1.Z(), Real(1));
    }
    return LINES_INTERSECT;
}

template <class Real, class Other>
int CKWMathT<Real, Other>::ClassifyLineToLine(const Point4& a1, const Point4& a2, const Point4& b1,
                                              const Point4& b2, Point4* intersection) {
    Point4 crossing;
    int lines = ClassifyInfiniteLineToInfiniteLine(a1, a2, b1, b2, &crossing);
    if (lines == LINES_DEGENERATE || lines == LINES_PARALLEL) {
        return lines;
    }
    if (lines == LINES_COLLINEAR) {
        // Project b's ends on a's direction and compare the intervals.
        double ux = double(a2.X()) - a1.X(), uy = double(a2.Y()) - a1.Y();
        double u2 = ux * ux + uy * uy;
        double t1 = ((double(b1.X()) - a1.X()) * ux + (double(b1.Y()) - a1.Y()) * uy) / u2;
        double t2 = ((double(b2.X()) - a1.X()) * ux + (double(b2.Y()) - a1.Y()) * uy) / u2;
        double slack = double(ZERO_TOLERANCE) / std::sqrt(u2);
        bool apart = std::max(t1, t2) < -slack || std::min(t1, t2) > 1.0 + slack;
        return apart ? SEGMENTS_COLLINEAR_APART : LINES_COLLINEAR;
    }
    // The crossing must lie on both segments (within the tolerance).
    Point4 onA, onB;
    GetNearestPoint(crossing, a1, a2, &onA);
    GetNearestPoint(crossing, b1, b2, &onB);
    Real tolerance = ZERO_TOLERANCE;
    if (std::hypot(onA.X() - crossing.X(), onA.Y() - crossing.Y()) > tolerance ||
        std::hypot(onB.X() - crossing.X(), onB.Y() - crossing.Y()) > tolerance) {
        return SEGMENTS_DISJOINT;
    }
    if (intersection) {
        *intersection = crossing;
    }
    return LINES_INTERSECT;
}

// Nearest points.

template <class Real, class Other>
int CKWMathT<Real, Other>::GetNearestPointOnLine(const Point4& p, const Point4& a, const Point4& b,
                                                 Point4* nearest, Real* t) {
    if (!nearest) {
        return 0;
    }
    double ux = double(b.X()) - a.X(), uy = double(b.Y()) - a.Y();
    double u2 = ux * ux + uy * uy;
    if (!(u2 > 0.0)) {
        return 0;
    }
    double s = ((double(p.X()) - a.X()) * ux + (double(p.Y()) - a.Y()) * uy) / u2;
    nearest->Set(Real(a.X() + s * ux), Real(a.Y() + s * uy), a.Z(), Real(1));
    if (t) {
        *t = static_cast<Real>(s);
    }
    return 1;
}

template <class Real, class Other>
int CKWMathT<Real, Other>::GetNearestPoint(const Point4& p, const Point4& a, const Point4& b,
                                           Point4* nearest, Real* t) {
    if (!nearest) {
        return 0;
    }
    double ux = double(b.X()) - a.X(), uy = double(b.Y()) - a.Y();
    double u2 = ux * ux + uy * uy;
    double s = 0.0;
    if (u2 > 0.0) {
        s = ((double(p.X()) - a.X()) * ux + (double(p.Y()) - a.Y()) * uy) / u2;
        s = s < 0.0 ? 0.0 : (s > 1.0 ? 1.0 : s);
    }
    if (s == 0.0) {
        nearest->Set(a.X(), a.Y(), a.Z(), Real(1));
    } else if (s == 1.0) {
        nearest->Set(b.X(), b.Y(), a.Z(), Real(1));
    } else {
        nearest->Set(Real(a.X() + s * ux), Real(a.Y() + s * uy), a.Z(), Real(1));
    }
    if (t) {
        *t = static_cast<Real>(s);
    }
    return 1;
}

template <class Real, class Other>
int CKWMathT<Real, Other>::GetNearestPointOnPolyline(const Point4& p, const Point4* points,
                                                     int count, Point4* nearest, int* segment) {
    if (!nearest || !points || count < 1) {
        return 0;
    }
    Point4 best(points[0].X(), points[0].Y(), points[0].Z(), Real(1));
    int bestSegment = 0;
    Real bestDistance = std::hypot(p.X() - best.X(), p.Y() - best.Y());
    for (int i = 0; i + 1 < count; ++i) {
        Point4 candidate;
        GetNearestPoint(p, points[i], points[i + 1], &candidate);
        Real distance = std::hypot(p.X() - candidate.X(), p.Y() - candidate.Y());
        if (distance < bestDistance) {
            best = candidate;
            bestDistance = distance;
            bestSegment = i;
        }
    }
    *nearest = best;
    if (segment) {
        *segment = bestSegment;
    }
    return 1;
}

template class CKWMathT<float, double>;
template class CKWMathT<double, float>;
