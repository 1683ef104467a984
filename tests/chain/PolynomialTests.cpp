// SPDX-License-Identifier: AGPL-3.0-only
// Sine and arc tangent against long double, at every float where their polynomials have something to do. Near zero and
// far out, where all but a step of the last place is given, there are two thousand million floats more: every 61st of
// them, and all with LARKSPIRE_EVERY_FLOAT in the environment, which is what make exhaustive does.
#include "chain/ArcTangent.h"
#include "chain/OddPolynomials.h"
#include "chain/Sine.h"
#include "chain/SoftClip.h"
#include "coefficients/OddPolynomial.h"
#include "support/Comparison.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <limits>
#include <numbers>
#include <random>

namespace
{
using namespace larkspire;

#if defined(__OPTIMIZE__) && ! defined(__SANITIZE_ADDRESS__) && ! defined(__SANITIZE_THREAD__)
constexpr std::uint32_t everyFloat = 1;
#else
constexpr std::uint32_t everyFloat = 1009; // without optimisation it would take minutes
#endif

std::uint32_t everySixtyFirst()
{
    return std::getenv ("LARKSPIRE_EVERY_FLOAT") != nullptr ? 1 : 61 * everyFloat;
}

constexpr long double allowedUlp = 2.5L;

/** Steps of the last place between a float and the true value. */
long double ulpBetween (float actual, long double wanted)
{
    // The exponent of the nearest float alone is a power of two; a step is 2^23 times smaller, but for the denormals.
    const auto exponent = bitsOf (static_cast<float> (wanted)) & 0x7f800000u;
    const auto power = exponent == 0 ? std::numeric_limits<float>::min() : std::bit_cast<float> (exponent);
    return std::abs (static_cast<long double> (actual) - wanted) * 0x1p23L / static_cast<long double> (power);
}

/** sin, by its series where three terms are exact to the last bit of a long double. */
long double trueSine (float x)
{
    const auto wide = static_cast<long double> (x);

    if (x >= 0x1p-9f)
        return std::sin (wide);

    const auto square = wide * wide;
    return wide * (1 - square * (1.0L / 6 - square * (1.0L / 120 - square * (1.0L / 5040))));
}

/** atan, by its series near zero and far from it. */
long double trueArcTangent (float x)
{
    const auto wide = static_cast<long double> (x);

    if (x >= 0x1p-9f && x <= 0x1p9f)
        return std::atan (wide);

    const auto small = x < 1.0f ? wide : 1 / wide;
    const auto square = small * small;
    const auto angle = small * (1 - square * (1.0L / 3 - square * (1.0L / 5 - square * (1.0L / 7))));
    return x < 1.0f ? angle : std::numbers::pi_v<long double> / 2 - angle;
}

/** A function of the chain and the truth, over the positive floats from one to another. */
struct Range
{
    const char* name;
    Lanes (*function) (Lanes);
    long double (*truth) (float);
    float first;
    float last;
    bool thinned; // whether a sample of the floats does
};

/** Names the range where a test fails. */
void PrintTo (const Range& range, std::ostream* stream)
{
    *stream << range.name;
}

class Polynomial : public testing::TestWithParam<Range>
{
};

TEST_P (Polynomial, IsWithinTwoAndAHalfUlpAndOdd)
{
    const auto& range = GetParam();
    const auto stride = range.thinned ? everySixtyFirst() : everyFloat;
    long double worst = 0;
    float worstAt = 0;

    for (auto i = bitsOf (range.first); i <= bitsOf (range.last); i += stride)
    {
        const auto x = std::bit_cast<float> (i);
        const auto [positive, negative] = sampleOf (range.function (pairOf ({ x, -x })));

        // A plain comparison: an assertion a float would take minutes.
        if (positive != -negative)
            FAIL() << "not odd at " << x << ": " << positive << " and " << negative;

        const auto error = ulpBetween (positive, range.truth (x));

        if (! (error <= worst))
        {
            worst = error;
            worstAt = x;
        }
    }

    EXPECT_LE (worst, allowedUlp) << "at " << worstAt;
    RecordProperty ("worst", std::to_string (worst));
    std::cout << range.name << ": at most " << worst << " ULP, at " << worstAt << "\n";
}

constexpr auto largest = std::numeric_limits<float>::max();

const Range ranges[] = {
    { "SineNearZero", sineWithinQuarterTurn, trueSine, 0.0f, 0x1p-9f, true },
    { "SineUpToAQuarterTurn", sineWithinQuarterTurn, trueSine, 0x1p-9f, halfPi, false },
    { "ArcTangentNearZero", arcTangent, trueArcTangent, 0.0f, 0x1p-9f, true },
    { "ArcTangentUpToOne", arcTangent, trueArcTangent, 0x1p-9f, 1.0f, false },
    { "ArcTangentBeyondOne", arcTangent, trueArcTangent, 1.0f, 0x1p9f, false },
    { "ArcTangentFarOut", arcTangent, trueArcTangent, 0x1p9f, largest, true },
};

INSTANTIATE_TEST_SUITE_P (Ranges,
                          Polynomial,
                          testing::ValuesIn (ranges),
                          [] (const auto& test) { return test.param.name; });

TEST (ArcTangent, OfInfinityIsAQuarterTurnAndOfNaNIsNaN)
{
    constexpr auto infinity = std::numeric_limits<float>::infinity();
    const auto [right, left] = sampleOf (arcTangent (pairOf ({ infinity, -infinity })));
    EXPECT_EQ (right, halfPi);
    EXPECT_EQ (left, -halfPi);
    const auto [none, half] = sampleOf (arcTangent (pairOf ({ std::numeric_limits<float>::quiet_NaN(), 5.0f })));
    EXPECT_TRUE (std::isnan (none));
    EXPECT_FLOAT_EQ (half, std::atan (5.0f));
}

TEST (ArcTangent, OfALaneDoesNotDependOnTheOthers)
{
    std::mt19937 random (8);

    for (int i = 0; i < 1000000; ++i)
    {
        Lanes x {};

        for (int lane = 0; lane < 4; ++lane)
            x[lane] = std::bit_cast<float> (static_cast<std::uint32_t> (random()));

        const auto together = arcTangent (x);

        for (int lane = 0; lane < 4; ++lane)
        {
            if (std::isnan (x[lane]))
                continue;

            ASSERT_EQ (together[lane], arcTangent (broadcast (x[lane]))[0]) << x[lane] << " in lane " << lane;
        }
    }
}

template <std::size_t count>
void expectToBe (const OddPolynomial& found, const float (&coefficients)[count])
{
    ASSERT_EQ (found.coefficients.size(), count);

    for (std::size_t i = 0; i < count; ++i)
        EXPECT_EQ (found.coefficients[i], coefficients[i]) << "coefficient " << i;
}

TEST (Coefficients, AreThoseThatTheSearchFindsWithTheErrorsStatedBesideThem)
{
    const auto ofSine = findSinePolynomial();
    const auto ofArcTangent = findOddPolynomial ([] (long double x) { return std::atan (x); }, 1.0L, 8);
    expectToBe (ofSine, sineCoefficients);
    expectToBe (ofArcTangent, arcTangentCoefficients);
    EXPECT_LE (ofSine.relativeError, 0.15L * 0x1p-24L);
    EXPECT_LE (ofArcTangent.relativeError, 0.29L * 0x1p-24L);
}
} // namespace
