// SPDX-License-Identifier: AGPL-3.0-only
// What stands ahead of the plug-in and behind it: gain, settling, two voices, another rate, and the loudness of what
// can be published.
#include "audio/AudioShape.h"
#include "meter/SoundMeter.h"
#include "render/RendererTest.h"
#include "support/TestTone.h"

#include <nlohmann/json.hpp>

#include <cmath>

namespace
{
using nlohmann::json;
using testing::HasSubstr;

class Publishing : public RendererTest
{
protected:
    /** Writes a voice as floats, interleaved, and gives it. */
    std::vector<float> writeVoice (const std::string& name,
                                   int channels = 1,
                                   int sampleRate = 48000,
                                   double decibels = 0.0,
                                   std::size_t frames = 200000) const
    {
        const auto spoken = voice (frames);
        const auto gain = static_cast<float> (std::pow (10.0, decibels / 20.0));
        std::vector<float> samples;

        for (std::size_t i = 0; i < frames; ++i)
        {
            samples.push_back (spoken.left[i] * gain);

            if (channels == 2)
                samples.push_back (spoken.right[i] * gain);
        }

        writeFloats (folder / name, wavFloat, channels, samples, sampleRate);
        return samples;
    }

    /** What the program makes of a file, as floats. */
    std::vector<float> rendered (const std::string& name, std::vector<std::string> options) const
    {
        options.insert (options.end(), { "--bits", "32f", name, "-o", "rendered.wav" });
        expectSuccess (options);
        return readFloats (folder / "rendered.wav");
    }

    larkspire::meter::SoundFigures figuresOf (const std::string& name) const
    {
        const auto info = describe (folder / name);
        larkspire::meter::SoundMeter meter ({ .channels = info.channels, .sampleRate = info.samplerate });
        meter.add (readFloats (folder / name));
        return meter.figures (meter);
    }

