// SPDX-License-Identifier: AGPL-3.0-only
// What somebody reads who sets the cross-build up by hand and lacks something.
#include "support/Paths.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <fstream>

namespace
{
class Toolchain : public testing::Test
{
protected:
    Toolchain()
    {
        std::ofstream (folder / "CMakeLists.txt") << "cmake_minimum_required (VERSION 3.25)\nproject (Nothing)\n";
        std::filesystem::create_directories (folder / "deps/mingw/share/mingw-w64/include");
        std::filesystem::create_directories (folder / "bin");
        std::filesystem::create_symlink (paths::cmake(), folder / "bin/cmake");
    }

    /** What configuring with the toolchain file prints, which must fail. */
    std::string complaint (const std::string& environment)
    {
        const auto command = environment + " '" + paths::cmake() + "' -S '" + folder.path().string() + "' -B '"
                             + (folder / "build") + "' -DCMAKE_TOOLCHAIN_FILE='" LARKSPIRE_TOOLCHAIN
                             + "' -DLARKSPIRE_WINDOWS_DEPS='" + (folder / "deps") + "' 2>&1";
        std::string output;
        auto* pipe = popen (command.c_str(), "r");

        for (std::array<char, 512> part {}; std::fgets (part.data(), static_cast<int> (part.size()), pipe) != nullptr;)
            output += part.data();

        EXPECT_NE (pclose (pipe), 0);
        return output;
    }

    TemporaryFolder folder;
};

TEST_F (Toolchain, NamesThePackageOfAMissingCompiler)
{
    EXPECT_THAT (complaint ("PATH='" + (folder / "bin") + "'"),
                 testing::HasSubstr (
                     "There is no x86_64-w64-mingw32-g++-posix: install the package g++-mingw-w64-x86-64-posix\n"));
}

TEST_F (Toolchain, NamesThePackagesOfMissingHeaders)
{
    EXPECT_THAT (complaint (""),
                 testing::ContainsRegex (
                     "missing or too old.*packages mingw-w64-common and mingw-w64-x86-64-dev, version 14\n"));
}

TEST_F (Toolchain, NamesThePackagesOfHeadersThatAreTooOld)
{
    std::ofstream (folder / "deps/mingw/share/mingw-w64/include/uiautomationcore.h")
        << "interface ISelectionProvider;\n";
    EXPECT_THAT (complaint (""),
                 testing::ContainsRegex (
                     "missing or too old.*packages mingw-w64-common and mingw-w64-x86-64-dev, version 14\n"));
}
} // namespace
