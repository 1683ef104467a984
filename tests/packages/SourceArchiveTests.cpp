// SPDX-License-Identifier: AGPL-3.0-only
// The sources as one archive: what is in it, and that all of it can be built from nothing else.
#include "packages/UnpackedSources.h"
#include "support/Recording.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{
TEST (SourceArchive, HoldsWhatGitTracksAndNothingElse)
{
    std::vector<std::string> tracked, listed;

    for (const auto& name : linesOf (outputOf ("git", { "-C", paths::source(), "ls-files" })))
        if (std::filesystem::exists (paths::source (name)) && ! name.empty())
            tracked.push_back (packages::sourcesFolder + "/" + name);

    for (const auto& entry : entriesOf (packages::sources()))
    {
        EXPECT_EQ (entry.owner, "0/0");
        EXPECT_TRUE (entry.mode == "-rw-r--r--" || entry.mode == "-rwxr-xr-x") << entry.mode << " " << entry.path;
        listed.push_back (entry.path);
    }

    EXPECT_THAT (listed, testing::UnorderedElementsAreArray (tracked));
}

TEST (SourceArchive, IsTheSameBytesWhenItIsMadeAgain)
{
    const TemporaryFolder folder;
    const std::string command = "umask 077 && exec '" + paths::source ("scripts/packaging/dist") + "' \"$0\"";
    outputOf ("env", { "TZ=Asia/Tokyo", "LC_ALL=C", "sh", "-c", command, folder.path() });
    EXPECT_TRUE (bytesOf (packages::sources()) == bytesOf (folder / packages::sources().filename().string()));
    EXPECT_EQ (folder.contents().size(), 1);
}

TEST (SourceArchive, IsBuiltWithoutGitAndWithoutANetworkAndGivesTheSameFiles)
{
    UnpackedSources sources;
    const InstalledBuild here;
    ASSERT_EQ (sources.installedFiles(), here.files());

    for (const auto& file : here.files())
        EXPECT_TRUE (bytesOf (sources.installed (file)) == bytesOf (here / file)) << file;
}
} // namespace
