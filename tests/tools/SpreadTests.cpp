// SPDX-License-Identifier: AGPL-3.0-only
// What stands for a course that is too dense to be drawn.
#include "plot/Spread.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{
using namespace larkspire::plot;
using testing::DoubleEq;
using testing::IsNan;

constexpr auto nothing = std::numeric_limits<double>::quiet_NaN();
constexpr auto silence = -std::numeric_limits<double>::infinity();

/** Ten columns of 10 s each. */
const Axis time { .first = 0.0, .last = 100.0, .firstPixel = 50.0, .lastPixel = 60.0 };

/** The numbers 0, 1, 2 ... at every second, in an order that is not their own within ten of them. */
Series rising()
{
    Series series;

    for (int second = 0; second < 100; ++second)
        series.values.push_back (second - second % 10 + second * 7 % 10);

    return series;
}

void expectSpread (const Spread& spread, double low, double middle, double high)
{
    EXPECT_THAT (spread.low, DoubleEq (low));
    EXPECT_THAT (spread.middle, DoubleEq (middle));
    EXPECT_THAT (spread.high, DoubleEq (high));
}

TEST (Spread, HasOneEntryForEachColumnAtItsMiddle)
{
    const auto spreads = spreadOf (rising(), time, 10.0);
    ASSERT_EQ (spreads.size(), 10U);
    EXPECT_EQ (spreads.front().column, 50.5);
    EXPECT_EQ (spreads.back().column, 59.5);
}

TEST (Spread, IsTheMedianAndWhatLiesBetweenTheTenths)
{
    // The ranks 1, 5 and 9 of ten.
    const auto spreads = spreadOf (rising(), time, 10.0);
    expectSpread (spreads[0], 0.0, 4.0, 8.0);
    expectSpread (spreads[7], 70.0, 74.0, 78.0);
}

TEST (Spread, TakesAsMuchAsTheWindowIsLong)
{
    // The thirty values from 30 to 59 s around a column of 40 to 49 s; at the beginning those from 0 to 19 s.
    const auto spreads = spreadOf (rising(), time, 30.0);
    expectSpread (spreads[4], 32.0, 44.0, 56.0);
    expectSpread (spreads[0], 1.0, 9.0, 17.0);
}

TEST (Spread, CountsSilenceAndLeavesOutWhatIsMissing)
{
    Series series { .values = std::vector<double> (100, -20.0) };

    for (std::size_t second = 10; second < 20; ++second)
        series.values[second] = second < 16 ? silence : -20.0;

    for (std::size_t second = 20; second < 30; ++second)
        series.values[second] = nothing;

    for (std::size_t second = 30; second < 39; ++second)
        series.values[second] = nothing;

    const auto spreads = spreadOf (series, time, 10.0);
    expectSpread (spreads[1], silence, silence, -20.0);
    EXPECT_THAT (spreads[2].low, IsNan());
    EXPECT_THAT (spreads[2].middle, IsNan());
    EXPECT_THAT (spreads[2].high, IsNan());
    expectSpread (spreads[3], -20.0, -20.0, -20.0);
}

TEST (Spread, OfASeriesThatBeginsLaterIsWhereItBegins)
{
    const Series series { .firstSeconds = 25.0,
                          .stepSeconds = 2.0,
                          .values = std::vector<double> (10, 1.0) }; // to 43 s
    const auto spreads = spreadOf (series, time, 10.0);

    for (std::size_t column = 0; column < 10; ++column)
        EXPECT_EQ (std::isnan (spreads[column].middle), column < 2 || column > 4) << column;
}
} // namespace
