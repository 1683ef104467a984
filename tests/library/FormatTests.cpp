// SPDX-License-Identifier: AGPL-3.0-only
// The VST 3 and the LV2 library beside the VST 2 library: the same sound, and states of the first two that open in each
// other.
#include "support/Comparison.h"
#include "support/PluginUnderTest.h"
#include "support/VstW.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <tuple>

namespace
{
constexpr float rates[] = { 8000.0f, 22050.0f, 44100.0f, 48000.0f, 96000.0f, 192000.0f };

// A block size of 0 stands for blocks of random sizes, empty ones among them.
constexpr std::size_t blockSizes[] = { 1, 17, 64, 512, 4096, 0 };

/** How a signal is processed: the position changes half way, and the host's bypass comes and goes. */
struct Way
{
    int position = 0;
    int positions = 10; // that there are
    bool hasBypass = true;
    float rate = 48000.0f; // Hz
    bool mono = false;
    std::size_t blockSize = 0;
};

Signal through (Format format, Signal signal, const Way& way)
{
    const auto plugin = openPlugin (format);
    plugin->setParameter (knobPosition (way.position));
    plugin->start (way.rate, 4096, way.mono);
    std::mt19937 random (99);
    const auto frames = signal.left.size();

    for (std::size_t done = 0, block = 0; done < frames; ++block)
    {
        const auto length = std::min (way.blockSize == 0 ? random() % 4097 : way.blockSize, frames - done);

        if (done >= frames / 2)
            plugin->setParameter (knobPosition ((way.position + 1) % way.positions));

        if (way.hasBypass && block % 16 == 0)
            plugin->setBypass (block % 48 == 0 && block > 0);

        plugin->process (signal, done, length);
        done += length;
    }

    return signal;
}

/** Libraries of all formats that stay loaded, which is most of what an instance costs. */
template <typename Base>
class Anchored : public Base
{
protected:
    static void SetUpTestSuite()
    {
        for (const auto format : allFormats)
            anchors.push_back (openPlugin (format));
    }

    static void TearDownTestSuite() { anchors.clear(); }

private:
    static inline std::vector<std::unique_ptr<PluginUnderTest>> anchors;
};

/** A format other than VST 2, at a position of its knob. */
class FormatSound : public Anchored<testing::TestWithParam<std::tuple<Format, int>>>
{
protected:
    /** Expects of the format what VST 2 makes of the signal, in every layout and at every block size. */
    static void expectSoundOfVst2 (const Signal& signal, float rate)
    {
        const auto [format, position] = GetParam();
        const bool isLv2 = format == Format::lv2;

        for (const bool mono : { false, true })
            for (const std::size_t blockSize : blockSizes)
            {
                const Way way { .position = position,
                                .positions = isLv2 ? 4 : 10,
                                .hasBypass = ! isLv2,
                                .rate = rate,
                                .mono = mono,
                                .blockSize = blockSize };
                const auto difference = compare (through (format, signal, way), through (Format::vst2, signal, way));
                ASSERT_TRUE (difference.sameBits) << signal.name << (mono ? ", mono, " : ", stereo, ") << rate
                                                  << " Hz, blocks of " << blockSize << ", frame " << difference.where;
            }
    }
};

INSTANTIATE_TEST_SUITE_P (OfVst3AtPosition,
                          FormatSound,
                          testing::Combine (testing::Values (Format::vst3), testing::Range (0, 10)));
INSTANTIATE_TEST_SUITE_P (OfLv2AtPosition,
                          FormatSound,
                          testing::Combine (testing::Values (Format::lv2), testing::Range (0, 4)));

TEST_P (FormatSound, IsThatOfVst2ToTheBit)
{
    for (const auto& signal : testSignals (2 * 4096 + 11))
        for (const float rate : rates)
            expectSoundOfVst2 (signal, rate);
}

TEST_P (FormatSound, IsThatOfVst2ToTheBitForLongerThanTheRefreshTakes)
{
    constexpr std::size_t refresh = 65536; // frames
    expectSoundOfVst2 (voice (3 * refresh), 44100.0f);
}

class FormatStates : public Anchored<testing::TestWithParam<int>>
{
};

INSTANTIATE_TEST_SUITE_P (AtPosition, FormatStates, testing::Range (0, 10));

TEST_P (FormatStates, OpenTheStatesOfEachOther)
{
    for (const auto from : vstFormats)
        for (const auto to : vstFormats)
        {
            const auto saving = openPlugin (from);
            const auto restored = openPlugin (to);
            saving->setParameter (knobPosition (GetParam()));
            restored->setParameter (knobPosition ((GetParam() + 5) % 10));
            restored->load (saving->save());
            EXPECT_NEAR (restored->getParameter(), knobPosition (GetParam()), 5e-5f) << from << " to " << to;
        }
}

TEST_P (FormatStates, OpenStatesOfVst2InTheWrappingsOfHosts)
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

TEST_P (FormatStates, SoundTheSameAfterAStateCameFromTheOther)
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
