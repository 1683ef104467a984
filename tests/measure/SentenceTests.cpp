// SPDX-License-Identifier: AGPL-3.0-only
// The numbers that stand in the sentences of docs/sound.md, where no program writes them.
#include "measure/CommittedTables.h"
#include "meter/LevelAdvice.h"

#include <gtest/gtest.h>

#include <cmath>
#include <iterator>
#include <string>

namespace
{
const std::string modes[] = { "gentle", "medium", "powerful" };

TEST (Sentence, TheExpanderClosesOnTheLoudestRoomAdvisedAndNotOnOne3DecibelsLouder)
{
    const auto levels = committed ("static-level");

    for (std::size_t i = 0; i < std::size (modes); ++i)
        for (const auto& row : levels.rows)
        {
            const auto level = std::stod (row.key);
            const auto limit = static_cast<double> (larkspire::meter::levelAdvice[i].highestRoom);
            const auto falling = levels.at (row.key, modes[i] + "_falling_dbfs");
            const auto rising = levels.at (row.key, modes[i] + "_rising_dbfs");

            if (level <= limit)
            {
                EXPECT_NEAR (falling, rising, 0.1) << modes[i] << " at " << row.key;
            }
            else if (level == limit + 3.0)
            {
                EXPECT_GT (falling, rising + 5.0) << modes[i] << " at " << row.key;
            }
        }
}

TEST (Sentence, TheExpanderOpensSome20AndStaysOpenFor8Decibels)
{
    const auto levels = committed ("static-level");
    const auto isOpen = [&] (const std::string& mode, const char* way, double input)
    {
        auto key = std::to_string (input);
        key.resize (key.find ('.') + 2);
        const auto gain = levels.at (key, mode + way) - input;
        const auto whenOpen = levels.at ("-46.0", mode + "_rising_dbfs") + 46.0;
        return gain > whenOpen - 3.0;
    };
    const std::pair<std::string, double> thresholds[] = { { "gentle", -80.0 },
                                                          { "medium", -74.0 },
                                                          { "powerful", -72.0 } };

    for (const auto& [mode, threshold] : thresholds)
    {
        EXPECT_FALSE (isOpen (mode, "_rising_dbfs", threshold + 20.0)) << mode;
        EXPECT_TRUE (isOpen (mode, "_rising_dbfs", threshold + 22.5)) << mode;
        EXPECT_TRUE (isOpen (mode, "_falling_dbfs", threshold + 14.5)) << mode;
        EXPECT_FALSE (isOpen (mode, "_falling_dbfs", threshold + 13.0)) << mode;
    }
}

TEST (Sentence, TheExpanderLowersTheRoomBy10To14Decibels)
{
    const auto levels = committed ("static-level");

    for (const auto& mode : modes)
    {
        const auto gainAt = [&] (const char* input)
        { return levels.at (input, mode + "_rising_dbfs") - std::stod (input); };
        EXPECT_GT (gainAt ("-46.0") - gainAt ("-80.0"), 9.9) << mode;
        EXPECT_LT (gainAt ("-46.0") - gainAt ("-80.0"), 14.1) << mode;
    }
}

TEST (Sentence, SixDecibelsMoreHalveTheTimeToOpen)
{
    const auto opening = committed ("opening");

    for (const auto& mode : modes)
        for (const auto& [louder, softer] : { std::pair { "-18", "-24" }, std::pair { "-24", "-30" } })
            EXPECT_NEAR (
                opening.at (softer, mode + "_stage_frames") / opening.at (louder, mode + "_stage_frames"), 2.0, 0.1)
                << mode;
}

TEST (Sentence, TheModesComeBackInMostOfAMinuteTwoSecondsAndHalfASecond)
{
    const auto times = committed ("times");
    EXPECT_NEAR (times.at ("leveller returns", "gentle_48000_frames") / 48000.0, 50.0, 5.0);
    EXPECT_NEAR (times.at ("leveller returns", "medium_48000_frames") / 48000.0, 2.0, 0.1);
    EXPECT_NEAR (times.at ("leveller returns", "powerful_48000_frames") / 48000.0, 0.5, 0.05);
}

TEST (Sentence, ATone18DecibelsSofterIsBackAfterAQuarterOfASecondInPowerfulOnly)
{
    const auto steps = committed ("steps");
    const auto plateau = [&] (const std::string& mode) { return steps.at ("700.5", mode + "_dbfs"); };
    const auto later = [&] (const std::string& mode) { return steps.at ("1070.5", mode + "_dbfs"); };
    EXPECT_NEAR (later ("powerful"), plateau ("powerful"), 0.5);
    EXPECT_LT (later ("medium"), plateau ("medium") - 5.0);
    EXPECT_LT (later ("gentle"), plateau ("gentle") - 15.0);
}

TEST (Sentence, TheImageIsInTheMiddleAfter60MillisecondsAndSwingsByTwoDecibels)
{
    const auto image = committed ("image-over-time");

    for (const auto& mode : modes)
        for (const auto& row : image.rows)
        {
            const auto difference = image.at (row.key, mode + "_db");
            EXPECT_GT (difference, -2.2) << mode << " at " << row.key;

            if (std::stod (row.key) < 25.0)
            {
                EXPECT_GT (difference, 0.5) << mode << " at " << row.key;
            }
            else if (std::stod (row.key) > 60.0)
            {
                EXPECT_LT (difference, 0.5) << mode << " at " << row.key;
            }
        }

    EXPECT_NEAR (committed ("image").at ("left only", "at_rest_db"), 9.5, 0.1);
}

TEST (Sentence, BelowTwoKilohertzTheRatesAgreeWithinHalfADecibel)
{
    const auto response = committed ("response");

    for (const auto& mode : modes)
        for (const auto& row : response.rows)
        {
            if (std::stod (row.key) > 2000.0)
                continue;

            EXPECT_NEAR (response.at (row.key, mode + "_96000_db"), response.at (row.key, mode + "_44100_db"), 0.5)
                << mode << " at " << row.key;
        }
}

TEST (Sentence, ASoftSibilantGainsMostOfTheAirAndALoudOneADecibel)
{
    const auto air = committed ("air");

    for (const auto& mode : modes)
    {
        EXPECT_GT (air.at ("10000.00", mode + "_at_-42_db"), 0.8 * air.at ("10000.00", mode + "_at_-54_db")) << mode;
        EXPECT_NEAR (air.at ("10000.00", mode + "_at_-18_db"), 1.0, 0.5) << mode;
    }
}

TEST (Sentence, SoftEndsOfWordsComeUpByTenToTwentyDecibelsInPowerful)
{
    const auto voice = committed ("voice-summary");
    const auto lift = voice.at ("powerful", "soft_dbfs") - voice.at ("input", "soft_dbfs");
    EXPECT_GT (lift, 10.0);
    EXPECT_LT (lift, 20.0);
}
} // namespace
