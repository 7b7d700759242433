// The fast approximations hold their documented maximum errors, and the
// special functions match the standard library to the precision of Real.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "kwcore/geometry/linear/CKWMathT.h"

namespace {

constexpr double kPi = 3.14159265358979323846;

using MathF = CKWMathT<float, double>;
using MathD = CKWMathT<double, float>;

// Largest absolute error of approx against exact on [a, b], on a dense grid.
template <class Real>
double MaxError(Real (*approx)(Real), double (*exact)(double), double a, double b) {
    double worst = 0;
    const int steps = 20000;
    for (int i = 0; i <= steps; ++i) {
        double x = a + (b - a) * i / steps;
        Real r = static_cast<Real>(x);
        worst = std::fmax(worst, std::fabs(approx(r) - exact(static_cast<double>(r))));
    }
    return worst;
}

// Exact references as plain function pointers (the std overloads are not).
double (*const Sin)(double) = [](double x) { return std::sin(x); };
double (*const Cos)(double) = [](double x) { return std::cos(x); };
double (*const Tan)(double) = [](double x) { return std::tan(x); };
double (*const ASin)(double) = [](double x) { return std::asin(x); };
double (*const ACos)(double) = [](double x) { return std::acos(x); };
double (*const ATan)(double) = [](double x) { return std::atan(x); };

struct Bound {
    const char* name;
    double (*exactFn)(double);
    double a, b, error;
    float (*single)(float);
    double (*wide)(double);
};

TEST(FastApproximations, StayWithinTheirDocumentedErrors) {
    const double half = kPi / 2, quarter = kPi / 4;
    const Bound bounds[] = {
        {"FastSin0", Sin, 0, half, 7e-5, MathF::FastSin0, MathD::FastSin0},
        {"FastSin1", Sin, 0, half, 2e-11, MathF::FastSin1, MathD::FastSin1},
        {"FastCos0", Cos, 0, half, 6e-4, MathF::FastCos0, MathD::FastCos0},
        {"FastCos1", Cos, 0, half, 3e-10, MathF::FastCos1, MathD::FastCos1},
        {"FastTan0", Tan, 0, quarter, 3e-4, MathF::FastTan0, MathD::FastTan0},
        {"FastTan1", Tan, 0, quarter, 8e-9, MathF::FastTan1, MathD::FastTan1},
        {"FastInvSin", ASin, -1, 1, 4e-5, MathF::FastInvSin, MathD::FastInvSin},
        {"FastInvCos", ACos, -1, 1, 4e-5, MathF::FastInvCos, MathD::FastInvCos},
        {"FastInvTan0", ATan, -1, 1, 7e-4, MathF::FastInvTan0, MathD::FastInvTan0},
        {"FastInvTan1", ATan, -1, 1, 6e-9, MathF::FastInvTan1, MathD::FastInvTan1},
    };
    for (const Bound& b : bounds) {
        double wide = MaxError(b.wide, b.exactFn, b.a, b.b);
        double single = MaxError(b.single, b.exactFn, b.a, b.b);
        EXPECT_LE(wide, b.error) << b.name;
        EXPECT_LE(single, b.error + 3e-7) << b.name;
        // Grade 0 must not be accidentally exact: the bounds are measured, not loose.
        EXPECT_GT(wide, b.error / 20) << b.name;
    }
}

TEST(FastApproximations, InvSqrtHasSmallRelativeError) {
    double worstF = 0, worstD = 0;
    for (double x = 1e-30; x < 1e30; x *= 1.01) {
        double exact = 1.0 / std::sqrt(x);
        worstD = std::fmax(worstD, std::fabs(MathD::FastInvSqrt(x) / exact - 1));
        float xf = static_cast<float>(x);
        worstF = std::fmax(worstF, std::fabs(MathF::FastInvSqrt(xf) * std::sqrt(double(xf)) - 1));
    }
    EXPECT_LE(worstD, 1.8e-3);
    EXPECT_LE(worstF, 1.8e-3);
    EXPECT_GT(worstD, 1e-4);
}

double Relative(double value, double reference) {
    return reference == 0 ? std::fabs(value) : std::fabs(value / reference - 1);
}

double (*const StdGamma)(double) = [](double x) { return std::tgamma(x); };
double (*const StdErf)(double) = [](double x) { return std::erf(x); };
double (*const StdErfc)(double) = [](double x) { return std::erfc(x); };
double (*const StdI0)(double) = [](double x) { return std::cyl_bessel_i(0.0, std::fabs(x)); };
double (*const StdI1)(double) = [](double x) {
    return std::copysign(std::cyl_bessel_i(1.0, std::fabs(x)), x);
};

// Worst relative error of both pairs against the standard library on a
// grid; the float pair is held to one unit in the last place of float.
void ExpectMatches(const char* name, double (*wide)(double), float (*single)(float),
                   double (*reference)(double), double from, double to, double step,
                   double tolerance) {
    double worst = 0, worstSingle = 0;
    for (double x = from; x < to; x += step) {
        worst = std::fmax(worst, Relative(wide(x), reference(x)));
        float xf = static_cast<float>(x);
        double refSingle = reference(static_cast<double>(xf));
        if (std::fabs(refSingle) < 1e38 && std::fabs(refSingle) > 1e-37) {
            worstSingle = std::fmax(worstSingle, Relative(single(xf), refSingle));
        }
    }
    EXPECT_LE(worst, tolerance) << name;
    EXPECT_LE(worstSingle, 1.2e-7) << name;
}

TEST(SpecialFunctions, GammaMatchesTheStandardLibrary) {
    ExpectMatches("Gamma", MathD::Gamma, MathF::Gamma, StdGamma, 0.001, 171.6, 0.0071, 1e-14);
    ExpectMatches("Gamma<0", MathD::Gamma, MathF::Gamma, StdGamma, -170.55, -0.001, 0.0173, 1e-14);
    EXPECT_EQ(MathD::Gamma(1.0), 1.0);
    EXPECT_EQ(MathD::Gamma(5.0), 24.0);
    EXPECT_EQ(MathD::Gamma(23.0), 1124000727777607680000.0);
    EXPECT_NEAR(MathD::Gamma(0.5), std::sqrt(kPi), 1e-15);
    EXPECT_EQ(MathD::Gamma(0.0), HUGE_VAL);
    EXPECT_EQ(MathD::Gamma(-3.0), HUGE_VAL);
    EXPECT_EQ(MathD::Gamma(172.0), HUGE_VAL);
    EXPECT_EQ(MathF::Gamma(36.0f), HUGE_VALF);
    EXPECT_TRUE(std::isnan(MathD::Gamma(NAN)));
}

TEST(SpecialFunctions, LogGammaMatchesTheStandardLibrary) {
    double worst = 0;
    for (double x = -100.37; x < 1e6; x = x < 100 ? x + 0.0137 : x * 1.01) {
        double ref = std::lgamma(x);
        worst =
            std::fmax(worst, std::fabs(MathD::LogGamma(x) - ref) / std::fmax(1.0, std::fabs(ref)));
        float xf = static_cast<float>(x);
        double refSingle = std::lgamma(static_cast<double>(xf));
        if (std::isinf(refSingle)) {
            continue;
        }
        EXPECT_NEAR(MathF::LogGamma(xf), refSingle, 1.2e-7 * std::fmax(1.0, std::fabs(refSingle)));
    }
    EXPECT_LE(worst, 1e-14);
    EXPECT_EQ(MathD::LogGamma(1.0), 0.0);
    EXPECT_EQ(MathD::LogGamma(2.0), 0.0);
    EXPECT_EQ(MathD::LogGamma(-2.0), HUGE_VAL);
    EXPECT_EQ(MathD::LogGamma(HUGE_VAL), HUGE_VAL);
}

TEST(SpecialFunctions, ErrorFunctionsMatchTheStandardLibrary) {
    ExpectMatches("Erf", MathD::Erf, MathF::Erf, StdErf, -6.0, 6.0, 0.00037, 5e-15);
    ExpectMatches("Erfc", MathD::Erfc, MathF::Erfc, StdErfc, -6.0, 26.0, 0.00037, 1e-14);
    EXPECT_EQ(MathD::Erf(1e-300), std::erf(1e-300));
    EXPECT_EQ(MathD::Erf(0.0), 0.0);
    EXPECT_EQ(MathD::Erf(HUGE_VAL), 1.0);
    EXPECT_EQ(MathD::Erf(-HUGE_VAL), -1.0);
    EXPECT_EQ(MathD::Erfc(HUGE_VAL), 0.0);
    EXPECT_EQ(MathD::Erfc(-HUGE_VAL), 2.0);
    EXPECT_TRUE(std::isnan(MathF::Erfc(NAN)));
}

TEST(SpecialFunctions, ModifiedBesselFunctionsMatchTheStandardLibrary) {
    ExpectMatches("I0", MathD::ModBessel0, MathF::ModBessel0, StdI0, -700.0, 700.0, 0.0137, 1e-14);
    ExpectMatches("I1", MathD::ModBessel1, MathF::ModBessel1, StdI1, -700.0, 700.0, 0.0137, 1e-14);
    EXPECT_EQ(MathD::ModBessel0(0.0), 1.0);
    EXPECT_EQ(MathD::ModBessel1(0.0), 0.0);
    EXPECT_EQ(MathD::ModBessel0(800.0), HUGE_VAL);
    EXPECT_EQ(MathD::ModBessel1(-HUGE_VAL), -HUGE_VAL);
}

class IncompleteGammaHalves : public CKWMathT<double, float> {
public:
    using CKWMathT<double, float>::IncompleteGammaCF;
    using CKWMathT<double, float>::IncompleteGammaS;
};

TEST(SpecialFunctions, IncompleteGammaMatchesClosedForms) {
    double worst = 0;
    for (double x = 0.001; x < 60; x += 0.00731) {
        worst = std::fmax(worst, std::fabs(MathD::IncompleteGamma(1.0, x) + std::expm1(-x)));
        worst =
            std::fmax(worst, std::fabs(MathD::IncompleteGamma(0.5, x) - std::erf(std::sqrt(x))));
        // P(n, x) = 1 - e^-x sum_{k<n} x^k / k!, summed in long double.
        for (int n = 2; n <= 20; n += 6) {
            long double term = 1, sum = 1;
            for (int k = 1; k < n; ++k) {
                term *= x / k;
                sum += term;
            }
            double ref = static_cast<double>(1 - std::exp(static_cast<long double>(-x)) * sum);
            worst = std::fmax(worst, std::fabs(MathD::IncompleteGamma(n, x) - ref));
        }
    }
    EXPECT_LE(worst, 1e-14);
    // Both halves agree where both converge.
    EXPECT_NEAR(IncompleteGammaHalves::IncompleteGammaS(3.0, 4.5),
                IncompleteGammaHalves::IncompleteGammaCF(3.0, 4.5), 1e-14);
    EXPECT_EQ(MathD::IncompleteGamma(-1.0, 2.0), 0.0);
    EXPECT_EQ(MathD::IncompleteGamma(2.0, 0.0), 0.0);
    EXPECT_EQ(MathD::IncompleteGamma(2.0, HUGE_VAL), 1.0);
    EXPECT_EQ(MathD::IncompleteGamma(HUGE_VAL, 2.0), 0.0);
    EXPECT_TRUE(std::isnan(MathF::IncompleteGamma(NAN, 1.0f)));
    float single = MathF::IncompleteGamma(2.5f, 1.5f);
    EXPECT_NEAR(single, MathD::IncompleteGamma(2.5, 1.5), 1e-7);
}

TEST(SpecialFunctions, IncompleteGammaStaysAccurateForLargeShapes) {
    // Around x = a, where P(a, x) climbs from 0 to 1, the exponent's large
    // terms nearly cancel. Oracle: 1 - e^-x sum_{k<n} x^k / k!, each term
    // from its logarithm in long double.
    const int n = 500;
    double worst = 0;
    for (double x = 0.8 * n; x < 1.2 * n; x += 0.37) {
        long double upper = 0;
        for (int k = 0; k < n; ++k) {
            upper +=
                std::exp(k * std::log(static_cast<long double>(x)) - x - std::lgamma(k + 1.0L));
        }
        worst = std::fmax(worst, std::fabs(MathD::IncompleteGamma(n, x) - double(1 - upper)));
    }
    EXPECT_LE(worst, 5e-15);
}

}  // namespace
