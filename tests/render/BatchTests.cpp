// SPDX-License-Identifier: AGPL-3.0-only
// Which file goes where, and which calls are refused before anything happens.
#include "render/RendererTest.h"

#include <filesystem>
#include <utility>

namespace
{
using testing::ElementsAre;
using testing::HasSubstr;

class Batch : public RendererTest
{
protected:
    /** Expects that a call is refused as wrong, in a line that names what it must, and that the input stays. */
    void expectRefusal (const std::vector<std::string>& arguments, const std::vector<std::string>& named) const
    {
        const auto error = expectFailure (2, arguments);
        EXPECT_EQ (read (folder / "one.wav"), first);

        for (const auto& text : named)
            EXPECT_THAT (error, HasSubstr (text));
    }

    Recording first = writeNoise ("one.wav", 1, 1000);
    Recording second = writeNoise ("two.flac", 2, 2000, 2, 44100);
};

TEST_F (Batch, PutsSeveralResultsIntoAFolderThatItMakes)
{
    expectSuccess ({ "--mode", "bypass", "one.wav", "two.flac", "-o", "new/results" });
    EXPECT_THAT (
        folder.contents(),
        ElementsAre ("new", "new/results", "new/results/one.wav", "new/results/two.wav", "one.wav", "two.flac"));
    EXPECT_EQ (read (folder / "new/results/one.wav"), first);
    EXPECT_EQ (read (folder / "new/results/two.wav"), second);
}

TEST_F (Batch, PutsASingleResultIntoAFolderIfTheNameEndsWithASlashOrItIsThere)
{
    expectSuccess ({ "two.flac", "-o", "results/" });
    expectSuccess ({ "one.wav", "-o", "results", "--format", "flac" });
    EXPECT_THAT (folder.contents(),
                 ElementsAre ("one.wav", "results", "results/one.flac", "results/two.wav", "two.flac"));
}

TEST_F (Batch, NamesResultsAfterAllThatIsAheadOfTheLastDot)
{
    std::filesystem::rename (folder / "one.wav", folder / "take.1.final.wav");
    std::filesystem::rename (folder / "two.flac", folder / "without ending");
    expectSuccess ({ "take.1.final.wav", "without ending", "-o", "results" });
    EXPECT_TRUE (std::filesystem::exists (folder / "results/take.1.final.wav"));
    EXPECT_TRUE (std::filesystem::exists (folder / "results/without ending.wav"));
}

TEST_F (Batch, GoesOnAfterAFileThatFails)
{
    writeBytes (folder / "text.txt", "hello");
    const auto outcome = runHere ({ "--mode", "bypass", "one.wav", "text.txt", "two.flac", "-o", "results" });
    EXPECT_EQ (outcome.exitStatus, 1);
    EXPECT_EQ (outcome.errors, "larkspire-render: text.txt: is not a WAV, FLAC, AIFF, MP3, Ogg, AU, CAF or W64 file\n");
    EXPECT_EQ (read (folder / "results/one.wav"), first);
    EXPECT_EQ (read (folder / "results/two.wav"), second);
    EXPECT_FALSE (std::filesystem::exists (folder / "results/text.wav"));
}

TEST_F (Batch, RendersNeitherOfTwoInputsWithTheSameResult)
{
    writeNoise ("two.wav");
    const auto expectNeither = [this] (const std::vector<std::string>& arguments,
                                       const std::string& firstFault,
                                       const std::string& secondFault)
    {
        const auto outcome = runHere (arguments);
        EXPECT_EQ (outcome.exitStatus, 1);
        EXPECT_EQ (outcome.errors, "larkspire-render: " + firstFault + "\nlarkspire-render: " + secondFault + "\n");
    };

    expectNeither ({ "one.wav", "two.wav", "two.flac", "-o", "results" },
                   "two.wav: would become results/two.wav, and so would two.flac",
                   "two.flac: would become results/two.wav, and so would two.wav");
    EXPECT_THAT (folder.contents(), ElementsAre ("one.wav", "results", "results/one.wav", "two.flac", "two.wav"));
    std::filesystem::remove_all (folder / "results");

    expectNeither ({ "one.wav", "./one.wav", "-o", "results" },
                   "one.wav: would become results/one.wav, and so would ./one.wav",
                   "./one.wav: would become results/one.wav, and so would one.wav");
    EXPECT_FALSE (std::filesystem::exists (folder / "results")) << "a folder for nothing";

    // Links lead to one file too, be it there or not.
    std::filesystem::create_directory (folder / "results");
    std::filesystem::create_symlink ("there.wav", folder / "results/one.wav");
    std::filesystem::create_symlink ("there.wav", folder / "results/two.wav");

    for (const bool isThere : { false, true })
    {
        if (isThere)
            writeBytes (folder / "results/there.wav", "mine");

        expectNeither ({ "one.wav", "two.flac", "-o", "results" },
                       "one.wav: would become results/one.wav, and so would two.flac",
                       "two.flac: would become results/two.wav, and so would one.wav");
        EXPECT_EQ (std::filesystem::exists (folder / "results/there.wav"), isThere);
    }

    EXPECT_EQ (bytesOf (folder / "results/there.wav"), "mine");
}

TEST_F (Batch, RefusesToReplaceAnInput)
{
    std::filesystem::create_symlink ("one.wav", folder / "symbolic.wav");
    std::filesystem::create_hard_link (folder / "one.wav", folder / "hard.wav");
    std::filesystem::create_directory (folder / "results");
    writeNoise ("results/two.wav");
    std::filesystem::create_symlink ("results/two.wav", folder / "other.wav");

    expectRefusal ({ "one.wav", "-o", "one.wav" }, { "one.wav: is the same file" });
    expectRefusal ({ "one.wav", "-o", "./one.wav" }, { "./one.wav: is the same file" });
    expectRefusal ({ "one.wav", "-o", "." }, { "./one.wav: is the same file" });
    expectRefusal ({ "one.wav", "-o", "symbolic.wav" }, { "symbolic.wav", "one.wav" });
    expectRefusal ({ "one.wav", "-o", "hard.wav" }, { "hard.wav", "one.wav" });
    expectRefusal ({ "symbolic.wav", "-o", "one.wav" }, { "symbolic.wav", "one.wav" });
    expectRefusal ({ "symbolic.wav", "-o", "hard.wav" }, { "symbolic.wav", "hard.wav" });
    expectRefusal ({ "two.flac", "other.wav", "-o", "results" }, { "results/two.wav", "other.wav" });
}

TEST_F (Batch, RefusesTheNameOfOneResultForSeveral)
{
    for (const std::string name : { "m.wav", "m.FLAC", "m.mp3" })
    {
        expectRefusal ({ "one.wav", "two.flac", "-o", name }, { name + ": is one result", "name a folder" });
        expectRefusal ({ ".", "-o", name }, { name + ": is one result" });
    }

    // A slash says that a folder is meant, and one that is there is one.
    expectSuccess ({ "one.wav", "two.flac", "-o", "m.wav/" });
    expectSuccess ({ "one.wav", "two.flac", "-o", "m.wav" });
    EXPECT_TRUE (std::filesystem::exists (folder / "m.wav/two.wav"));
}

TEST_F (Batch, RefusesAFileWhereItNeedsAFolder)
{
    writeBytes (folder / "file", "mine");
    expectRefusal ({ "one.wav", "two.flac", "-o", "file" }, { "file: is not a folder" });
    expectRefusal ({ "one.wav", "-o", "file/" }, { "file: is not a folder" });
    EXPECT_EQ (bytesOf (folder / "file"), "mine");
}

TEST_F (Batch, RefusesANameThatContradictsTheFormatAndWidthsThatItDoesNotHave)
{
    expectRefusal ({ "--format", "flac", "one.wav", "-o", "result.wav" }, { "result.wav", "--format flac" });
    expectRefusal ({ "--format", "wav", "one.wav", "-o", "result.FLAC" }, { "result.FLAC", "--format wav" });
    expectRefusal ({ "--format", "opus", "one.wav", "-o", "result.mp3" }, { "result.mp3", "--format opus" });
    expectRefusal ({ "one.wav", "-o", "result.m4a" }, { "result.m4a", "WAV, FLAC, MP3 or Opus" });
    expectRefusal ({ "one.wav", "-o", "result.ogg" }, { "result.ogg", "WAV, FLAC, MP3 or Opus" });
    expectRefusal ({ "--bits", "16", "one.wav", "-o", "result.mp3" }, { "--bits: MP3 files have no width" });
    expectRefusal ({ "--bits", "32f", "one.wav", "-o", "result.opus" }, { "--bits: Opus files have no width" });
    expectRefusal ({ "--bits", "32f", "one.wav", "-o", "result.flac" }, { "FLAC" });
    expectRefusal ({ "--bits", "32f", "--format", "flac", "one.wav", "-o", "results/" }, { "FLAC" });
}
} // namespace
