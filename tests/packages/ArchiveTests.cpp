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
    std::vector<std::string> listed;

    for (const auto& entry : entriesOf (packages::linuxArchive()))
    {
        EXPECT_EQ (entry.owner, "0/0");
        listed.push_back (entry.mode + " " + entry.path);
    }

    EXPECT_THAT (listed,
                 ElementsAre ("drwxr-xr-x " + linuxFolder + "/",
                              "-rw-r--r-- " + linuxFolder + "/INSTALL.txt",
                              "-rw-r--r-- " + linuxFolder + "/LICENSE",
                              "-rw-r--r-- " + linuxFolder + "/Quendal Larkspire.so",
                              "-rw-r--r-- " + linuxFolder + "/THIRD-PARTY.txt",
                              "-rwxr-xr-x " + linuxFolder + "/larkspire-render",
                              "-rw-r--r-- " + linuxFolder + "/larkspire-render.1"));
}

TEST (LinuxArchive, HasALibraryThatExportsItsEntryAndNothingElse)
{
    const Unpacked archive (packages::linuxArchive());
    const auto library = archive / (linuxFolder + "/Quendal Larkspire.so");
    EXPECT_THAT (outputOf ("nm", { "--dynamic", "--defined-only", "--format=just-symbols", library }),
                 "VSTPluginMain\n");
}

TEST (LinuxArchive, AsksForNothingNewerThanItsInstructionsSay)
{
    const Unpacked archive (packages::linuxArchive());
    const auto instructions = bytesOf (archive / (linuxFolder + "/INSTALL.txt"));
    ASSERT_THAT (instructions, HasSubstr ("glibc 2.35 or newer"));

    for (const std::string name : { "/Quendal Larkspire.so", "/larkspire-render" })
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
                              windowsFolder + "/THIRD-PARTY.txt"));
}

TEST (WindowsArchive, HasALibraryThatExportsItsEntryAndNothingElse)
{
    const Unpacked archive (packages::windowsArchive());
    const auto headers =
        outputOf ("objdump", { "--private-headers", archive / (windowsFolder + "/Quendal Larkspire.dll") });
    EXPECT_THAT (allFound (headers, "\n\t\\[ *[0-9]+\\] ([^+\n]+)"), ElementsAre ("VSTPluginMain"));
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

    for (const std::string text : { "JUCE", "HarfBuzz", "SheenBidi", "GCC RUNTIME LIBRARY EXCEPTION" })
        EXPECT_THAT ((std::vector { onLinux, onWindows }), testing::Each (HasSubstr (text)));

    for (const std::string text : { "CLI11", "JSON for Modern C++" })
        EXPECT_THAT (onLinux, HasSubstr (text));

    for (const std::string text : { "mingw-w64", "libjpeg-turbo", "Independent JPEG Group", "libpng", "zlib" })
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
