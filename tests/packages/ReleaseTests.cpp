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
/** A file that the Debian package holds compressed or as it is. */
std::string packed (const std::string& path)
{
    return outputOf ("zcat", { "--force", Unpacked (packages::debian()) / path });
}

std::string inLinuxArchive (const std::string& name)
{
    return "quendal-larkspire-" LARKSPIRE_RELEASE "-linux-x86_64/" + name;
}

std::string inWindowsArchive (const std::string& name)
{
    return "quendal-larkspire-" LARKSPIRE_RELEASE "-windows-x86_64/" + name;
}

/** A place that states the number, and how it is read there. */
struct Statement
{
    std::string name;
    std::function<std::string()> read;
};

std::ostream& operator<< (std::ostream& stream, const Statement& statement)
{
    return stream << statement.name;
}

const std::vector<Statement> statements {
    { "RendererOfTheDebianPackage",
      []
      {
          const Unpacked package (packages::debian());
          return found (outputOf (package / "usr/bin/larkspire-render", { "--version" }), "^larkspire-render (.*)\n$");
      } },
    { "RendererOfTheArchive",
      []
      {
          const Unpacked package (packages::linuxArchive());
          return found (outputOf (package / inLinuxArchive ("larkspire-render"), { "--version" }),
                        "^larkspire-render (.*)\n$");
      } },
    { "DebianPackage",
      [] {
          return found (outputOf ("dpkg-deb", { "--field", packages::debian(), "Version" }), "(.*)\n");
      } },
    { "DebianChangelog",
      [] { return found (packed ("usr/share/doc/quendal-larkspire/changelog.gz"), "^quendal-larkspire \\((.*)\\)"); } },
    { "SoftwareCatalogue",
      [] {
          return found (packed ("usr/share/metainfo/com.quendal.larkspire.metainfo.xml"),
                        "<release version=\"([^\"]*)\"");
      } },
    { "ManPage",
      [] {
          return found (packed ("usr/share/man/man1/larkspire-render.1.gz"), "\n\\.TH .*\"larkspire-render ([^\"]*)\"");
      } },
    { "InstructionsForLinux",
      []
      {
          const Unpacked package (packages::linuxArchive());
          return found (bytesOf (package / inLinuxArchive ("INSTALL.txt")), "^Quendal Larkspire (.*) for Linux");
      } },
    { "InstructionsForWindows",
      []
      {
          const Unpacked package (packages::windowsArchive());
          return found (bytesOf (package / inWindowsArchive ("INSTALL.txt")), "^Quendal Larkspire (.*) for Windows");
      } },
    { "ResourceOfTheWindowsLibrary",
      []
      {
          const Unpacked package (packages::windowsArchive());
          const auto library = package / inWindowsArchive ("Quendal Larkspire.dll");
          return found (outputOf ("strings", { "--encoding=l", library }), "\nProductVersion\n(.*)\n");
      } },
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
    EXPECT_EQ (GetParam().read(), release);
}

INSTANTIATE_TEST_SUITE_P (In,
                          Release,
                          testing::ValuesIn (statements),
                          [] (const auto& test) { return test.param.name; });
} // namespace
