// SPDX-License-Identifier: AGPL-3.0-only
// Several files at once.
#include "support/Child.h"
#include "support/Recording.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <regex>
#include <string>
#include <vector>

namespace
{
using testing::ElementsAre;
using testing::HasSubstr;

/** Twelve recordings of many kinds and lengths, the longest first, so that the order of their ends is another. */
std::vector<std::string> writeTwelve (const TemporaryFolder& folder)
{
    std::vector<std::string> names;

    for (unsigned i = 0; i < 12; ++i)
    {
        const auto channels = i % 2 == 0 ? 1 : 2;
        const auto frames = i == 0 ? 400000 : 90000 - static_cast<int> (i) * 7000;
        const auto rate = i % 3 == 0 ? 44100 : 48000;
        names.push_back ("voice" + std::to_string (i) + (i % 4 == 3 ? ".flac" : ".wav"));
        write (folder / names.back(), i % 4 == 3 ? flac16 : wav16, makeNoise (channels, frames, 16, i + 1, rate));
    }

    return names;
}

TEST (Jobs, GiveTheSameBytesAndTheSameWordsInTheSameOrder)
{
    const TemporaryFolder folder;
    auto names = writeTwelve (folder);
    writeBytes (folder / "text.txt", "no sound");
    writeBytes (folder / "more.txt", "no sound");
    names.insert (names.begin() + 3, "text.txt");
    names.insert (names.begin() + 7, "more.txt");

    const auto rendered = [&] (const std::string& jobs)
    {
        std::vector<std::string> arguments { "--mode", "Powerful", "--report", "--jobs", jobs };
        arguments.insert (arguments.end(), names.begin(), names.end());
        arguments.insert (arguments.end(), { "--plot", "pictures" + jobs, "-o", "results" + jobs });
        return run (Call { .arguments = arguments, .folder = folder.path() });
    };

    const auto one = rendered ("1");
    const auto four = rendered ("4");
    EXPECT_EQ (one.exitStatus, 1);
    EXPECT_EQ (four.exitStatus, 1);
    EXPECT_EQ (linesOf (one.errors).size(), 2U) << one.errors;
    EXPECT_EQ (four.errors, one.errors);
    EXPECT_EQ (four.output, one.output);
    EXPECT_THAT (one.output, HasSubstr ("voice11.flac"));

    for (unsigned i = 0; i < 12; ++i)
    {
        const auto name = "/voice" + std::to_string (i);
        const auto bytes = bytesOf (folder / ("results1" + name + ".wav"));
        ASSERT_GT (bytes.size(), 10000U);
        EXPECT_EQ (bytesOf (folder / ("results4" + name + ".wav")), bytes) << name;
        EXPECT_EQ (bytesOf (folder / ("pictures4" + name + ".png")), bytesOf (folder / ("pictures1" + name + ".png")))
            << name;
    }
}

TEST (Jobs, RunAtTheSameTime)
{
    const TemporaryFolder folder;

    for (const std::string name : { "one.wav", "two.wav", "three.wav" })
        writeLongSilence (folder / name);

    const Child child (Call {
        .arguments = {
            "--jobs", "3", folder / "one.wav", folder / "two.wav", folder / "three.wav", "-o", folder / "results" } });
    EXPECT_TRUE (folder.showsSoon (".one.wav.partial-"));
    EXPECT_TRUE (folder.showsSoon (".two.wav.partial-"));
    EXPECT_TRUE (folder.showsSoon (".three.wav.partial-"));
}

TEST (Jobs, LeaveNothingBehindWhenTheyAreInterrupted)
{
    for (const int signal : { SIGINT, SIGTERM })
    {
        SCOPED_TRACE (signal);
        const TemporaryFolder folder;
        std::vector<std::string> arguments { "--jobs", "3", "--plot", folder / "pictures/" };

        for (const std::string name : { "one.wav", "two.wav", "three.wav", "four.wav" })
        {
            writeLongSilence (folder / name);
            arguments.push_back (folder / name);
        }

        arguments.insert (arguments.end(), { "-o", folder / "results" });
        Child child (Call { .arguments = arguments });

        for (const std::string name : { "one", "two", "three" })
        {
            ASSERT_TRUE (folder.showsSoon ("." + name + ".wav.partial-"));
            ASSERT_TRUE (folder.showsSoon ("." + name + ".png.partial-"));
        }

        child.sendSignal (signal);
        const auto outcome = child.wait();
        EXPECT_EQ (outcome.signal, signal);
        EXPECT_THAT (folder.contents(),
                     ElementsAre ("four.wav", "one.wav", "pictures", "results", "three.wav", "two.wav"));
        const auto interrupted = [&folder] (const std::string& name)
        { return "larkspire-render: " + (folder / name) + ": interrupted, nothing was written"; };
        EXPECT_THAT (linesOf (outcome.errors),
                     ElementsAre (interrupted ("one.wav"), interrupted ("two.wav"), interrupted ("three.wav")));
    }
}

TEST (Jobs, KeepWhatWasDoneBeforeTheInterruption)
{
    const TemporaryFolder folder;
    write (folder / "short.wav", wav16, makeNoise (1, 300, 16));
    writeLongSilence (folder / "long.wav");
    Child child (
        Call { .arguments = {
                   "--json", "--jobs", "2", folder / "long.wav", folder / "short.wav", "-o", folder / "results" } });
    ASSERT_TRUE (folder.showsSoon ("results/short.wav"));
    ASSERT_TRUE (folder.showsSoon ("long.wav.partial-"));
    child.sendSignal (SIGINT);
    const auto outcome = child.wait();
    EXPECT_EQ (outcome.signal, SIGINT);
    EXPECT_THAT (folder.contents(), ElementsAre ("long.wav", "results", "results/short.wav", "short.wav"));

    // The document is whole, and holds both.
    EXPECT_TRUE (outcome.output.starts_with ("[") && outcome.output.ends_with ("]\n")) << outcome.output;
    EXPECT_THAT (outcome.output, HasSubstr ("interrupted, nothing was written"));
    EXPECT_THAT (outcome.output, HasSubstr ("results/short.wav"));
}

TEST (Jobs, GiveEveryFileALineOfProgressInOrder)
{
    const TemporaryFolder folder;
    const auto names = writeTwelve (folder);
    std::vector<std::string> arguments { "-j", "4" };
    arguments.insert (arguments.end(), names.begin(), names.end());
    arguments.insert (arguments.end(), { "-o", "results" });
    const auto outcome = run (Call { .arguments = arguments, .folder = folder.path(), .onTerminal = true });
    EXPECT_EQ (outcome.exitStatus, 0);
    const auto lines = linesOf (outcome.errors);
    ASSERT_EQ (lines.size(), names.size()) << outcome.errors;

    for (std::size_t i = 0; i < names.size(); ++i)
        EXPECT_TRUE (
            std::regex_search (lines[i], std::regex ("\\r" + names[i] + R"(  100 % \[#{20}\] +[0-9.]+x  in 0:0)")))
            << lines[i];
}
} // namespace
