// SPDX-License-Identifier: AGPL-3.0-only
// The recipes for Arch and Fedora: what judges them there, and what becomes of them here, where neither system is.
#include "packages/UnpackedSources.h"
#include "support/FirstMatch.h"
#include "support/Recording.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <unistd.h>

namespace
{
using testing::HasSubstr;

constexpr unsigned longestBuild = 1800; // seconds; the compiler cache makes them ten

const std::string pkgbuild = paths::source ("packaging/arch/PKGBUILD");
const std::string spec = paths::source ("packaging/fedora/quendal-larkspire.spec");

/** What a recipe's package holds, which has no page, libraries in that folder, and the licences apart. */
std::vector<std::string> filesWithLibrariesIn (const std::string& folder)
{
    std::vector<std::string> files;

    for (auto file : InstalledBuild().files())
    {
        if (file.ends_with (".html"))
            continue;

        if (file.starts_with ("lib/"))
            file.replace (0, 3, folder);

        if (file.ends_with ("/LICENSE") || file.ends_with ("/THIRD-PARTY.txt"))
            file = "share/licenses/quendal-larkspire/" + std::filesystem::path (file).filename().string();

        files.push_back ("usr/" + file);
    }

    return files;
}

/** Both recipes want JUCE's sources of one version, which this build has taken. */
std::string juceVersion()
{
    return found (bytesOf (paths::juce() + "/CMakeLists.txt"), "JUCE VERSION ([0-9.]+)");
}

TEST (Recipes, WantTheJuceThatEverythingIsTestedWith)
{
    EXPECT_EQ (found (bytesOf (pkgbuild), "\n_juce=(.*)\n"), juceVersion());
    EXPECT_EQ (found (bytesOf (spec), "\n%global juce (.*)\n"), juceVersion());
}

TEST (ArchRecipe, HasNoFaultThatItsToolsKnow)
{
    // makepkg wants anybody but root, and shellcheck does not know what makepkg does with the variables.
    const TemporaryFolder folder;
    std::filesystem::permissions (folder.path(), std::filesystem::perms::all);
    std::filesystem::copy_file (pkgbuild, folder / "PKGBUILD");
    std::vector<std::string> command {
        "--reuid=65534", "--regid=65534", "--clear-groups", "makepkg", "--printsrcinfo"
    };

    if (geteuid() != 0)
        command = { "--", "makepkg", "--printsrcinfo" };

    const auto outcome = run ({ .arguments = command,
                                .program = "setpriv",
                                .environment = { { "HOME", folder.path() } },
                                .folder = folder.path() });
    EXPECT_EQ (outcome.exitStatus, 0);
    EXPECT_EQ (outcome.errors, "");
    EXPECT_THAT (outcome.output, HasSubstr ("pkgbase = quendal-larkspire\n"));
    EXPECT_EQ (outputOf ("shellcheck", { "--shell=bash", "--exclude=SC2034,SC2154,SC2164", pkgbuild }), "");
}

TEST (ArchRecipe, MakesAPackageOfAllButThePage)
{
    // As makepkg calls it.
    const TemporaryFolder folder;
    const std::string version = juceVersion();
    const auto script = R"(
        set -euo pipefail
        . "$1"
        srcdir=$PWD/src pkgdir=$PWD/pkg
        for archive in "${source[@]}"; do tar --extract --file "$archive" --directory src; done
        for step in prepare build package; do (cd src && $step); done)";

    for (const std::string name : { "src", "pkg" })
        std::filesystem::create_directory (folder / name);

    std::filesystem::copy_file (packages::sources(), folder / packages::sources().filename().string());
    writeJuceArchive (folder / ("juce-" + version + ".tar.gz"), "JUCE-" + version);
    outputOf (Call { .arguments = { "-c", script, "makepkg", pkgbuild },
                     .program = "bash",
                     .folder = folder.path(),
                     .longestRun = longestBuild });

    EXPECT_THAT (filesIn (folder, "pkg"), testing::UnorderedElementsAreArray (filesWithLibrariesIn ("lib")));
    EXPECT_TRUE (bytesOf (folder / "pkg/usr/lib/vst/Quendal Larkspire.so") == bytesOf (paths::plugin()));
}

TEST (FedoraRecipe, HasNoFaultThatItsToolsKnow)
{
    EXPECT_THAT (outputOf ("rpmspec", { "-P", spec }), HasSubstr ("\nName:           quendal-larkspire\n"));

    // The build root has been rpm's own affair for long, and the archives lie beside the recipe.
    const auto judgement = outcomeOf ("rpmlint", { spec }).output;
    EXPECT_THAT (judgement, HasSubstr ("0 packages and 1 specfiles checked; 0 errors"));
    auto findings = allFound (judgement, ": [EW]: ([^\n]+)");
    std::erase_if (findings,
                   [] (const auto& line)
                   { return line.starts_with ("no-buildroot-tag") || line.starts_with ("invalid-url Source"); });
    EXPECT_THAT (findings, testing::IsEmpty());
}

TEST (FedoraRecipe, MakesAPackageOfAllButThePage)
{
    const TemporaryFolder folder;
    const std::string version = juceVersion();
    std::filesystem::create_directory (folder / "SOURCES");
    std::filesystem::copy_file (packages::sources(), folder / ("SOURCES/" + packages::sources().filename().string()));
    writeJuceArchive (folder / ("SOURCES/juce-" + version + ".tar.gz"), "JUCE-" + version);

    // rpm's scripts speak another language, which the compiler cache would keep apart.
    const char* language = std::getenv ("LANG");
    std::filesystem::create_directory (folder / "programs");
    writeBytes (folder / "programs/ccache",
                "#!/bin/sh\nexec env " + (language != nullptr ? "LANG='" + std::string (language) + "'" : "-u LANG")
                    + " /usr/bin/ccache \"$@\"\n");
    std::filesystem::permissions (folder / "programs/ccache", std::filesystem::perms::all);

    // Here the packages that it wants have other names.
    outputOf (Call { .arguments = { "-bb", "--nodeps", "--define", "_topdir " + folder.path().string(), spec },
                     .program = "rpmbuild",
                     .environment = { { "PATH", folder / "programs:/usr/bin:/bin" } },
                     .longestRun = longestBuild });
    const auto package = folder / ("RPMS/x86_64/quendal-larkspire-" LARKSPIRE_RELEASE "-1.x86_64.rpm");
    std::vector<std::string> files;

    for (const auto& line : linesOf (outputOf ("rpm", { "-qlvp", package })))
        if (line.starts_with ("-"))
            files.push_back (line.substr (line.find (" /usr/") + 2));

    EXPECT_THAT (files, testing::UnorderedElementsAreArray (filesWithLibrariesIn ("lib64")));
}
} // namespace
