// SPDX-License-Identifier: AGPL-3.0-only
// The release's number, in whatever was built, is the one of cmake/Version.cmake.
#include "packages/Packages.h"
#include "support/FirstMatch.h"
#include "support/Paths.h"
#include "support/Recording.h"

#include <gtest/gtest.h>

#include <functional>

namespace
{
/** The text of a file in a package, compressed or as it is. */
std::string textOf (const std::filesystem::path& package, const std::string& file)
{
    return outputOf ("zcat", { "--force", Unpacked (package) / file });
}

/** What a program in a package says of its version. */
std::string versionOf (const std::filesystem::path& package, const std::string& program)
{
    return outputOf (Unpacked (package) / program, { "--version" });
}

/** The texts in a Windows library that are written as Windows' resources are. */
std::string wideTextsOf (const std::string& library)
{
    const Unpacked package (packages::windowsArchive());
    return outputOf ("strings", { "--encoding=l", package / (packages::windowsFolder + library) });
}

/** A place that states the number, and how it is found there. */
struct Statement
{
    std::string name;
    std::function<std::string()> read;
    std::string pattern;
};

std::ostream& operator<< (std::ostream& stream, const Statement& statement)
{
    return stream << statement.name;
}

const std::vector<Statement> statements {
    { "RendererOfTheDebianPackage",
      [] { return versionOf (packages::debian(), "usr/bin/larkspire-render"); },
      "^larkspire-render (.*)\n$" },
    { "RendererOfTheArchive",
      [] { return versionOf (packages::linuxArchive(), packages::linuxFolder + "/larkspire-render"); },
      "^larkspire-render (.*)\n$" },
    { "MicrophoneOfTheDebianPackage",
      [] { return versionOf (packages::debian(), "usr/bin/larkspire-microphone"); },
      "^larkspire-microphone (.*)\n$" },
    { "MicrophoneOfTheArchive",
      [] { return versionOf (packages::linuxArchive(), packages::linuxFolder + "/larkspire-microphone"); },
      "^larkspire-microphone (.*)\n$" },
    { "DocumentForPackagers",
      [] { return bytesOf (paths::source ("docs/packaging.md")); },
      "`quendal-larkspire-(.*)\\.tar\\.xz`" },
    { "RecipeForArch", [] { return bytesOf (paths::source ("packaging/arch/PKGBUILD")); }, "\npkgver=(.*)\n" },
    { "RecipeForFedora",
      [] { return bytesOf (paths::source ("packaging/fedora/quendal-larkspire.spec")); },
      "\nVersion: +(.*)\n" },
    { "DebianPackage",
      [] {
          return outputOf ("dpkg-deb", { "--field", packages::debian(), "Version" });
      },
      "(.*)\n" },
    { "DebianChangelog",
      [] { return textOf (packages::debian(), "usr/share/doc/quendal-larkspire/changelog.gz"); },
      "^quendal-larkspire \\((.*)\\)" },
    { "SoftwareCatalogue",
      [] { return textOf (packages::debian(), "usr/share/metainfo/com.quendal.larkspire.metainfo.xml"); },
      "<release version=\"([^\"]*)\"" },
    { "ManPage",
      [] { return textOf (packages::debian(), "usr/share/man/man1/larkspire-render.1.gz"); },
      "\n\\.TH .*\"larkspire-render ([^\"]*)\"" },
    { "ManPageOfTheMicrophone",
      [] { return textOf (packages::debian(), "usr/share/man/man1/larkspire-microphone.1.gz"); },
      "\n\\.TH .*\"larkspire-microphone ([^\"]*)\"" },
    { "InstructionsForLinux",
      [] { return textOf (packages::linuxArchive(), packages::linuxFolder + "/INSTALL.txt"); },
      "^Quendal Larkspire (.*) for Linux" },
    { "InstructionsForWindows",
      [] { return textOf (packages::windowsArchive(), packages::windowsFolder + "/INSTALL.txt"); },
      "^Quendal Larkspire (.*) for Windows" },
    { "ResourceOfTheWindowsVst2Library",
      [] { return wideTextsOf ("/Quendal Larkspire.dll"); },
      "\nProductVersion\n(.*)\n" },
    { "ResourceOfTheWindowsVst3Library",
      [] { return wideTextsOf ("/Quendal Larkspire.vst3/Contents/x86_64-win/Quendal Larkspire.vst3"); },
      "\nProductVersion\n(.*)\n" },
};

class Release : public testing::TestWithParam<Statement>
{
};

TEST_P (Release, IsTheOneOfTheSources)
{
    // Read here and not from the build, which could be an older one.
    const auto release =
        found (bytesOf (paths::source ("cmake/Version.cmake")), "\nset \\(LARKSPIRE_RELEASE \"([^\"]*)\"\\)");
    ASSERT_FALSE (release.empty());
    EXPECT_EQ (found (GetParam().read(), GetParam().pattern), release);
}

INSTANTIATE_TEST_SUITE_P (In,
                          Release,
                          testing::ValuesIn (statements),
                          [] (const auto& test) { return test.param.name; });
} // namespace
