// SPDX-License-Identifier: AGPL-3.0-only
// The built file: what it shows to others, what it needs of them, and two of it at once.
#include "support/Comparison.h"
#include "support/Paths.h"
#include "support/RawHost.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <regex>
#include <set>

namespace
{
/** The lines that a command prints. */
std::vector<std::string> linesOf (const std::string& command)
{
    std::vector<std::string> lines;
    std::unique_ptr<FILE, int (*) (FILE*)> pipe (popen (command.c_str(), "r"), pclose);
    std::array<char, 4096> line {};

    while (pipe != nullptr && std::fgets (line.data(), static_cast<int> (line.size()), pipe.get()) != nullptr)
    {
        lines.emplace_back (line.data());
        lines.back().erase (lines.back().find_last_not_of ('\n') + 1);
    }

    return lines;
}

std::string quotedPath()
{
    return "'" + paths::plugin() + "'";
}

TEST (Library, ExportsItsEntryPointAndNothingElse)
{
    std::vector<std::string> symbols;

    for (const auto& line : linesOf ("nm --dynamic --defined-only --format=posix " + quotedPath()))
        symbols.push_back (line.substr (0, line.find (' ')));

    EXPECT_EQ (symbols, (std::vector<std::string> { "VSTPluginMain" }));
}

TEST (Library, NeedsNothingNewerThanItsDocumentationSays)
{
    // The C++ runtime is inside; of the C library it asks what came with 2.35 or before.
    const std::regex version ("GLIBC_2\\.([0-9]+)");
    int newest = 0;

    for (const auto& line : linesOf ("objdump -T " + quotedPath()))
    {
        std::smatch match;

        if (std::regex_search (line, match, version))
            newest = std::max (newest, std::stoi (match[1]));
    }

    EXPECT_GT (newest, 0);
    EXPECT_LE (newest, 35);

    const std::set<std::string> known { "libm.so.6",          "libc.so.6",           "libz.so.1",
                                        "libpng16.so.16",     "libjpeg.so.62",       "libfreetype.so.6",
                                        "libfontconfig.so.1", "ld-linux-x86-64.so.2" };
    const std::regex needed ("NEEDED +(.+)");
    int count = 0;

    for (const auto& line : linesOf ("objdump -p " + quotedPath()))
    {
        std::smatch match;

        if (std::regex_search (line, match, needed))
        {
            EXPECT_TRUE (known.contains (match[1])) << match[1];
            ++count;
        }
    }

    EXPECT_GT (count, 3);
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
