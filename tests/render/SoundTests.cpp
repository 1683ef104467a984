// SPDX-License-Identifier: AGPL-3.0-only
// What the renderer does to the sound, seen in the finished files.
#include "host/HostedPlugin.h"
#include "render/RendererTest.h"
#include "support/Paths.h"

#include <algorithm>
#include <array>
#include <set>
#include <span>

namespace
{
using namespace larkspire;

constexpr std::array<const char*, 4> modeNames { "bypass", "Gentle", "Medium", "Powerful" };

/** What the plug-in makes of floats in blocks of a size that has nothing to do with the renderer's. */
std::vector<float> throughPlugin (std::vector<float> samples, const PluginSetup& setup)
{
    const PluginLibrary library (paths::plugin());
    HostedPlugin plugin (library, setup);
    const auto blockSize = static_cast<std::size_t> (setup.blockSize) * static_cast<std::size_t> (setup.shape.channels);
    std::span<float> rest (samples);

    while (! rest.empty())
    {
        const auto block = rest.first (std::min (rest.size(), blockSize));
        plugin.process (block);
        rest = rest.subspan (block.size());
    }

    return samples;
}

class Sound : public RendererTest
{
protected:
    /** Renders voice.wav into 32-bit floats and gives those. */
    std::vector<float> rendered (std::vector<std::string> arguments) const
    {
        arguments.insert (arguments.end(), { "--bits", "32f", "voice.wav", "-o", "result.wav" });
        expectSuccess (arguments);
        return readFloats (folder / "result.wav");
    }
};

TEST_F (Sound, IsWhatThePluginMakesOfTheRecordingAndAnotherInEveryMode)
{
    std::set<std::vector<float>> sounds;

    for (const int channels : { 1, 2 })
        for (std::size_t mode = 0; mode < modeNames.size(); ++mode)
        {
            const auto recording = writeNoise ("voice.wav", channels, 20000, 7, 44100);
            const PluginSetup setup { .mode = static_cast<KnobMode> (mode),
                                      .shape = { .channels = channels, .sampleRate = 44100 },
                                      .blockSize = 777 };
            const auto sound = rendered ({ "--mode", modeNames[mode] });
            EXPECT_EQ (sound, throughPlugin (toFloats (recording), setup)) << modeNames[mode] << ", " << channels;
            EXPECT_TRUE (sounds.insert (sound).second) << modeNames[mode];
        }
}

TEST_F (Sound, IsThatOfMediumIfNoModeIsGivenAndKnowsItsModesInAnyCase)
{
    writeNoise ("voice.wav", 1, 20000);
    EXPECT_EQ (rendered ({}), rendered ({ "--mode", "Medium" }));
    EXPECT_EQ (rendered ({ "--mode", "POWERFUL" }), rendered ({ "--mode", "Powerful" }));
    EXPECT_EQ (rendered ({ "--mode", "gentle" }), rendered ({ "--mode", "Gentle" }));
}

TEST_F (Sound, DoesNotDependOnTheBlockSize)
{
    write (folder / "voice.wav", wav24, makeNoise (2, 9001, 24));

    for (const std::string result : { "result.wav", "result.flac" })
    {
        std::set<std::string> results;

        for (const std::string block : { "1", "64", "511", "4096", "9001", "524288" })
        {
            expectSuccess ({ "--mode", "Powerful", "--block", block, "voice.wav", "-o", result });
            results.insert (bytesOf (folder / result));
            EXPECT_EQ (results.size(), 1u) << "blocks of " << block << ", " << result;
        }
    }
}

TEST_F (Sound, OfAFileDoesNotDependOnTheFilesBeforeIt)
{
    const auto loud = writeNoise ("loud.wav", 1, 48000);
    const auto second = writeNoise ("second.wav", 1, 20000, 2);

    // An instance that has heard the loud one answers otherwise: the test can see a kept state.
    const PluginSetup setup { .mode = KnobMode::powerful,
                              .shape = { .channels = 1, .sampleRate = 48000 },
                              .blockSize = 512 };
    auto both = toFloats (loud);
    const auto alone = toFloats (second);
    both.insert (both.end(), alone.begin(), alone.end());
    const auto afterLoud = throughPlugin (both, setup);
    const auto freshly = throughPlugin (alone, setup);
    ASSERT_FALSE (std::equal (freshly.begin(), freshly.end(), afterLoud.end() - std::ssize (freshly)));

    expectSuccess ({ "--mode", "Powerful", "--bits", "32f", "loud.wav", "second.wav", "-o", "results" });
    EXPECT_EQ (readFloats (folder / "results/second.wav"), freshly);
}
} // namespace
