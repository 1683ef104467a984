// SPDX-License-Identifier: AGPL-3.0-only
#include "support/Child.h"
#include "support/Recording.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

namespace
{
using testing::HasSubstr;
using testing::StartsWith;

/** Where a text begins a line of another, or fails. */
std::size_t lineOf (const std::string& help, const std::string& text)
{
    const auto place = help.find ("\n" + text);
    EXPECT_NE (place, std::string::npos) << text;
    return place;
}

TEST (CommandLine, HelpHasTheShapeThatAManualPageIsMadeOf)
{
    for (const std::string flag : { "--help", "-h" })
    {
        const auto outcome = run ({ flag });
        EXPECT_EQ (outcome.exitStatus, 0);
        EXPECT_EQ (outcome.errors, "");
        EXPECT_THAT (outcome.output, StartsWith ("Usage: larkspire-render [OPTION]... IN... -o OUT\n"));
        const auto options = lineOf (outcome.output, "Options:\n  -h, --help  ");
        const auto statuses = lineOf (outcome.output, "Exit status:\n  0  ");
        const auto examples = lineOf (outcome.output, "Examples:\n  larkspire-render ");
        EXPECT_LT (options, statuses);
        EXPECT_LT (statuses, examples);
        EXPECT_THAT (outcome.output, testing::Not (HasSubstr ("\n\n\n")));
    }
}

TEST (CommandLine, HelpNamesEveryOptionAndWhatMaySurprise)
{
    const auto help = run ({ "--help" }).output;

    for (const std::string option : { "-o OUT",
                                      "--mode MODE",
                                      "--compare",
                                      "--format KIND",
                                      "--bits WIDTH",
                                      "--report",
                                      "--json",
                                      "--plot PNG",
                                      "--stats",
                                      "-j, --jobs N",
                                      "--block N",
                                      "--plugin PATH",
                                      "--version" })
        lineOf (help, "  " + option + "  ");

    // Broken anywhere, texts are found all the same.
    auto flowing = std::regex_replace (help, std::regex ("\\s+"), " ");

    for (const std::string text : { "there is no dither", "replaced in one step", "links to folders", "128+n" })
        EXPECT_THAT (flowing, HasSubstr (text));

    for (const auto& line : linesOf (help))
        EXPECT_LE (line.size(), 120) << line;
}

TEST (CommandLine, VersionIsThatOfTheRelease)
{
    const auto outcome = run ({ "--version" });
    EXPECT_EQ (outcome.exitStatus, 0);
    EXPECT_EQ (outcome.errors, "");
    EXPECT_EQ (outcome.output, "larkspire-render " LARKSPIRE_RELEASE "\n");
    EXPECT_TRUE (std::regex_match (LARKSPIRE_RELEASE, std::regex ("[0-9]+\\.[0-9]+"))) << LARKSPIRE_RELEASE;
}

TEST (CommandLine, RefusesWrongCallsInOneLine)
{
    const TemporaryFolder folder;
    write (folder / "voice.wav", wav16, makeNoise (1, 300, 16));
    const auto input = folder / "voice.wav";
    const auto result = folder / "result.wav";
    const std::vector<std::vector<std::string>> wrongCalls {
        {},
        { input },
        { "-o", result },
        { input, "-o" },
        { "--mode", "Loud", input, "-o", result },
        { "--mode", "", input, "-o", result },
        { "--mode", "2", input, "-o", result },
        { "--block", "0", input, "-o", result },
        { "--block", "-1", input, "-o", result },
        { "--block", "524289", input, "-o", result },
        { "--block", "99999999999999999999", input, "-o", result },
        { "--block", "1.5", input, "-o", result },
        { "--block", "many", input, "-o", result },
        { "--bits", "8", input, "-o", result },
        { "--bits", "32", input, "-o", result },
        { "--format", "ogg", input, "-o", result },
        { "--unknown", input, "-o", result },
        { "--jobs", "-1", input, "-o", result },
        { "--jobs", "257", input, "-o", result },
        { "--plot", "", input, "-o", result },
        { "--plot", folder / "picture.jpg", input, "-o", result },
        { "--plot", result, input, "-o", result },
        { "--compare", "--mode", "Gentle", input, "-o", result },
        { input, "-o", result, "-o", result },
        { "--mode", "Gentle", "--mode", "Medium", input, "-o", result },
    };

    for (const auto& arguments : wrongCalls)
    {
        SCOPED_TRACE (testing::PrintToString (arguments));
        const auto outcome = run (arguments);
        EXPECT_EQ (outcome.exitStatus, 2);
        EXPECT_EQ (outcome.output, "");
        EXPECT_EQ (linesOf (outcome.errors).size(), 1) << outcome.errors;
        EXPECT_THAT (outcome.errors, StartsWith ("larkspire-render: "));
        EXPECT_EQ (folder.contents(), (std::vector<std::string> { "voice.wav" }));
    }
}

TEST (CommandLine, TakesTheSmallestAndTheLargestBlock)
{
    const TemporaryFolder folder;
    write (folder / "voice.wav", wav16, makeNoise (1, 300, 16));

    for (const std::string block : { "1", "524288" })
        EXPECT_EQ (run ({ "--block", block, folder / "voice.wav", "-o", folder / "result.wav" }).exitStatus, 0);
}

TEST (CommandLine, TakesOptionsInAnyOrder)
{
    const TemporaryFolder folder;
    write (folder / "one.wav", wav16, makeNoise (1, 300, 16));
    write (folder / "two.wav", wav16, makeNoise (1, 300, 16));
    const auto outcome =
        run ({ folder / "one.wav", "-o", folder / "results", "--mode=bypass", folder / "two.wav", "--bits", "16" });
    EXPECT_EQ (outcome.exitStatus, 0) << outcome.errors;
    EXPECT_EQ (bytesOf (folder / "results/one.wav"), bytesOf (folder / "one.wav"));
    EXPECT_EQ (bytesOf (folder / "results/two.wav"), bytesOf (folder / "two.wav"));
}

TEST (CommandLine, NoticesThatItsTextDidNotArrive)
{
    // A limit of no bytes makes the file behind stdout a full disk.
    const auto outcome = run (Call { .arguments = { "--help" }, .largestFile = 0 });
    EXPECT_EQ (outcome.exitStatus, 1);
}
} // namespace
