// SPDX-License-Identifier: AGPL-3.0-only
// The Windows libraries as files.
#include "support/Child.h"
#include "support/FirstMatch.h"
#include "support/Paths.h"
#include "support/Recording.h"
#include "support/TemporaryFolder.h"
#include "windows/WineHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace
{
class WindowsFile : public testing::TestWithParam<Format>
{
protected:
    /** What stands behind a pattern in the file's headers, exports and imports, as often as it is there. */
    static std::vector<std::string> inHeaders (const std::string& pattern)
    {
        auto file = WineHost::libraryPath (GetParam());

        if (GetParam() == Format::vst3)
            file += "/Contents/x86_64-win/Quendal Larkspire.vst3";

        return allFound (outputOf ({ .arguments = { "--private-headers", file }, .program = "objdump" }), pattern);
    }
};

INSTANTIATE_TEST_SUITE_P (Of, WindowsFile, testing::ValuesIn (vstFormats), testing::PrintToStringParamName());

TEST_P (WindowsFile, ExportsItsEntriesAndNothingElse)
{
    const std::vector<std::string> vst2 { "VSTPluginMain" };
    const std::vector<std::string> vst3 { "ExitDll", "GetPluginFactory", "InitDll" };
    EXPECT_EQ (inHeaders ("\n\t\\[ *[0-9]+\\] ([^+\n]+)"), GetParam() == Format::vst2 ? vst2 : vst3);
}

TEST_P (WindowsFile, ImportsLibrariesOfTheSystemOnly)
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

TEST_P (WindowsFile, SaysWhatItIs)
{
    const auto report = WineHost::run ("properties", {}, GetParam());
    EXPECT_EQ (report["fixed file version"], "0.0.16.242");
    EXPECT_EQ (report["fixed product version"], "0.0.16.242");
    EXPECT_EQ (report["CompanyName"], "Quendal");
    EXPECT_EQ (report["FileDescription"], "Quendal Larkspire");
    EXPECT_EQ (report["FileVersion"], "16.242");
    EXPECT_EQ (report["ProductName"], "Quendal Larkspire");
    EXPECT_EQ (report["ProductVersion"], "16.242");
}

TEST (WindowsBundle, HoldsItsLibraryAndTheDescriptionOfTheLinuxBundle)
{
    const auto bundle = WineHost::libraryPath (Format::vst3);
    EXPECT_THAT (contentsOf (bundle),
                 testing::ElementsAre ("Contents",
                                       "Contents/Resources",
                                       "Contents/Resources/moduleinfo.json",
                                       "Contents/x86_64-win",
                                       "Contents/x86_64-win/Quendal Larkspire.vst3"));
    const std::string description = "/Contents/Resources/moduleinfo.json";
    EXPECT_EQ (bytesOf (bundle + description), bytesOf (paths::vst3() + description));
}
} // namespace
