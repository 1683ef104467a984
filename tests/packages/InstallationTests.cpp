// SPDX-License-Identifier: AGPL-3.0-only
// The Debian package on this machine: put on, used as people use it, and taken off.
#include "daws/Ardour.h"
#include "packages/InstalledPackage.h"
#include "support/KnobPosition.h"
#include "support/Paths.h"
#include "support/PluginUnderTest.h"
#include "support/Recording.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <sys/stat.h>

namespace
{
using testing::HasSubstr;
namespace fs = std::filesystem;

const std::string library = "/usr/lib/vst/Quendal Larkspire.so";
const std::string bundle = "/usr/lib/vst3/Quendal Larkspire.vst3";
const std::string vst3Library = bundle + "/Contents/x86_64-linux/Quendal Larkspire.so";
const std::string lv2Library = "/usr/lib/lv2/larkspire.lv2/larkspire.so";
const std::string renderer = "/usr/bin/larkspire-render";
const std::string microphone = "/usr/bin/larkspire-microphone";
const std::string voice = "/usr/share/sounds/alsa/Front_Center.wav";

class Installation : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        reason = InstalledPackage::reasonAgainst();

        if (reason.empty())
            package = std::make_unique<InstalledPackage>();
    }

    static void TearDownTestSuite() { package.reset(); }

    void SetUp() override
    {
        if (! reason.empty())
            GTEST_SKIP() << "not installed: " << reason;
    }

    static inline std::string reason;
    static inline std::unique_ptr<InstalledPackage> package;
};

TEST_F (Installation, PutsEveryFileInItsPlaceForEverybody)
{
    EXPECT_EQ (InstalledPackage::status(), "installed");

    for (const std::string path : { "/usr/lib/lv2/larkspire.lv2/manifest.ttl",
                                    "/usr/lib/vst3/Quendal Larkspire.vst3/Contents/Resources/moduleinfo.json",
                                    "/usr/share/doc/quendal-larkspire/copyright",
                                    "/usr/share/man/man1/larkspire-microphone.1.gz",
                                    "/usr/share/man/man1/larkspire-render.1.gz",
                                    "/usr/share/metainfo/com.quendal.larkspire.metainfo.xml" })
        EXPECT_THAT (InstalledPackage::files(), testing::Contains (path));

    for (const auto& file : InstalledPackage::files())
    {
        struct stat status
        {
        };
        ASSERT_EQ (stat (file.c_str(), &status), 0) << file;
        EXPECT_EQ (status.st_mode, S_IFREG | (file == renderer || file == microphone ? 0755u : 0644u)) << file;
        EXPECT_EQ (status.st_uid, 0u) << file;
        EXPECT_EQ (status.st_gid, 0u) << file;
    }

    EXPECT_EQ (outputOf ("dpkg", { "--verify", "quendal-larkspire" }), "");
}

TEST_F (Installation, BringsEveryLibraryThatItsFilesAskFor)
{
    for (const auto& file : { library, vst3Library, lv2Library, renderer })
    {
        const auto libraries = outputOf ("ldd", { file });
        EXPECT_THAT (libraries, HasSubstr ("libc.so.6 => "));
        EXPECT_THAT (libraries, testing::Not (HasSubstr ("not found")));
    }
}

TEST_F (Installation, HasARendererThatUsesTheInstalledLibraryAndNothingOfTheBuild)
{
    const TemporaryFolder folder;
    const auto outcome =
        run ({ .arguments = { "--mode", "Gentle", voice, "-o", "result.wav" },
               .program = renderer,
               .environment = { { "DISPLAY", ":none" }, { "LD_DEBUG", "files" }, { "HOME", folder.path() } },
               .inheritsEnvironment = false,
               .folder = folder.path() });
    ASSERT_EQ (outcome.exitStatus, 0) << outcome.errors;
    EXPECT_THAT (outcome.errors, HasSubstr ("calling init: " + library));
    EXPECT_THAT (outcome.errors, testing::Not (HasSubstr (paths::source())));

    const auto built = run ({ "--plugin", paths::plugin(), "--mode", "Gentle", voice, "-o", folder / "built.wav" });
    ASSERT_EQ (built.exitStatus, 0) << built.errors;
    EXPECT_TRUE (bytesOf (folder / "result.wav") == bytesOf (folder / "built.wav"));
}

