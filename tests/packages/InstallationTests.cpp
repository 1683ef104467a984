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
const std::string renderer = "/usr/bin/larkspire-render";
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

    for (const std::string path : { "/usr/lib/vst3/Quendal Larkspire.vst3/Contents/Resources/moduleinfo.json",
                                    "/usr/share/doc/quendal-larkspire/copyright",
                                    "/usr/share/man/man1/larkspire-render.1.gz",
                                    "/usr/share/metainfo/com.quendal.larkspire.metainfo.xml" })
        EXPECT_THAT (InstalledPackage::files(), testing::Contains (path));

    for (const auto& file : InstalledPackage::files())
    {
        struct stat status
        {
        };
        ASSERT_EQ (stat (file.c_str(), &status), 0) << file;
        EXPECT_EQ (status.st_mode, S_IFREG | (file == renderer ? 0755u : 0644u)) << file;
        EXPECT_EQ (status.st_uid, 0u) << file;
        EXPECT_EQ (status.st_gid, 0u) << file;
    }

    EXPECT_EQ (outputOf ("dpkg", { "--verify", "quendal-larkspire" }), "");
}

TEST_F (Installation, BringsEveryLibraryThatItsFilesAskFor)
{
    for (const auto& file : { library, vst3Library, renderer })
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

TEST_F (Installation, HasAManPageUnderTheProgramsName)
{
    EXPECT_EQ (outputOf ("man", { "--where", "larkspire-render" }), "/usr/share/man/man1/larkspire-render.1.gz\n");
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

    EXPECT_THAT (absent, testing::IsSupersetOf<fs::path> ({ library, vst3Library }));
    const auto before = outputOf ("dpkg-query", { "--list" });

    InstalledPackage package;
    EXPECT_TRUE (fs::exists (library) && fs::exists (vst3Library));
    package.remove();

    for (const auto& path : absent)
        EXPECT_FALSE (fs::exists (path)) << path;

    EXPECT_EQ (InstalledPackage::status(), "");
    EXPECT_EQ (outputOf ("dpkg-query", { "--list" }), before);
}
} // namespace
