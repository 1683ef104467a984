// SPDX-License-Identifier: AGPL-3.0-only
// All four modes in one call.
#include "support/Child.h"
#include "support/Recording.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{
using testing::ElementsAre;

const std::vector<std::string> modes { "bypass", "Gentle", "Medium", "Powerful" };

TEST (Compare, GivesTheBytesOfFourSingleRenderings)
{
    const TemporaryFolder folder;
    write (folder / "voice.wav", wav16, makeNoise (2, 70000, 16));

    for (const std::string ending : { ".wav", ".flac" })
    {
        ASSERT_EQ (run ({ "--compare", folder / "voice.wav", "-o", folder / ("clear" + ending) }).exitStatus, 0);

        for (const auto& mode : modes)
        {
            ASSERT_EQ (run ({ "--mode", mode, folder / "voice.wav", "-o", folder / ("single" + ending) }).exitStatus,
                       0);
            EXPECT_EQ (bytesOf (folder / ("clear-" + mode + ending)), bytesOf (folder / ("single" + ending)))
                << mode << ending;
        }

        EXPECT_NE (bytesOf (folder / ("clear-Gentle" + ending)), bytesOf (folder / ("clear-Medium" + ending)));
    }
}

TEST (Compare, PutsTheModeIntoTheNamesOfAFolderToo)
{
    const TemporaryFolder folder;
    write (folder / "one.wav", wav16, makeNoise (1, 300, 16));
    write (folder / "two.wav", wav16, makeNoise (1, 300, 16));
    const auto outcome = run ({ "--compare", folder / "one.wav", folder / "two.wav", "-o", folder / "results" });
    EXPECT_EQ (outcome.exitStatus, 0) << outcome.errors;
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

TEST (Compare, RefusesToReplaceAnInputByAMode)
{
    const TemporaryFolder folder;
    write (folder / "one.wav", wav16, makeNoise (1, 300, 16));
    write (folder / "one-Medium.wav", wav16, makeNoise (1, 400, 16));
    const auto before = bytesOf (folder / "one-Medium.wav");
    const auto outcome = run ({ "--compare", folder / "one.wav", folder / "one-Medium.wav", "-o", folder.path() });
    EXPECT_EQ (outcome.exitStatus, 2);
    EXPECT_THAT (outcome.errors, testing::HasSubstr ("one-Medium.wav: is the same file as the input"));
    EXPECT_EQ (bytesOf (folder / "one-Medium.wav"), before);
    EXPECT_EQ (folder.contents().size(), 2U);
}
} // namespace