    json resultOf (std::vector<std::string> options) const
    {
        options.emplace_back ("--json");
        return json::parse (expectSuccess (options)).at ("results").at (0);
    }
};

/** Expects samples that are the same but for what a resampler changes. */
void expectClose (const std::vector<float>& actual, const std::vector<float>& expected, float tolerance)
{
    ASSERT_EQ (actual.size(), expected.size());

    for (std::size_t i = 0; i < actual.size(); ++i)
        ASSERT_NEAR (actual[i], expected[i], tolerance) << i;
}

TEST_F (Publishing, BringsEveryKindOfResultToItsLoudness)
{
    for (const int channels : { 1, 2 })
        for (const int rate : { 8000, 44100, 192000 })
            for (const std::string bits : { "16", "24", "32f" })
            {
                SCOPED_TRACE (std::to_string (channels) + ", " + std::to_string (rate) + " Hz, " + bits);
                writeVoice ("voice.wav", channels, rate);
                expectSuccess ({ "--loudness", "-16", "--bits", bits, "voice.wav", "-o", "result.wav" });
                const auto figures = figuresOf ("result.wav");
                EXPECT_NEAR (figures.integratedLufs.value(), -16.0, 0.1);
                EXPECT_LT (figures.truePeakDbtp.value(), -0.95);
                EXPECT_EQ (describe (folder / "result.wav").frames, 200000);
            }
}

TEST_F (Publishing, TakesASecondRoundWhereItsForecastWasWrong)
{
    // A click right behind the first block of the gate, in a millisecond that lies on both sides of it: the forecast
    // has most of it in that block, the meter none.
    auto click = TestTone { .frequency = 440.0, .peakDbfs = -66.0, .seconds = 0.5, .channels = 1, .sampleRate = 44100 }
                     .samples();
    click[17642] = 0.9f;
    writeFloats (folder / "click.wav", wavFloat, 1, click, 44100);
    const auto result = resultOf ({ "--mode", "bypass", "--loudness", "-46", "click.wav", "-o", "result.wav" });
    const auto figures = figuresOf ("result.wav");
    EXPECT_NEAR (figures.integratedLufs.value(), -46.0, 0.05);
    EXPECT_NEAR (result.at ("after").at ("integrated_lufs").get<double>(), figures.integratedLufs.value(), 0.001);
    EXPECT_NEAR (result.at ("after").at ("true_peak_dbtp").get<double>(), figures.truePeakDbtp.value(), 0.001);
    EXPECT_EQ (describe (folder / "result.wav").frames, std::ssize (click));
}

TEST_F (Publishing, KeepsBelowTheCeilingThatIsNamed)
{
    writeVoice ("voice.wav");
    expectSuccess ({ "--loudness", "-14", "--true-peak", "-3.5", "voice.wav", "-o", "result.wav" });
    EXPECT_NEAR (figuresOf ("result.wav").integratedLufs.value(), -14.0, 0.1);
    EXPECT_LT (figuresOf ("result.wav").truePeakDbtp.value(), -3.45);
}

TEST_F (Publishing, GivesTheSameBytesWhateverTheBlocksAndTheReport)
{
    writeVoice ("voice.wav", 2, 44100);
    const std::vector<std::string> options {
        "--loudness", "-16", "--settle", "1", "--process-rate", "48000", "--split"
    };
    const auto bytesWith = [&] (std::vector<std::string> more)
    {
        more.insert (more.end(), options.begin(), options.end());
        more.insert (more.end(), { "voice.wav", "-o", "result.wav" });
        EXPECT_EQ (runHere (more).exitStatus, 0);
        return bytesOf (folder / "result.wav");
    };
    const auto plain = bytesWith ({});
    EXPECT_EQ (bytesWith ({ "--block", "77" }), plain);
    EXPECT_EQ (bytesWith ({ "--report" }), plain);
    EXPECT_EQ (bytesWith ({ "--jobs", "2" }), plain);
}

TEST_F (Publishing, WorksInBypassToo)
{
    const auto sound = writeVoice ("voice.wav");
    const auto outcome = runHere ({ "--mode", "bypass", "--loudness", "-26", "--json", "voice.wav", "-o", "r.wav" });
    EXPECT_EQ (outcome.errors, "");
    EXPECT_NEAR (figuresOf ("r.wav").integratedLufs.value(), -26.0, 0.1);
    const auto finish = json::parse (outcome.output).at ("results").at (0).at ("finish");
    EXPECT_EQ (finish.at ("limiter_times"), 0);
    const auto gain = std::pow (10.0, finish.at ("gain_db").get<double>() / 20.0);
    auto expected = sound;

    for (auto& sample : expected)
        sample = static_cast<float> (double { sample } * gain);

    expectClose (readFloats (folder / "r.wav"), expected, 1e-4f);
}

TEST_F (Publishing, SaysInTheReportWhatGainAndLimiterDid)
{
    writeVoice ("voice.wav");
    const auto table =
        expectSuccess ({ "--loudness", "-14", "--gain", "-3", "--report", "voice.wav", "-o", "result.wav" });
    EXPECT_THAT (table, HasSubstr ("gain ahead of it, dB"));
    EXPECT_THAT (table, HasSubstr ("gain behind it, dB"));
    EXPECT_THAT (table, HasSubstr ("limiter, deepest, dB"));
    const auto result = resultOf ({ "--loudness", "-14", "--gain", "-3", "voice.wav", "-o", "result.wav" });
    EXPECT_EQ (result.at ("input_gain_db"), -3.0);
    const auto& finish = result.at ("finish");
    EXPECT_EQ (finish.at ("target_lufs"), -14.0);
    EXPECT_EQ (finish.at ("ceiling_dbtp"), -1.0);
    EXPECT_NEAR (
        finish.at ("reached_lufs").get<double>(), result.at ("after").at ("integrated_lufs").get<double>(), 0.01);
    EXPECT_GT (finish.at ("gain_db").get<double>(), 2.0);
    EXPECT_GT (finish.at ("limiter_share_of_time").get<double>(), 0.0);
    EXPECT_GT (finish.at ("limiter_times").get<int>(), 0);
    EXPECT_LT (finish.at ("limiter_deepest_db").get<double>(), -0.1);
    EXPECT_TRUE (result.at ("gains").is_object()); // the chain inside gave the same bits
}

TEST_F (Publishing, SaysOnceWhatItReachesWhereTheCeilingAllowsNoMore)
{
    writeVoice ("voice.wav");
    const auto outcome = runHere ({ "--loudness", "-6", "--true-peak", "-9", "voice.wav", "-o", "result.wav" });
    EXPECT_EQ (outcome.exitStatus, 0);
    const auto reached = figuresOf ("result.wav").integratedLufs.value();
    EXPECT_LT (reached, -6.2);
    EXPECT_THAT (outcome.errors,
                 testing::MatchesRegex ("larkspire-render: result\\.wav: reaches -[0-9.]+ LUFS instead of "
                                        "-6\\.0 LUFS: it gets no louder below -9\\.0 dBTP\n"));
    EXPECT_NEAR (std::stod (outcome.errors.substr (outcome.errors.find ("reaches ") + 8)), reached, 0.051);
    EXPECT_LT (figuresOf ("result.wav").truePeakDbtp.value(), -8.95);
}

TEST_F (Publishing, SaysWhereTheMetersGateLetsNoLoudnessBetween)
{
    // A block with a click, and blocks of a tone that pass the gate as soon as the click is limited: then the loudness
    // falls, and the click has to be louder, and the limiter stronger.
    auto click = TestTone { .frequency = 440.0, .peakDbfs = -46.0, .seconds = 0.5, .channels = 1, .sampleRate = 44100 }
                     .samples();
    click[17642] = 0.9f;
    writeFloats (folder / "click.wav", wavFloat, 1, click, 44100);
    const auto outcome = runHere ({ "--mode", "bypass", "--loudness", "-40", "click.wav", "-o", "result.wav" });
    EXPECT_EQ (outcome.exitStatus, 0);
    const auto lies = figuresOf ("result.wav").integratedLufs.value();
    EXPECT_GT (lies, -39.8);
    EXPECT_THAT (outcome.errors,
                 testing::MatchesRegex ("larkspire-render: result\\.wav: lies at -39\\.[0-9] LUFS instead of "
                                        "-40\\.0 LUFS: no gain brings it nearer\n"));
}

TEST_F (Publishing, LeavesWhatHasNoLoudnessAsItIsAndSaysSo)
{
    writeFloats (folder / "silence.wav", wav24, 1, std::vector<float> (96000));
    writeFloats (folder / "short.wav", wav24, 1, TestTone { .seconds = 0.3, .channels = 1 }.samples());
    writeFloats (folder / "sample.wav", wav24, 1, { 0.25f });

    for (const std::string name : { "silence.wav", "short.wav", "sample.wav" })
    {
        expectSuccess ({ name, "-o", "plain.wav" });
        const auto outcome = runHere ({ "--loudness", "-16", name, "-o", "result.wav" });
        EXPECT_EQ (outcome.exitStatus, 0);
        EXPECT_EQ (linesOf (outcome.errors).size(), 1U);
        EXPECT_THAT (outcome.errors, HasSubstr ("result.wav: has no loudness"));
        EXPECT_EQ (read (folder / "result.wav").samples, read (folder / "plain.wav").samples) << name;
    }
}

TEST_F (Publishing, RefusesWhatMakesNoSense)
{
    writeNoise ("voice.wav");

    for (const std::vector<std::string>& options : std::vector<std::vector<std::string>> {
             { "--loudness", "-4" },
             { "--loudness", "-71" },
             { "--loudness", "nan" },
             { "--loudness", "loud" },
             { "--true-peak", "-1" },
             { "--loudness", "-16", "--true-peak", "0.5" },
             { "--loudness", "-16", "--true-peak", "-21" },
             { "--gain", "61" },
             { "--gain", "3", "--input-peak", "-12" },
             { "--input-peak", "1" },
             { "--input-peak", "worst" },
             { "--input-peak", "-12dB" },
             { "--settle", "-1" },
             { "--settle", "61" },
             { "--process-rate", "999" },
             { "--process-rate", "768001" },
         })
    {
        auto arguments = options;
        arguments.insert (arguments.end(), { "voice.wav", "-o", "result.wav" });
        expectFailure (2, arguments);
    }
}

TEST_F (Publishing, LeavesNothingBehindOnAFullDisk)
{
    writeVoice ("voice.wav");

    for (const unsigned long limit : { 1000UL, 100000UL, 700000UL })
        EXPECT_THAT (expectFailure (1,
                                    Call { .arguments = { "--loudness", "-16", "voice.wav", "-o", "result.wav" },
                                           .folder = folder.path(),
                                           .largestFile = limit }),
                     HasSubstr ("result.wav: cannot be written: "));
}

TEST_F (Publishing, LeavesNothingBehindWhenItIsInterrupted)
{
    writeLongSilence (folder / "long.wav");
    const auto before = folder.contents();
    Child child (
        Call { .arguments = { "--loudness", "-16", "long.wav", "-o", "result.wav" }, .folder = folder.path() });

    while (folder.contents() == before)
        usleep (10000);

    child.sendSignal (SIGINT);
    EXPECT_EQ (child.wait().signal, SIGINT);
    EXPECT_EQ (folder.contents(), before);
}

TEST_F (Publishing, PutsAGainAheadOfThePlugin)
{
    const auto sound = writeVoice ("voice.wav");
    auto halved = sound;

    for (auto& sample : halved)
        sample *= static_cast<float> (std::pow (10.0, -6.0 / 20.0));

    writeFloats (folder / "halved.wav", wavFloat, 1, halved);
    const auto expected = rendered ("halved.wav", {});
    EXPECT_EQ (rendered ("voice.wav", { "--gain", "-6" }), expected);
    EXPECT_NE (rendered ("voice.wav", {}), expected);
    EXPECT_EQ (rendered ("voice.wav", { "--gain", "0" }), rendered ("voice.wav", {}));
}

TEST_F (Publishing, BringsTheRecordingToAPeak)
{
    writeVoice ("voice.wav", 2, 44100, -9.0);
    const auto peakOf = [] (const std::vector<float>& samples)
    {
        float peak = 0.0f;

        for (const auto sample : samples)
            peak = std::max (peak, std::abs (sample));

        return 20.0 * std::log10 (double { peak });
    };
    EXPECT_NEAR (peakOf (rendered ("voice.wav", { "--mode", "bypass", "--input-peak", "-12.5" })), -12.5, 1e-4);
    EXPECT_NEAR (resultOf ({ "--input-peak", "-20", "voice.wav", "-o", "r.wav" }).at ("input_gain_db").get<double>(),
                 -20.0 - peakOf (readFloats (folder / "voice.wav")),
                 0.001);

    writeFloats (folder / "silence.wav", wav24, 1, std::vector<float> (4800));
    EXPECT_EQ (resultOf ({ "--input-peak", "-12", "silence.wav", "-o", "r.wav" }).at ("input_gain_db"), 0.0);
}

TEST_F (Publishing, LetsThePluginHearTheBeginningBefore)
{
    const auto sound = writeVoice ("voice.wav");
    std::vector<float> twice (sound.begin(), sound.begin() + 48000);
    twice.insert (twice.end(), sound.begin(), sound.end());
    writeFloats (folder / "twice.wav", wavFloat, 1, twice);
    const auto whole = rendered ("twice.wav", {});
    const std::vector<float> expected (whole.begin() + 48000, whole.end());
    EXPECT_EQ (rendered ("voice.wav", { "--settle", "1" }), expected);
    EXPECT_EQ (rendered ("voice.wav", { "--settle", "0" }), rendered ("voice.wav", {}));

    // More than there is: all of it.
    const auto all = joined ({ sound, sound });
    writeFloats (folder / "twice.wav", wavFloat, 1, all);
    const auto both = rendered ("twice.wav", {});
    EXPECT_EQ (rendered ("voice.wav", { "--settle", "60" }),
               std::vector<float> (both.begin() + std::ssize (sound), both.end()));
    EXPECT_TRUE (resultOf ({ "--settle", "1", "voice.wav", "-o", "r.wav" }).at ("gains").is_object());

    // At another rate too, of which a short sound is still on its way when it ends.
    writeFloats (
        folder / "short.wav", wavFloat, 1, TestTone { .peakDbfs = -6.0, .seconds = 0.02, .channels = 1 }.samples());
    EXPECT_NE (rendered ("short.wav", { "--process-rate", "44100", "--settle", "1" }),
               rendered ("short.wav", { "--process-rate", "44100" }));
}

TEST_F (Publishing, TakesLeftAndRightForTwoVoices)
{
    const auto sound = writeVoice ("voice.wav", 2);
    std::vector<std::vector<float>> sides (2);

    for (std::size_t i = 0; i < sound.size(); ++i)
        sides[i % 2].push_back (sound[i]);

    const auto split = rendered ("voice.wav", { "--split" });

    for (std::size_t side = 0; side < 2; ++side)
    {
        writeFloats (folder / "side.wav", wavFloat, 1, sides[side]);
        const auto expected = rendered ("side.wav", {});
        ASSERT_EQ (expected.size() * 2, split.size());

        for (std::size_t i = 0; i < expected.size(); ++i)
            ASSERT_EQ (split[2 * i + side], expected[i]) << i;
    }

    EXPECT_NE (rendered ("voice.wav", {}), split);
    EXPECT_TRUE (resultOf ({ "--split", "voice.wav", "-o", "r.wav" }).at ("gains").is_object());

    writeFloats (folder / "side.wav", wavFloat, 1, sides[0]);
    EXPECT_EQ (rendered ("side.wav", { "--split" }), rendered ("side.wav", {}));
}

TEST_F (Publishing, GivesOfTwoVoicesTheGainsOfBoth)
{
    const auto sound = writeVoice ("voice.wav", 2);
    std::vector<std::vector<float>> sides (2);

    for (std::size_t i = 0; i < sound.size(); ++i)
        sides[i % 2].push_back (i % 2 == 0 ? sound[i] : 0.05f * sound[i]);

    std::vector<float> both;

    for (std::size_t i = 0; i < sides[0].size(); ++i)
        both.insert (both.end(), { sides[0][i], sides[1][i] });

    writeFloats (folder / "both.wav", wavFloat, 2, both);
    const auto gains = resultOf ({ "--split", "both.wav", "-o", "r.wav" }).at ("gains");
    double levellers = 0.0;
    double expanders = 0.0;

    for (const auto& side : sides)
    {
        writeFloats (folder / "side.wav", wavFloat, 1, side);
        const auto ofSide = resultOf ({ "side.wav", "-o", "r.wav" }).at ("gains");
        levellers += 0.5 * ofSide.at ("leveller_mean_db").get<double>();
        expanders += 0.5 * ofSide.at ("expander_mean_db").get<double>();
    }

    EXPECT_NEAR (gains.at ("leveller_mean_db").get<double>(), levellers, 0.002);
    EXPECT_NEAR (gains.at ("expander_mean_db").get<double>(), expanders, 0.002);
}

TEST_F (Publishing, RunsThePluginAtAnotherRateAndKeepsTheFilesOwn)
{
    // Tones well below either half rate: what the resamplers do to them is nothing, so bypass gives them back in place.
    const auto sound =
        joined ({ TestTone { .frequency = 440.0, .seconds = 0.7, .channels = 2, .sampleRate = 22050 }.samples(),
                  TestTone { .frequency = 1900.0, .seconds = 0.501, .channels = 2, .sampleRate = 22050 }.samples() });
    writeFloats (folder / "tones.wav", wavFloat, 2, sound, 22050);

    for (const std::string rate : { "16000", "44100", "48000", "192000" })
        expectClose (rendered ("tones.wav", { "--mode", "bypass", "--process-rate", rate }), sound, 2e-2f);

    const auto result = resultOf ({ "--process-rate", "48000", "tones.wav", "-o", "r.wav" });
    EXPECT_EQ (result.at ("sample_rate_hz"), 22050);
    EXPECT_TRUE (result.at ("gains").is_object());
    EXPECT_EQ (describe (folder / "r.wav").samplerate, 22050);
    EXPECT_EQ (rendered ("tones.wav", { "--process-rate", "22050" }), rendered ("tones.wav", {}));

    // For every length the same length.
    for (const std::size_t frames : { 1UL, 2UL, 3UL, 99UL, 1001UL })
    {
        writeFloats (folder / "short.wav", wavFloat, 1, std::vector<float> (frames, 0.25f), 11025);
        EXPECT_EQ (rendered ("short.wav", { "--process-rate", "48000" }).size(), frames);
        EXPECT_EQ (rendered ("short.wav", { "--process-rate", "8000" }).size(), frames);
    }
}

TEST_F (Publishing, CountsAtTheProcessRateWhatTheGainsCount)
{
    // The leveller comes down in so many samples: at 8 kHz the tone is loud six times longer than at 48 kHz.
    const auto tone =
        TestTone { .frequency = 300.0, .peakDbfs = -12.0, .seconds = 2.0, .channels = 1, .sampleRate = 8000 };
    writeFloats (folder / "tone.wav", wavFloat, 1, tone.samples(), 8000);
    const auto energyOfStart = [] (const std::vector<float>& samples)
    {
        double energy = 0.0;

        for (std::size_t i = 400; i < 1600; ++i)
            energy += double { samples[i] } * double { samples[i] };

        return energy;
    };
    EXPECT_LT (energyOfStart (rendered ("tone.wav", { "--process-rate", "48000" })),
               0.5 * energyOfStart (rendered ("tone.wav", {})));
}
} // namespace
