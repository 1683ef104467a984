// SPDX-License-Identifier: AGPL-3.0-only
// What the user gets to see while files are rendered and afterwards.
#include "audio/Levels.h"
#include "render/RendererTest.h"
#include "support/TestTone.h"

#include <limits>
#include <regex>

namespace
{
using testing::HasSubstr;
using Stats = RendererTest;

/** The fields of a line of --stats. */
struct StatsLine
{
    std::string path;
    double peak = 0.0;
    double rms = 0.0;
    double seconds = 0.0;
    double timesRealTime = 0.0;
};

/** What --stats says of one file, or nothing if it says something else. */
StatsLine statsIn (const std::string& line)
{
    const std::regex pattern (R"((.*)  peak (\S+) dBFS  RMS (\S+) dBFS  length (\S+) s  (\S+) times faster than )"
                              "real time\n?");
    std::smatch match;

    if (! std::regex_match (line, match, pattern))
    {
        ADD_FAILURE() << line;
        return {};
    }

    return { match[1], std::stod (match[2]), std::stod (match[3]), std::stod (match[4]), std::stod (match[5]) };
}

TEST_F (Stats, TellLevelsLengthAndSpeedOfEveryResult)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    writeFloats (
        folder / "tone.wav", wav24, 1, TestTone { .frequency = 1000.0, .peakDbfs = -6.0206, .channels = 1 }.samples());
    writeFloats (folder / "square.wav", wav24, 2, std::vector<float> (12000, -0.25f));
    writeFloats (folder / "silence.wav", wav16, 1, std::vector<float> (480));
    const auto lines =
        linesOf (expectSuccess ({ "--stats", "--mode", "bypass", "tone.wav", "square.wav", "silence.wav", "-o", "r" }));
    const std::vector<StatsLine> expected { { "r/tone.wav", -6.02, -6.02, 1.0 },
                                            { "r/square.wav", -12.04, -9.03, 0.125 },
                                            { "r/silence.wav", -infinity, -infinity, 0.01 } };
    ASSERT_EQ (lines.size(), expected.size());

    for (std::size_t i = 0; i < lines.size(); ++i)
    {
        const auto stats = statsIn (lines[i]);
        EXPECT_EQ (stats.path, expected[i].path);
        EXPECT_EQ (stats.seconds, expected[i].seconds);
        EXPECT_GT (stats.timesRealTime, 0.1);
        EXPECT_TRUE (stats.peak == expected[i].peak || std::abs (stats.peak - expected[i].peak) < 0.006) << stats.peak;
        EXPECT_TRUE (stats.rms == expected[i].rms || std::abs (stats.rms - expected[i].rms) < 0.006) << stats.rms;
    }
}

TEST_F (Stats, MeasureTheResultAndNotTheInput)
{
    writeFloats (folder / "loud.wav", wavFloat, 1, std::vector<float> (1000, 4.0f));

    for (const auto& [bits, peak] : { std::pair { "16", 0.0 }, { "24", 0.0 }, { "32f", 12.04 } })
    {
        const auto outcome =
            runHere ({ "--stats", "--mode", "bypass", "--bits", bits, "loud.wav", "-o", "result.wav" });
        EXPECT_EQ (outcome.exitStatus, 0);
        EXPECT_EQ (outcome.errors.empty(), bits == std::string ("32f")) << outcome.errors;
        EXPECT_NEAR (statsIn (outcome.output).peak, peak, 0.006);
    }
}

TEST_F (Stats, LeaveOutWhatFailed)
{
    writeNoise ("voice.wav");
    const auto outcome = runHere ({ "--stats", "missing.wav", "voice.wav", "-o", "results" });
    EXPECT_EQ (outcome.exitStatus, 1);
    EXPECT_EQ (statsIn (outcome.output).path, "results/voice.wav");
}

TEST (Levels, OfNoSamplesAreMinusInfinity)
{
    const larkspire::Levels levels;
    EXPECT_EQ (levels.peakDecibels(), -std::numeric_limits<double>::infinity());
    EXPECT_EQ (levels.rmsDecibels(), -std::numeric_limits<double>::infinity());
}

class ProgressBar : public RendererTest
{
protected:
    Outcome runOnTerminal (const std::vector<std::string>& arguments) const
    {
        return run (Call { .arguments = arguments, .folder = folder.path(), .onTerminal = true });
    }
};

TEST_F (ProgressBar, ShowsNameAndPercentOnATerminal)
{
    writeNoise ("a voice.wav", 1, 50000);
    const auto outcome = runOnTerminal ({ "a voice.wav", "-o", "result.wav" });
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

TEST_F (ProgressBar, IsEndedAheadOfAMessage)
{
    writeNoise ("voice.flac", 1, 60000);
    const auto bytes = bytesOf (folder / "voice.flac");
    writeBytes (folder / "voice.flac", bytes.substr (0, bytes.size() / 2));
    const auto outcome = runOnTerminal ({ "voice.flac", "-o", "result.wav" });
    EXPECT_EQ (outcome.exitStatus, 1);
    EXPECT_THAT (linesOf (outcome.errors),
                 testing::ElementsAre (HasSubstr ("voice.flac   "), testing::StartsWith ("larkspire-render: ")));
}

TEST_F (ProgressBar, ShowsLineEndsAndEscapesInNamesAsText)
{
    writeNoise ("a\n\x1b[2J.wav");
    const auto outcome = runOnTerminal ({ "a\n\x1b[2J.wav", "-o", "result.wav" });
    EXPECT_EQ (outcome.exitStatus, 0);
    EXPECT_THAT (outcome.errors, HasSubstr ("a\\x0a\\x1b[2J.wav  100 %"));
}
} // namespace
