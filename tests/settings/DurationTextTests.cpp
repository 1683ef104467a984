// SPDX-License-Identifier: AGPL-3.0-only
#include "settings/ValueTexts.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{
using larkspire::durationText;

struct UnitRow
{
    const char* name;
    double seconds;
    const char* one;
    const char* justBelowOne;
    const char* two;
    const char* justBelowTwo;
};

class DurationUnit : public testing::TestWithParam<UnitRow>
{
protected:
    static std::string justBelow (double seconds) { return durationText (std::nextafter (seconds, 0.0)); }
};

TEST_P (DurationUnit, HasAWordForExactlyOne)
{
    EXPECT_EQ (durationText (GetParam().seconds), GetParam().one);
}

TEST_P (DurationUnit, LeavesJustBelowOneToTheNextSmallerUnit)
{
    EXPECT_EQ (justBelow (GetParam().seconds), GetParam().justBelowOne);
}

TEST_P (DurationUnit, HasAWordForMore)
{
    EXPECT_EQ (durationText (2.0 * GetParam().seconds), GetParam().two);
}

TEST_P (DurationUnit, DropsTheRemainderJustBelowTwo)
{
    EXPECT_EQ (justBelow (2.0 * GetParam().seconds), GetParam().justBelowTwo);
}

INSTANTIATE_TEST_SUITE_P (OfEachRow,
                          DurationUnit,
                          testing::Values (UnitRow { "Year", 31536000.0, "1 year", "12 months", "2 years", "1 year" },
                                           UnitRow { "Month", 2592000.0, "1 month", "29 days", "2 months", "1 month" },
                                           UnitRow { "Day", 86400.0, "1 day", "23 hours", "2 days", "1 day" },
                                           UnitRow { "Hour", 3600.0, "1 hour", "59 minutes", "2 hours", "1 hour" },
                                           UnitRow { "Minute", 60.0, "1 minute", "59 sec", "2 minutes", "1 minute" },
                                           UnitRow { "Second", 1.0, "1 sec", "999 ms", "2 sec", "1 sec" },
                                           UnitRow { "Millisecond", 0.001, "1 ms", "999 micros", "2 ms", "1 ms" },
                                           UnitRow { "Microsecond", 0.000001, "1 micros", "", "2 micros", "1 micros" }),
                          [] (const auto& test) { return test.param.name; });

TEST (DurationText, ShowsTheLargestUnitAndDropsTheRest)
{
    EXPECT_EQ (larkspire::durationTermsShown, 1u);
    EXPECT_EQ (durationText (90.0), "1 minute");
    EXPECT_EQ (durationText (3.7), "3 sec");
    EXPECT_EQ (durationText (0.25), "250 ms");
    EXPECT_EQ (durationText (172800.0), "2 days");
    EXPECT_EQ (durationText (0.0000015), "1 micros");
    EXPECT_EQ (durationText (59.999), "59 sec");
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
