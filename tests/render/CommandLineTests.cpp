// SPDX-License-Identifier: AGPL-3.0-only
#include "render/RendererTest.h"

#include <regex>

namespace
{
using testing::HasSubstr;
using testing::StartsWith;
using CommandLine = RendererTest;

/** Where a text begins a line of another, or fails. */
std::size_t lineOf (const std::string& help, const std::string& text)
{
    const auto place = help.find ("\n" + text);
    EXPECT_NE (place, std::string::npos) << text;
    return place;
}

TEST_F (CommandLine, HelpHasTheShapeThatAManualPageIsMadeOf)
{
    for (const std::string flag : { "--help", "-h" })
    {
        const auto help = expectSuccess ({ flag });
        EXPECT_THAT (help, StartsWith ("Usage: larkspire-render [OPTION]... IN... -o OUT\n"));
        const auto options = lineOf (help, "Options:\n  -h, --help  ");
        const auto statuses = lineOf (help, "Exit status:\n  0  ");
        const auto examples = lineOf (help, "Examples:\n  larkspire-render ");
        EXPECT_LT (options, statuses);
        EXPECT_LT (statuses, examples);
        EXPECT_THAT (help, testing::Not (HasSubstr ("\n\n\n")));
    }
}

TEST_F (CommandLine, HelpNamesEveryOptionAndWhatMaySurprise)
{
    const auto help = expectSuccess ({ "--help" });

    for (const std::string option : { "-o OUT",
                                      "--mode MODE",
                                      "--loudness LUFS",
                                      "--true-peak DBTP",
                                      "--gain DB",
                                      "--input-peak DBFS",
                                      "--settle SECONDS",
                                      "--split",
                                      "--process-rate HZ",
                                      "--compare",
                                      "--format KIND",
                                      "--bits WIDTH",
                                      "--report",
                                      "--json",
                                      "--plot PNG",
                                      "--allow-truncated",
                                      "--stats",
                                      "-j, --jobs N",
                                      "-q, --quiet",
                                      "--skip-existing",
                                      "--block N",
                                      "--plugin PATH",
                                      "--version" })
        lineOf (help, "  " + option + "  ");

    // Broken anywhere, texts are found all the same.
    auto flowing = std::regex_replace (help, std::regex ("\\s+"), " ");

    for (const std::string text : { "TPDF dither", "replaced in one step", "links to folders", "(AES17)", "128+n" })
        EXPECT_THAT (flowing, HasSubstr (text));

    for (const auto& line : linesOf (help))
        EXPECT_LE (line.size(), 120) << line;
}

TEST_F (CommandLine, VersionIsThatOfTheRelease)
{
    EXPECT_EQ (expectSuccess ({ "--version" }), "larkspire-render " LARKSPIRE_RELEASE "\n");
    EXPECT_TRUE (std::regex_match (LARKSPIRE_RELEASE, std::regex ("[0-9]+\\.[0-9]+"))) << LARKSPIRE_RELEASE;
}

TEST_F (CommandLine, RefusesWrongCallsInOneLine)
{
    writeNoise ("voice.wav");
    const std::string input = "voice.wav";
    const std::string result = "result.wav";
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
        { "--plot", "picture.jpg", input, "-o", result },
        { "--plot", result, input, "-o", result },
        { "--compare", "--mode", "Gentle", input, "-o", result },
        { input, "-o", result, "-o", result },
        { "--mode", "Gentle", "--mode", "Medium", input, "-o", result },
    };

    for (const auto& arguments : wrongCalls)
        expectFailure (2, arguments);
}

TEST_F (CommandLine, SaysWhichPartOfACallIsMissing)
{
    const std::string usage = "larkspire-render [OPTION]... IN... -o OUT";
    EXPECT_THAT (expectFailure (2, std::vector<std::string> {}), StartsWith ("a recording, IN, is missing: " + usage));
    EXPECT_THAT (expectFailure (2, { "-o", "result.wav" }), StartsWith ("a recording, IN, is missing: " + usage));

    // A report needs no result, but all else does.
    for (const std::vector<std::string>& options :
         { std::vector<std::string> {}, { "--stats", "--report" }, { "--plot", "p.png", "--json" }, { "--compare" } })
    {
        auto arguments = options;
        arguments.emplace_back ("voice.wav");
        EXPECT_THAT (expectFailure (2, arguments), StartsWith ("the result, -o OUT, is missing: " + usage));
    }
}

TEST_F (CommandLine, TakesOptionsInAnyOrder)
{
    writeNoise ("one.wav");
    writeNoise ("two.wav");
    expectSuccess ({ "one.wav", "-o", "results", "--mode=bypass", "two.wav", "--bits", "16" });
    EXPECT_EQ (bytesOf (folder / "results/one.wav"), bytesOf (folder / "one.wav"));
    EXPECT_EQ (bytesOf (folder / "results/two.wav"), bytesOf (folder / "two.wav"));
}

TEST_F (CommandLine, NoticesThatItsTextDidNotArrive)
{
    // A limit of no bytes makes the file behind stdout a full disk.
    const auto outcome = run (Call { .arguments = { "--help" }, .largestFile = 0 });
    EXPECT_EQ (outcome.exitStatus, 1);
}
} // namespace
