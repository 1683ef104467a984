// SPDX-License-Identifier: AGPL-3.0-only
#include "audio/Quantiser.h"

#include "audio/Dither.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>
#include <vector>

namespace
{
using larkspire::Quantiser;

TEST (Quantiser, ReturnsEveryNumber)
{
    for (const int bits : { 16, 24 })
    {
        const Quantiser quantiser (bits);
        const int steps = 1 << (bits - 1);

        for (int number = -steps; number < steps; ++number)
            ASSERT_EQ (quantiser.toWholeNumber (static_cast<float> (number) / static_cast<float> (steps)), number);
    }
}

TEST (Quantiser, RoundsToTheNearestAndTiesToEven)
{
    const Quantiser quantiser (16);
    constexpr float step = 1.0f / 32768.0f;
    EXPECT_EQ (quantiser.toWholeNumber (0.49f * step), 0);
    EXPECT_EQ (quantiser.toWholeNumber (0.51f * step), 1);
    EXPECT_EQ (quantiser.toWholeNumber (-0.51f * step), -1);
    EXPECT_EQ (quantiser.toWholeNumber (0.5f * step), 0);
    EXPECT_EQ (quantiser.toWholeNumber (1.5f * step), 2);
    EXPECT_EQ (quantiser.toWholeNumber (-2.5f * step), -2);
}

TEST (Quantiser, HoldsWhatIsTooLoudWithinTheRange)
{
    constexpr auto infinity = std::numeric_limits<float>::infinity();

    for (const int bits : { 16, 24 })
    {
        const Quantiser quantiser (bits);
        const auto largest = (1 << (bits - 1)) - 1;
        EXPECT_EQ (quantiser.toWholeNumber (1.0f), largest);
        EXPECT_EQ (quantiser.toWholeNumber (1e30f), largest);
        EXPECT_EQ (quantiser.toWholeNumber (infinity), largest);
        EXPECT_EQ (quantiser.toWholeNumber (-1.0f), -largest - 1);
        EXPECT_EQ (quantiser.toWholeNumber (-1e30f), -largest - 1);
        EXPECT_EQ (quantiser.toWholeNumber (-infinity), -largest - 1);
    }
}

TEST (Quantiser, MakesSilenceOfNaN)
{
    EXPECT_EQ (Quantiser (24).toWholeNumber (std::numeric_limits<float>::quiet_NaN()), 0);
}

/** The errors of rounding, in steps, of a sound that stays where it is. */
std::vector<double> errorsAt (double steps)
{
    const Quantiser quantiser (16);
    larkspire::Dither dither;
    std::vector<double> errors (200000);
    const auto sample = static_cast<float> (steps / 32768.0);

    for (auto& error : errors)
        error = quantiser.toWholeNumber (sample, dither.next()) - steps;

    return errors;
}

TEST (Quantiser, MakesWithDitherAnErrorWhoseMeanAndVarianceDoNotDependOnTheSound)
{
    // A quarter of a square step: a twelfth of rounding and twice a twelfth of dither. Without dither the mean follows
    // the sound.
    for (const double steps : { 0.0, 0.25, 0.5, 0.75, 100.3, -17.9 })
    {
        const auto errors = errorsAt (steps);
        const auto count = static_cast<double> (errors.size());
        const auto mean = std::accumulate (errors.begin(), errors.end(), 0.0) / count;
        const auto square = std::inner_product (errors.begin(), errors.end(), errors.begin(), 0.0) / count;
        EXPECT_NEAR (mean, 0.0, 0.005) << steps;
        EXPECT_NEAR (square, 0.25, 0.005) << steps;
    }
}

TEST (Quantiser, HoldsDitheredSamplesWithinTheRange)
{
    larkspire::Dither dither;

    for (int i = 0; i < 1000; ++i)
    {
        const auto noise = dither.next();
        ASSERT_LT (std::abs (noise), 1.0);
        ASSERT_GE (Quantiser (16).toWholeNumber (1.0f, noise), 32766);
        ASSERT_LE (Quantiser (16).toWholeNumber (1.0f, noise), 32767);
        ASSERT_LE (Quantiser (16).toWholeNumber (-1.0f, noise), -32767);
    }
}

TEST (Quantiser, GivesTheSampleThatANumberStandsFor)
{
    EXPECT_EQ (Quantiser (16).toSample (-32768), -1.0);
    EXPECT_EQ (Quantiser (16).toSample (16384), 0.5);
    EXPECT_EQ (Quantiser (24).toSample (1), 1.0 / 8388608.0);
}
} // namespace
