// SPDX-License-Identifier: AGPL-3.0-only
// The built file: what it shows to others, what it needs of them, and two of it at once.
#include "support/Child.h"
#include "support/Comparison.h"
#include "support/FirstMatch.h"
#include "support/Paths.h"
#include "support/RawHost.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace
{
/** What a program of the binutils says of the library. */
std::string said (const std::string& program, std::vector<std::string> options)
{
    options.push_back (paths::plugin());
    return outputOf (Call { .arguments = std::move (options), .program = program });
}

TEST (Library, ExportsItsEntryPointAndNothingElse)
{
    const auto symbols = said ("nm", { "--dynamic", "--defined-only", "--format=just-symbols" });
    EXPECT_EQ (symbols, "VSTPluginMain\n");
}

TEST (Library, NeedsNothingNewerThanItsDocumentationSays)
{
    // The C++ runtime is inside; of the C library it asks what came with 2.35 or before.
    int newest = 0;

    for (const auto& version : allFound (said ("objdump", { "-T" }), "GLIBC_2\\.([0-9]+)"))
        newest = std::max (newest, std::stoi (version));

    EXPECT_GT (newest, 0);
    EXPECT_LE (newest, 35);

    const std::set<std::string> known { "libm.so.6",          "libc.so.6",           "libz.so.1",
                                        "libpng16.so.16",     "libjpeg.so.62",       "libfreetype.so.6",
                                        "libfontconfig.so.1", "ld-linux-x86-64.so.2" };
    const auto needed = allFound (said ("objdump", { "-p" }), "NEEDED +(.+)");
    EXPECT_GT (needed.size(), 3u);

    for (const auto& library : needed)
        EXPECT_TRUE (known.contains (library)) << library;
}

TEST (Library, WorksBesideACopyOfItself)
{
    const TemporaryFolder folder;
    std::filesystem::copy_file (paths::plugin(), folder / "A copy.so");

    RawHost one;
    RawHost other (folder / "A copy.so");
    auto first = noise (1000, -12.0, 1);
    auto second = first;
    one.start (48000.0f);
    other.start (48000.0f);
    one.process (first.left, first.right, 0, 1000);
    other.process (second.left, second.right, 0, 1000);
    EXPECT_TRUE (compare (first, second).sameBits);
}
} // namespace
