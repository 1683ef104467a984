// SPDX-License-Identifier: AGPL-3.0-only
// Several files at once.
#include "render/RendererTest.h"

#include <csignal>
#include <regex>

namespace
{
using testing::ElementsAre;
using testing::HasSubstr;

class Jobs : public RendererTest
{
protected:
    /** Twelve recordings of many kinds and lengths, the longest first, so that the order of their ends is another. */
    std::vector<std::string> writeTwelve() const
    {
        std::vector<std::string> names;

        for (int i = 0; i < 12; ++i)
        {
            names.push_back ("voice" + std::to_string (i) + (i % 4 == 3 ? ".flac" : ".wav"));
            writeNoise (names.back(),
                        1 + i % 2,
                        i == 0 ? 400000 : 90000 - i * 7000,
                        static_cast<unsigned> (i + 1),
                        i % 3 == 0 ? 44100 : 48000);
        }

        return names;
    }

    Call callWith (std::vector<std::string> options, const std::vector<std::string>& inputs) const
    {
        options.insert (options.end(), inputs.begin(), inputs.end());
        return { .arguments = std::move (options), .folder = folder.path() };
    }
};

TEST_F (Jobs, GiveTheSameBytesAndTheSameWordsInTheSameOrder)
{
    auto names = writeTwelve();
    writeBytes (folder / "text.txt", "no sound");
    writeBytes (folder / "more.txt", "no sound");
    names.insert (names.begin() + 3, "text.txt");
    names.insert (names.begin() + 7, "more.txt");

    const auto rendered = [&] (const std::string& jobs)
    {
        return run (callWith (
            { "--mode", "Powerful", "--report", "--jobs", jobs, "--plot", "pictures" + jobs, "-o", "results" + jobs },
            names));
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

TEST_F (Jobs, RunAtTheSameTimeAndLeaveNothingBehindWhenTheyAreInterrupted)
{
    const std::vector<std::string> names { "one.wav", "two.wav", "three.wav", "four.wav" };

    for (const auto& name : names)
        writeLongSilence (folder / name);

    for (const int signal : { SIGINT, SIGTERM })
    {
        SCOPED_TRACE (signal);
        Child child (callWith ({ "--jobs", "3", "--plot", "pictures/", "-o", "results" }, names));

        for (const std::string name : { "one", "two", "three" })
        {
            ASSERT_TRUE (folder.showsSoon ("." + name + ".wav.partial-"));
            ASSERT_TRUE (folder.showsSoon ("." + name + ".png.partial-"));
        }

        child.sendSignal (signal);
        const auto outcome = withoutSummary (child.wait());
        EXPECT_EQ (outcome.signal, signal);
        EXPECT_THAT (folder.contents(),
                     ElementsAre ("four.wav", "one.wav", "pictures", "results", "three.wav", "two.wav"));
        EXPECT_EQ (outcome.errors,
                   "larkspire-render: one.wav: interrupted, nothing was written\n"
                   "larkspire-render: two.wav: interrupted, nothing was written\n"
                   "larkspire-render: three.wav: interrupted, nothing was written\n");
    }
}

TEST_F (Jobs, KeepWhatWasDoneBeforeTheInterruption)
{
    writeNoise ("short.wav");
    writeLongSilence (folder / "long.wav");
    Child child (callWith ({ "--json", "--jobs", "2", "-o", "results" }, { "long.wav", "short.wav" }));
    ASSERT_TRUE (folder.showsSoon ("results/short.wav"));
    ASSERT_TRUE (folder.showsSoon ("long.wav.partial-"));
    child.sendSignal (SIGINT);
    const auto outcome = withoutSummary (child.wait());
    EXPECT_EQ (outcome.signal, SIGINT);
    EXPECT_THAT (folder.contents(), ElementsAre ("long.wav", "results", "results/short.wav", "short.wav"));

    // The document is whole, and holds both.
    EXPECT_TRUE (outcome.output.starts_with ("{") && outcome.output.ends_with ("}\n")) << outcome.output;
    EXPECT_THAT (outcome.output, HasSubstr ("interrupted, nothing was written"));
    EXPECT_THAT (outcome.output, HasSubstr ("results/short.wav"));
}

TEST_F (Jobs, GiveEveryFileALineOfProgressInOrder)
{
    const auto names = writeTwelve();
    auto call = callWith ({ "-j", "4", "-o", "results" }, names);
    call.onTerminal = true;
    const auto outcome = run (call);
    EXPECT_EQ (outcome.exitStatus, 0);
    const auto lines = linesOf (outcome.errors);
    ASSERT_EQ (lines.size(), names.size()) << outcome.errors;

    for (std::size_t i = 0; i < names.size(); ++i)
        EXPECT_TRUE (std::regex_search (lines[i],
                                        std::regex ("\\rfile " + std::to_string (i + 1) + " of 12  " + names[i]
                                                    + R"(  100 % \[#+\] +[0-9.]+x  in 0:0)")))
            << lines[i];
}
} // namespace
