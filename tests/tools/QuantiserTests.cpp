// SPDX-License-Identifier: AGPL-3.0-only
#include "audio/Quantiser.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

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

TEST (Quantiser, GivesTheSampleThatANumberStandsFor)
{
    EXPECT_EQ (Quantiser (16).toSample (-32768), -1.0);
    EXPECT_EQ (Quantiser (16).toSample (16384), 0.5);
    EXPECT_EQ (Quantiser (24).toSample (1), 1.0 / 8388608.0);
}
} // namespace
