// SPDX-License-Identifier: AGPL-3.0-only
// The renderer as a host: where it finds the plug-in, which libraries it refuses, and how it treats an instance.
#include "render/RendererTest.h"
#include "support/FirstMatch.h"
#include "support/Paths.h"

#include <algorithm>
#include <filesystem>

namespace
{
using testing::ElementsAre;
using testing::HasSubstr;

const std::string libraryName = "Quendal Larkspire.so";

class Hosting : public RendererTest
{
protected:
    /** Renders with the stand-in and gives the lines that it wrote down. */
    std::vector<std::string> logOf (std::vector<std::string> arguments)
    {
        arguments.insert (arguments.begin(), { "--plugin", paths::standIn(), "-o", "results/" });
        std::filesystem::remove (folder / "log");
        const auto outcome = run (Call { .arguments = arguments,
                                         .environment = { { "LARKSPIRE_STAND_IN_LOG", folder / "log" } },
                                         .folder = folder.path() });
        EXPECT_EQ (outcome.exitStatus, 0) << outcome.errors;
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

    /** Puts a library into a folder under the plug-in's name. */
    void install (const std::string& library, const std::string& place) const
    {
        std::filesystem::create_directories (folder / place);
        std::filesystem::copy_file (library, folder / (place + "/" + libraryName));
    }

    Recording recording = writeNoise ("voice.wav", 1, 1000);
};

// Each has the same name on every system of today. The C++ runtime is inside.
TEST (RendererFile, NeedsTheseLibrariesAndNoOthers)
{
    const auto described = outputOf (Call { .arguments = { "-p", paths::renderer() }, .program = "objdump" });
    EXPECT_THAT (allFound (described, "NEEDED +(.+)"),
                 testing::UnorderedElementsAre ("libsndfile.so.1",
                                                "libmpg123.so.0",
                                                "libogg.so.0",
                                                "libsoxr.so.0",
                                                "libebur128.so.1",
                                                "libpng16.so.16",
                                                "libfontconfig.so.1",
                                                "libfreetype.so.6",
                                                "libz.so.1",
                                                "libm.so.6",
                                                "libc.so.6",
                                                "ld-linux-x86-64.so.2"));
    EXPECT_THAT (described, testing::Not (testing::ContainsRegex ("RPATH|RUNPATH")));
}

TEST_F (Hosting, TreatsAnInstanceAsHostsDo)
{
    // The first instance only shows that the library is the right one.
    EXPECT_THAT (logOf ({ "--mode", "Powerful", "--block", "400", "voice.wav" }),
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
}

TEST_F (Hosting, SaysStereoWhereTheRecordingIs)
{
    writeNoise ("voice.wav", 2, 1000, 1, 96000);
    EXPECT_THAT (logOf ({ "voice.wav" }),
                 testing::IsSupersetOf ({ "arrangement in type 1 channels 2, out type 1 channels 2",
                                          "rate 96000",
                                          "process 1000 with 4 buffers" }));
}

TEST_F (Hosting, SetsTheKnobToTheNinthOfTheMode)
{
    for (const auto& [mode, value] : { std::pair { "bypass", "0.000000" },
                                       std::pair { "Gentle", "0.111111" },
                                       std::pair { "Medium", "0.222222" },
                                       std::pair { "Powerful", "0.333333" } })
        EXPECT_THAT (logOf ({ "--mode", mode, "voice.wav" }), testing::Contains (std::string ("parameter 0 ") + value));
}

TEST_F (Hosting, GivesEveryFileAnInstanceOfItsOwn)
{
    writeNoise ("other.wav", 2);
    const auto log = logOf ({ "voice.wav", "other.wav" });
    EXPECT_EQ (std::ranges::count (log, "open"), 2);
    EXPECT_EQ (std::ranges::count (log, "new"), 3);
    EXPECT_EQ (std::ranges::count (log, "close"), 3);
}

TEST_F (Hosting, FindsThePluginBesideTheProgramFirst)
{
    install (paths::standIn(), "programs");
    install (paths::plugin(), "home/.vst");
    std::filesystem::copy_file (paths::renderer(), folder / "programs/larkspire-render");
    std::filesystem::create_symlink (folder / "programs/larkspire-render", folder / "link");

    for (const std::string program : { "programs/larkspire-render", "link" })
        EXPECT_TRUE (usesStandIn (folder / program, { { "HOME", folder / "home" } })) << program;
}

TEST_F (Hosting, FindsThePluginInTheHomeFolderAndThenInAnyFolderOfTheEnvironment)
{
    std::filesystem::copy_file (paths::renderer(), folder / "render");
    install (paths::standIn(), "home/.vst");
    install (paths::standIn(), "second");
    install (paths::plugin(), "real");

    for (const auto& [home, folders, expected] :
         { std::tuple { folder / "home", folder / "real", true },
           { folder / "none", folder / "real", false },
           { std::string(), (folder / "first") + "::" + (folder / "second"), true } })
        EXPECT_EQ (usesStandIn (folder / "render", { { "HOME", home }, { "VST_PATH", folders } }), expected)
            << home << ", " << folders;
}

TEST_F (Hosting, FindsThePluginWhereItWasInstalledWithTheProgram)
{
    install (paths::standIn(), "prefix/lib/vst");
    install (paths::plugin(), "real");
    std::filesystem::create_directory (folder / "prefix/bin");
    std::filesystem::copy_file (paths::renderer(), folder / "prefix/bin/larkspire-render");
    const auto program = folder / "prefix/bin/larkspire-render";
    EXPECT_TRUE (usesStandIn (program, { { "HOME", folder / "none" }, { "VST_PATH", "" } }));
    EXPECT_FALSE (usesStandIn (program, { { "HOME", folder / "none" }, { "VST_PATH", folder / "real" } }))
        << "the user's own folders come first";
}

TEST_F (Hosting, SaysSoIfThereIsNoPlugin)
{
    if (std::filesystem::exists (std::filesystem::path ("/usr/lib/vst") / libraryName))
        GTEST_SKIP() << "the plug-in is installed for all users of this machine";

    std::filesystem::copy_file (paths::renderer(), folder / "render");
    EXPECT_THAT (expectFailure (1,
                                Call { .arguments = { folder / "voice.wav", "-o", folder / "results/" },
                                       .program = folder / "render",
                                       .environment = { { "HOME", folder / "none" }, { "VST_PATH", "" } } }),
                 HasSubstr ("--plugin"));
}

TEST_F (Hosting, TakesAPluginPathWithoutASlashForAFileOfTheWorkingFolder)
{
    std::filesystem::copy_file (paths::standIn(), folder / "stand-in.so");
    expectSuccess ({ "--plugin", "stand-in.so", "voice.wav", "-o", "result.wav" });
    EXPECT_EQ (read (folder / "result.wav").samples.at (200), -recording.samples.at (200) / 2);
}

TEST_F (Hosting, RefusesWhatIsNotThePlugin)
{
    writeBytes (folder / "text.so", "This is no library, however long the text may be. " + std::string (5000, '.'));
    std::filesystem::create_directory (folder / "folder.so");

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
        EXPECT_THAT (expectFailure (
                         1,
                         Call { .arguments = { "--plugin", plugin, folder / "voice.wav", "-o", folder / "result.wav" },
                                .environment = { { "LARKSPIRE_STAND_IN_FAULT", fault } } }),
                     testing::AllOf (testing::StartsWith (plugin + ": "), testing::EndsWith (": " + reason + "\n")));
}
} // namespace
