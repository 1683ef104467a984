// SPDX-License-Identifier: AGPL-3.0-only
// The built files: what they show to others, what they need of them, and two of one at once.
#include "support/Child.h"
#include "support/Comparison.h"
#include "support/FirstMatch.h"
#include "support/PluginUnderTest.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace
{
class LibraryFile : public testing::TestWithParam<Format>
{
protected:
    /** What a program of the binutils says of the library. */
    static std::string said (const std::string& program, std::vector<std::string> options)
    {
        options.push_back (libraryPath (GetParam()));
        return outputOf (Call { .arguments = std::move (options), .program = program });
    }
};

INSTANTIATE_TEST_SUITE_P (Of, LibraryFile, testing::ValuesIn (allFormats), testing::PrintToStringParamName());

TEST_P (LibraryFile, ExportsItsEntriesAndNothingElse)
{
    const std::map<Format, std::string> entries { { Format::vst2, "VSTPluginMain\n" },
                                                  { Format::vst3, "GetPluginFactory\nModuleEntry\nModuleExit\n" },
                                                  { Format::lv2, "lv2_descriptor\n" } };
    EXPECT_EQ (said ("nm", { "--dynamic", "--defined-only", "--format=just-symbols" }), entries.at (GetParam()));
}

TEST_P (LibraryFile, NeedsNothingNewerThanItsDocumentationSays)
{
    // The C++ runtime is inside; of the C library it asks what came with 2.35 or before.
    int newest = 0;

    for (const auto& version : allFound (said ("objdump", { "-T" }), "GLIBC_2\\.([0-9]+)"))
        newest = std::max (newest, std::stoi (version));

    EXPECT_GT (newest, 0);
    EXPECT_LE (newest, 35);

    // Each has the same name on every system of today, and libjpeg, which has not, is not among them.
    std::vector<std::string> libraries { "libm.so.6", "libc.so.6", "ld-linux-x86-64.so.2" };

    if (GetParam() != Format::lv2) // which has no window
        for (const auto* name : { "libz.so.1", "libpng16.so.16", "libfreetype.so.6", "libfontconfig.so.1" })
            libraries.emplace_back (name);

    EXPECT_THAT (allFound (said ("objdump", { "-p" }), "NEEDED +(.+)"), testing::UnorderedElementsAreArray (libraries));
    EXPECT_THAT (said ("objdump", { "-p" }), testing::Not (testing::ContainsRegex ("RPATH|RUNPATH")));
}

TEST_P (LibraryFile, WorksBesideACopyOfItself)
{
    namespace fs = std::filesystem;
    const TemporaryFolder folder;
    const fs::path built = pluginPath (GetParam());
    const auto copy = folder.path() / built.filename();
    fs::copy (built, copy, fs::copy_options::recursive);

    const auto one = openPlugin (GetParam());
    const auto other = openPlugin (GetParam(), copy);
    auto first = noise (1000, -12.0, 1);
    auto second = first;
    one->start (48000.0f);
    other->start (48000.0f);
    one->process (first, 0, 1000);
    other->process (second, 0, 1000);
    EXPECT_TRUE (compare (first, second).sameBits);
}
} // namespace
