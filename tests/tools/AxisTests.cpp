// SPDX-License-Identifier: AGPL-3.0-only
// Scales and the numbers beside them.
#include "base/Texts.h"
#include "plot/Axis.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{
using namespace larkspire::plot;
using testing::ElementsAre;

std::vector<std::string> labelsOf (const std::vector<Tick>& ticks)
{
    std::vector<std::string> labels;
    labels.reserve (ticks.size());

    for (const auto& tick : ticks)
        labels.push_back (tick.label);

    return labels;
}

Axis timeTo (double seconds)
{
    return { .first = 0.0, .last = seconds, .firstPixel = 0.0, .lastPixel = 1000.0 };
}

TEST (Axis, IsStraightAndMayRunUpwards)
{
    const Axis axis { .first = -60.0, .last = 0.0, .firstPixel = 600.0, .lastPixel = 300.0 };
    EXPECT_EQ (axis.pixelOf (-60.0), 600.0);
    EXPECT_EQ (axis.pixelOf (-30.0), 450.0);
    EXPECT_EQ (axis.pixelOf (0.0), 300.0);
}

TEST (AxisTicks, StandAtWholeMultiplesWithinTheAxis)
{
    const Axis axis { .first = -22.0, .last = 2.0, .firstPixel = 1.0, .lastPixel = 0.0 };
    EXPECT_THAT (labelsOf (ticksEvery (10.0, axis)), ElementsAre ("\u221220", "\u221210", "0"));
    const Axis wave { .first = -0.2, .last = 0.2, .firstPixel = 1.0, .lastPixel = 0.0 };
    EXPECT_THAT (labelsOf (ticksEvery (0.1, wave)), ElementsAre ("\u22120.2", "\u22120.1", "0.0", "0.1", "0.2"));
}

TEST (AxisTicks, HaveTheDecimalsOfTheirStep)
{
    const Axis axis { .first = 0.0, .last = 0.5, .firstPixel = 1.0, .lastPixel = 0.0 };
    EXPECT_THAT (labelsOf (ticksEvery (0.25, axis)), ElementsAre ("0.00", "0.25", "0.50"));
    const Axis large { .first = 0.0, .last = 5.0, .firstPixel = 1.0, .lastPixel = 0.0 };
    EXPECT_THAT (labelsOf (ticksEvery (2.5, large)), ElementsAre ("0.0", "2.5", "5.0"));
}

TEST (AxisTicks, OfTimeAreRoundAndNeverMoreThanTwelve)
{
    for (double seconds = 0.001; seconds < 400000.0; seconds *= 1.07)
    {
        const auto ticks = timeTicks (timeTo (seconds));
        EXPECT_GE (ticks.size(), 3U) << seconds;
        EXPECT_LE (ticks.size(), 12U) << seconds;
        const auto labels = labelsOf (ticks);

        for (std::size_t i = 1; i < labels.size(); ++i)
            EXPECT_NE (labels[i], labels[i - 1]) << seconds;
    }
}

TEST (AxisTicks, OfTimeReadAsAClockDoes)
{
    EXPECT_THAT (
        labelsOf (timeTicks (timeTo (0.05))),
        ElementsAre (
            "0.000", "0.005", "0.010", "0.015", "0.020", "0.025", "0.030", "0.035", "0.040", "0.045", "0.050"));
    EXPECT_THAT (labelsOf (timeTicks (timeTo (9.0))), ElementsAre ("0", "1", "2", "3", "4", "5", "6", "7", "8", "9"));
    EXPECT_THAT (labelsOf (timeTicks (timeTo (150.0))),
                 ElementsAre ("0:00", "0:15", "0:30", "0:45", "1:00", "1:15", "1:30", "1:45", "2:00", "2:15", "2:30"));
    EXPECT_THAT (labelsOf (timeTicks (timeTo (7200.0))),
                 ElementsAre ("0:00", "0:15", "0:30", "0:45", "1:00", "1:15", "1:30", "1:45", "2:00"));
    EXPECT_EQ (timeUnit (timeTo (120.0)), "s");
    EXPECT_EQ (timeUnit (timeTo (121.0)), "min:s");
    EXPECT_EQ (timeUnit (timeTo (3600.0)), "h:min");
}

TEST (Times, AreRoundedUpToWhatPeopleCountIn)
{
    for (const auto& [least, round] : { std::pair { 0.1, 1.0 },
                                        { 5.0, 5.0 },
                                        { 26.7, 30.0 },
                                        { 80.0, 120.0 },
                                        { 7200.0, 7200.0 },
                                        { 7201.0, 10800.0 } })
        EXPECT_EQ (roundTime (least), round) << least;
}

TEST (Numbers, HaveATrueMinusAndNoNegativeZero)
{
    EXPECT_EQ (larkspire::numberText (-1.25, 1), "\u22121.2");
    EXPECT_EQ (larkspire::numberText (-0.04, 1), "0.0");
    EXPECT_EQ (larkspire::numberText (12.0, 0), "12");
}

TEST (Numbers, AreRoundedUpToOneTwoAndFive)
{
    for (const auto& [value, round] : { std::pair { 0.1, 0.1 },
                                        { 0.11, 0.2 },
                                        { 0.2, 0.2 },
                                        { 0.3, 0.5 },
                                        { 0.6, 1.0 },
                                        { 1.01, 2.0 },
                                        { 21.0, 50.0 } })
        EXPECT_NEAR (roundedUp (value), round, 1e-12) << value;
}
} // namespace
