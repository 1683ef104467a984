// SPDX-License-Identifier: AGPL-3.0-only
// The Windows library as a file.
#include "support/Child.h"
#include "support/FirstMatch.h"
#include "windows/WineHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace
{
/** What stands behind a pattern in the file's headers, exports and imports, as often as it is there. */
std::vector<std::string> inHeaders (const std::string& pattern)
{
    static const auto headers =
        outputOf ({ .arguments = { "--private-headers", WineHost::libraryPath() }, .program = "objdump" });
    return allFound (headers, pattern);
}

TEST (WindowsFile, ExportsItsEntryAndNothingElse)
{
    EXPECT_THAT (inHeaders ("\n\t\\[ *[0-9]+\\] ([^+\n]+)"), testing::ElementsAre ("VSTPluginMain"));
}

TEST (WindowsFile, ImportsLibrariesOfTheSystemOnly)
{
    const std::set<std::string> system { "ADVAPI32.dll", "COMCTL32.dll", "GDI32.dll",   "IMM32.dll",   "KERNEL32.dll",
                                         "OLEAUT32.dll", "SHELL32.dll",  "SHLWAPI.dll", "USER32.dll",  "VERSION.dll",
                                         "WINMM.dll",    "WS2_32.dll",   "WININET.dll", "UxTheme.dll", "comdlg32.dll",
                                         "d2d1.dll",     "d3d11.dll",    "dbghelp.dll", "dcomp.dll",   "dwmapi.dll",
                                         "DWrite.dll",   "dxgi.dll",     "msvcrt.dll",  "ole32.dll" };
    const auto imports = inHeaders ("DLL Name: (.+)");
    EXPECT_THAT (imports, testing::Contains ("KERNEL32.dll")) << "the table was read";

    for (const auto& library : imports)
        EXPECT_TRUE (system.contains (library) || library.starts_with ("api-ms-win-")) << library;
}

TEST (WindowsFile, SaysWhatItIs)
{
    const auto report = WineHost::run ("properties");
    EXPECT_EQ (report["fixed file version"], "0.0.16.242");
    EXPECT_EQ (report["fixed product version"], "0.0.16.242");
    EXPECT_EQ (report["CompanyName"], "Quendal");
    EXPECT_EQ (report["FileDescription"], "Quendal Larkspire");
    EXPECT_EQ (report["FileVersion"], "16.242");
    EXPECT_EQ (report["ProductName"], "Quendal Larkspire");
    EXPECT_EQ (report["ProductVersion"], "16.242");
}
} // namespace
