// SPDX-License-Identifier: AGPL-3.0-only
// What the program says of a recording's level, held to what the library then does.
#include "meter/LevelAdvice.h"
#include "render/RendererTest.h"
#include "support/TestTone.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <regex>

namespace
{
using nlohmann::json;
using testing::HasSubstr;

constexpr std::size_t speech = 150000; // frames of voice, at 48 kHz
constexpr std::size_t pause = 400000;  // and of the room alone, so long that the leveller comes to rest

class Advice : public RendererTest
{
protected:
    /** A voice in a room that hums. */
    void writeRecording (double roomDbfs) const
    {
        auto samples =
            TestTone { .peakDbfs = roomDbfs, .seconds = double (speech + pause) / 48000.0, .channels = 1 }.samples();
        const auto spoken = voice (speech).left;

        for (std::size_t i = 0; i < speech; ++i)
            samples[i] += spoken[i];

        writeFloats (folder / "voice.wav", wavFloat, 1, samples);
    }

    std::string adviceFor (const std::string& mode) const
    {
        return expectSuccess ({ "--report", "--mode", mode, "voice.wav" });
    }

    /** Whether the library's expander is closed at the end of the pause. Its gain with the leveller at rest is 25.3 dB
        in Medium and 22.9 in Powerful while the expander is open, and 13.0 and 8.9 while it is closed. */
    bool closesInTheLibrary (const std::string& mode, std::vector<std::string> options = {}) const
    {
        options.insert (options.end(), { "--mode", mode, "--bits", "32f", "voice.wav", "-o", "r.wav" });
        expectSuccess (options);
        options[options.size() - 6] = "bypass";
        options.back() = "b.wav";
        expectSuccess (options);
        const auto level = [] (const std::vector<float>& samples)
        {
            double sum = 0.0;

            for (std::size_t i = samples.size() - 48000; i < samples.size(); ++i)
                sum += double { samples[i] } * double { samples[i] };

            return 10.0 * std::log10 (sum);
        };
        const auto gain = level (readFloats (folder / "r.wav")) - level (readFloats (folder / "b.wav"));
        return gain < (mode == "Medium" ? 19.0 : 16.0);
    }
};

TEST_F (Advice, IsTrueOfWhetherTheExpanderCloses)
{
    for (const std::string mode : { "Medium", "Powerful" })
        for (const double room : { -72.0, -65.0, -62.0, -56.0, -52.0, -40.0 })
        {
            SCOPED_TRACE (mode + " " + std::to_string (room));
            writeRecording (room);
            const auto text = adviceFor (mode);
            const auto saysIt = text.find ("the expander closes in " + mode) != std::string::npos;
            const auto saysNot = text.find ("the expander will not close in " + mode) != std::string::npos;
            EXPECT_NE (saysIt, saysNot) << text;
            EXPECT_EQ (saysIt, closesInTheLibrary (mode)) << text;

            EXPECT_EQ (saysNot, text.find ("lies above -61: the expander will not close") != std::string::npos) << text;
        }
}

TEST_F (Advice, SaysWhatPeakAndWhatRoomTheModeWants)
{
    writeRecording (-50.0);

    for (const auto& advice : larkspire::meter::levelAdvice)
    {
        const std::string mode (advice.mode);
        const auto text = adviceFor (mode);
        EXPECT_THAT (text, HasSubstr ("for " + mode + " " + adviceOnPeak (advice) + "; this one "));
        EXPECT_THAT (text, HasSubstr ("lies above " + std::to_string (advice.highestRoom) + ": "));
    }
}

TEST_F (Advice, NamesAGainThatLetsTheExpanderClose)
{
    for (const double room : { -56.0, -45.0 })
    {
        writeRecording (room);
        const auto text = adviceFor ("Medium");
        std::smatch match;
        ASSERT_TRUE (
            std::regex_search (text, match, std::regex (R"(([0-9.]+) dB less gain \((--input-peak) (-[0-9]+)\))")))
            << text;
        EXPECT_FALSE (closesInTheLibrary ("Medium"));
        EXPECT_TRUE (closesInTheLibrary ("Medium", { "--input-peak", match[3] })) << text;
        EXPECT_FALSE (closesInTheLibrary ("Medium", { "--input-peak", std::to_string (std::stoi (match[3]) + 3) }))
            << text;
        EXPECT_TRUE (closesInTheLibrary ("Medium", { "--gain", "-" + match[1].str() })) << text;
    }
}

TEST_F (Advice, NamesAModeThatClosesAsItIs)
{
    // Between the levels at which the expanders of Medium and of Powerful close.
    writeRecording (-59.3);
    EXPECT_THAT (adviceFor ("Medium"), HasSubstr ("will not close in Medium; Powerful or "));
    EXPECT_FALSE (closesInTheLibrary ("Medium"));
    EXPECT_TRUE (closesInTheLibrary ("Powerful"));
}

/** The distance between the 95th and the 10th percentile of the levels of 50 ms windows, in dB. */
double distanceIn (const std::vector<float>& samples)
{
    constexpr std::size_t window = 2400;
    std::vector<double> levels;

    for (std::size_t start = 0; start + window <= samples.size(); start += window)
    {
        double sum = 0.0;

        for (std::size_t i = start; i < start + window; ++i)
            sum += double { samples[i] } * double { samples[i] };

        levels.push_back (10.0 * std::log10 (sum));
    }

    std::sort (levels.begin(), levels.end());
    const auto count = double (levels.size());
    return levels[std::size_t (std::ceil (0.95 * count)) - 1] - levels[std::size_t (std::ceil (0.1 * count)) - 1];
}

TEST_F (Advice, TheBestPeakIsTheOneThatKeepsVoiceAndRoomFurthestApart)
{
    for (const std::string mode : { "Gentle", "Medium", "Powerful" })
    {
        // Words with short pauses and a room like noise, which is what the level is chosen for.
        auto samples = voice (300000).left;
        const auto room = noise (samples.size(), -52.0, 3).left;

        for (std::size_t i = 0; i < samples.size(); ++i)
            samples[i] += room[i];

        writeFloats (folder / "voice.wav", wavFloat, 1, samples);
        const auto distanceWith = [&] (const std::string& peak)
        {
            expectSuccess ({ "--mode", mode, "--input-peak", peak, "--bits", "32f", "voice.wav", "-o", "r.wav" });
            return distanceIn (readFloats (folder / "r.wav"));
        };
        const auto best = distanceWith ("best");
        const auto chosen = bytesOf (folder / "r.wav");
        bool isOneOfThem = false;

        for (int peak = -36; peak <= -6; peak += 3)
        {
            EXPECT_LE (distanceWith (std::to_string (peak)), best + 0.11) << mode << " " << peak;
            isOneOfThem = isOneOfThem || bytesOf (folder / "r.wav") == chosen;
        }

        EXPECT_TRUE (isOneOfThem) << mode;
        EXPECT_GT (best, distanceWith ("-6") + 1.0) << mode;
    }
}

TEST_F (Advice, IsInTheDocumentWithWhatItRestsOn)
{
    writeRecording (-56.0);
    const auto before = folder.contents();
    const auto result = json::parse (expectSuccess ({ "--json", "--gain", "2", "voice.wav" })).at ("results").at (0);
    EXPECT_EQ (folder.contents(), before);
    EXPECT_FALSE (result.contains ("output"));
    EXPECT_FALSE (result.contains ("after"));
    EXPECT_EQ (result.at ("advice").size(), 3U);
    EXPECT_TRUE (result.at ("before").at ("integrated_lufs").is_number());
    const auto& trials = result.at ("trials");
    ASSERT_EQ (trials.size(), 14U);
    EXPECT_EQ (trials.at (0).at ("mode"), "Medium");
    EXPECT_EQ (trials.at (0).at ("gain_db"), 2.0);
    EXPECT_EQ (trials.at (0).at ("expander_closes"), false);
    EXPECT_NEAR (trials.at (0).at ("room_before_dbfs").get<double>(), -54.0, 0.11);
    EXPECT_EQ (trials.at (1).at ("mode"), "Gentle");
    EXPECT_EQ (trials.at (2).at ("mode"), "Powerful");
}

TEST_F (Advice, OfABatchFollowsTheInputs)
{
    std::filesystem::create_directory (folder / "a");
    writeNoise ("a/one.wav", 1, 30000);
    writeNoise ("a/two.wav", 2, 30000);
    const auto text = expectSuccess ({ "--report", "--compare", "a" });
    EXPECT_LT (text.find ("one.wav"), text.find ("two.wav"));
    EXPECT_THAT (text, HasSubstr ("in Gentle"));
    EXPECT_THAT (text, HasSubstr ("in Powerful"));
}

TEST_F (Advice, SaysWhereThereIsNoVoice)
{
    writeFloats (folder / "silence.wav", wav24, 1, std::vector<float> (96000));
    writeFloats (folder / "sample.wav", wav24, 1, { 0.5f });

    for (const std::string name : { "silence.wav", "sample.wav" })
        EXPECT_THAT (expectSuccess ({ "--report", name }), HasSubstr ("there is no voice to be told from the room"));
}
} // namespace
