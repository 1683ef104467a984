// SPDX-License-Identifier: AGPL-3.0-only
// make install and make uninstall, in a project of the test's own whose build is a few words.
#include "support/Child.h"
#include "support/Paths.h"
#include "support/Recording.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

namespace
{
using testing::ElementsAre;
namespace fs = std::filesystem;

const std::string library = "Quendal Larkspire.so";
const std::string bundle = "Quendal Larkspire.vst3";
const std::string bundledLibrary = bundle + "/Contents/x86_64-linux/" + library;
const std::string description = bundle + "/Contents/Resources/moduleinfo.json";
const std::string lv2Bundle = "larkspire.lv2";
const std::string lv2Library = lv2Bundle + "/larkspire.so";
const std::string manifest = lv2Bundle + "/manifest.ttl";
const std::string ports = lv2Bundle + "/larkspire.ttl";

/** What a build has to have made. */
const std::array built { library, bundledLibrary, description, lv2Library, ports, manifest };

/** The same where it is installed in a home folder. */
const std::array places { ".vst/" + library,    ".vst3/" + bundledLibrary, ".vst3/" + description,
                          ".lv2/" + lv2Library, ".lv2/" + ports,           ".lv2/" + manifest };

constexpr std::size_t entries = 14; // files and folders that an install makes in a home folder

class InstallTarget : public testing::Test
{
protected:
    InstallTarget()
    {
        fs::create_directories (project / "scripts");
        fs::create_directory (home);
        fs::copy_file (paths::source ("Makefile"), project / "Makefile");
        fs::copy_file (paths::source ("scripts/install"), project / "scripts/install");
        build ("new");
    }

    /** Puts files into the project as a build would, with a text in all of them. */
    void build (const std::string& text) const
    {
        for (const auto& file : built)
            put (project / "dist/linux" / file, text);
    }

    static void put (const fs::path& file, const std::string& text)
    {
        fs::create_directories (file.parent_path());
        writeBytes (file, text);
    }

    /** Calls make in the project for somebody who has set these variables and no others. */
    Outcome make (const std::string& target,
                  std::map<std::string, std::string> variables = {},
                  std::optional<unsigned long> largestFile = {}) const
    {
        variables["HOME"] = home;
        variables["PATH"] = "/usr/bin:/bin";
        return run ({ .arguments = { "--no-print-directory", target },
                      .program = "make",
                      .environment = variables,
                      .inheritsEnvironment = false,
                      .folder = project,
                      .largestFile = largestFile });
    }

    std::string installed (const std::string& file) const { return bytesOf (home / file); }

