// SPDX-License-Identifier: AGPL-3.0-only
#include "base/PartialFile.h"

#include "base/Failure.h"
#include "support/Recording.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <unistd.h>

namespace
{
using larkspire::Failure;
using larkspire::PartialFile;
using testing::ElementsAre;

std::string hiddenName()
{
    return ".result.partial-" + std::to_string (getpid());
}

TEST (PartialFile, IsHiddenUntilItIsWhole)
{
    const TemporaryFolder folder;
    PartialFile file (folder / "result");
    EXPECT_EQ (file.write ("12345", 5), 5);
    EXPECT_THAT (folder.contents(), ElementsAre (hiddenName()));
    file.commit();
    EXPECT_THAT (folder.contents(), ElementsAre ("result"));
    EXPECT_EQ (bytesOf (folder / "result"), "12345");
}

TEST (PartialFile, IsGoneIfItNeverBecomesWhole)
{
    const TemporaryFolder folder;

    {
        PartialFile file (folder / "result");
        file.write ("12345", 5);
    }

    EXPECT_TRUE (folder.contents().empty());
}

TEST (PartialFile, LeavesAloneWhatAKilledProcessOfItsNumberLeftBehind)
{
    const TemporaryFolder folder;
    writeBytes (folder / hiddenName(), "not ours");
    PartialFile file (folder / "result");
    file.write ("12345", 5);
    file.commit();
    EXPECT_THAT (folder.contents(), ElementsAre (hiddenName(), "result"));
    EXPECT_EQ (bytesOf (folder / hiddenName()), "not ours");
}

TEST (PartialFile, KeepsTheFirstError)
{
    const TemporaryFolder folder;
    PartialFile file (folder / "result");
    EXPECT_EQ (file.seek (-1, SEEK_SET), -1);
    EXPECT_EQ (file.write ("12345", 5), 5);
    EXPECT_THROW (file.throwOnError(), Failure);
    EXPECT_THROW (file.commit(), Failure);
    EXPECT_THAT (folder.contents(), ElementsAre (hiddenName()));
}
} // namespace
