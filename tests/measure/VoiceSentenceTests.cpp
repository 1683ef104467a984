// SPDX-License-Identifier: AGPL-3.0-only
// What docs/sound.md says of voices in its sentences, and the advice on the level ahead of the plug-in, held to the
// measurements.
#include "measure/CommittedTables.h"
#include "measure/VoicesInRoom.h"
#include "meter/LevelAdvice.h"
#include "support/Paths.h"
#include "support/Recording.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace
{
using larkspire::measure::Table;
using larkspire::measure::voiceColumn;
using larkspire::measure::VoiceMode;
using larkspire::measure::voiceNames;
using larkspire::meter::levelAdvice;
namespace measure = larkspire::measure;

/** What stands in a row of one mode: a number a voice, but for those that have none. */
std::vector<double> ofVoices (const Table& table, const std::string& key, const VoiceMode& mode, const char* figure)
{
    std::vector<double> values;

    for (const auto voice : voiceNames)
        if (const auto value = table.at (key, voiceColumn (mode, voice, figure)); ! std::isnan (value))
            values.push_back (value);

    return values;
}

double least (const std::vector<double>& values)
{
    return *std::min_element (values.begin(), values.end());
}

double most (const std::vector<double>& values)
{
    return *std::max_element (values.begin(), values.end());
}

std::vector<double> distances (int peak, const VoiceMode& mode)
{
    return ofVoices (committed ("voices-by-level"), std::to_string (peak), mode, "distance_lu");
}

std::vector<double> loudness (int peak, const VoiceMode& mode)
{
    return ofVoices (committed ("voices-by-level"), std::to_string (peak), mode, "loudness_lufs");
}

std::vector<double> brightness (int peak, const VoiceMode& mode)
{
    return ofVoices (committed ("voices-by-level"), std::to_string (peak), mode, "brightness_db");
}

std::vector<double> inRoom (int peak, int room, const VoiceMode& mode, const char* figure)
{
    const auto key = std::to_string (peak) + " over " + std::to_string (room);
    return ofVoices (committed ("voices-by-room"), key, mode, figure);
}

/** How loud a voice is in each mode. */
std::vector<double> loudnessInModes (std::size_t voice, int peak)
{
    std::vector<double> values;
    values.reserve (measure::voiceModes.size());

    for (const auto& mode : measure::voiceModes)
        values.push_back (loudness (peak, mode)[voice]);

    return values;
}

constexpr int levels[] = { -36, -30, -27, -24, -21, -18, -12, -6 };

TEST (LevelAdvice, PutsVoiceAndRoomFurtherApartForEveryVoice)
{
    for (std::size_t i = 0; i < levelAdvice.size(); ++i)
        for (const auto level : levels)
        {
            const auto& mode = measure::voiceModes[i];
            const auto isAdvised = level >= levelAdvice[i].lowestPeak && level <= levelAdvice[i].highestPeak;

            if (isAdvised)
            {
                EXPECT_GT (least (distances (level, mode)), 1.0) << mode.name << " at " << level;
            }
            else if (level > levelAdvice[i].highestPeak)
            {
                EXPECT_LT (least (distances (level, mode)), 0.0) << mode.name << " at " << level;
            }
        }
}

TEST (LevelAdvice, CostsNoVoiceMoreThan7LoudnessUnits)
{
    for (std::size_t i = 0; i < levelAdvice.size(); ++i)
    {
        const auto& mode = measure::voiceModes[i];
        const auto loudest = loudness (-6, mode);

        for (const auto level : levels)
        {
            const auto here = loudness (level, mode);
            double lost = 0.0;

            for (std::size_t voice = 0; voice < here.size(); ++voice)
                lost = std::max (lost, loudest[voice] - here[voice]);

            if (level >= levelAdvice[i].lowestPeak)
            {
                EXPECT_LT (lost, 7.0) << mode.name << " at " << level;
            }
            else if (levelAdvice[i].lowestPeak - level > 8)
            {
                EXPECT_GT (lost, 9.0) << mode.name << " at " << level;
            }
        }
    }
}

TEST (LevelAdvice, LetsTheExpanderCloseOnNoise)
{
    for (std::size_t i = 0; i < levelAdvice.size(); ++i)
    {
        const auto& mode = measure::voiceModes[i];

        for (const auto peak : { -24, -12 })
        {
            const auto closed = inRoom (peak, -72, mode, "distance_lu");

            for (const auto room : { -65, -60 })
            {
                // Up to 2 dB above the limit the expander does within a decibel what it does in the quietest room.
                if (room > levelAdvice[i].highestRoom + 2)
                    continue;

                const auto here = inRoom (peak, room, mode, "distance_lu");

                for (std::size_t voice = 0; voice < here.size(); ++voice)
                    EXPECT_NEAR (here[voice], closed[voice], 1.0) << mode.name << " at " << room;
            }
        }
    }

    const auto& gentle = measure::voiceModes[0];
    EXPECT_LT (most (inRoom (-24, -60, gentle, "distance_lu")), 0.0);
}

TEST (LevelAdvice, SaysItsNumbers)
{
    const larkspire::meter::LevelAdvice advice { .mode = "", .lowestPeak = -3, .highestPeak = -1, .highestRoom = -50 };
    EXPECT_EQ (adviceOnPeak (advice), "let the voice peak between -3 and -1 dBFS");
    EXPECT_EQ (adviceOnRoom (advice), "keep the room below -50 dBFS");
}

TEST (LevelAdvice, IsThatOfTheReadme)
{
    const auto readme = bytesOf (paths::source ("README.md"));

    for (const auto& advice : levelAdvice)
    {
        const auto minus = [] (int level) { return "\u2212" + std::to_string (-level); };
        const auto row = readme.find ("| " + std::string (advice.mode) + " | ");
        ASSERT_NE (row, std::string::npos) << advice.mode;
        EXPECT_THAT (readme.substr (row, readme.find ('\n', row) - row),
                     testing::EndsWith (" | " + minus (advice.lowestPeak) + " to " + minus (advice.highestPeak)
                                        + " dBFS | " + minus (advice.highestRoom) + " dBFS |"));
    }
}

TEST (VoiceSentence, AVoiceComesOutEquallyLoudWithinAbout1And3And4)
{
    const double within[] = { 1.1, 3.2, 4.2 };

    for (std::size_t i = 0; i < measure::voiceModes.size(); ++i)
        for (std::size_t voice = 0; voice < voiceNames.size(); ++voice)
        {
            std::vector<double> values;

            for (const auto level : { -24, -21, -18, -12, -6 })
                values.push_back (loudness (level, measure::voiceModes[i])[voice]);

            EXPECT_LT (most (values) - least (values), within[i]) << measure::voiceModes[i].name;
        }
}

TEST (VoiceSentence, WithOneToNineDecibelsMoreTrebleAndTheLeastInGentle)
{
    for (const auto level : { -24, -21, -18, -12, -6 })
    {
        const auto gentle = brightness (level, measure::voiceModes[0]);

        for (const auto& mode : measure::voiceModes)
        {
            const auto here = brightness (level, mode);
            EXPECT_EQ (here.size(), 4u); // the operator has none
            EXPECT_GT (least (here), 0.85) << mode.name << " at " << level;
            EXPECT_LT (most (here), 9.0) << mode.name << " at " << level;

            for (std::size_t voice = 0; voice < here.size(); ++voice)
                EXPECT_GE (here[voice], gentle[voice]) << mode.name << " at " << level;
        }
    }
}

TEST (VoiceSentence, AHotVoiceIsNotDuller)
{
    for (const auto& mode : measure::voiceModes)
    {
        const auto moderate = brightness (-24, mode);
        const auto hot = brightness (-6, mode);

        for (std::size_t voice = 0; voice < hot.size(); ++voice)
            EXPECT_GT (hot[voice], moderate[voice] - 0.8) << mode.name;

        EXPECT_GT (most (hot), most (moderate) + 0.5) << mode.name;
    }
}

TEST (VoiceSentence, FedSoftlyEveryModeFurtherAndFedHotMediumAndPowerfulNearer)
{
    for (const auto& mode : measure::voiceModes)
        EXPECT_GT (least (distances (-24, mode)), 1.0) << mode.name;

    for (const auto& mode : { measure::voiceModes[1], measure::voiceModes[2] })
        for (const auto level : { -12, -6 })
            EXPECT_LT (most (distances (level, mode)), -3.0) << mode.name << " at " << level;

    // Gentle can be fed 12 dB hotter.
    EXPECT_GT (least (distances (-12, measure::voiceModes[0])), least (distances (-24, measure::voiceModes[2])));
}

TEST (VoiceSentence, InAPauseTheGainRisesBy2To3DecibelsInGentleAndBy3To7InMedium)
{
    const auto drift = committed ("voices-drift");
    const auto gentle = ofVoices (drift, "-12", measure::voiceModes[0], "db");
    const auto medium = ofVoices (drift, "-12", measure::voiceModes[1], "db");
    EXPECT_GT (least (gentle), 1.5);
    EXPECT_LT (most (gentle), 3.0);
    EXPECT_GT (least (medium), 2.5);
    EXPECT_LT (most (medium), 7.5);
}

TEST (VoiceSentence, IfTheExpanderDoesNotCloseTheRoomComesNearerAndInGentleLeast)
{
    std::vector<double> farthest;
    farthest.reserve (measure::voiceModes.size());

    for (const auto& mode : measure::voiceModes)
        farthest.push_back (most (inRoom (-12, -55, mode, "distance_lu")));

    EXPECT_LT (most (farthest), -4.0);
    EXPECT_EQ (farthest.front(), most (farthest));
}

TEST (VoiceSentence, FromMinus24OnTheModesAreWithinAbout3AndASoftVoiceIsLoudestInGentle)
{
    for (const auto level : levels)
        for (std::size_t voice = 0; voice < voiceNames.size(); ++voice)
        {
            const auto values = loudnessInModes (voice, level);

            if (level >= -24)
                EXPECT_LT (most (values) - least (values), 3.2) << voiceNames[voice] << " at " << level;
            else
                EXPECT_EQ (values.front(), most (values)) << voiceNames[voice] << " at " << level;
        }

    const auto loudestAt = [] (std::size_t voice)
    {
        const auto values = loudnessInModes (voice, -6);
        return std::max_element (values.begin(), values.end()) - values.begin();
    };
    EXPECT_NE (loudestAt (0), loudestAt (4));
}

TEST (VoiceSentence, BelowMinus27MediumAndPowerfulHaveNoMoreGainToGive)
{
    for (const auto& mode : { measure::voiceModes[1], measure::voiceModes[2] })
    {
        const auto here = loudness (-30, mode);
        const auto softer = loudness (-36, mode);

        for (std::size_t voice = 0; voice < here.size(); ++voice)
            EXPECT_GT (here[voice] - softer[voice], 4.0) << mode.name << ", " << voiceNames[voice];
    }
}

TEST (VoiceSentence, AWaveIsAboveFullScaleBetweenSamplesMoreSoWhenHotAndAtALowRate)
{
    const auto table = committed ("voices-true-peak");
    const auto highest = [&] (const std::string& peak, const char* figure)
    {
        double value = -100.0;

        for (const auto& mode : measure::voiceModes)
            value = std::max (value, most (ofVoices (table, peak, mode, figure)));

        return value;
    };
    EXPECT_LT (highest ("-12", "48000_dbtp"), 0.0);
    EXPECT_GT (highest ("0", "48000_dbtp"), 1.0);
    EXPECT_GT (highest ("-12", "8000_dbtp"), 2.0);
}
} // namespace