    const TemporaryFolder folder;
    const fs::path project = folder / "project";
    const fs::path home = folder / "a home";
};

TEST_F (InstallTarget, PutsEachFormatWhereHostsLook)
{
    const auto outcome = make ("install");
    EXPECT_EQ (outcome.exitStatus, 0) << outcome.errors;
    EXPECT_EQ (outcome.output,
               "installed " + (home / ".vst" / library).string() + "\ninstalled " + (home / ".vst3" / bundle).string()
                   + "\ninstalled " + (home / ".lv2" / lv2Bundle).string() + "\n");
    EXPECT_THAT (contentsOf (home),
                 ElementsAre (".lv2",
                              ".lv2/" + lv2Bundle,
                              ".lv2/" + lv2Library,
                              ".lv2/" + ports,
                              ".lv2/" + manifest,
                              ".vst",
                              ".vst/" + library,
                              ".vst3",
                              ".vst3/" + bundle,
                              ".vst3/" + bundle + "/Contents",
                              ".vst3/" + bundle + "/Contents/Resources",
                              ".vst3/" + description,
                              ".vst3/" + bundle + "/Contents/x86_64-linux",
                              ".vst3/" + bundledLibrary));

    for (const auto& file : places)
        EXPECT_EQ (installed (file), "new") << file;
}

TEST_F (InstallTarget, PutsThemIntoTheFirstFolderOfEachPath)
{
    const std::string vst = folder / "one", vst3 = folder / "two", lv2 = folder / "three";
    const auto outcome = make (
        "install", { { "VST_PATH", vst + ":/usr/lib/vst" }, { "VST3_PATH", ":" + vst3 + ":/" }, { "LV2_PATH", lv2 } });
    EXPECT_EQ (outcome.exitStatus, 0) << outcome.errors;
    EXPECT_THAT (contentsOf (vst), ElementsAre (library));
    EXPECT_THAT (contentsOf (vst3), testing::Contains (bundledLibrary));
    EXPECT_THAT (contentsOf (lv2), testing::Contains (manifest));
    EXPECT_THAT (contentsOf (home), testing::IsEmpty());
}

TEST_F (InstallTarget, TakesEmptyPathsForNone)
{
    EXPECT_EQ (make ("install", { { "VST_PATH", "" }, { "VST3_PATH", ":" }, { "LV2_PATH", "::" } }).exitStatus, 0);

    for (const auto& file : places)
        EXPECT_EQ (installed (file), "new") << file;
}

TEST_F (InstallTarget, ReplacesOlderBundlesAsAWhole)
{
    for (const auto& file : places)
        put (home / file, "old");

    put (home / ".vst3" / bundle / "Contents/x86_64-linux/of another version", "old");
    put (home / ".lv2" / lv2Bundle / "of another version", "old");

    // What an install that was killed leaves: these in its way as well.
    put (home / ".vst3/.Quendal Larkspire.vst3.new/Contents/half", "old");
    put (home / ".vst3/.Quendal Larkspire.vst3.old/Contents/half", "old");
    put (home / ".lv2/.larkspire.lv2.new/half", "old");
    put (home / ".lv2/.larkspire.lv2.old/half", "old");
    ASSERT_EQ (make ("install").exitStatus, 0);

    EXPECT_EQ (contentsOf (home).size(), entries) << "those of the new one and no others";

    for (const auto& file : places)
        EXPECT_EQ (installed (file), "new") << file;
}

TEST_F (InstallTarget, PutsTheBundleInThePlaceOfALinkWhereverThatLeads)
{
    put (folder / "elsewhere/Contents/moduleinfo.json", "old");
    fs::create_directory (home / ".vst3");

    for (const std::string target : { "elsewhere", "nowhere" })
    {
        fs::remove_all (home / ".vst3" / bundle);
        fs::create_directory_symlink (folder / target, home / ".vst3" / bundle);
        ASSERT_EQ (make ("install").exitStatus, 0) << target;
        EXPECT_FALSE (fs::is_symlink (home / ".vst3" / bundle)) << target;
        EXPECT_EQ (installed (".vst3/" + bundledLibrary), "new") << target;
    }

    EXPECT_THAT (contentsOf (folder / "elsewhere"), ElementsAre ("Contents", "Contents/moduleinfo.json"));
}

TEST_F (InstallTarget, LeavesTheOlderOnesWholeWhereTheNewOnesDoNotFit)
{
    make ("install");
    const auto before = contentsOf (home);

    for (const auto& file : { library, bundledLibrary, lv2Library })
    {
        build ("newer");
        put (project / "dist/linux" / file, std::string (100000, 'x'));
        EXPECT_NE (make ("install", {}, 50000).exitStatus, 0);
        EXPECT_EQ (contentsOf (home), before);

        for (const auto& place : places)
            EXPECT_EQ (installed (place), "new") << file << ", " << place;
    }
}

TEST_F (InstallTarget, GivesBackABundleThatAKilledInstallHasPutAside)
{
    make ("install");
    fs::rename (home / ".vst3" / bundle, home / ".vst3/.Quendal Larkspire.vst3.old");
    put (project / "dist/linux" / bundledLibrary, std::string (100000, 'x'));
    EXPECT_NE (make ("install", {}, 50000).exitStatus, 0);
    EXPECT_EQ (installed (".vst3/" + bundledLibrary), "new");
    EXPECT_EQ (contentsOf (home).size(), entries);
}

TEST_F (InstallTarget, SaysInOneLineWhatIsNotBuiltAndInstallsNothing)
{
    for (const auto& file : built)
    {
        build ("new");
        fs::remove (project / "dist/linux" / file);
        const auto outcome = make ("install");
        EXPECT_NE (outcome.exitStatus, 0);
        EXPECT_THAT (outcome.errors,
                     testing::StartsWith ("install: there is no dist/linux/" + file + " yet; run make first\n"));
        EXPECT_EQ (outcome.output, "");
        EXPECT_THAT (contentsOf (home), testing::IsEmpty());
    }
}

TEST_F (InstallTarget, IsUndoneByUninstallWhichTouchesNothingElse)
{
    put (home / ".vst/Other.so", "old");
    put (home / ".vst3/Other.vst3/Contents/x86_64-linux/Other.so", "old");
    put (home / ".lv2/other.lv2/manifest.ttl", "old");
    const auto before = contentsOf (home);
    make ("install");
    ASSERT_NE (contentsOf (home), before);
    const auto outcome = make ("uninstall");
    EXPECT_EQ (outcome.exitStatus, 0) << outcome.errors;
    EXPECT_EQ (outcome.output,
               "removed " + (home / ".vst" / library).string() + "\nremoved " + (home / ".vst3" / bundle).string()
                   + "\nremoved " + (home / ".lv2" / lv2Bundle).string() + "\n");
    EXPECT_EQ (contentsOf (home), before);

    // And where there is nothing to remove.
    EXPECT_EQ (make ("uninstall").exitStatus, 0);
    EXPECT_EQ (contentsOf (home), before);
}
} // namespace
