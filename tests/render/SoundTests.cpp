// SPDX-License-Identifier: AGPL-3.0-only
// What the renderer does to the sound, seen in the finished files.
#include "host/HostedPlugin.h"
#include "support/Child.h"
#include "support/Paths.h"
#include "support/Recording.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <vector>

namespace
{
using namespace larkspire;

constexpr std::array<const char*, 4> modeNames { "bypass", "Gentle", "Medium", "Powerful" };

/** Renders into 32-bit floats and gives those. */
std::vector<float> rendered (const std::string& input, std::vector<std::string> arguments)
{
    const TemporaryFolder folder;
    arguments.insert (arguments.end(), { "--bits", "32f", input, "-o", folder / "result.wav" });
    const auto outcome = run (arguments);
    EXPECT_EQ (outcome.exitStatus, 0) << outcome.errors;
    return readFloats (folder / "result.wav");
}

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

TEST (Sound, IsWhatThePluginMakesOfTheRecording)
{
    for (const int channels : { 1, 2 })
        for (std::size_t mode = 0; mode < modeNames.size(); ++mode)
        {
            SCOPED_TRACE (std::string (modeNames[mode]) + ", channels: " + std::to_string (channels));
            const TemporaryFolder folder;
            const auto recording = makeNoise (channels, 20000, 16, 7, 44100);
            write (folder / "voice.wav", wav16, recording);
            const PluginSetup setup { .mode = static_cast<KnobMode> (mode),
                                      .shape = { .channels = channels, .sampleRate = 44100 },
                                      .blockSize = 777 };
            EXPECT_EQ (rendered (folder / "voice.wav", { "--mode", modeNames[mode] }),
                       throughPlugin (toFloats (recording), setup));
        }
}

TEST (Sound, IsAnotherInEveryMode)
{
    const TemporaryFolder folder;
    write (folder / "voice.wav", wav16, makeNoise (1, 20000, 16));
    std::array<std::vector<float>, modeNames.size()> results;

    for (std::size_t i = 0; i < results.size(); ++i)
        results[i] = rendered (folder / "voice.wav", { "--mode", modeNames[i] });

    for (std::size_t i = 0; i < results.size(); ++i)
        for (std::size_t k = i + 1; k < results.size(); ++k)
            EXPECT_NE (results[i], results[k]) << modeNames[i] << " and " << modeNames[k];
}

TEST (Sound, IsThatOfMediumIfNoModeIsGiven)
{
    const TemporaryFolder folder;
    write (folder / "voice.wav", wav16, makeNoise (1, 20000, 16));
    EXPECT_EQ (rendered (folder / "voice.wav", {}), rendered (folder / "voice.wav", { "--mode", "Medium" }));
}

TEST (Sound, KnowsItsModesInAnyCase)
{
    const TemporaryFolder folder;
    write (folder / "voice.wav", wav16, makeNoise (1, 5000, 16));
    EXPECT_EQ (rendered (folder / "voice.wav", { "--mode", "POWERFUL" }),
               rendered (folder / "voice.wav", { "--mode", "Powerful" }));
    EXPECT_EQ (rendered (folder / "voice.wav", { "--mode", "gentle" }),
               rendered (folder / "voice.wav", { "--mode", "Gentle" }));
}

TEST (Sound, DoesNotDependOnTheBlockSize)
{
    const TemporaryFolder folder;
    write (folder / "voice.wav", wav24, makeNoise (2, 9001, 24));

    for (const std::string result : { "result.wav", "result.flac" })
    {
        std::string first;

        for (const std::string block : { "1", "64", "511", "4096", "9001", "524288" })
        {
            const auto outcome =
                run ({ "--mode", "Powerful", "--block", block, folder / "voice.wav", "-o", folder / result });
            ASSERT_EQ (outcome.exitStatus, 0) << outcome.errors;
            const auto bytes = bytesOf (folder / result);

            if (first.empty())
                first = bytes;

            EXPECT_EQ (bytes, first) << "blocks of " << block << ", " << result;
        }
    }
}

TEST (Sound, OfAFileDoesNotDependOnTheFilesBeforeIt)
{
    const TemporaryFolder folder;
    const auto loud = makeNoise (1, 48000, 16, 1);
    const auto second = makeNoise (1, 20000, 16, 2);
    write (folder / "loud.wav", wav16, loud);
    write (folder / "second.wav", wav16, second);

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

    const auto outcome = run ({ "--mode",
                                "Powerful",
                                "--bits",
                                "32f",
                                folder / "loud.wav",
                                folder / "second.wav",
                                "-o",
                                folder / "results" });
    ASSERT_EQ (outcome.exitStatus, 0) << outcome.errors;
    EXPECT_EQ (readFloats (folder / "results/second.wav"), freshly);
}
} // namespace