TEST_F (Installation, IsFoundByArdourWithoutBeingToldWhere)
{
    for (const auto format : vstFormats)
    {
        const Ardour ardour (format, format == Format::vst2 ? library : bundle);
        ardour.makeSession ("installed", { .channels = { std::vector<float> (4800) }, .parameter = knobPosition (3) });
        const auto report = ardour.openSession ("installed");
        EXPECT_THAT (report, HasSubstr ("name: Quendal Larkspire\n")) << format;
        EXPECT_THAT (report, HasSubstr ("parameter: Mode\n")) << format;
        EXPECT_THAT (report, HasSubstr ("value: 0.3333")) << format;
    }
}

TEST_F (Installation, IsFoundByLv2HostsWithoutBeingToldWhere)
{
    const TemporaryFolder home;
    const auto found = run ({ .arguments = {},
                              .program = "lv2ls",
                              .environment = { { "HOME", home.path() }, { "PATH", "/usr/bin:/bin" } },
                              .inheritsEnvironment = false,
                              .folder = home.path() });
    EXPECT_THAT (linesOf (found.output),
                 testing::IsSupersetOf ({ "urn:quendal:larkspire:stereo", "urn:quendal:larkspire:mono" }));
}

TEST_F (Installation, PutsThePluginOnTheMicrophoneFromWhereItIs)
{
    const TemporaryFolder home;
    const auto microphoneDoes = [&home] (const std::string& option)
    {
        return run ({ .arguments = { option },
                      .program = microphone,
                      .environment = { { "HOME", home.path() }, { "PATH", "/usr/bin:/bin" } },
                      .inheritsEnvironment = false,
                      .folder = home.path() });
    };
    const auto outcome = microphoneDoes ("Gentle");
    EXPECT_EQ (outcome.exitStatus, 0) << outcome.errors;
    EXPECT_THAT (outcome.output, testing::StartsWith ("Larkspire microphone: Gentle, "));
    EXPECT_THAT (microphoneDoes ("--status").output, HasSubstr ("\nPlug-in:    found\n"));
}

TEST_F (Installation, HasAManPageUnderEachProgramsName)
{
    for (const std::string program : { "larkspire-render", "larkspire-microphone" })
        EXPECT_EQ (outputOf ("man", { "--where", program }), "/usr/share/man/man1/" + program + ".1.gz\n");
}

TEST (Removal, LeavesTheMachineAsItWas)
{
    if (const auto reason = InstalledPackage::reasonAgainst(); ! reason.empty())
        GTEST_SKIP() << "not installed: " << reason;

    // Folders that the package shares with others were there before, or go with it.
    std::vector<fs::path> absent;

    for (const auto& file : InstalledPackage::files())
        for (auto path = file; path != path.root_path(); path = path.parent_path())
            if (! fs::exists (path))
                absent.push_back (path);

    EXPECT_THAT (absent, testing::IsSupersetOf<fs::path> ({ library, vst3Library, lv2Library, microphone }));
    const auto before = outputOf ("dpkg-query", { "--list" });

    InstalledPackage package;

    for (const auto& file : { library, vst3Library, lv2Library, microphone })
        EXPECT_TRUE (fs::exists (file)) << file;

    package.remove();

    for (const auto& path : absent)
        EXPECT_FALSE (fs::exists (path)) << path;

    EXPECT_EQ (InstalledPackage::status(), "");
    EXPECT_EQ (outputOf ("dpkg-query", { "--list" }), before);
}
} // namespace
