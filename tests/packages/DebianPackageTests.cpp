// SPDX-License-Identifier: AGPL-3.0-only
// The Debian package as a file: what it holds, says and asks for.
#include "packages/Packages.h"
#include "support/FirstMatch.h"
#include "support/Paths.h"
#include "support/Recording.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{
using testing::HasSubstr;

std::string field (const std::string& name)
{
    auto value = outputOf ("dpkg-deb", { "--field", packages::debian(), name });
    value.erase (value.find_last_not_of ('\n') + 1);
    return value;
}

/** The time of the commit that is packed, as archives list it. */
std::string timeOfCommit()
{
    return found (
        outputOf ("git", { "-C", paths::source(), "log", "-1", "--format=%cd", "--date=format-local:%Y-%m-%d %H:%M" }),
        "(.*)\n");
}

TEST (DebianPackage, HoldsTheseFilesAndNoOthers)
{
    const TemporaryFolder folder;
    writeBytes (folder / "files.tar", outputOf ("dpkg-deb", { "--fsys-tarfile", packages::debian() }));
    std::vector<Entry> expected;

    for (const auto& [mode, path] : std::vector<std::pair<std::string, std::string>> {
             { "drwxr-xr-x", "./" },
             { "drwxr-xr-x", "./usr/" },
             { "drwxr-xr-x", "./usr/bin/" },
             { "-rwxr-xr-x", "./usr/bin/larkspire-microphone" },
             { "-rwxr-xr-x", "./usr/bin/larkspire-render" },
             { "drwxr-xr-x", "./usr/lib/" },
             { "drwxr-xr-x", "./usr/lib/lv2/" },
             { "drwxr-xr-x", "./usr/lib/lv2/larkspire.lv2/" },
             { "-rw-r--r--", "./usr/lib/lv2/larkspire.lv2/larkspire.so" },
             { "-rw-r--r--", "./usr/lib/lv2/larkspire.lv2/larkspire.ttl" },
             { "-rw-r--r--", "./usr/lib/lv2/larkspire.lv2/manifest.ttl" },
             { "drwxr-xr-x", "./usr/lib/vst/" },
             { "-rw-r--r--", "./usr/lib/vst/Quendal Larkspire.so" },
             { "drwxr-xr-x", "./usr/lib/vst3/" },
             { "drwxr-xr-x", "./usr/lib/vst3/Quendal Larkspire.vst3/" },
             { "drwxr-xr-x", "./usr/lib/vst3/Quendal Larkspire.vst3/Contents/" },
             { "drwxr-xr-x", "./usr/lib/vst3/Quendal Larkspire.vst3/Contents/Resources/" },
             { "-rw-r--r--", "./usr/lib/vst3/Quendal Larkspire.vst3/Contents/Resources/moduleinfo.json" },
             { "drwxr-xr-x", "./usr/lib/vst3/Quendal Larkspire.vst3/Contents/x86_64-linux/" },
             { "-rw-r--r--", "./usr/lib/vst3/Quendal Larkspire.vst3/Contents/x86_64-linux/Quendal Larkspire.so" },
             { "drwxr-xr-x", "./usr/share/" },
             { "drwxr-xr-x", "./usr/share/doc/" },
             { "drwxr-xr-x", "./usr/share/doc/quendal-larkspire/" },
             { "-rw-r--r--", "./usr/share/doc/quendal-larkspire/CHANGELOG.md" },
             { "-rw-r--r--", "./usr/share/doc/quendal-larkspire/CONTRIBUTING.md" },
             { "-rw-r--r--", "./usr/share/doc/quendal-larkspire/README.md" },
             { "-rw-r--r--", "./usr/share/doc/quendal-larkspire/changelog.gz" },
             { "-rw-r--r--", "./usr/share/doc/quendal-larkspire/copyright" },
             { "drwxr-xr-x", "./usr/share/doc/quendal-larkspire/docs/" },
             { "drwxr-xr-x", "./usr/share/doc/quendal-larkspire/docs/sound/" },
             { "drwxr-xr-x", "./usr/share/doc/quendal-larkspire/docs/sound/data/" },
             { "-rw-r--r--", "./usr/share/doc/quendal-larkspire/larkspire.html" },
             { "drwxr-xr-x", "./usr/share/man/" },
             { "drwxr-xr-x", "./usr/share/man/man1/" },
             { "-rw-r--r--", "./usr/share/man/man1/larkspire-microphone.1.gz" },
             { "-rw-r--r--", "./usr/share/man/man1/larkspire-render.1.gz" },
             { "drwxr-xr-x", "./usr/share/metainfo/" },
             { "-rw-r--r--", "./usr/share/metainfo/com.quendal.larkspire.metainfo.xml" } })
        expected.push_back ({ mode, "0/0", timeOfCommit(), path });

    for (const auto& name : documents())
        expected.push_back ({ "-rw-r--r--", "0/0", timeOfCommit(), "./usr/share/doc/quendal-larkspire/" + name });

    EXPECT_THAT (entriesOf (folder / "files.tar"), testing::UnorderedElementsAreArray (expected));
}

