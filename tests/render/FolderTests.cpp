// SPDX-License-Identifier: AGPL-3.0-only
// A folder as an input.
#include "support/Child.h"
#include "support/Recording.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace
{
using testing::ElementsAre;
using testing::HasSubstr;

class Folder : public testing::Test
{
protected:
    Folder()
    {
        std::filesystem::create_directories (folder / "takes/day two/late");
        write (folder / "takes/one.wav", wav16, first);
        write (folder / "takes/day two/one.flac", flac16, second);
        write (folder / "takes/day two/late/three.aiff", aiff16, first);
    }

    Outcome runHere (std::vector<std::string> arguments) const
    {
        arguments.insert (arguments.begin(), { "--mode", "bypass" });
        return run (Call { .arguments = arguments, .folder = folder.path() });
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

    TemporaryFolder folder;
    Recording first = makeNoise (1, 1000, 16, 1);
    Recording second = makeNoise (2, 2000, 16, 2, 44100);
};

TEST_F (Folder, IsTakenWithItsTree)
{
    for (const std::string name : { "takes", "takes/", "./takes" })
    {
        SCOPED_TRACE (name);
        std::filesystem::remove_all (folder / "results");
        const auto outcome = runHere ({ name, "-o", "results" });
        EXPECT_EQ (outcome.exitStatus, 0) << outcome.errors;
        EXPECT_EQ (outcome.errors, "");
        EXPECT_THAT (below ("results"), ElementsAre ("day two/late/three.wav", "day two/one.wav", "one.wav"));
        EXPECT_EQ (read (folder / "results/one.wav"), first);
        EXPECT_EQ (read (folder / "results/day two/one.wav"), second);
        EXPECT_EQ (read (folder / "results/day two/late/three.wav"), first);
    }
}

TEST_F (Folder, MayComeTogetherWithFiles)
{
    write (folder / "other.wav", wav16, second);
    const auto outcome = runHere ({ "other.wav", "takes", "-o", "results" });
    EXPECT_EQ (outcome.exitStatus, 0) << outcome.errors;
    EXPECT_THAT (below ("results"), ElementsAre ("day two/late/three.wav", "day two/one.wav", "one.wav", "other.wav"));
}

TEST_F (Folder, HasPicturesAndModesInItsTreeToo)
{
    const auto outcome =
        run (Call { .arguments = { "--compare", "--plot", "pictures", "takes/day two", "-o", "results" },
                    .folder = folder.path() });
    EXPECT_EQ (outcome.exitStatus, 0) << outcome.errors;
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
    EXPECT_EQ (below ("results").size(), 3U);
}

TEST_F (Folder, ReportsARecordingThatIsDamagedAndGoesOn)
{
    writeBytes (folder / "takes/damaged.wav", "RIFF....WAVEand nothing more");
    write (folder / "takes/six.wav", wav16, makeNoise (6, 100, 16));
    const auto outcome = runHere ({ "takes", "-o", "results" });
    EXPECT_EQ (outcome.exitStatus, 1);
    EXPECT_THAT (outcome.errors, HasSubstr ("takes/damaged.wav: cannot be read as audio"));
    EXPECT_THAT (outcome.errors, HasSubstr ("takes/six.wav: has 6 channels"));
    EXPECT_EQ (below ("results").size(), 3U);
}

TEST_F (Folder, PassesHiddenThingsOver)
{
    std::filesystem::create_directory (folder / "takes/.trash");
    write (folder / "takes/.trash/old.wav", wav16, first);
    write (folder / "takes/.one.wav.partial-77", wav16, first);
    const auto outcome = runHere ({ "takes", "-o", "results" });
    EXPECT_EQ (outcome.exitStatus, 0);
    EXPECT_EQ (outcome.errors, "");
    EXPECT_THAT (below ("results"), ElementsAre ("day two/late/three.wav", "day two/one.wav", "one.wav"));
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

TEST_F (Folder, MayItselfBeALink)
{
    std::filesystem::create_directory_symlink ("takes", folder / "link");
    EXPECT_EQ (runHere ({ "link", "-o", "results" }).exitStatus, 0);
    EXPECT_EQ (below ("results").size(), 3U);
}

TEST_F (Folder, DoesNotTakeItsOwnResultsForRecordings)
{
    const std::vector<std::string> call { "takes", "-o", "takes/results", "--plot", "takes/pictures/" };

    for (int i = 0; i < 3; ++i)
    {
        const auto outcome = runHere (call);
        EXPECT_EQ (outcome.exitStatus, 0) << outcome.errors;
        EXPECT_EQ (outcome.errors, "");
        EXPECT_THAT (below ("takes/results"), ElementsAre ("day two/late/three.wav", "day two/one.wav", "one.wav"));
    }

    // By another name it is the same folder.
    std::filesystem::create_directory_symlink ("takes/results", folder / "link");
    EXPECT_EQ (runHere ({ "takes", "-o", "link", "--plot", "takes/pictures" }).errors, "");
    EXPECT_EQ (below ("takes/results").size(), 3U);
}

TEST_F (Folder, IsRefusedAsTheFolderOfItsResults)
{
    const auto before = folder.contents();

    for (const std::string out : { "takes", "takes/", "./takes/../takes" })
    {
        const auto outcome = runHere ({ "takes", "-o", out });
        EXPECT_EQ (outcome.exitStatus, 2);
        EXPECT_THAT (outcome.errors, HasSubstr ("is the folder of the recordings"));
        EXPECT_EQ (folder.contents(), before);
    }
}

TEST_F (Folder, RefusesTwoRecordingsThatWouldBecomeOneResult)
{
    write (folder / "takes/one.flac", flac16, first);
    const auto before = folder.contents();
    const auto outcome = runHere ({ "takes", "-o", "results" });
    EXPECT_EQ (outcome.exitStatus, 2);
    EXPECT_THAT (outcome.errors, HasSubstr ("takes/one.flac and takes/one.wav: both would become results/one.wav"));
    EXPECT_EQ (folder.contents(), before);
}

TEST_F (Folder, WithNothingToRenderDoesNotStopTheOthers)
{
    std::filesystem::create_directory (folder / "empty");
    const auto outcome = runHere ({ "empty", "takes", "-o", "results" });
    EXPECT_EQ (outcome.exitStatus, 1);
    EXPECT_EQ (outcome.errors, "larkspire-render: empty: holds no WAV, FLAC, AIFF or Ogg file\n");
    EXPECT_EQ (below ("results").size(), 3U);
}

TEST_F (Folder, OfResultsThatIsInTheWayOfAFileFailsOnlyWhatIsBelow)
{
    std::filesystem::create_directory (folder / "results");
    writeBytes (folder / "results/day two", "in the way");
    const auto outcome = runHere ({ "takes", "-o", "results" });
    EXPECT_EQ (outcome.exitStatus, 1);
    EXPECT_EQ (linesOf (outcome.errors).size(), 2U) << outcome.errors;
    EXPECT_EQ (read (folder / "results/one.wav"), first);
}

TEST_F (Folder, RefusesOnePictureForManyRecordings)
{
    const auto before = folder.contents();

    for (const std::vector<std::string>& inputs :
         { std::vector<std::string> { "takes" },
           std::vector<std::string> { "takes/one.wav", "takes/day two/one.flac" } })
    {
        auto arguments = inputs;
        arguments.insert (arguments.end(), { "--plot", "picture.png", "-o", "results" });
        const auto outcome = runHere (arguments);
        EXPECT_EQ (outcome.exitStatus, 2);
        EXPECT_THAT (outcome.errors, HasSubstr ("picture.png: is one picture"));
        EXPECT_EQ (folder.contents(), before);
    }
}
} // namespace
