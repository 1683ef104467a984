// SPDX-License-Identifier: AGPL-3.0-only
// A folder as an input.
#include "render/RendererTest.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <map>
#include <sys/stat.h>

namespace
{
using nlohmann::json;
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

TEST_F (Folder, CountsWhatNobodyTakesForSound)
{
    writeBytes (folder / "takes/notes.txt", "which take is best");
    writeBytes (folder / "takes/day two/cover.png", "\x89PNG\r\n\x1a\n");
    writeBytes (folder / "takes/empty", "");
    writeBytes (folder / "takes/photo.heic", std::string ("\0\0\0\x20", 4) + "ftypheic....");
    writeBytes (folder / "takes/mac.txt", "MAC addresses, caffeine and ID3 tags");

    // A text of 16 bits, which begins much like MPEG audio.
    writeBytes (folder / "takes/wide.txt", "\xff\xfeh\1i\1");

    // Headers of MPEG audio with a version, a bit rate and a sample rate that there are not.
    writeBytes (folder / "takes/1.bin", "\xff\xeb\x90...");
    writeBytes (folder / "takes/2.bin", "\xff\xfb\xf0...");
    writeBytes (folder / "takes/3.bin", "\xff\xfb\x9c...");
    ASSERT_EQ (mkfifo ((folder / "takes/pipe").c_str(), 0600), 0);
    std::filesystem::create_symlink ("nowhere", folder / "takes/dangling");
    const auto outcome = runHere ({ "--json", "takes", "-o", "results" });
    EXPECT_EQ (outcome.exitStatus, 0);
    EXPECT_EQ (outcome.errors, "larkspire-render: 11 files without sound left out\n");
    EXPECT_EQ (below ("results"), threeResults);
    const auto document = json::parse (outcome.output);
    EXPECT_EQ (document.at ("files_without_sound"), 11);
    EXPECT_EQ (document.at ("left_out"), json::array());
}

TEST_F (Folder, NamesSoundThatCannotBeReadAndFails)
{
    const auto convert = [] (const std::string& name) {
        return "; convert it first: ffmpeg -i 'takes/" + name + "' 'takes/" + name.substr (0, name.find ('.'))
               + ".wav'";
    };
    std::map<std::string, std::string> reasons;
    const auto add = [&] (const std::string& name, const std::string& bytes, const std::string& reason)
    {
        writeBytes (folder / ("takes/" + name), bytes);
        reasons["takes/" + name] = reason;
    };

    add ("1.m4a", std::string ("\0\0\0\x20", 4) + "ftypM4A isomiso2", "is MPEG-4 audio" + convert ("1.m4a"));
    add ("1b.m4a", std::string ("\0\0\0\x20", 4) + "ftypisomisomiso2", "is MPEG-4 audio" + convert ("1b.m4a"));
    add ("2.tta", "TTA1" + std::string (20, '\0'), "is True Audio" + convert ("2.tta"));
    add ("3 without ending", "wvpk" + std::string (200, 'x'), "is WavPack audio" + convert ("3 without ending"));
    add ("4.aac", "\xff\xf1\x50" + std::string (200, 'x'), "is AAC audio" + convert ("4.aac"));
    add ("5.dsf", "DSD " + std::string (20, '\0'), "is DSD audio" + convert ("5.dsf"));
    add ("6.wma", "\x30\x26\xb2\x75" + std::string (20, '\0'), "is Windows Media audio" + convert ("6.wma"));
    add ("7.wav", "which take is best", "is not a WAV, FLAC, AIFF, MP3, Ogg, AU, CAF or W64 file");
    add ("8.wav", "", "is empty");
    std::filesystem::create_symlink ("nowhere", folder / "takes/9.wav");
    reasons["takes/9.wav"] = "cannot be read: No such file or directory";
    std::filesystem::create_symlink ("A.wav", folder / "takes/A.wav");
    reasons["takes/A.wav"] = "cannot be read: Too many levels of symbolic links";
    ASSERT_EQ (mkfifo ((folder / "takes/B.wav").c_str(), 0600), 0);
    reasons["takes/B.wav"] = "is not a regular file";

    const auto outcome = runHere ({ "--json", "takes", "-o", "results" });
    EXPECT_EQ (outcome.exitStatus, 1);
    EXPECT_EQ (below ("results"), threeResults);
    const auto leftOut = json::parse (outcome.output).at ("left_out");
    ASSERT_EQ (leftOut.size(), reasons.size());
    std::string lines;

    for (std::size_t i = 0; const auto& [path, reason] : reasons)
    {
        EXPECT_EQ (leftOut[i], (json { { "path", path }, { "reason", reason }, { "is_error", true } }));
        lines += "larkspire-render: " + path + ": " + reason + "\n";
        ++i;
    }

    EXPECT_EQ (outcome.errors, lines);
}

TEST_F (Folder, NamesFilmsWithoutFailing)
{
    const auto extract = [] (const std::string& name)
    { return "; extract its sound first: ffmpeg -i 'takes/" + name + "' 'takes/film.wav'\n"; };
    writeBytes (folder / "takes/film.avi", "RIFF....AVI LIST");
    writeBytes (folder / "takes/film.mkv", "\x1a\x45\xdf\xa3" + std::string (20, '\0'));
    writeBytes (folder / "takes/film.mp4", std::string ("\0\0\0\x20", 4) + "ftypisom....");
    const auto outcome = runHere ({ "--json", "takes", "-o", "results" });
    EXPECT_EQ (outcome.exitStatus, 0);
    EXPECT_EQ (outcome.errors,
               "larkspire-render: takes/film.avi: left out: is a film" + extract ("film.avi")
                   + "larkspire-render: takes/film.mkv: left out: is a film" + extract ("film.mkv")
                   + "larkspire-render: takes/film.mp4: left out: is a film" + extract ("film.mp4"));
    EXPECT_EQ (json::parse (outcome.output).at ("left_out").at (0).at ("is_error"), false);
    EXPECT_EQ (below ("results"), threeResults);
}

TEST_F (Folder, ThatCannotBeReadToItsEndIsAnErrorAndRenderedInNoPart)
{
    // Where the file system names the entries in another order, more or fewer of them are read before it breaks.
    writeBytes (folder / "takes/day two/breaks here", "");
    const auto outcome = run (Call {
        .arguments = { "--json", "takes", "-o", "results" },
        .environment = { { "LD_PRELOAD", paths::brokenFolder() }, { "ASAN_OPTIONS", "verify_asan_link_order=0" } },
        .folder = folder.path() });
    EXPECT_EQ (outcome.exitStatus, 1);
    EXPECT_EQ (outcome.errors, "larkspire-render: takes/day two: cannot be read: Input/output error\n");
    EXPECT_THAT (below ("results"), ElementsAre ("one.wav"));
    EXPECT_EQ (json::parse (outcome.output).at ("left_out").at (0).at ("path"), "takes/day two");
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

    // A link to a file is as good as the file.
    std::filesystem::create_symlink (folder / "elsewhere/far.wav", folder / "takes/near.wav");
    const auto outcome = runHere ({ "takes", "-o", "results" });
    EXPECT_EQ (outcome.exitStatus, 0) << outcome.errors;
    const std::string notFollowed = ": left out: is a link to a folder, which is not followed\n";
    EXPECT_EQ (outcome.errors,
               "larkspire-render: takes/day two/up" + notFollowed + "larkspire-render: takes/out" + notFollowed);
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

TEST_F (Folder, RendersAllButTwoRecordingsThatWouldBecomeOneResult)
{
    writeNoise ("takes/one.flac");
    const auto outcome = runHere ({ "--json", "takes", "-o", "results" });
    EXPECT_EQ (outcome.exitStatus, 1);
    EXPECT_EQ (outcome.errors,
               "larkspire-render: takes/one.flac: would become results/one.wav, and so would takes/one.wav\n"
               "larkspire-render: takes/one.wav: would become results/one.wav, and so would takes/one.flac\n");
    EXPECT_THAT (below ("results"), ElementsAre ("day two/late/three.wav", "day two/one.wav"));
    const auto results = json::parse (outcome.output).at ("results");
    ASSERT_EQ (results.size(), 4U);
    EXPECT_THAT (results[2].at ("error").get<std::string>(), HasSubstr ("and so would takes/one.wav"));
}

TEST_F (Folder, WithNothingToRenderDoesNotStopTheOthers)
{
    std::filesystem::create_directory (folder / "empty");
    const auto outcome = runHere ({ "empty", "takes", "-o", "results" });
    EXPECT_EQ (outcome.exitStatus, 1);
    EXPECT_EQ (outcome.errors, "larkspire-render: empty: holds no WAV, FLAC, AIFF, MP3, Ogg, AU, CAF or W64 file\n");
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
