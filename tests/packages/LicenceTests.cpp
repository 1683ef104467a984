// SPDX-License-Identifier: AGPL-3.0-only
// The licences of others that the sources hold, beside those that come with the packages that are linked here.
#include "support/FirstMatch.h"
#include "support/Paths.h"
#include "support/Recording.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

namespace
{
/** The words alone: Debian's files indent them, and write a dot where a line is empty. */
std::string wordsIn (const std::string& text)
{
    return std::regex_replace (std::regex_replace (text, std::regex ("\n \\.(?=\n)"), " "), std::regex ("\\s+"), " ");
}

struct Licence
{
    std::string file;
    std::string from;  // the words that begin what Debian's file has too
    std::string there; // Debian's file
};

TEST (Licences, AreThoseOfTheLinkedPackages)
{
    for (const auto& [file, from, there] : std::vector<Licence> {
             { "GPL-3", "GNU GENERAL PUBLIC LICENSE", "/usr/share/common-licenses/GPL-3" },
             { "cli11", "Redistribution and use", "/usr/share/doc/libcli11-dev/copyright" },
             { "gcc-runtime-exception", "GCC RUNTIME LIBRARY EXCEPTION", "/usr/share/doc/libstdc++6/copyright" },
             { "nlohmann-json", "Permission is hereby", "/usr/share/doc/nlohmann-json3-dev/copyright" },
             { "musl", "Developed at SunPro", "/usr/share/doc/wasi-libc/copyright" } })
    {
        const auto words = wordsIn (bytesOf (paths::source ("packaging/licences/" + file + ".txt")));
        const auto begin = words.find (from);
        ASSERT_NE (begin, std::string::npos) << file;
        EXPECT_THAT (wordsIn (bytesOf (there)), testing::HasSubstr (words.substr (begin, words.size() - begin - 1)))
            << file;
    }

    // musl's own terms stand ahead of those.
    const auto musl = wordsIn (bytesOf (paths::source ("packaging/licences/musl.txt")));
    EXPECT_THAT (wordsIn (bytesOf ("/usr/share/doc/wasi-libc/copyright")),
                 testing::HasSubstr (found (musl, "(Permission is hereby .* IN THE SOFTWARE\\.)")));
}
} // namespace
