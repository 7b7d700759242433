// The kernel's constants, rounding and angle rules.
#include <gtest/gtest.h>

#include <cmath>

#include "kwcore/geometry/linear/CKWMathT.h"
#include "kwcore/geometry/linear/CKWPoint4T.h"

namespace {

using MathF = CKWMathT<float, double>;
using MathD = CKWMathT<double, float>;

TEST(MathConstants, HoldSinglePrecisionValuesInBothPairs) {
    struct Expected {
        float single;
        double wide;
        double value;
    };
    const Expected table[] = {
        {MathF::EPSILON, MathD::EPSILON, 1.1920928955078125e-07},
        {MathF::ZERO_TOLERANCE, MathD::ZERO_TOLERANCE, 9.999999974752427e-07},
        {MathF::MAX_REAL, MathD::MAX_REAL, 3.4028234663852886e+38},
        {MathF::PI, MathD::PI, 3.1415927410125732},
        {MathF::TWO_PI, MathD::TWO_PI, 6.2831854820251465},
        {MathF::HALF_PI, MathD::HALF_PI, 1.5707963705062866},
        {MathF::QUARTER_PI, MathD::QUARTER_PI, 0.7853981852531433},
        {MathF::INV_PI, MathD::INV_PI, 0.31830987334251404},
        {MathF::INV_TWO_PI, MathD::INV_TWO_PI, 0.6366197466850281},
        {MathF::E, MathD::E, 2.7182817459106445},
    };
    for (const Expected& e : table) {
        EXPECT_EQ(static_cast<double>(e.single), e.value);
        EXPECT_EQ(e.wide, e.value);
    }
}

TEST(MathConstants, DegreeFactorsDifferBetweenPairs) {
    EXPECT_EQ(static_cast<double>(MathF::DEG_TO_RAD), 0.01745329238474369);
    EXPECT_EQ(MathD::DEG_TO_RAD, 0.017453293005625408);
    EXPECT_EQ(static_cast<double>(MathF::RAD_TO_DEG), 57.2957763671875);
    EXPECT_EQ(MathD::RAD_TO_DEG, 57.29577791868205);
    EXPECT_EQ(static_cast<double>(MathF::FIVE_DEGREES), 0.0872664600610733);
    // RadToDeg uses its own literal, not RAD_TO_DEG.
    EXPECT_EQ(static_cast<double>(MathF::RadToDeg(1.0f)), 57.295780181884766);
    EXPECT_EQ(MathF::DegToRad(1.0f), MathF::DEG_TO_RAD);
    float angle = 180.0f;
    MathF::ConvertToRad(angle);
    EXPECT_EQ(angle, 180.0f * MathF::DEG_TO_RAD);
    MathF::ConvertToDeg(angle);
    EXPECT_NEAR(angle, 180.0f, 1e-4f);
}

TEST(MathWrappers, SignsAndClampedInverseTrigonometry) {
    EXPECT_EQ(MathF::Sign(-2.5f), -1.0f);
    EXPECT_EQ(MathF::Sign(-0.0f), 0.0f);
    EXPECT_EQ(MathD::Sign(1e-300), 1.0);
    EXPECT_EQ(MathF::Sign(-7), -1);
    // Arguments just outside [-1, 1] are clamped instead of giving NaN.
    EXPECT_EQ(MathD::ACos(1.0000001), 0.0);
    EXPECT_EQ(MathD::ASin(-2.0), -std::asin(1.0));
}

TEST(MathRounding, RoundsToStepsAndDigits) {
    EXPECT_EQ(MathD::Round(1.26, 0.5), 1.5);
    EXPECT_EQ(MathD::Round(-1.26, 0.5), -1.5);
    EXPECT_EQ(MathD::Round(1.26, 0.0), 1.26);
    // Digits 1..10 use single-precision steps.
    EXPECT_EQ(MathD::Round(1.06, 1), 11.0 * static_cast<double>(0.1f));
    EXPECT_EQ(MathD::Round(2.5, 0), 3.0);
    // Steps beyond ten digits come from powers of 0.1, so they are inexact.
    EXPECT_DOUBLE_EQ(MathD::Round(1234.0, -2), 1200.0);
    EXPECT_DOUBLE_EQ(MathD::Round(1250.0, -2), 1300.0);
    EXPECT_NEAR(MathD::Round(0.123456789012345, 12), 0.123456789012, 1e-15);
    EXPECT_EQ(MathF::Round(5.0f, -400), 5.0f);  // step overflows: unchanged
}

TEST(MathRounding, ApproxEqualIsEqualityAfterRounding) {
    EXPECT_FALSE(MathD::Approx_Equal(1.04, 1.06, 1));
    EXPECT_TRUE(MathD::Approx_Equal(1.06, 1.14, 1));
    EXPECT_FALSE(MathF::Approx_Equal(1.04f, 1.06f, 1));
    EXPECT_TRUE(MathF::Approx_Equal(1.06f, 1.14f, 1));
    // Close values across a rounding boundary are unequal.
    EXPECT_FALSE(MathD::Approx_Equal(0.2499, 0.2501, 0.5));
    EXPECT_TRUE(MathD::Approx_Equal(0.26, 0.74, 0.5));
}

TEST(MathAngles, NormalizeAngleMapsIntoOneTurn) {
    EXPECT_FLOAT_EQ(MathF::NormalizeAngle(-0.5f * MathF::PI), 1.5f * MathF::PI);
    EXPECT_EQ(MathF::NormalizeAngle(2e6f), 0.0f);
    EXPECT_EQ(MathF::NormalizeAngle(-2e6f), 0.0f);
    EXPECT_EQ(MathF::NormalizeAngle(MathF::TWO_PI - 1e-7f), 0.0f);
    EXPECT_EQ(MathD::NormalizeAngle(MathD::TWO_PI - 1e-7), 0.0);
    EXPECT_EQ(MathD::NormalizeAngle(5e-7), 0.0);
    EXPECT_NEAR(MathD::NormalizeAngle(7.0), 7.0 - MathD::TWO_PI, 1e-12);
    EXPECT_NEAR(MathD::NormalizeAngle(999999.0), std::fmod(999999.0, MathD::TWO_PI), 1e-6);
    EXPECT_EQ(MathD::NormalizeAngle(INFINITY), 0.0);
    EXPECT_EQ(MathD::NormalizeAngle(-INFINITY), 0.0);
    EXPECT_TRUE(std::isnan(MathD::NormalizeAngle(NAN)));
}

TEST(MathAngles, GetAngleGivesDirectionInOneTurn) {
    EXPECT_EQ(MathF::GetAngle(0, 0, 0, 0), MathF::HALF_PI);
    EXPECT_EQ(MathF::GetAngle(0, 0, -1, 0), MathF::PI);
    EXPECT_EQ(MathF::GetAngle(0, 0, 0, -1), -MathF::HALF_PI + MathF::TWO_PI);
    EXPECT_FLOAT_EQ(MathF::GetAngle(1, 1, 2, 2), MathF::QUARTER_PI);
    EXPECT_FLOAT_EQ(MathF::GetAngle(0, 0, -1, -1), 1.25f * MathF::PI);
    EXPECT_FLOAT_EQ(MathD::GetAngle(0, 0, 1, -1), 1.75 * MathD::PI);
    CKWPoint4T<double, float> from(1.0, 1.0, 0.0, 1.0), to(1.0, 3.0, 0.0, 1.0);
    EXPECT_EQ(MathD::GetAngle(from, to), MathD::HALF_PI);
}

TEST(MathAngles, LeftRightAndTurnAnglesOfAPath) {
    // (0,0) -> (1,0) -> (1,1): a left turn of 90 degrees.
    EXPECT_NEAR(MathD::GetLeftAngle(0, 0, 1, 0, 1, 1), MathD::HALF_PI, 1e-12);
    EXPECT_NEAR(MathD::GetRightAngle(0, 0, 1, 0, 1, 1), 1.5 * MathD::PI, 1e-12);
    EXPECT_NEAR(MathD::GetTurnAngle(0, 0, 1, 0, 1, 1), MathD::HALF_PI, 1e-12);
    EXPECT_NEAR(MathD::GetTurnAngle(0, 0, 1, 0, 1, -1), -MathD::HALF_PI, 1e-12);
    EXPECT_NEAR(MathD::GetTurnAngle(0, 0, 1, 0, 2, 0), 0.0, 1e-12);
    EXPECT_NEAR(MathD::GetIncludedAngle(0.1, 6.2), MathD::TWO_PI - 6.1, 1e-12);
    EXPECT_NEAR(MathD::GetIncludedAngle(1.0, 2.5), 1.5, 1e-12);
    EXPECT_EQ(MathF::GetDirectionAngle(-1, 0), MathF::PI);
}

TEST(MathPolygons, AreaIsUnsignedAndNeedsThreePoints) {
    using P = CKWPoint4T<float, double>;
    const P ccw[] = {P(0, 0, 0, 1), P(2, 0, 0, 1), P(2, 2, 0, 1), P(0, 2, 0, 1)};
    const P cw[] = {P(0, 0, 0, 1), P(0, 2, 0, 1), P(2, 2, 0, 1), P(2, 0, 0, 1)};
    EXPECT_EQ(MathF::GetPolygonArea(ccw, 4), 4.0f);
    EXPECT_EQ(MathF::GetPolygonArea(cw, 4), 4.0f);
    EXPECT_EQ(MathF::GetPolygonArea(ccw, 2), 0.0f);
    EXPECT_EQ(MathF::GetPolygonArea(nullptr, 4), 0.0f);
    EXPECT_EQ(MathF::GetPolylineLength(ccw, 4), 6.0f);
    EXPECT_EQ(MathF::GetPolylineLength(ccw, 1), 0.0f);
}

TEST(MathRandom, StaysInItsIntervalsAndRepeatsWithASeed) {
    double first = MathD::UnitRandom(7);
    for (int i = 0; i < 1000; ++i) {
        double u = MathD::UnitRandom();
        EXPECT_GE(u, 0.0);
        EXPECT_LE(u, 1.0);
        float s = MathF::SymmetricRandom();
        EXPECT_GE(s, -1.0f);
        EXPECT_LE(s, 1.0f);
        double v = MathD::IntervalRandom(-3.0, 5.0);
        EXPECT_GE(v, -3.0);
        EXPECT_LE(v, 5.0);
    }
    EXPECT_EQ(MathD::UnitRandom(7), first);
}

}  // namespace
