// SPDX-License-Identifier: AGPL-3.0-only
// The gains that are read beside the library, on sounds for which they are known, and held against the real library.
#include "host/HostedPlugin.h"
#include "meter/ChainProbe.h"
#include "reference/Stages.h"
#include "support/Paths.h"
#include "support/Recording.h"
#include "support/TestTone.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <vector>

namespace
{
using namespace larkspire::meter;
using namespace larkspire;

constexpr std::array voiceModes { KnobMode::gentle, KnobMode::medium, KnobMode::powerful };

const reference::Mode& settingsOf (KnobMode mode)
{
    return reference::modeAt (static_cast<int> (mode));
}

double decibels (double gain)
{
    return 20.0 * std::log10 (gain);
}

/** The real library and the probe beside it. */
class Beside
{
public:
    Beside (KnobMode mode, const AudioShape& soundShape)
        : shape (soundShape),
          plugin (library, { .mode = mode, .shape = shape, .blockSize = 480000 }),
          probe (static_cast<int> (mode), shape)
    {
    }

    void hear (const std::vector<float>& input)
    {
        auto output = input;
        plugin.process (output);
        probe.add (input, output);
    }

    AudioShape shape;
    PluginLibrary library { paths::plugin() };
    HostedPlugin plugin;
    ChainProbe probe;
};

TEST (ChainProbe, MatchesTheLibraryToTheBit)
{
    for (const auto mode : voiceModes)
        for (const int channels : { 1, 2 })
            for (const int rate : { 8000, 44100, 48000, 192000 })
            {
                SCOPED_TRACE (std::string (nameOf (mode)) + ", " + std::to_string (channels) + " channels, "
                              + std::to_string (rate));
                Beside beside (mode, { .channels = channels, .sampleRate = rate });
                auto sound = toFloats (makeNoise (channels, 140000, 24)); // beyond two refreshes of the settings
                sound[1000] = 50.0f;
                sound[2000] = -50.0f;
                sound[3000] = std::numeric_limits<float>::quiet_NaN();
                beside.hear (sound);
                EXPECT_TRUE (beside.probe.matches());
                EXPECT_TRUE (beside.probe.gains().levellerDb.has_value());
            }
}

TEST (ChainProbe, TellsNothingWhereOneBitDiffers)
{
    const AudioShape shape { .channels = 2, .sampleRate = 48000 };
    Beside beside (KnobMode::medium, shape);
    const auto sound = toFloats (makeNoise (2, 5000, 24));
    auto output = sound;
    beside.plugin.process (output);

    for (const std::size_t place : { std::size_t { 0 }, std::size_t { 776 }, std::size_t { 777 }, output.size() - 1 })
    {
        auto different = output;
        different[place] = std::nextafter (different[place], 2.0f);
        ChainProbe probe (2, shape);
        probe.add (sound, different);
        EXPECT_FALSE (probe.matches()) << place;
        EXPECT_EQ (probe.gains(), StageGains {}) << place;
    }
}

TEST (ChainProbe, HasNoGainsInBypass)
{
    Beside beside (KnobMode::bypass, { .channels = 1, .sampleRate = 48000 });
    beside.hear (toFloats (makeNoise (1, 5000, 24)));
    EXPECT_FALSE (beside.probe.runs());
    EXPECT_EQ (beside.probe.gains(), StageGains {});
}

TEST (ChainProbe, KnowsTheGainsOfSilence)
{
    constexpr int frames = 300000;

    for (const auto mode : voiceModes)
        for (const int channels : { 1, 2 })
        {
            SCOPED_TRACE (nameOf (mode));
            Beside beside (mode, { .channels = channels, .sampleRate = 48000 });
            beside.hear (std::vector<float> (std::size_t { frames } * static_cast<std::size_t> (channels)));
            const auto gains = beside.probe.gains();

            // The expander decays to its floor, the leveller comes back to one; both begin at a half.
            const auto& settings = settingsOf (mode);
            float expander = 0.5f;
            float leveller = 0.5f;
            double expanderSum = 0.0;
            double levellerSum = 0.0;

            for (int i = 0; i < frames; ++i)
            {
                expander = reference::expanderGain (settings.expander, expander, 0.0f);
                leveller = reference::levellerGain (settings.leveller, leveller, 0.0f);
                expanderSum += decibels (double (expander) * double (settings.expander.gainScale)
                                         + double (settings.expander.gainOffset));
                levellerSum += decibels (double (leveller));
            }

            EXPECT_NEAR (gains.expanderDb.value(), expanderSum / frames, 1e-6);
            EXPECT_NEAR (gains.levellerDb.value(), levellerSum / frames, 1e-6);
            EXPECT_NEAR (gains.makeUpDb.value(), decibels (double (settings.leveller.outputGain)), 1e-6);
            EXPECT_EQ (gains.highPassDb, std::nullopt);
            EXPECT_EQ (gains.foldDb, std::nullopt);
            EXPECT_EQ (gains.airAndBodyDb, std::nullopt);
            EXPECT_EQ (gains.softClipDb, std::nullopt);
        }
}

TEST (ChainProbe, SeesTheFoldLiftTheMiddleAndLowerTheSides)
{
    // The expander is fully open, so both channels reach the fold alike.
    auto middle = TestTone { .frequency = 3000.0, .peakDbfs = -12.0, .seconds = 2.0 }.samples();
    Beside centred (KnobMode::medium, { .channels = 2, .sampleRate = 48000 });
    centred.hear (middle);
    EXPECT_NEAR (centred.probe.gains().foldDb.value(), decibels (1.5), 1e-4);

    for (std::size_t i = 1; i < middle.size(); i += 2)
        middle[i] = -middle[i];

    Beside outOfPhase (KnobMode::medium, { .channels = 2, .sampleRate = 48000 });
    outOfPhase.hear (middle);
    EXPECT_NEAR (outOfPhase.probe.gains().foldDb.value(), decibels (0.75), 1e-4);
}

TEST (ChainProbe, SeesTheHighPassAtItsCorner)
{
    // At the corner a high-pass of the second order has the gain Q.
    for (const auto mode : voiceModes)
    {
        const auto& settings = settingsOf (mode);
        Beside beside (mode, { .channels = 1, .sampleRate = 48000 });
        beside.hear (
            TestTone { .frequency = settings.corner, .peakDbfs = -12.0, .seconds = 10.0, .channels = 1 }.samples());
        EXPECT_NEAR (beside.probe.gains().highPassDb.value(), decibels (double (settings.q)), 0.01);
    }
}

TEST (ChainProbe, SeesTheSoftClipOnAFaintSound)
{
    // A sine of a small number is the number, and the ceiling remains.
    Beside beside (KnobMode::powerful, { .channels = 1, .sampleRate = 48000 });
    beside.hear (TestTone { .peakDbfs = -80.0, .seconds = 1.0, .channels = 1 }.samples());
    EXPECT_NEAR (beside.probe.gains().softClipDb.value(), decibels (0.9885), 1e-3);
}

TEST (ChainProbe, AveragesTheChannelsInDecibels)
{
    // One channel is silent, the other keeps its expander open. The channels are ridden by themselves up to there.
    const auto tone = TestTone { .frequency = 3000.0, .peakDbfs = -12.0, .seconds = 2.0, .channels = 1 }.samples();
    const std::vector<float> silence (tone.size());
    std::vector<float> both;

    for (const auto sample : tone)
        both.insert (both.end(), { sample, 0.0f });

    const auto expanderOf = [] (const std::vector<float>& sound, int channels)
    {
        Beside beside (KnobMode::medium, { .channels = channels, .sampleRate = 48000 });
        beside.hear (sound);
        return beside.probe.gains().expanderDb.value();
    };

    EXPECT_NEAR (expanderOf (both, 2), 0.5 * (expanderOf (tone, 1) + expanderOf (silence, 1)), 1e-6);
}
} // namespace
