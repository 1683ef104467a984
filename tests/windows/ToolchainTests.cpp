// SPDX-License-Identifier: AGPL-3.0-only
// What somebody reads who sets the cross-build up by hand and lacks something.
#include "support/Child.h"
#include "support/Paths.h"
#include "support/Recording.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{
class Toolchain : public testing::Test
{
protected:
    Toolchain()
    {
        writeBytes (folder / "CMakeLists.txt", "cmake_minimum_required (VERSION 3.25)\nproject (Nothing)\n");
        std::filesystem::create_directories (folder / "deps/mingw/share/mingw-w64/include");
        std::filesystem::create_directories (folder / "bin");
        std::filesystem::create_symlink (paths::cmake(), folder / "bin/cmake");
    }

    /** Configures with the toolchain file, which must fail, and expects what is said of it. */
    void expectComplaint (const std::string& pattern, const std::map<std::string, std::string>& environment = {}) const
    {
        const auto toolchain = paths::source ("cmake/windows/toolchain.cmake");
        const auto outcome = run ({ .arguments = { "-S",
                                                   folder.path(),
                                                   "-B",
                                                   folder / "build",
                                                   "-DCMAKE_TOOLCHAIN_FILE=" + toolchain,
                                                   "-DLARKSPIRE_WINDOWS_DEPS=" + (folder / "deps") },
                                    .program = paths::cmake(),
                                    .environment = environment });
        EXPECT_NE (outcome.exitStatus, 0);
        EXPECT_THAT (outcome.errors, testing::ContainsRegex (pattern));
    }

    static constexpr const char* badHeaders =
        "missing or too old.*packages mingw-w64-common and mingw-w64-x86-64-dev, version 14\n";
    TemporaryFolder folder;
};

TEST_F (Toolchain, NamesThePackageOfAMissingCompiler)
{
    expectComplaint ("There is no x86_64-w64-mingw32-g\\+\\+-posix: install the package "
                     "g\\+\\+-mingw-w64-x86-64-posix\n",
                     { { "PATH", folder / "bin" } });
}

TEST_F (Toolchain, NamesThePackagesOfMissingHeaders)
{
    expectComplaint (badHeaders);
}

TEST_F (Toolchain, NamesThePackagesOfHeadersThatAreTooOld)
{
    writeBytes (folder / "deps/mingw/share/mingw-w64/include/uiautomationcore.h", "interface ISelectionProvider;\n");
    expectComplaint (badHeaders);
}
} // namespace
