// SPDX-License-Identifier: AGPL-3.0-only
// The Windows library as a file.
#include "windows/PortableExecutable.h"
#include "windows/WineHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace
{
TEST (WindowsFile, ExportsItsEntryAndNothingElse)
{
    EXPECT_THAT (PortableExecutable (WineHost::libraryPath()).exports, testing::ElementsAre ("VSTPluginMain"));
}

TEST (WindowsFile, ImportsLibrariesOfTheSystemOnly)
{
    const std::set<std::string> system { "advapi32.dll", "comctl32.dll", "comdlg32.dll", "d2d1.dll",   "d3d11.dll",
                                         "dbghelp.dll",  "dcomp.dll",    "dwmapi.dll",   "dwrite.dll", "dxgi.dll",
                                         "gdi32.dll",    "imm32.dll",    "kernel32.dll", "msvcrt.dll", "ole32.dll",
                                         "oleaut32.dll", "shell32.dll",  "shlwapi.dll",  "user32.dll", "version.dll",
                                         "winmm.dll",    "ws2_32.dll",   "wininet.dll",  "uxtheme.dll" };
    const auto imports = PortableExecutable (WineHost::libraryPath()).imports;
    EXPECT_THAT (imports, testing::Contains ("kernel32.dll")) << "the table was read";

    for (const auto& library : imports)
        EXPECT_TRUE (system.contains (library) || library.starts_with ("api-ms-win-")) << library;
}

TEST (WindowsFile, SaysWhatItIs)
{
    const PortableExecutable file (WineHost::libraryPath());
    EXPECT_EQ (file.fileVersion, "0.0.16.242");
    EXPECT_EQ (file.productVersion, "0.0.16.242");
    EXPECT_THAT (file.versions,
                 testing::UnorderedElementsAre (testing::Pair ("CompanyName", "Quendal"),
                                                testing::Pair ("FileDescription", "Quendal Larkspire"),
                                                testing::Pair ("FileVersion", "16.242"),
                                                testing::Pair ("ProductName", "Quendal Larkspire"),
                                                testing::Pair ("ProductVersion", "16.242")));
}

TEST (WindowsFile, IsNotTakenForOneWhenItIsNone)
{
    EXPECT_THROW (PortableExecutable ("/proc/self/exe"), std::runtime_error);
    EXPECT_THROW (PortableExecutable ("/no/such/file"), std::runtime_error);
}
} // namespace