TEST (DebianPackage, HoldsWhateverItsDocumentsLeadTo)
{
    const Unpacked package (packages::debian());
    const std::filesystem::path notes (package / "usr/share/doc/quendal-larkspire");
    int links = 0;

    for (const auto& name : contentsOf (notes))
    {
        if (! name.ends_with (".md"))
            continue;

        for (const auto& link : allFound (bytesOf (notes / name), "\\]\\(([^)#:]+)[)#]"))
        {
            EXPECT_TRUE (std::filesystem::exists (notes / std::filesystem::path (name).parent_path() / link))
                << name << " leads to " << link;
            ++links;
        }
    }

    EXPECT_GT (links, 20);
}

TEST (DebianPackage, NamesItsMaintainerAndWhoHasTheCopyright)
{
    const auto publisher = bytesOf (paths::source ("cmake/Publisher.cmake"));
    const Unpacked package (packages::debian());
    EXPECT_EQ (field ("Maintainer"), found (publisher, "LARKSPIRE_MAINTAINER \"([^\"]+)\""));
    EXPECT_THAT (bytesOf (package / "usr/share/doc/quendal-larkspire/copyright"),
                 testing::ContainsRegex ("\nFiles: \\*\nCopyright: 20[0-9][0-9] "
                                         + found (publisher, "LARKSPIRE_COPYRIGHT_HOLDER \"([^\"]+)\"") + "\n"));
}

TEST (DebianPackage, RunsNoScriptsWhenItIsInstalled)
{
    const TemporaryFolder folder;
    outputOf ("dpkg-deb", { "--control", packages::debian(), folder / "control" });
    EXPECT_THAT (folder.contents(), testing::ElementsAre ("control", "control/control", "control/md5sums"));
}

TEST (DebianPackage, SaysWhatItIs)
{
    EXPECT_EQ (field ("Package"), "quendal-larkspire");
    EXPECT_EQ (field ("Architecture"), "amd64");
    EXPECT_EQ (field ("Section"), "sound");
    EXPECT_THAT (field ("Description"), HasSubstr ("spoken voice"));
}

TEST (DebianPackage, DependsOnThePackagesOfTheLibrariesThatItsFilesLoad)
{
    EXPECT_THAT (allFound (field ("Depends"), "(?:^|, )([^ ,]+)"),
                 testing::UnorderedElementsAre ("libc6",
                                                "libebur128-1",
                                                "libsoxr0",
                                                "libfontconfig1",
                                                "libfreetype6",
                                                "libmpg123-0",
                                                "libogg0",
                                                "libpng16-16",
                                                "libsndfile1",
                                                "zlib1g"));
}

