// SPDX-License-Identifier: AGPL-3.0-only
#include "settings/ValueTexts.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace
{
using larkspire::durationText;

TEST (DurationText, ChangesItsUnitAtExactlyOneAndItsWordAtExactlyTwo)
{
    struct Unit
    {
        double seconds;
        const char* justBelowOne;
        const char* one;
        const char* justBelowTwo;
        const char* two;
    };

    const std::vector<Unit> units {
        { 31536000.0, "12 months", "1 year", "1 year", "2 years" },
        { 2592000.0, "29 days", "1 month", "1 month", "2 months" },
        { 86400.0, "23 hours", "1 day", "1 day", "2 days" },
        { 3600.0, "59 minutes", "1 hour", "1 hour", "2 hours" },
        { 60.0, "59 sec", "1 minute", "1 minute", "2 minutes" },
        { 1.0, "999 ms", "1 sec", "1 sec", "2 sec" },
        { 0.001, "999 micros", "1 ms", "1 ms", "2 ms" },
        { 0.000001, "", "1 micros", "1 micros", "2 micros" },
    };

    for (const auto& unit : units)
    {
        EXPECT_EQ (durationText (std::nextafter (unit.seconds, 0.0)), unit.justBelowOne);
        EXPECT_EQ (durationText (unit.seconds), unit.one);
        EXPECT_EQ (durationText (std::nextafter (2.0 * unit.seconds, 0.0)), unit.justBelowTwo);
        EXPECT_EQ (durationText (2.0 * unit.seconds), unit.two);
    }
}

TEST (DurationText, ShowsTheLargestUnitAndDropsTheRest)
{
    EXPECT_EQ (larkspire::durationTermsShown, 1u);
    EXPECT_EQ (durationText (90.0), "1 minute");
    EXPECT_EQ (durationText (3.7), "3 sec");
    EXPECT_EQ (durationText (0.25), "250 ms");
    EXPECT_EQ (durationText (0.0000015), "1 micros");
    EXPECT_EQ (durationText (3.0e9), "95 years");
}

TEST (DurationText, IsEmptyWhereThereIsNotAMicrosecond)
{
    EXPECT_EQ (durationText (0.0), "");
    EXPECT_EQ (durationText (9.99e-7), "");
    EXPECT_EQ (durationText (std::numeric_limits<double>::denorm_min()), "");
    EXPECT_EQ (durationText (0.0, 8), "");
}

TEST (DurationText, ListsAsManyUnitsAsAskedForZerosAmongThem)
{
    EXPECT_EQ (durationText (86700.0, 0), "");
    EXPECT_EQ (durationText (86700.0, 1), "1 day");
    EXPECT_EQ (durationText (86700.0, 2), "1 day and 0 hours");
    EXPECT_EQ (durationText (86700.0, 3), "1 day, 0 hours and 5 minutes");
    EXPECT_EQ (durationText (34218061.001001, 8), "1 year, 1 month, 1 day, 1 hour, 1 minute, 1 sec, 1 ms and 1 micros");
}

TEST (DurationText, EndsWithTheListWhereMoreIsAskedForThanThereIs)
{
    EXPECT_EQ (durationText (0.0015, 2), "1 ms and 500 micros");
    EXPECT_EQ (durationText (0.0015, 3), "1 ms, 500 micros") << "the word stands for the last but one of three";
    EXPECT_EQ (durationText (0.0015, std::numeric_limits<std::size_t>::max()), "1 ms, 500 micros");
}

TEST (DurationText, GivesSomeTextForWhatIsNoDuration)
{
    EXPECT_EQ (durationText (-1.0), "-1 years");
    EXPECT_EQ (durationText (1.0e30), "-2147483648 years") << "the smallest int stands for what fits none";
    EXPECT_EQ (durationText (std::numeric_limits<double>::infinity()), "-2147483648 years");
    EXPECT_EQ (durationText (std::numeric_limits<double>::quiet_NaN()), "-2147483648 years");
}
} // namespace
