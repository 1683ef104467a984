// SPDX-License-Identifier: AGPL-3.0-only
// The archives for other Linux systems and for Windows, and what all packages have in common.
#include "packages/Packages.h"
#include "support/FirstMatch.h"
#include "support/Paths.h"
#include "support/Recording.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <regex>

namespace
{
using testing::ElementsAre;
using testing::HasSubstr;

using packages::linuxFolder;
using packages::windowsFolder;

const std::string vst2Library = "/Quendal Larkspire.so";
const std::string vst3Library = "/Quendal Larkspire.vst3/Contents/x86_64-linux/Quendal Larkspire.so";
const std::string lv2Library = "/larkspire.lv2/larkspire.so";
const std::string windowsVst3Library = "/Quendal Larkspire.vst3/Contents/x86_64-win/Quendal Larkspire.vst3";
const std::string renderer = "/larkspire-render";
const std::string page = "/larkspire.html";

/** The largest number behind a prefix such as "GLIBC_2." in what a file asks of the libraries that it loads. */
int newest (const std::string& file, const std::string& prefix)
{
    int result = 0;

    for (const auto& number : allFound (outputOf ("objdump", { "--dynamic-syms", file }), prefix + "([0-9]+)"))
        result = std::max (result, std::stoi (number));

    return result;
}

TEST (LinuxArchive, HoldsTheseFilesAndNoOthers)
{
    std::vector<std::string> listed, notes;

    for (const auto& name : documents())
        notes.push_back ("-rw-r--r-- " + linuxFolder + "/doc/" + name);

    for (const auto& entry : entriesOf (packages::linuxArchive()))
    {
        EXPECT_EQ (entry.owner, "0/0");
        listed.push_back (entry.mode + " " + entry.path);
    }

    EXPECT_THAT (listed, testing::IsSupersetOf (notes));
    std::erase_if (listed, [&notes] (const auto& line) { return std::ranges::count (notes, line) > 0; });

    EXPECT_THAT (
        listed,
        ElementsAre ("drwxr-xr-x " + linuxFolder + "/",
                     "-rw-r--r-- " + linuxFolder + "/INSTALL.txt",
                     "-rw-r--r-- " + linuxFolder + "/LICENSE",
                     "-rw-r--r-- " + linuxFolder + "/Quendal Larkspire.so",
                     "drwxr-xr-x " + linuxFolder + "/Quendal Larkspire.vst3/",
                     "drwxr-xr-x " + linuxFolder + "/Quendal Larkspire.vst3/Contents/",
                     "drwxr-xr-x " + linuxFolder + "/Quendal Larkspire.vst3/Contents/Resources/",
                     "-rw-r--r-- " + linuxFolder + "/Quendal Larkspire.vst3/Contents/Resources/moduleinfo.json",
                     "drwxr-xr-x " + linuxFolder + "/Quendal Larkspire.vst3/Contents/x86_64-linux/",
                     "-rw-r--r-- " + linuxFolder + vst3Library,
                     "-rw-r--r-- " + linuxFolder + "/THIRD-PARTY.txt",
                     "drwxr-xr-x " + linuxFolder + "/doc/",
                     "-rw-r--r-- " + linuxFolder + "/doc/CHANGELOG.md",
                     "-rw-r--r-- " + linuxFolder + "/doc/CONTRIBUTING.md",
                     "-rw-r--r-- " + linuxFolder + "/doc/README.md",
                     "drwxr-xr-x " + linuxFolder + "/doc/docs/",
                     "drwxr-xr-x " + linuxFolder + "/doc/docs/sound/",
                     "drwxr-xr-x " + linuxFolder + "/doc/docs/sound/data/",
                     "-rwxr-xr-x " + linuxFolder + "/larkspire-microphone",
                     "-rw-r--r-- " + linuxFolder + "/larkspire-microphone.1",
                     "-rwxr-xr-x " + linuxFolder + "/larkspire-render",
                     "-rw-r--r-- " + linuxFolder + "/larkspire-render.1",
                     "-rw-r--r-- " + linuxFolder + page,
                     "drwxr-xr-x " + linuxFolder + "/larkspire.lv2/",
                     "-rw-r--r-- " + linuxFolder + lv2Library,
                     "-rw-r--r-- " + linuxFolder + "/larkspire.lv2/larkspire.ttl",
                     "-rw-r--r-- " + linuxFolder + "/larkspire.lv2/manifest.ttl"));
}

TEST (LinuxArchive, HasLibrariesThatExportTheirEntriesAndNothingElse)
{
    const Unpacked archive (packages::linuxArchive());
    const auto exportsOf = [&archive] (const std::string& library)
    {
        return outputOf ("nm",
                         { "--dynamic", "--defined-only", "--format=just-symbols", archive / (linuxFolder + library) });
    };
    EXPECT_EQ (exportsOf (vst2Library), "VSTPluginMain\n");
    EXPECT_EQ (exportsOf (vst3Library), "GetPluginFactory\nModuleEntry\nModuleExit\n");
    EXPECT_EQ (exportsOf (lv2Library), "lv2_descriptor\n");
}

TEST (LinuxArchive, IsInstalledByTheCommandsOfItsInstructions)
{
    const Unpacked archive (packages::linuxArchive());
    const TemporaryFolder home;
    std::string commands;

    for (const auto& line : allFound (bytesOf (archive / (linuxFolder + "/INSTALL.txt")), "\n    ([^\n]*~/[^\n]*)"))
        commands += line + "\n";

    outputOf ({ .arguments = { "-e", "-c", commands },
                .program = "sh",
                .environment = { { "HOME", home.path() } },
                .folder = archive / linuxFolder });
    EXPECT_THAT (home.contents(),
                 ElementsAre (".lv2",
                              ".lv2/larkspire.lv2",
                              ".lv2" + lv2Library,
                              ".lv2/larkspire.lv2/larkspire.ttl",
                              ".lv2/larkspire.lv2/manifest.ttl",
                              ".vst",
                              ".vst/Quendal Larkspire.so",
                              ".vst3",
                              ".vst3/Quendal Larkspire.vst3",
                              ".vst3/Quendal Larkspire.vst3/Contents",
                              ".vst3/Quendal Larkspire.vst3/Contents/Resources",
                              ".vst3/Quendal Larkspire.vst3/Contents/Resources/moduleinfo.json",
                              ".vst3/Quendal Larkspire.vst3/Contents/x86_64-linux",
                              ".vst3" + vst3Library));
}

TEST (LinuxArchive, AsksForNothingNewerThanItsInstructionsSay)
{
    const Unpacked archive (packages::linuxArchive());
    const auto instructions = bytesOf (archive / (linuxFolder + "/INSTALL.txt"));
    ASSERT_THAT (instructions, HasSubstr ("glibc 2.35 or newer"));

    for (const auto& name : { vst2Library, vst3Library, lv2Library, renderer })
    {
        EXPECT_GT (newest (archive / (linuxFolder + name), "GLIBC_2\\."), 0);
        EXPECT_LE (newest (archive / (linuxFolder + name), "GLIBC_2\\."), 35);
        EXPECT_EQ (newest (archive / (linuxFolder + name), "GLIBCXX_3\\.4\\."), 0) << "the C++ library is inside";
    }
}

TEST (LinuxArchive, HasARendererThatRunsWithTheLibraryBesideIt)
{
    const Unpacked archive (packages::linuxArchive());
    const TemporaryFolder folder;
    const std::string voice = "/usr/share/sounds/alsa/Front_Center.wav";
    outputOf ({ .arguments = { "--mode", "Powerful", voice, "-o", folder / "result.wav" },
                .program = "./larkspire-render",
                .environment = { { "DISPLAY", ":none" }, { "HOME", folder.path() } },
                .inheritsEnvironment = false,
                .folder = archive / linuxFolder });
    const auto result = read (folder / "result.wav");
    EXPECT_EQ (result.sampleRate, 48000);
    EXPECT_EQ (result.samples.size(), read (voice).samples.size());
    EXPECT_NE (result.samples, read (voice).samples);
}

TEST (WindowsArchive, HoldsTheseFilesAndNoOthers)
{
    EXPECT_THAT (Unpacked (packages::windowsArchive()).contents(),
                 ElementsAre (windowsFolder,
                              windowsFolder + "/INSTALL.txt",
                              windowsFolder + "/LICENSE.txt",
                              windowsFolder + "/Quendal Larkspire.dll",
                              windowsFolder + "/Quendal Larkspire.vst3",
                              windowsFolder + "/Quendal Larkspire.vst3/Contents",
                              windowsFolder + "/Quendal Larkspire.vst3/Contents/Resources",
                              windowsFolder + "/Quendal Larkspire.vst3/Contents/Resources/moduleinfo.json",
                              windowsFolder + "/Quendal Larkspire.vst3/Contents/x86_64-win",
                              windowsFolder + windowsVst3Library,
                              windowsFolder + "/THIRD-PARTY.txt",
                              windowsFolder + page));
}

TEST (WindowsArchive, HasLibrariesThatExportTheirEntriesAndNothingElse)
{
    const Unpacked archive (packages::windowsArchive());
    const auto exportsOf = [&archive] (const std::string& library)
    {
        const auto headers = outputOf ("objdump", { "--private-headers", archive / (windowsFolder + library) });
        return allFound (headers, "\n\t\\[ *[0-9]+\\] ([^+\n]+)");
    };
    EXPECT_THAT (exportsOf ("/Quendal Larkspire.dll"), ElementsAre ("VSTPluginMain"));
    EXPECT_THAT (exportsOf (windowsVst3Library), ElementsAre ("ExitDll", "GetPluginFactory", "InitDll"));
}

TEST (WindowsArchive, EndsEveryLineOfItsTextsAsWindowsDoes)
{
    const Unpacked archive (packages::windowsArchive());

    for (const std::string name : { "/INSTALL.txt", "/LICENSE.txt", "/THIRD-PARTY.txt" })
    {
        const auto text = bytesOf (archive / (windowsFolder + name));
        EXPECT_TRUE (text.ends_with ("\r\n")) << name;
        EXPECT_FALSE (std::regex_search (text, std::regex ("[^\r]\n"))) << name;
        EXPECT_THAT (text, testing::Not (HasSubstr ("\r\r"))) << name;
    }
}

TEST (Archives, NameWhatOthersWrote)
{
    const Unpacked forLinux (packages::linuxArchive());
    const Unpacked forWindows (packages::windowsArchive());
    const auto onLinux = bytesOf (forLinux / (linuxFolder + "/THIRD-PARTY.txt"));
    const auto onWindows = bytesOf (forWindows / (windowsFolder + "/THIRD-PARTY.txt"));

    for (const std::string text : { "JUCE",
                                    "HarfBuzz",
                                    "SheenBidi",
                                    "GCC RUNTIME LIBRARY EXCEPTION",
                                    "VST 3 SDK",
                                    "VST is a trademark of Steinberg Media Technologies GmbH",
                                    "Neither the name of the Steinberg Media Technologies nor the names",
                                    "GNU GENERAL PUBLIC LICENSE",
                                    "musl",
                                    "Developed at SunPro" })
        EXPECT_THAT ((std::vector { onLinux, onWindows }), testing::Each (HasSubstr (text)));

    for (const std::string text : { "CLI11", "JSON for Modern C++" })
        EXPECT_THAT (onLinux, HasSubstr (text));

    for (const std::string text :
         { "mingw-w64", "The PNG Reference Library Authors", "Jean-loup Gailly and Mark Adler" })
        EXPECT_THAT (onWindows, HasSubstr (text));
}

TEST (Packages, AreTheSameBytesWhenTheyAreMadeAgain)
{
    // In another folder, by somebody whose machine has other settings.
    const TemporaryFolder folder;
    const std::string command = "umask 077 && exec '" + paths::source ("scripts/packaging/package") + "' \"$0\"";
    outputOf ("env", { "TZ=Asia/Tokyo", "LC_ALL=C", "sh", "-c", command, folder.path() });

    for (const auto& package : { packages::debian(), packages::linuxArchive(), packages::windowsArchive() })
        EXPECT_TRUE (bytesOf (package) == bytesOf (folder / package.filename().string())) << package;

    EXPECT_EQ (folder.contents().size(), 3);
}

TEST (Packages, ForLinuxAreMadeWithoutTheBuildForWindows)
{
    const auto steps = outputOf ("make", { "--dry-run", "--directory", paths::source(), "package-linux" });
    EXPECT_THAT (steps, HasSubstr ("scripts/packaging/package --linux"));
    EXPECT_THAT (steps, testing::Not (HasSubstr ("windows")));

    const TemporaryFolder folder;
    outputOf (paths::source ("scripts/packaging/package"), { "--linux", folder.path() });
    EXPECT_THAT (folder.contents(),
                 testing::UnorderedElementsAre (packages::debian().filename(), packages::linuxArchive().filename()));
}

TEST (Packages, HoldNoFolderOfTheBuild)
{
    for (const auto& package : { packages::debian(), packages::linuxArchive(), packages::windowsArchive() })
    {
        const Unpacked unpacked (package);

        for (const auto& file : unpacked.files())
            EXPECT_EQ (outputOf ("zcat", { "--force", unpacked / file }).find (paths::source()), std::string::npos)
                << file;
    }
}
} // namespace
