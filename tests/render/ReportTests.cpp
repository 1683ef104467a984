// SPDX-License-Identifier: AGPL-3.0-only
// What a person gets to see while files are rendered and afterwards.
#include "audio/Levels.h"
#include "support/Child.h"
#include "support/Recording.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <regex>
#include <string>
#include <vector>

namespace
{
using testing::HasSubstr;

/** The fields of a line of --stats. */
struct Stats
{
    std::string path;
    double peak = 0.0;
    double rms = 0.0;
    double seconds = 0.0;
    double timesRealTime = 0.0;
};

std::vector<Stats> statsIn (const std::string& output)
{
    const std::regex pattern ("(.*)  peak (\\S+) dBFS  RMS (\\S+) dBFS  length (\\S+) s  (\\S+) times faster than real "
                              "time");
    std::vector<Stats> all;

    for (const auto& line : linesOf (output))
    {
        std::smatch match;

        if (! std::regex_match (line, match, pattern))
        {
            ADD_FAILURE() << line;
            continue;
        }

        all.push_back (
            { match[1], std::stod (match[2]), std::stod (match[3]), std::stod (match[4]), std::stod (match[5]) });
    }

    return all;
}

TEST (Stats, TellLevelsLengthAndSpeedOfEveryResult)
{
    const TemporaryFolder folder;
    std::vector<float> tone (48000);

    for (std::size_t i = 0; i < tone.size(); ++i)
        tone[i] = static_cast<float> (0.5 * std::sin (2.0 * std::numbers::pi * 1000.0 * double (i) / 48000.0));

    writeFloats (folder / "tone.wav", wav24, 1, tone);
    writeFloats (folder / "square.wav", wav24, 2, std::vector<float> (12000, -0.25f));
    const auto outcome =
        run ({ "--stats", "--mode", "bypass", folder / "tone.wav", folder / "square.wav", "-o", folder / "results" });
    EXPECT_EQ (outcome.exitStatus, 0);
    EXPECT_EQ (outcome.errors, "");

    const auto stats = statsIn (outcome.output);
    ASSERT_EQ (stats.size(), 2) << outcome.output;
    EXPECT_EQ (stats[0].path, folder / "results/tone.wav");
    EXPECT_NEAR (stats[0].peak, -6.02, 0.006);
    EXPECT_NEAR (stats[0].rms, -9.03, 0.006);
    EXPECT_EQ (stats[0].seconds, 1.0);
    EXPECT_GT (stats[0].timesRealTime, 0.1);
    EXPECT_EQ (stats[1].path, folder / "results/square.wav");
    EXPECT_NEAR (stats[1].peak, -12.04, 0.006);
    EXPECT_NEAR (stats[1].rms, -12.04, 0.006);
    EXPECT_EQ (stats[1].seconds, 0.125);
}

TEST (Stats, MeasureTheResultAndNotTheInput)
{
    const TemporaryFolder folder;
    writeFloats (folder / "loud.wav", wavFloat, 1, std::vector<float> (1000, 4.0f));

    const auto peakWith = [&folder] (const std::string& bits)
    {
        const auto outcome =
            run ({ "--stats", "--mode", "bypass", "--bits", bits, folder / "loud.wav", "-o", folder / "result.wav" });
        return statsIn (outcome.output).at (0).peak;
    };

    EXPECT_NEAR (peakWith ("16"), 0.0, 0.006);
    EXPECT_NEAR (peakWith ("24"), 0.0, 0.006);
    EXPECT_NEAR (peakWith ("32f"), 12.04, 0.006);
}

TEST (Stats, OfSilenceAreMinusInfinity)
{
    const TemporaryFolder folder;
    writeFloats (folder / "silence.wav", wav16, 1, std::vector<float> (480));
    const auto outcome = run ({ "--stats", "--mode", "bypass", folder / "silence.wav", "-o", folder / "result.wav" });
    const auto stats = statsIn (outcome.output);
    ASSERT_EQ (stats.size(), 1);
    EXPECT_EQ (stats[0].peak, -std::numeric_limits<double>::infinity());
    EXPECT_EQ (stats[0].rms, -std::numeric_limits<double>::infinity());
    EXPECT_EQ (stats[0].seconds, 0.01);
}

TEST (Stats, LeaveOutWhatFailed)
{
    const TemporaryFolder folder;
    write (folder / "voice.wav", wav16, makeNoise (1, 300, 16));
    const auto outcome = run ({ "--stats", folder / "missing.wav", folder / "voice.wav", "-o", folder / "results" });
    EXPECT_EQ (outcome.exitStatus, 1);
    ASSERT_EQ (statsIn (outcome.output).size(), 1);
    EXPECT_EQ (statsIn (outcome.output)[0].path, folder / "results/voice.wav");
}

TEST (Levels, OfNoSamplesAreMinusInfinity)
{
    const larkspire::Levels levels;
    EXPECT_EQ (levels.peakDecibels(), -std::numeric_limits<double>::infinity());
    EXPECT_EQ (levels.rmsDecibels(), -std::numeric_limits<double>::infinity());
}

TEST (ProgressBar, ShowsNameAndPercentOnATerminal)
{
    const TemporaryFolder folder;
    write (folder / "a voice.wav", wav16, makeNoise (1, 50000, 16));
    const auto outcome =
        run (Call { .arguments = { folder / "a voice.wav", "-o", folder / "result.wav" }, .onTerminal = true });
    EXPECT_EQ (outcome.exitStatus, 0);
    EXPECT_EQ (outcome.output, "");
    EXPECT_THAT (outcome.errors, testing::StartsWith ("\ra voice.wav    "));
    const std::regex last (R"(\ra voice\.wav  100 % \[#{20}\] +[0-9.]+x  in [0-9]+:[0-5][0-9]\x1b\[K\r\n)");
    const std::regex between (
        R"(\ra voice\.wav   [ 0-9][0-9] % \[#+\.+\] +[0-9.]+x  [0-9]+:[0-5][0-9] left\x1b\[K(?=\r))");
    const auto& text = outcome.errors;
    const auto steps = std::distance (std::sregex_iterator (text.begin(), text.end(), between), std::sregex_iterator());
    EXPECT_GE (steps, 10) << text;
    EXPECT_TRUE (std::regex_search (text, last)) << text;
    EXPECT_EQ (linesOf (outcome.errors).size(), 1);
}

TEST (ProgressBar, GivesEveryFileALine)
{
    const TemporaryFolder folder;
    write (folder / "one.wav", wav16, makeNoise (1, 5000, 16));
    write (folder / "two.wav", wav16, makeNoise (1, 5000, 16));
    const auto outcome =
        run (Call { .arguments = { folder / "one.wav", folder / "two.wav", "-o", folder / "r" }, .onTerminal = true });
    const auto lines = linesOf (outcome.errors);
    ASSERT_EQ (lines.size(), 2) << outcome.errors;
    EXPECT_THAT (lines[0], HasSubstr ("one.wav  100 %"));
    EXPECT_THAT (lines[1], HasSubstr ("two.wav  100 %"));
}

TEST (ProgressBar, IsEndedAheadOfAMessage)
{
    const TemporaryFolder folder;
    write (folder / "voice.flac", flac16, makeNoise (1, 60000, 16));
    const auto bytes = bytesOf (folder / "voice.flac");
    writeBytes (folder / "voice.flac", bytes.substr (0, bytes.size() / 2));
    const auto outcome =
        run (Call { .arguments = { folder / "voice.flac", "-o", folder / "result.wav" }, .onTerminal = true });
    EXPECT_EQ (outcome.exitStatus, 1);
    const auto lines = linesOf (outcome.errors);
    ASSERT_EQ (lines.size(), 2) << outcome.errors;
    EXPECT_THAT (lines[0], HasSubstr ("voice.flac   "));
    EXPECT_THAT (lines[1], testing::StartsWith ("larkspire-render: "));
}

TEST (ProgressBar, IsNotDrawnIntoAFile)
{
    const TemporaryFolder folder;
    write (folder / "voice.wav", wav16, makeNoise (1, 50000, 16));
    const auto outcome = run ({ folder / "voice.wav", "-o", folder / "result.wav" });
    EXPECT_EQ (outcome.exitStatus, 0);
    EXPECT_EQ (outcome.errors, "");
    EXPECT_EQ (outcome.output, "");
}

TEST (ProgressBar, ShowsLineEndsAndEscapesInNamesAsText)
{
    const TemporaryFolder folder;
    write (folder / "a\n\x1b[2J.wav", wav16, makeNoise (1, 500, 16));
    const auto outcome =
        run (Call { .arguments = { folder / "a\n\x1b[2J.wav", "-o", folder / "result.wav" }, .onTerminal = true });
    EXPECT_EQ (outcome.exitStatus, 0);
    EXPECT_THAT (outcome.errors, HasSubstr ("a\\x0a\\x1b[2J.wav  100 %"));
}
} // namespace
