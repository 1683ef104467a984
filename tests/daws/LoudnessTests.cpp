// SPDX-License-Identifier: AGPL-3.0-only
// What the renderer brings to a loudness, judged by ffmpeg: a folder of real voices, by many speakers and recorders.
#include "support/Child.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <optional>
#include <regex>

namespace
{
namespace fs = std::filesystem;

/** Every so many of the recordings below a folder, in the order of their names. */
std::vector<fs::path> recordingsBelow (const fs::path& folder, const std::string& ending, std::size_t most)
{
    std::vector<fs::path> all;

    for (const auto& entry : fs::recursive_directory_iterator (folder))
        if (entry.is_regular_file() && entry.path().extension() == ending)
            all.push_back (entry.path());

    std::sort (all.begin(), all.end());
    std::vector<fs::path> some;

    for (std::size_t i = 0; i < std::min (most, all.size()); ++i)
        some.push_back (all[i * all.size() / std::min (most, all.size())]);

    return some;
}

/** What ffmpeg's meter says of a file. */
struct Judgement
{
    double lufs = 0.0;
    double dbtp = -200.0;
};

Judgement judge (const fs::path& file)
{
    const auto text = outputOf ({ .arguments = { "-nostdin",
                                                 "-v",
                                                 "error",
                                                 "-i",
                                                 file,
                                                 "-af",
                                                 "ebur128=peak=true:metadata=1,ametadata=mode=print:file=-",
                                                 "-f",
                                                 "null",
                                                 "-" },
                                  .program = "ffmpeg" });
    Judgement judgement;
    const std::regex line (R"(lavfi\.r128\.(I|true_peaks_ch\d+)=(\S+))");

    for (std::sregex_iterator match (text.begin(), text.end(), line), end; match != end; ++match)
    {
        const auto value = std::stod ((*match)[2]);

        if ((*match)[1] == "I")
            judgement.lufs = value;
        else
            judgement.dbtp = std::max (judgement.dbtp, 20.0 * std::log10 (value));
    }

    return judgement;
}

class RealVoices : public testing::Test
{
protected:
    /** Renders the folder and has ffmpeg judge each result that is said to reach the loudness. */
    void expectAll (double lufs, double dbtp, std::vector<std::string> options)
    {
        options.insert (options.end(),
                        { "--loudness",
                          std::to_string (lufs),
                          "--true-peak",
                          std::to_string (dbtp),
                          "--json",
                          "--jobs",
                          "0",
                          "voices",
                          "-o",
                          "results" });
        const auto outcome = run (Call { .arguments = options, .folder = folder.path(), .longestRun = 600 });
        ASSERT_EQ (outcome.exitStatus, 0) << outcome.errors;
        const auto results = nlohmann::json::parse (outcome.output).at ("results");
        std::size_t missed = 0;
        double furthest = 0.0;
        double highest = -200.0;
        ASSERT_FALSE (results.empty());

        for (const auto& result : results)
        {
            const auto reached = result.at ("finish").at ("reached_lufs");

            if (reached.is_null() || reached.get<double>() < lufs - 0.2)
            {
                ++missed;
                EXPECT_FALSE (result.at ("warnings").empty()) << result.at ("input");
                continue;
            }

            const auto judgement = judge (folder / result.at ("output").get<std::string>());
            EXPECT_NEAR (judgement.lufs, lufs, 0.2) << result.at ("input");
            EXPECT_LE (judgement.dbtp, dbtp + 0.1) << result.at ("input");
            furthest = std::max (furthest, std::abs (judgement.lufs - lufs));
            highest = std::max (highest, judgement.dbtp);
        }

        // Nearly all voices can be that loud.
        EXPECT_LE (missed, results.size() / 50);
        std::printf ("%zu voices, %zu of them as loud as they get; at most %.3f LU and %.2f dB beside the target\n",
                     results.size(),
                     missed,
                     furthest,
                     highest - dbtp);
    }

    void add (const std::vector<fs::path>& recordings) const
    {
        fs::create_directories (folder / "voices");

        for (const auto& recording : recordings)
            fs::copy_file (recording, folder / ("voices/" + std::to_string (++count) + recording.extension().string()));
    }

    TemporaryFolder folder;
    mutable int count = 0;
};

TEST_F (RealVoices, HaveTheLoudnessThatWasAskedForByFfmpeg)
{
    add (recordingsBelow ("/usr/share/sounds/alsa", ".wav", 100));
    add (recordingsBelow ("/usr/share/pocketsphinx/test/data", ".wav", 100));
    add (recordingsBelow ("/usr/share/asterisk/sounds", ".wav", 100));
    add (recordingsBelow ("/usr/share/games/fillets-ng/sound", ".ogg", 100));
    EXPECT_GT (count, 200);
    expectAll (-16.0, -1.0, {});
    expectAll (-19.0, -2.0, { "--mode", "Gentle", "--bits", "16", "--input-peak", "best" });
}

TEST_F (RealVoices, HaveItAtEveryRateInMonoAndStereo)
{
    fs::create_directories (folder / "voices");

    // Said ten times over: at rates that ten does not divide, 11025 Hz here, ffmpeg's meter leaves the first 400 ms
    // out, which of one word is too much.
    for (const auto& voice : recordingsBelow ("/usr/share/sounds/alsa", ".wav", 3))
        for (const std::string rate : { "8000", "11025", "22050", "44100", "88200", "96000", "192000" })
            for (const std::string channels : { "1", "2" })
                outputOf ({ .arguments = { "-nostdin",
                                           "-v",
                                           "error",
                                           "-stream_loop",
                                           "9",
                                           "-i",
                                           voice,
                                           "-ar",
                                           rate,
                                           "-ac",
                                           channels,
                                           folder / ("voices/" + voice.stem().string() + rate + channels + ".wav") },
                            .program = "ffmpeg" });

    for (const std::string bits : { "16", "24", "32f" })
        expectAll (-16.0, -1.0, { "--bits", bits });
}
} // namespace