TEST (DebianPackage, HasNoFaultThatLintianKnows)
{
    const auto outcome = outcomeOf ("lintian", { "--allow-root", "--fail-on=error,warning", packages::debian() });
    EXPECT_EQ (outcome.exitStatus, 0);
    EXPECT_EQ (outcome.output, "");
}

TEST (DebianPackage, HasAnEntryForSoftwareCatalogues)
{
    const Unpacked package (packages::debian());
    const auto entry = package / "usr/share/metainfo/com.quendal.larkspire.metainfo.xml";
    const auto outcome = outcomeOf ("appstreamcli", { "validate", "--no-net", "--pedantic", "--no-color", entry });
    EXPECT_EQ (outcome.exitStatus, 0) << outcome.output;
    EXPECT_THAT (outcome.output, HasSubstr ("Validation was successful."));

    // An entry of an add-on is shown with the program that it names, as that program names itself.
    const auto host = outputOf ("grep", { "-rhm1", "<id>", "/usr/share/metainfo/ardour.appdata.xml" });
    EXPECT_THAT (host, HasSubstr ("<id>ardour7.desktop</id>"));
    EXPECT_THAT (bytesOf (entry), HasSubstr ("<extends>ardour7.desktop</extends>"));
}

/** The programs, by their names. */
class DebianProgram : public testing::TestWithParam<std::string>
{
};

INSTANTIATE_TEST_SUITE_P (,
                          DebianProgram,
                          testing::Values ("larkspire-render", "larkspire-microphone"),
                          [] (const auto& test)
                          { return test.param == "larkspire-render" ? "Renderer" : "Microphone"; });

TEST_P (DebianProgram, HasAManPageThatIsWellFormedAndNamesEveryOption)
{
    const Unpacked package (packages::debian());
    const auto page = package / ("usr/share/man/man1/" + GetParam() + ".1.gz");
    const auto outcome = outcomeOf ("man", { "--warnings", "--local-file", page });
    EXPECT_EQ (outcome.exitStatus, 0);
    EXPECT_EQ (outcome.errors, "");
    EXPECT_THAT (outcome.output, testing::ContainsRegex ("\nSYNOPSIS\n +" + GetParam() + " +\\["));
    EXPECT_THAT (outcome.output, testing::Not (HasSubstr ("Usage")));

    const auto help = outputOf (package / ("usr/bin/" + GetParam()), { "--help" });
    const auto options = allFound (help, "\n  (?:-[a-z], )?(-[-a-z]+)");
    EXPECT_GE (options.size(), 8u);

    for (const auto& option : options)
        EXPECT_THAT (outcome.output, testing::ContainsRegex ("\n +(-[a-z], )?" + option + "[ \n]"));
}

TEST (DebianPackage, NamesTheLicenceOfEverythingThatIsLinkedIn)
{
    const Unpacked package (packages::debian());
    const auto copyright = bytesOf (package / "usr/share/doc/quendal-larkspire/copyright");
    EXPECT_THAT (copyright, testing::StartsWith ("Format: "));

    for (const std::string text : { "JUCE",
                                    "HarfBuzz",
                                    "SheenBidi",
                                    "CLI11",
                                    "JSON for Modern C++",
                                    "GCC RUNTIME LIBRARY EXCEPTION",
                                    "VST 3 SDK",
                                    "developed at SunPro",
                                    "VST is a trademark of Steinberg Media Technologies GmbH",
                                    "Neither the name of the Steinberg Media Technologies nor the names",
                                    "/usr/share/common-licenses/GPL-3" })
        EXPECT_THAT (copyright, HasSubstr (text));

    // A short name either brings its text along or has a paragraph of its own.
    for (const auto& name : allFound (copyright, "\nLicense: ([^\n]+)\n(?! )"))
        EXPECT_THAT (copyright, HasSubstr ("\n\nLicense: " + name + "\n "));

    EXPECT_THAT (copyright, HasSubstr ("GNU AFFERO GENERAL PUBLIC LICENSE"));
}
} // namespace
