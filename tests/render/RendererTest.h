// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "support/Child.h"
#include "support/Recording.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <string>
#include <vector>

/** The renderer, called in a folder of the test's own. */
class RendererTest : public testing::Test
{
protected:
    /** The line at the end of a batch, whose times differ, is taken off and held to its shape. */
    static Outcome withoutSummary (Outcome outcome)
    {
        static const std::regex summary (
            "(^|\n)larkspire-render: [0-9]+ rendered(, [0-9]+ (failed|not done|done before|left out))*, "
            "[0-9.]+ (s|min|h) of sound in [0-9.]+ (s|min)\r?\n$");
        outcome.errors = std::regex_replace (outcome.errors, summary, "$1");
        return outcome;
    }

    /** Calls a program; the tests of that line call it otherwise. */
    static Outcome run (const Call& call) { return withoutSummary (::run (call)); }

    Outcome runHere (const std::vector<std::string>& arguments) const
    {
        return run (Call { .arguments = arguments, .folder = folder.path() });
    }

    /** Expects that a call does its work without a word, but for what it was asked to say, and gives that. */
    std::string expectSuccess (const std::vector<std::string>& arguments) const
    {
        const auto outcome = runHere (arguments);
        EXPECT_EQ (outcome.exitStatus, 0) << testing::PrintToString (arguments);
        EXPECT_EQ (outcome.errors, "");
        return outcome.output;
    }

    /** Expects that a call fails in one line, which it gives without the program's name, and leaves no file behind. */
    std::string expectFailure (int exitStatus, const Call& call) const
    {
        const std::string beginning = "larkspire-render: ";
        const auto before = folder.contents();
        const auto outcome = run (call);
        const auto place = testing::PrintToString (call.arguments);
        EXPECT_EQ (outcome.exitStatus, exitStatus) << place;
        EXPECT_EQ (outcome.output, "") << place;
        EXPECT_EQ (folder.contents(), before) << place;
        EXPECT_EQ (linesOf (outcome.errors).size(), 1u) << place << outcome.errors;
        EXPECT_THAT (outcome.errors, testing::AllOf (testing::StartsWith (beginning), testing::EndsWith ("\n")));
        return outcome.errors.substr (std::min (beginning.size(), outcome.errors.size()));
    }

    std::string expectFailure (int exitStatus, const std::vector<std::string>& arguments) const
    {
        return expectFailure (exitStatus, Call { .arguments = arguments, .folder = folder.path() });
    }

    /** Writes noise of 16 bits into a file of the folder, a FLAC file if its name says so and else a WAV file. */
    Recording writeNoise (
        const std::string& name, int channels = 1, int frames = 300, unsigned seed = 1, int sampleRate = 48000) const
    {
        auto recording = makeNoise (channels, frames, 16, seed, sampleRate);
        write (folder / name, name.ends_with (".flac") ? flac16 : wav16, recording);
        return recording;
    }

    TemporaryFolder folder;
};
