// SPDX-License-Identifier: AGPL-3.0-only
// The renderer as a host: where it finds the plug-in, which libraries it refuses, and how it treats an instance.
#include "support/Child.h"
#include "support/Paths.h"
#include "support/Recording.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace
{
using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* libraryName = "Quendal Larkspire.so";

class Hosting : public testing::Test
{
protected:
    Hosting() { write (folder / "voice.wav", wav16, recording); }

    /** Renders voice.wav to result.wav with the stand-in and gives the lines that it wrote down. */
    std::vector<std::string> logOf (std::vector<std::string> further)
    {
        further.insert (further.end(),
                        { "--plugin", paths::standIn(), folder / "voice.wav", "-o", folder / "result.wav" });
        outcome = run (
            Call { .arguments = std::move (further), .environment = { { "LARKSPIRE_STAND_IN_LOG", folder / "log" } } });
        return linesOf (bytesOf (folder / "log"));
    }

    /** Whether a call with the given program and environment ended up with the stand-in, which inverts. */
    bool usesStandIn (const std::string& program, const std::map<std::string, std::string>& environment)
    {
        const auto result =
            run (Call { .arguments = { "--mode", "bypass", folder / "voice.wav", "-o", folder / "r.wav" },
                        .program = program,
                        .environment = environment });
        EXPECT_EQ (result.exitStatus, 0) << result.errors;
        return result.exitStatus == 0 && read (folder / "r.wav").samples.at (200) == -recording.samples.at (200) / 2;
    }

    /** Puts the stand-in into a folder under the plug-in's name. */
    void installStandIn (const std::string& place)
    {
        std::filesystem::create_directories (folder / place);
        std::filesystem::copy_file (paths::standIn(), std::filesystem::path (folder / place) / libraryName);
    }

    TemporaryFolder folder;
    Recording recording = makeNoise (1, 1000, 16);
    Outcome outcome;
};

TEST_F (Hosting, TreatsAnInstanceAsHostsDo)
{
    // The first instance only shows that the library is the right one.
    EXPECT_THAT (logOf ({ "--mode", "Powerful", "--block", "400" }),
                 ElementsAre ("new",
                              "close",
                              "new",
                              "open",
                              "arrangement in type 0 channels 1, out type 0 channels 1",
                              "rate 48000",
                              "block 400",
                              "parameter 0 0.333333",
                              "mains 1",
                              "host version 2400",
                              "host rate 48000",
                              "host block 400",
                              "host level 4",
                              "host vendor Quendal",
                              "host product larkspire-render",
                              "start",
                              "process 400 with 4 buffers",
                              "process 400 with 4 buffers",
                              "process 200 with 4 buffers",
                              "stop",
                              "mains 0",
                              "host version 2400",
                              "host rate 48000",
                              "host block 400",
                              "host level 4",
                              "host vendor Quendal",
                              "host product larkspire-render",
                              "close"));
    EXPECT_EQ (outcome.exitStatus, 0) << outcome.errors;
}

TEST_F (Hosting, SaysStereoWhereTheRecordingIs)
{
    recording = makeNoise (2, 1000, 16, 1, 96000);
    write (folder / "voice.wav", wav16, recording);
    const auto log = logOf ({});
    EXPECT_THAT (log, testing::Contains ("arrangement in type 1 channels 2, out type 1 channels 2"));
    EXPECT_THAT (log, testing::Contains ("rate 96000"));
    EXPECT_THAT (log, testing::Contains ("process 1000 with 4 buffers"));
}

TEST_F (Hosting, SetsTheKnobToTheNinthOfTheMode)
{
    for (const auto& [mode, value] : { std::pair { "bypass", "0.000000" },
                                       std::pair { "Gentle", "0.111111" },
                                       std::pair { "Medium", "0.222222" },
                                       std::pair { "Powerful", "0.333333" } })
    {
        std::filesystem::remove (folder / "log");
        EXPECT_THAT (logOf ({ "--mode", mode }), testing::Contains (std::string ("parameter 0 ") + value));
    }
}

TEST_F (Hosting, GivesEveryFileAnInstanceOfItsOwn)
{
    write (folder / "other.wav", wav16, makeNoise (2, 100, 16));
    outcome = run (Call { .arguments = { "--plugin",
                                         paths::standIn(),
                                         folder / "voice.wav",
                                         folder / "other.wav",
                                         "-o",
                                         folder / "results" },
                          .environment = { { "LARKSPIRE_STAND_IN_LOG", folder / "log" } } });
    EXPECT_EQ (outcome.exitStatus, 0) << outcome.errors;
    const auto log = linesOf (bytesOf (folder / "log"));
    EXPECT_EQ (std::count (log.begin(), log.end(), "open"), 2);
    EXPECT_EQ (std::count (log.begin(), log.end(), "new"), 3);
    EXPECT_EQ (std::count (log.begin(), log.end(), "close"), 3);
}

TEST_F (Hosting, FindsThePluginBesideTheProgramFirst)
{
    std::filesystem::create_directory (folder / "programs");
    std::filesystem::copy_file (paths::renderer(), folder / "programs/larkspire-render");
    installStandIn ("programs");
    std::filesystem::create_directories (folder / "home/.vst");
    std::filesystem::copy_file (paths::plugin(), std::filesystem::path (folder / "home/.vst") / libraryName);
    EXPECT_TRUE (usesStandIn (folder / "programs/larkspire-render", { { "HOME", folder / "home" } }));

    // Also where it was called through a link.
    std::filesystem::create_symlink (folder / "programs/larkspire-render", folder / "link");
    EXPECT_TRUE (usesStandIn (folder / "link", { { "HOME", folder / "home" } }));
}

TEST_F (Hosting, FindsThePluginInTheHomeFolderBeforeTheFoldersOfTheEnvironment)
{
    std::filesystem::copy_file (paths::renderer(), folder / "render");
    installStandIn ("home/.vst");
    std::filesystem::create_directory (folder / "real");
    std::filesystem::copy_file (paths::plugin(), std::filesystem::path (folder / "real") / libraryName);
    EXPECT_TRUE (usesStandIn (folder / "render", { { "HOME", folder / "home" }, { "VST_PATH", folder / "real" } }));
    EXPECT_FALSE (usesStandIn (folder / "render", { { "HOME", folder / "none" }, { "VST_PATH", folder / "real" } }));
}

TEST_F (Hosting, FindsThePluginInAnyFolderOfTheEnvironment)
{
    std::filesystem::copy_file (paths::renderer(), folder / "render");
    installStandIn ("second");
    EXPECT_TRUE (usesStandIn (folder / "render",
                              { { "HOME", "" }, { "VST_PATH", (folder / "first") + "::" + (folder / "second") } }));
}

TEST_F (Hosting, SaysSoIfThereIsNoPlugin)
{
    if (std::filesystem::exists (std::filesystem::path ("/usr/lib/vst") / libraryName))
        GTEST_SKIP() << "the plug-in is installed for all users of this machine";

    std::filesystem::copy_file (paths::renderer(), folder / "render");
    const auto before = folder.contents();
    const auto result = run (Call { .arguments = { folder / "voice.wav", "-o", folder / "results/" },
                                    .program = folder / "render",
                                    .environment = { { "HOME", folder / "none" }, { "VST_PATH", "" } } });
    EXPECT_EQ (result.exitStatus, 1);
    EXPECT_EQ (linesOf (result.errors).size(), 1) << result.errors;
    EXPECT_THAT (result.errors, HasSubstr ("--plugin"));
    EXPECT_EQ (folder.contents(), before);
}

TEST_F (Hosting, TakesAPluginPathWithoutASlashForAFileOfTheWorkingFolder)
{
    std::filesystem::copy_file (paths::standIn(), folder / "stand-in.so");
    const auto result = run (
        Call { .arguments = { "--plugin", "stand-in.so", "voice.wav", "-o", "result.wav" }, .folder = folder.path() });
    EXPECT_EQ (result.exitStatus, 0) << result.errors;
    EXPECT_EQ (read (folder / "result.wav").samples.at (200), -recording.samples.at (200) / 2);
}

TEST_F (Hosting, RefusesWhatIsNotThePlugin)
{
    writeBytes (folder / "text.so", "This is no library, however long the text may be. " + std::string (5000, '.'));
    std::filesystem::create_directory (folder / "folder.so");
    const auto before = folder.contents();

    struct Case
    {
        std::string plugin;
        std::string fault;
        std::string reason;
    };

    const std::vector<Case> cases {
        { folder / "missing.so", "", "cannot be loaded: No such file or directory" },
        { folder / "folder.so", "", "cannot be loaded: it is a folder" },
        { folder / "text.so", "", "cannot be loaded: invalid ELF header" },
        { paths::otherLibrary(), "", "is not a VST 2 plug-in" },
        { paths::standIn(), "nothing", "gives no plug-in" },
        { paths::standIn(), "magic", "is not a VST 2 plug-in" },
        { paths::standIn(), "identity", "is another plug-in, not Quendal Larkspire" },
        { paths::standIn(), "channels", "does not take 1 channels" },
    };

    for (const auto& [plugin, fault, reason] : cases)
    {
        SCOPED_TRACE (reason);
        const auto result =
            run (Call { .arguments = { "--plugin", plugin, folder / "voice.wav", "-o", folder / "result.wav" },
                        .environment = { { "LARKSPIRE_STAND_IN_FAULT", fault } } });
        EXPECT_EQ (result.exitStatus, 1);
        EXPECT_EQ (linesOf (result.errors).size(), 1) << result.errors;
        EXPECT_THAT (result.errors, testing::StartsWith ("larkspire-render: " + plugin + ": "));
        EXPECT_THAT (result.errors, testing::EndsWith (": " + reason + "\n"));
        EXPECT_EQ (folder.contents(), before);
    }
}
} // namespace
