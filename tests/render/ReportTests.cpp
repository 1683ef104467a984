// SPDX-License-Identifier: AGPL-3.0-only
// What the user gets to see while files are rendered and afterwards.
#include "audio/Levels.h"
#include "render/RendererTest.h"
#include "support/TestTone.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
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

TEST_F (ProgressBar, CutsNamesInTheMiddleAndFitsTheTerminal)
{
    // What tells such names from each other is at their ends; each of these letters is two bytes.
    std::string name = "an interview of ";

    for (int i = 0; i < 60; ++i)
        name += "\xc3\xa4";

    name += " part 3.wav";
    writeNoise (name, 1, 50000);
    writeNoise ("other.wav", 1, 50000);

    for (const auto& [arguments, number] : { std::pair { std::vector<std::string> { name, "-o", "result.wav" }, "" },
                                             { { "other.wav", name, "-o", "results" }, "file 2 of 2  " } })
    {
        const auto outcome = runOnTerminal (arguments);
        EXPECT_EQ (outcome.exitStatus, 0);
        EXPECT_THAT (outcome.errors, HasSubstr (std::string ("\r") + number + "an inter"));
        EXPECT_THAT (outcome.errors, HasSubstr ("t 3.wav  100 % ["));
        EXPECT_THAT (outcome.errors, HasSubstr ("…"));
        const auto lines = linesOf (std::regex_replace (outcome.errors, std::regex ("\x1b\\[K|…|\r"), "\n"));

        for (const auto& line : lines)
            EXPECT_LT (std::ranges::count_if (line, [] (char byte) { return (byte & 0xc0) != 0x80; }), 80) << line;
    }
}

class Summary : public RendererTest
{
protected:
    /** All that a call says on standard error. */
    std::string errorsOf (const std::vector<std::string>& arguments) const
    {
        return ::run (Call { .arguments = arguments, .folder = folder.path() }).errors;
    }

    void writeTakes() const
    {
        std::filesystem::create_directory (folder / "takes");
        writeNoise ("takes/one.wav", 1, 480000);
        writeNoise ("takes/two.flac", 2, 240000);
        writeBytes (folder / "takes/bad.wav", "RIFF....WAVEand nothing more");
        writeBytes (folder / "takes/notes.txt", "which take is best");
        writeBytes (folder / "takes/film.avi", "RIFF....AVI LIST");
    }
};

TEST_F (Summary, SaysWhatHasBecomeOfSeveralFiles)
{
    writeTakes();
    const auto lines = linesOf (errorsOf ({ "takes", "-o", "results" }));
    ASSERT_EQ (lines.size(), 4U);
    EXPECT_THAT (lines.back(),
                 testing::MatchesRegex ("larkspire-render: 2 rendered, 1 failed, 2 left out, 15 s of sound in "
                                        "[0-9.]+ s"));

    // Of one file there is nothing to sum up.
    EXPECT_EQ (errorsOf ({ "takes/one.wav", "-o", "result.wav" }), "");
    EXPECT_EQ (errorsOf ({ "--compare", "takes/one.wav", "-o", "result.wav" }), "");
}

TEST_F (Summary, CountsWhatAnInterruptionLeftUndone)
{
    writeNoise ("one.wav");
    writeLongSilence (folder / "two.wav");
    writeNoise ("three.wav");
    Child child (Call { .arguments = { "one.wav", "two.wav", "three.wav", "-o", "results" }, .folder = folder.path() });
    ASSERT_TRUE (folder.showsSoon (".two.wav.partial-"));
    child.sendSignal (SIGINT);
    EXPECT_THAT (child.wait().errors, HasSubstr ("\nlarkspire-render: 1 rendered, 2 not done, "));
}

TEST_F (Summary, IsNotSaidWhereNothingButFaultsIsAskedFor)
{
    writeTakes();
    const auto lines = linesOf (errorsOf ({ "--quiet", "takes", "-o", "results" }));
    ASSERT_EQ (lines.size(), 1U);
    EXPECT_THAT (lines.front(), testing::StartsWith ("larkspire-render: takes/bad.wav: "));

    // Clipped samples are no fault, a lost end is one.
    writeFloats (folder / "loud.wav", wavFloat, 1, std::vector<float> (1000, 4.0f));
    EXPECT_EQ (errorsOf ({ "-q", "--mode", "bypass", "loud.wav", "-o", "result.wav" }), "");
    std::filesystem::resize_file (folder / "loud.wav", 3000);
    EXPECT_THAT (errorsOf ({ "-q", "--mode", "bypass", "loud.wav", "-o", "result.wav" }), HasSubstr ("is cut off"));
    const auto onTerminal = ::run (Call {
        .arguments = { "-q", "takes/one.wav", "-o", "result.wav" }, .folder = folder.path(), .onTerminal = true });
    EXPECT_EQ (onTerminal.errors, "");
}

TEST_F (Summary, CountsWhatWasDoneBefore)
{
    writeTakes();
    std::filesystem::remove (folder / "takes/bad.wav");
    const std::vector<std::string> call { "--skip-existing", "--json", "--compare", "takes", "-o", "results" };
    EXPECT_EQ (runHere (call).exitStatus, 0);
    const auto first = bytesOf (folder / "results/one-Medium.wav");
    const auto timeOf = [this] (const std::string& name) { return std::filesystem::last_write_time (folder / name); };
    const auto time = timeOf ("results/one-Medium.wav");

    // All is there: nothing is done.
    EXPECT_THAT (errorsOf (call), HasSubstr ("\nlarkspire-render: 0 rendered, 2 done before, 2 left out, 0.0 s"));
    EXPECT_EQ (timeOf ("results/one-Medium.wav"), time);

    // A newer recording, a result that is missing, a picture that is: only what they belong to.
    std::filesystem::last_write_time (folder / "takes/one.wav", time + std::chrono::seconds (1));
    EXPECT_THAT (errorsOf (call), HasSubstr ("4 rendered, 1 done before"));
    EXPECT_EQ (bytesOf (folder / "results/one-Medium.wav"), first);
    std::filesystem::last_write_time (folder / "takes/one.wav", time - std::chrono::seconds (1));
    std::filesystem::remove (folder / "results/two-Gentle.wav");
    EXPECT_THAT (errorsOf (call), HasSubstr ("4 rendered, 1 done before"));
    auto withPictures = call;
    withPictures.insert (withPictures.end(), { "--plot", "pictures/" });
    EXPECT_THAT (errorsOf (withPictures), HasSubstr ("8 rendered, 2 left out"));

    // As old as the recording is not newer; and what is asked for without the option is done.
    for (const std::string mode : { "bypass", "Gentle", "Medium", "Powerful" })
        std::filesystem::last_write_time (folder / ("results/one-" + mode + ".wav"), timeOf ("takes/one.wav"));

    EXPECT_THAT (errorsOf (call), HasSubstr ("4 rendered, 1 done before"));
    EXPECT_THAT (errorsOf ({ "takes", "-o", "results" }), HasSubstr ("2 rendered, 2 left out"));

    const auto outcome = runHere (call);
    const auto leftOut = nlohmann::json::parse (outcome.output).at ("left_out");
    EXPECT_EQ (leftOut.size(), 3U) << "and a film";
    EXPECT_EQ (leftOut.back(),
               (nlohmann::json { { "path", "takes/two.flac" },
                                 { "reason", "was done before: results/two-bypass.wav is newer" },
                                 { "is_error", false } }));
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
