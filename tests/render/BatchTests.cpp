// SPDX-License-Identifier: AGPL-3.0-only
// Which file goes where, and which calls are refused before anything happens.
#include "support/Child.h"
#include "support/Recording.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace
{
using testing::ElementsAre;
using testing::HasSubstr;

class Batch : public testing::Test
{
protected:
    Batch()
    {
        write (folder / "one.wav", wav16, first);
        write (folder / "two.flac", flac16, second);
    }

    /** Calls the program in the folder. */
    Outcome runHere (const std::vector<std::string>& arguments) const
    {
        return run (Call { .arguments = arguments, .folder = folder.path() });
    }

    /** Expects that a call is refused as wrong, in one line that names what it must, and that it changes nothing. */
    void expectRefusal (const std::vector<std::string>& arguments, const std::vector<std::string>& named) const
    {
        const auto before = folder.contents();
        const auto bytesBefore = bytesOf (folder / "one.wav");
        const auto outcome = runHere (arguments);
        EXPECT_EQ (outcome.exitStatus, 2);
        EXPECT_EQ (linesOf (outcome.errors).size(), 1) << outcome.errors;
        EXPECT_THAT (outcome.errors, testing::StartsWith ("larkspire-render: "));
        EXPECT_EQ (folder.contents(), before);
        EXPECT_EQ (bytesOf (folder / "one.wav"), bytesBefore);

        for (const auto& text : named)
            EXPECT_THAT (outcome.errors, HasSubstr (text));
    }

    TemporaryFolder folder;
    Recording first = makeNoise (1, 1000, 16, 1);
    Recording second = makeNoise (2, 2000, 16, 2, 44100);
};

TEST_F (Batch, PutsSeveralResultsIntoAFolderThatItMakes)
{
    const auto outcome = runHere ({ "--mode", "bypass", "one.wav", "two.flac", "-o", "new/results" });
    EXPECT_EQ (outcome.exitStatus, 0) << outcome.errors;
    EXPECT_THAT (
        folder.contents(),
        ElementsAre ("new", "new/results", "new/results/one.wav", "new/results/two.wav", "one.wav", "two.flac"));
    EXPECT_EQ (read (folder / "new/results/one.wav"), first);
    EXPECT_EQ (read (folder / "new/results/two.wav"), second);
}

TEST_F (Batch, PutsASingleResultIntoAFolderIfTheNameEndsWithASlash)
{
    EXPECT_EQ (runHere ({ "two.flac", "-o", "results/" }).exitStatus, 0);
    EXPECT_THAT (folder.contents(), ElementsAre ("one.wav", "results", "results/two.wav", "two.flac"));
}

TEST_F (Batch, PutsASingleResultIntoAFolderThatIsThere)
{
    std::filesystem::create_directory (folder / "results");
    EXPECT_EQ (runHere ({ "one.wav", "-o", "results", "--format", "flac" }).exitStatus, 0);
    EXPECT_THAT (folder.contents(), ElementsAre ("one.wav", "results", "results/one.flac", "two.flac"));
}

TEST_F (Batch, NamesResultsAfterAllThatIsAheadOfTheLastDot)
{
    std::filesystem::rename (folder / "one.wav", folder / "take.1.final.wav");
    std::filesystem::rename (folder / "two.flac", folder / "without ending");
    EXPECT_EQ (runHere ({ "take.1.final.wav", "without ending", "-o", "results" }).exitStatus, 0);
    EXPECT_TRUE (std::filesystem::exists (folder / "results/take.1.final.wav"));
    EXPECT_TRUE (std::filesystem::exists (folder / "results/without ending.wav"));
}

TEST_F (Batch, GoesOnAfterAFileThatFails)
{
    writeBytes (folder / "text.txt", "hello");
    const auto outcome = runHere ({ "--mode", "bypass", "one.wav", "text.txt", "two.flac", "-o", "results" });
    EXPECT_EQ (outcome.exitStatus, 1);
    EXPECT_EQ (outcome.errors, "larkspire-render: text.txt: is not a WAV, FLAC, AIFF or Ogg file\n");
    EXPECT_EQ (read (folder / "results/one.wav"), first);
    EXPECT_EQ (read (folder / "results/two.wav"), second);
    EXPECT_FALSE (std::filesystem::exists (folder / "results/text.wav"));
}

TEST_F (Batch, RefusesTwoInputsWithTheSameResult)
{
    write (folder / "two.wav", wav16, first);
    expectRefusal ({ "one.wav", "two.wav", "two.flac", "-o", "results" },
                   { "two.wav and two.flac", "results/two.wav" });
    expectRefusal ({ "one.wav", "./one.wav", "-o", "results" }, { "one.wav and ./one.wav" });
}

TEST_F (Batch, RefusesTwoResultsThatLinksLeadToOneFile)
{
    std::filesystem::create_directory (folder / "results");
    writeBytes (folder / "results/there.wav", "");
    std::filesystem::create_symlink ("there.wav", folder / "results/one.wav");
    std::filesystem::create_symlink ("there.wav", folder / "results/two.wav");
    expectRefusal ({ "one.wav", "two.flac", "-o", "results" }, { "one.wav and two.flac" });
}

TEST_F (Batch, RefusesToReplaceItsInput)
{
    expectRefusal ({ "one.wav", "-o", "one.wav" }, { "one.wav: is the same file" });
    expectRefusal ({ "one.wav", "-o", "./one.wav" }, { "./one.wav: is the same file" });
    expectRefusal ({ "one.wav", "-o", "." }, { "./one.wav: is the same file" });
}

TEST_F (Batch, RefusesToReplaceItsInputThroughALink)
{
    std::filesystem::create_symlink ("one.wav", folder / "symbolic.wav");
    std::filesystem::create_hard_link (folder / "one.wav", folder / "hard.wav");
    expectRefusal ({ "one.wav", "-o", "symbolic.wav" }, { "symbolic.wav", "one.wav" });
    expectRefusal ({ "one.wav", "-o", "hard.wav" }, { "hard.wav", "one.wav" });
    expectRefusal ({ "symbolic.wav", "-o", "one.wav" }, { "symbolic.wav", "one.wav" });
    expectRefusal ({ "symbolic.wav", "-o", "hard.wav" }, { "symbolic.wav", "hard.wav" });
}

TEST_F (Batch, RefusesToReplaceAnotherInput)
{
    std::filesystem::create_directory (folder / "results");
    write (folder / "two.wav", wav16, first);
    std::filesystem::rename (folder / "two.wav", folder / "results/two.wav");
    std::filesystem::create_symlink ("results/two.wav", folder / "other.wav");
    expectRefusal ({ "two.flac", "other.wav", "-o", "results" }, { "results/two.wav", "other.wav" });
}

TEST_F (Batch, RefusesAFileWhereItNeedsAFolder)
{
    writeBytes (folder / "file", "mine");
    expectRefusal ({ "one.wav", "two.flac", "-o", "file" }, { "file: is not a folder" });
    expectRefusal ({ "one.wav", "-o", "file/" }, { "file: is not a folder" });
    EXPECT_EQ (bytesOf (folder / "file"), "mine");
}

TEST_F (Batch, RefusesANameThatContradictsTheFormat)
{
    expectRefusal ({ "--format", "flac", "one.wav", "-o", "result.wav" }, { "result.wav", "--format flac" });
    expectRefusal ({ "--format", "wav", "one.wav", "-o", "result.FLAC" }, { "result.FLAC", "--format wav" });
    expectRefusal ({ "one.wav", "-o", "result.mp3" }, { "result.mp3", "WAV or FLAC" });
    expectRefusal ({ "one.wav", "-o", "result.ogg" }, { "result.ogg", "WAV or FLAC" });
}

TEST_F (Batch, RefusesFloatsInFlac)
{
    expectRefusal ({ "--bits", "32f", "one.wav", "-o", "result.flac" }, { "FLAC" });
    expectRefusal ({ "--bits", "32f", "--format", "flac", "one.wav", "-o", "results/" }, { "FLAC" });
}
} // namespace
