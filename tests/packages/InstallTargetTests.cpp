// SPDX-License-Identifier: AGPL-3.0-only
// make install and make uninstall, in a project of the test's own whose build is a few words. The rules by which CMake
// installs it are the true ones.
#include "support/Child.h"
#include "support/Paths.h"
#include "support/Recording.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <unistd.h>

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

/** What a build makes besides, and what is in the sources. */
const std::array others { "dist/linux/larkspire-render",
                          "dist/linux/larkspire-microphone",
                          "larkspire.html",
                          "written/THIRD-PARTY.txt",
                          "written/com.quendal.larkspire.metainfo.xml",
                          "written/larkspire-microphone.1",
                          "written/larkspire-render.1",
                          "CHANGELOG.md",
                          "CONTRIBUTING.md",
                          "LICENSE",
                          "README.md",
                          "docs/use.md",
                          "docs/page.png",
                          "docs/sound/data/steps.csv",
                          "docs/sound/.steps.csv.swp" };

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

        for (const auto& file : others)
            put (project / file, "new");

        put (project / "CMakeLists.txt",
             "cmake_minimum_required (VERSION 3.25)\n"
             "project (Rules LANGUAGES NONE)\n"
             "set (CMAKE_SYSTEM_PROCESSOR x86_64)\n"
             "set (CMAKE_INSTALL_SO_NO_EXE \"${AS_DEBIAN}\")\n"
             "set (LARKSPIRE_DIST ${CMAKE_SOURCE_DIR}/dist/linux)\n"
             "set (LARKSPIRE_PAGE ${CMAKE_SOURCE_DIR}/larkspire.html)\n"
             "set (LARKSPIRE_DOCUMENTS ${CMAKE_SOURCE_DIR}/written)\n"
             "set (LARKSPIRE_HELP2MAN help2man)\n"
             "include ("
                 + paths::source ("cmake/InstallFolders.cmake") + ")\ninclude (" + paths::source ("cmake/Install.cmake")
                 + ")\n");
        configure ({ "-DCMAKE_INSTALL_LIBDIR=lib" });
    }

    void configure (std::vector<std::string> options) const
    {
        options.insert (options.end(), { "-S", project, "-B", project / "build/release", "-Wno-dev" });
        outputOf (Call { .arguments = options, .program = paths::cmake() });
    }

    /** What CMake installs with these settings, into an empty folder and without a prefix. */
    std::vector<std::string> installedWith (const std::vector<std::string>& options) const
    {
        configure (options);
        const TemporaryFolder place;
        outputOf (Call { .arguments = { "--install", project / "build/release", "--prefix", "/" },
                         .program = paths::cmake(),
                         .environment = { { "DESTDIR", place.path() } } });
        return place.contents();
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
                  std::optional<unsigned long> largestFile = {},
                  std::vector<std::string> options = {}) const
    {
        variables["HOME"] = home;
        variables["PATH"] = "/usr/bin:/bin";
        options.insert (options.end(), { "--no-print-directory", target });
        return run ({ .arguments = options,
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

TEST_F (InstallTarget, TakesVariablesOfTheEnvironmentForNoWishToInstallForEverybody)
{
    const std::string elsewhere = folder / "elsewhere";
    EXPECT_EQ (make ("install", { { "PREFIX", elsewhere }, { "DESTDIR", elsewhere } }).exitStatus, 0);
    EXPECT_FALSE (fs::exists (elsewhere));
    EXPECT_EQ (contentsOf (home).size(), entries);
}

TEST_F (InstallTarget, InstallsAllThatThereIsBelowAPrefixAndWithModesForEverybody)
{
    const auto place = folder / "place";
    const auto outcome =
        run ({ .arguments = { "-c", "umask 077 && exec make install PREFIX=/opt/voice DESTDIR=\"$0\"", place },
               .program = "sh",
               .environment = { { "HOME", home }, { "PATH", "/usr/bin:/bin" } },
               .inheritsEnvironment = false,
               .folder = project });
    ASSERT_EQ (outcome.exitStatus, 0) << outcome.errors;
    EXPECT_THAT (contentsOf (home), testing::IsEmpty());
    std::vector<std::string> listed;

    for (const auto& file : contentsOf (place))
    {
        const auto status = fs::status (fs::path (place) / file);
        const auto mode = static_cast<unsigned> (status.permissions());

        if (fs::is_directory (status))
            EXPECT_TRUE (mode == 0755 || ! file.starts_with ("opt/voice/")) << file;
        else
            listed.push_back ((mode == 0755 ? "x " : mode == 0644 ? "  " : "? ") + file);
    }

    const std::string notes = "  opt/voice/share/doc/quendal-larkspire/";
    EXPECT_THAT (listed,
                 ElementsAre ("x opt/voice/bin/larkspire-microphone",
                              "x opt/voice/bin/larkspire-render",
                              "x opt/voice/lib/lv2/" + lv2Library,
                              "  opt/voice/lib/lv2/" + ports,
                              "  opt/voice/lib/lv2/" + manifest,
                              "x opt/voice/lib/vst/" + library,
                              "  opt/voice/lib/vst3/" + description,
                              "x opt/voice/lib/vst3/" + bundledLibrary,
                              notes + "CHANGELOG.md",
                              notes + "CONTRIBUTING.md",
                              notes + "LICENSE",
                              notes + "README.md",
                              notes + "THIRD-PARTY.txt",
                              notes + "docs/page.png",
                              notes + "docs/sound/data/steps.csv",
                              notes + "docs/use.md",
                              notes + "larkspire.html",
                              "  opt/voice/share/man/man1/larkspire-microphone.1",
                              "  opt/voice/share/man/man1/larkspire-render.1",
                              "  opt/voice/share/metainfo/com.quendal.larkspire.metainfo.xml"));
}

TEST_F (InstallTarget, GivesLibrariesTheModeThatTheSystemWants)
{
    for (const auto& [option, mode] : { std::pair ("-DAS_DEBIAN=ON", 0644u), std::pair ("-DAS_DEBIAN=OFF", 0755u) })
    {
        configure ({ option });
        ASSERT_EQ (make ("install").exitStatus, 0);

        for (const auto& file : { places[0], places[1], places[3] })
            EXPECT_EQ (static_cast<unsigned> (fs::status (home / file).permissions()), mode) << file;
    }
}

TEST_F (InstallTarget, SaysWhatToDoWhereThereIsNothingToInstallForEverybody)
{
    fs::remove (project / "dist/linux/larkspire-render");
    const auto outcome = make ("install", {}, {}, { "PREFIX=" + (folder / "place") });
    EXPECT_NE (outcome.exitStatus, 0);
    EXPECT_THAT (outcome.errors, testing::HasSubstr ("\ninstall: is there all of it? run make first\n"));
}

TEST_F (InstallTarget, PutsThePluginsIntoTheFoldersThatTheBuildWasTold)
{
    EXPECT_THAT (
        installedWith ({ "-DCMAKE_INSTALL_LIBDIR=lib64", "-ULARKSPIRE_*_DIR" }),
        testing::IsSupersetOf ({ "lib64/vst/" + library, "lib64/vst3/" + bundledLibrary, "lib64/lv2/" + manifest }));
    EXPECT_THAT (installedWith ({ "-DLARKSPIRE_VST2_DIR=one",
                                  "-DLARKSPIRE_VST3_DIR=/two",
                                  "-DLARKSPIRE_LV2_DIR=three/four",
                                  "-DLARKSPIRE_LICENCE_DIR=share/licenses/voice" }),
                 testing::IsSupersetOf ({ "one/" + library,
                                          "two/" + bundledLibrary,
                                          "three/four/" + manifest,
                                          std::string ("share/licenses/voice/LICENSE") }));
}

TEST_F (InstallTarget, KeepsOutOfTheFolderOfOneArchitectureWhereNoHostLooks)
{
    const auto installed = installedWith ({ "-DCMAKE_LIBRARY_ARCHITECTURE=x86_64-linux-gnu",
                                            "-DCMAKE_INSTALL_LIBDIR=/usr/lib/x86_64-linux-gnu",
                                            "-ULARKSPIRE_*_DIR" });
    EXPECT_THAT (installed,
                 testing::IsSupersetOf (
                     { "usr/lib/vst/" + library, "usr/lib/vst3/" + bundledLibrary, "usr/lib/lv2/" + manifest }));
}

TEST_F (InstallTarget, LeavesThePageOutWhereItIsNotBuilt)
{
    fs::remove (project / "larkspire.html");
    EXPECT_THAT (installedWith ({}), testing::Not (testing::Contains (testing::HasSubstr (".html"))));
}

TEST_F (InstallTarget, WritesNothingIntoABuildThatBelongsToSomebodyElse)
{
    // Root may write everywhere, and is somebody else here.
    const auto mayBe = [] (const std::vector<std::string>& command)
    {
        Call call { .arguments = { "--reuid=65534", "--regid=65534", "--clear-groups" }, .program = "setpriv" };
        call.arguments.insert (call.arguments.end(), command.begin(), command.end());

        if (geteuid() != 0)
            call = { .arguments = { command.begin() + 1, command.end() }, .program = command.front() };

        return run (call);
    };
    const TemporaryFolder place;
    fs::permissions (place.path(), fs::perms::all);
    fs::permissions (folder.path(), fs::perms::others_read | fs::perms::others_exec, fs::perm_options::add);
    outputOf (Call { .arguments = { "-R", "a-w,a+rX", project }, .program = "chmod" });
    ASSERT_NE (mayBe ({ "touch", project / "build/release/mark" }).exitStatus, 0);
    const auto outcome = mayBe ({ paths::cmake(), "--install", project / "build/release", "--prefix", place / "here" });
    outputOf (Call { .arguments = { "-R", "u+w", project }, .program = "chmod" });
    EXPECT_EQ (outcome.exitStatus, 0) << outcome.errors;
    EXPECT_THAT (place.contents(), testing::Contains ("here/bin/larkspire-render"));
}
} // namespace
