// SPDX-License-Identifier: AGPL-3.0-only
// All four modes in one call.
#include "render/RendererTest.h"

namespace
{
using testing::ElementsAre;
using Compare = RendererTest;

TEST_F (Compare, GivesTheBytesOfFourSingleRenderings)
{
    writeNoise ("voice.wav", 2, 70000);

    for (const std::string ending : { ".wav", ".flac" })
    {
        expectSuccess ({ "--compare", "voice.wav", "-o", "clear" + ending });

        for (const std::string mode : { "bypass", "Gentle", "Medium", "Powerful" })
        {
            expectSuccess ({ "--mode", mode, "voice.wav", "-o", "single" + ending });
            EXPECT_EQ (bytesOf (folder / ("clear-" + mode + ending)), bytesOf (folder / ("single" + ending)))
                << mode << ending;
        }

        EXPECT_NE (bytesOf (folder / ("clear-Gentle" + ending)), bytesOf (folder / ("clear-Medium" + ending)));
    }
}

TEST_F (Compare, PutsTheModeIntoTheNamesOfAFolderToo)
{
    writeNoise ("one.wav");
    writeNoise ("two.wav");
    expectSuccess ({ "--compare", "one.wav", "two.wav", "-o", "results" });
    EXPECT_THAT (folder.contents(),
                 ElementsAre ("one.wav",
                              "results",
                              "results/one-Gentle.wav",
                              "results/one-Medium.wav",
                              "results/one-Powerful.wav",
                              "results/one-bypass.wav",
                              "results/two-Gentle.wav",
                              "results/two-Medium.wav",
                              "results/two-Powerful.wav",
                              "results/two-bypass.wav",
                              "two.wav"));
}

TEST_F (Compare, RefusesToReplaceAnInputByAMode)
{
    writeNoise ("one.wav");
    const auto recording = writeNoise ("one-Medium.wav", 1, 400);
    EXPECT_THAT (expectFailure (2, { "--compare", "one.wav", "one-Medium.wav", "-o", "." }),
                 testing::HasSubstr ("one-Medium.wav: is the same file as the input"));
    EXPECT_EQ (read (folder / "one-Medium.wav"), recording);
}
} // namespace
