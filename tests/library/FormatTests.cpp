// SPDX-License-Identifier: AGPL-3.0-only
// The VST 3 library beside the VST 2 library: the same sound, and states that open in each other.
#include "support/Comparison.h"
#include "support/PluginUnderTest.h"
#include "support/VstW.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace
{
constexpr float rates[] = { 8000.0f, 22050.0f, 44100.0f, 48000.0f, 96000.0f, 192000.0f };

// A block size of 0 stands for blocks of random sizes, empty ones among them.
constexpr std::size_t blockSizes[] = { 1, 17, 64, 512, 4096, 0 };

/** What a format makes of a signal: the position changes half way, and the host's bypass comes and goes. */
Signal through (Format format, Signal signal, int position, float rate, bool mono, std::size_t blockSize)
{
    const auto plugin = openPlugin (format);
    plugin->setParameter (knobPosition (position));
    plugin->start (rate, 4096, mono);
    std::mt19937 random (99);
    const auto frames = signal.left.size();

    for (std::size_t done = 0, block = 0; done < frames; ++block)
    {
        const auto length = std::min (blockSize == 0 ? random() % 4097 : blockSize, frames - done);

        if (done >= frames / 2)
            plugin->setParameter (knobPosition ((position + 1) % 10));

        if (block % 16 == 0)
            plugin->setBypass (block % 48 == 0 && block > 0);

        plugin->process (signal, done, length);
        done += length;
    }

    return signal;
}

class Formats : public testing::TestWithParam<int>
{
protected:
    static void SetUpTestSuite()
    {
        for (const auto format : bothFormats)
            anchors.push_back (
                openPlugin (format)); // keep the libraries loaded, which is most of what an instance costs
    }

    static void TearDownTestSuite() { anchors.clear(); }

    static inline std::vector<std::unique_ptr<PluginUnderTest>> anchors;
};

INSTANTIATE_TEST_SUITE_P (AtPosition, Formats, testing::Range (0, 10));

TEST_P (Formats, SoundTheSameToTheBit)
{
    for (const auto& signal : testSignals (2 * 4096 + 11))
        for (const float rate : rates)
            for (const bool mono : { false, true })
                for (const std::size_t blockSize : blockSizes)
                {
                    const auto vst2 = through (Format::vst2, signal, GetParam(), rate, mono, blockSize);
                    const auto vst3 = through (Format::vst3, signal, GetParam(), rate, mono, blockSize);
                    ASSERT_TRUE (compare (vst3, vst2).sameBits)
                        << signal.name << (mono ? ", mono, " : ", stereo, ") << rate << " Hz, blocks of " << blockSize
                        << ", frame " << compare (vst3, vst2).where;
                }
}

TEST_P (Formats, OpenTheStatesOfEachOther)
{
    for (const auto from : bothFormats)
        for (const auto to : bothFormats)
        {
            const auto saving = openPlugin (from);
            const auto restored = openPlugin (to);
            saving->setParameter (knobPosition (GetParam()));
            restored->setParameter (knobPosition ((GetParam() + 5) % 10));
            restored->load (saving->save());
            EXPECT_NEAR (restored->getParameter(), knobPosition (GetParam()), 5e-5f) << from << " to " << to;
        }
}

TEST_P (Formats, OpenStatesOfVst2InTheWrappingsOfHosts)
{
    const auto saving = openPlugin (Format::vst2);
    saving->setParameter (knobPosition (GetParam()));
    const auto chunk = saving->save();

    for (const auto& state : { wrapped::bank (chunk), wrapped::vstW (chunk, false), wrapped::vstW (chunk, true) })
    {
        const auto restored = openPlugin (Format::vst3);
        restored->setParameter (knobPosition ((GetParam() + 5) % 10));
        restored->load (state);
        EXPECT_NEAR (restored->getParameter(), knobPosition (GetParam()), 5e-5f) << state.substr (0, 4);
    }
}

TEST_P (Formats, SoundTheSameAfterAStateCameFromTheOther)
{
    const auto saving = openPlugin (Format::vst2);
    saving->setParameter (knobPosition (GetParam()));
    const auto state = saving->save();
    auto vst2 = noise (2000, -12.0, 4);
    auto vst3 = vst2;

    for (auto [format, signal] : { std::pair (Format::vst2, &vst2), std::pair (Format::vst3, &vst3) })
    {
        const auto plugin = openPlugin (format);
        plugin->start (48000.0f);
        plugin->process (*signal, 0, 500);
        plugin->load (state);
        plugin->process (*signal, 500, 1500);
    }

    EXPECT_TRUE (compare (vst3, vst2).sameBits);
}
} // namespace
