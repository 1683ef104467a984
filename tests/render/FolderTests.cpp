// SPDX-License-Identifier: AGPL-3.0-only
// A folder as an input.
#include "render/RendererTest.h"

#include <filesystem>
#include <sys/stat.h>

namespace
{
using testing::ElementsAre;
using testing::HasSubstr;

class Folder : public RendererTest
{
protected:
    Folder()
    {
        std::filesystem::create_directories (folder / "takes/day two/late");
        first = writeNoise ("takes/one.wav", 1, 1000);
        second = writeNoise ("takes/day two/one.flac", 2, 2000, 2, 44100);
        write (folder / "takes/day two/late/three.aiff", aiff16, first);
    }

    /** The names below a folder. */
    std::vector<std::string> below (const std::string& name) const
    {
        std::vector<std::string> names;

        for (const auto& path : folder.contents())
            if (path.starts_with (name + "/") && ! std::filesystem::is_directory (folder / path))
                names.push_back (path.substr (name.size() + 1));

        return names;
    }

    const std::vector<std::string> threeResults { "day two/late/three.wav", "day two/one.wav", "one.wav" };
    Recording first;
    Recording second;
};

TEST_F (Folder, IsTakenWithItsTree)
{
    std::filesystem::create_directory_symlink ("takes", folder / "link");

    for (const std::string name : { "takes", "takes/", "./takes", "link" })
    {
        SCOPED_TRACE (name);
        std::filesystem::remove_all (folder / "results");
        expectSuccess ({ "--mode", "bypass", name, "-o", "results" });
        EXPECT_EQ (below ("results"), threeResults);
        EXPECT_EQ (read (folder / "results/one.wav"), first);
        EXPECT_EQ (read (folder / "results/day two/one.wav"), second);
        EXPECT_EQ (read (folder / "results/day two/late/three.wav"), first);
    }
}

TEST_F (Folder, MayComeTogetherWithFiles)
{
    writeNoise ("other.wav");
    expectSuccess ({ "other.wav", "takes", "-o", "results" });
    EXPECT_THAT (below ("results"), ElementsAre ("day two/late/three.wav", "day two/one.wav", "one.wav", "other.wav"));
}

TEST_F (Folder, HasPicturesAndModesInItsTreeToo)
{
    expectSuccess ({ "--compare", "--plot", "pictures", "takes/day two", "-o", "results" });
    EXPECT_THAT (below ("results"),
                 ElementsAre ("late/three-Gentle.wav",
                              "late/three-Medium.wav",
                              "late/three-Powerful.wav",
                              "late/three-bypass.wav",
                              "one-Gentle.wav",
                              "one-Medium.wav",
                              "one-Powerful.wav",
                              "one-bypass.wav"));
    EXPECT_THAT (below ("pictures"),
                 ElementsAre ("late/three-Gentle.png",
                              "late/three-Medium.png",
                              "late/three-Powerful.png",
                              "late/three-bypass.png",
                              "one-Gentle.png",
                              "one-Medium.png",
                              "one-Powerful.png",
                              "one-bypass.png"));
}

TEST_F (Folder, LeavesOutWhatIsNoRecordingAndSaysHowMuch)
{
    writeBytes (folder / "takes/notes.txt", "which take is best");
    writeBytes (folder / "takes/empty.wav", "");
    writeBytes (folder / "takes/day two/film.avi", "RIFF....AVI LIST");
    ASSERT_EQ (mkfifo ((folder / "takes/pipe.wav").c_str(), 0600), 0);
    std::filesystem::create_symlink ("nowhere", folder / "takes/dangling.wav");
    const auto outcome = runHere ({ "takes", "-o", "results" });
    EXPECT_EQ (outcome.exitStatus, 0);
    EXPECT_EQ (outcome.errors, "larkspire-render: takes: 5 files that are no recordings were left out\n");
    EXPECT_EQ (below ("results"), threeResults);
}

TEST_F (Folder, ReportsARecordingThatIsDamagedAndGoesOn)
{
    writeBytes (folder / "takes/damaged.wav", "RIFF....WAVEand nothing more");
    writeNoise ("takes/six.wav", 6);
    const auto outcome = runHere ({ "takes", "-o", "results" });
    EXPECT_EQ (outcome.exitStatus, 1);
    EXPECT_THAT (outcome.errors, HasSubstr ("takes/damaged.wav: cannot be read as audio"));
    EXPECT_THAT (outcome.errors, HasSubstr ("takes/six.wav: has 6 channels"));
    EXPECT_EQ (below ("results"), threeResults);
}

TEST_F (Folder, PassesHiddenThingsOver)
{
    std::filesystem::create_directory (folder / "takes/.trash");
    write (folder / "takes/.trash/old.wav", wav16, first);
    write (folder / "takes/.one.wav.partial-77", wav16, first);
    expectSuccess ({ "takes", "-o", "results" });
    EXPECT_EQ (below ("results"), threeResults);
}

TEST_F (Folder, IsNotLeftByLinksAndDoesNotRunInCircles)
{
    std::filesystem::create_directory (folder / "elsewhere");
    write (folder / "elsewhere/far.wav", wav16, first);
    std::filesystem::create_directory_symlink ("..", folder / "takes/day two/up");
    std::filesystem::create_directory_symlink (folder / "elsewhere", folder / "takes/out");
    std::filesystem::create_symlink ("itself.wav", folder / "takes/itself.wav");

    // A link to a file is as good as the file.
    std::filesystem::create_symlink (folder / "elsewhere/far.wav", folder / "takes/near.wav");
    const auto outcome = runHere ({ "takes", "-o", "results" });
    EXPECT_EQ (outcome.exitStatus, 0) << outcome.errors;
    EXPECT_EQ (outcome.errors, "larkspire-render: takes: 3 files that are no recordings were left out\n");
    EXPECT_THAT (below ("results"), ElementsAre ("day two/late/three.wav", "day two/one.wav", "near.wav", "one.wav"));
}

TEST_F (Folder, DoesNotTakeItsOwnResultsForRecordings)
{
    for (int i = 0; i < 3; ++i)
    {
        expectSuccess ({ "takes", "-o", "takes/results", "--plot", "takes/pictures/" });
        EXPECT_EQ (below ("takes/results"), threeResults);
    }

    // By another name it is the same folder.
    std::filesystem::create_directory_symlink ("takes/results", folder / "link");
    expectSuccess ({ "takes", "-o", "link", "--plot", "takes/pictures" });
    EXPECT_EQ (below ("takes/results"), threeResults);
}

TEST_F (Folder, IsRefusedAsTheFolderOfItsResults)
{
    for (const std::string out : { "takes", "takes/", "./takes/../takes" })
        EXPECT_THAT (expectFailure (2, { "takes", "-o", out }), HasSubstr ("is the folder of the recordings"));
}

TEST_F (Folder, RefusesTwoRecordingsThatWouldBecomeOneResult)
{
    writeNoise ("takes/one.flac");
    EXPECT_THAT (expectFailure (2, { "takes", "-o", "results" }),
                 HasSubstr ("takes/one.flac and takes/one.wav: both would become results/one.wav"));
}

TEST_F (Folder, WithNothingToRenderDoesNotStopTheOthers)
{
    std::filesystem::create_directory (folder / "empty");
    const auto outcome = runHere ({ "empty", "takes", "-o", "results" });
    EXPECT_EQ (outcome.exitStatus, 1);
    EXPECT_EQ (outcome.errors, "larkspire-render: empty: holds no WAV, FLAC, AIFF or Ogg file\n");
    EXPECT_EQ (below ("results"), threeResults);
}

TEST_F (Folder, OfResultsThatIsInTheWayOfAFileFailsOnlyWhatIsBelow)
{
    std::filesystem::create_directory (folder / "results");
    writeBytes (folder / "results/day two", "in the way");
    const auto outcome = runHere ({ "--mode", "bypass", "takes", "-o", "results" });
    EXPECT_EQ (outcome.exitStatus, 1);
    EXPECT_EQ (linesOf (outcome.errors).size(), 2U) << outcome.errors;
    EXPECT_EQ (read (folder / "results/one.wav"), first);
}

TEST_F (Folder, RefusesOnePictureForManyRecordings)
{
    for (const auto& call : { std::vector<std::string> { "takes", "--plot", "picture.png", "-o", "results" },
                              { "takes/one.wav", "takes/day two/one.flac", "--plot", "picture.png", "-o", "results" } })
        EXPECT_THAT (expectFailure (2, call), HasSubstr ("picture.png: is one picture"));
}
} // namespace
