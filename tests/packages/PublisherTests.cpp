// SPDX-License-Identifier: AGPL-3.0-only
// What the sources say but once, or not at all.
#include "support/FirstMatch.h"
#include "support/Paths.h"
#include "support/Recording.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <set>

namespace
{
namespace fs = std::filesystem;

/** The sources' files, but for this one, below a folder of the project. */
std::vector<fs::path> sourcesIn (const std::string& folder)
{
    const std::set<std::string> others { ".git", ".deps", "build", "dist", "demo", "node_modules" };
    std::vector<fs::path> files;

    for (auto i = fs::recursive_directory_iterator (paths::source (folder)); i != fs::recursive_directory_iterator();
         ++i)
    {
        if (others.contains (i->path().filename()))
            i.disable_recursion_pending();
        else if (i->is_regular_file() && i->path().filename() != "PublisherTests.cpp")
            files.push_back (i->path().lexically_relative (paths::source()));
    }

    return files;
}

/** The files in which the pattern is found. */
std::vector<std::string> filesWith (const std::string& pattern, const std::vector<fs::path>& files)
{
    std::vector<std::string> names;

    for (const auto& file : files)
        if (! allFound (bytesOf (paths::source (file)), "(" + pattern + ")").empty())
            names.push_back (file);

    return names;
}

TEST (Publisher, IsNamedInOnePlace)
{
    const auto files = sourcesIn ("");
    EXPECT_GT (files.size(), 500u);
    EXPECT_THAT (filesWith ("maintainers@|[Qq]uendal <", files), testing::ElementsAre ("cmake/Publisher.cmake"));
    EXPECT_THAT (filesWith ("[Cc]opyright[^\n]{0,40} Quendal\\b|\\(c\\)[^\n]{0,20} Quendal\\b", files),
                 testing::IsEmpty());
}

TEST (Documents, AreMadeOnSystemsThatKeepLicencesElsewhereThanDebian)
{
    auto files = sourcesIn ("cmake");

    for (const std::string folder : { "packaging", "web" })
        for (const auto& file : sourcesIn (folder))
            if (! file.string().starts_with ("packaging/debian/"))
                files.push_back (file);

    EXPECT_GT (files.size(), 50u);
    EXPECT_THAT (filesWith ("/usr/share/(doc|common-licenses)", files), testing::IsEmpty());
}
} // namespace
