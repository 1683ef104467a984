// SPDX-License-Identifier: AGPL-3.0-only
// Results appear whole or not at all.
#include "support/Child.h"
#include "support/Recording.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace
{
using testing::ElementsAre;
using testing::HasSubstr;

TEST (Output, ReplacesAFileOfItsName)
{
    const TemporaryFolder folder;
    const auto recording = makeNoise (1, 300, 16);
    write (folder / "voice.wav", wav16, recording);
    writeBytes (folder / "result.wav", std::string (100000, 'x'));
    EXPECT_EQ (run ({ "--mode", "bypass", folder / "voice.wav", "-o", folder / "result.wav" }).exitStatus, 0);
    EXPECT_EQ (read (folder / "result.wav"), recording);
    EXPECT_THAT (folder.contents(), ElementsAre ("result.wav", "voice.wav"));
}

TEST (Output, ReplacesTheFileBehindASymbolicLinkAndKeepsTheLink)
{
    const TemporaryFolder folder;
    const auto recording = makeNoise (1, 300, 16);
    write (folder / "voice.wav", wav16, recording);
    std::filesystem::create_directory (folder / "elsewhere");
    writeBytes (folder / "elsewhere/there.wav", "old");
    std::filesystem::create_symlink ("elsewhere/there.wav", folder / "result.wav");
    EXPECT_EQ (run ({ "--mode", "bypass", folder / "voice.wav", "-o", folder / "result.wav" }).exitStatus, 0);
    EXPECT_TRUE (std::filesystem::is_symlink (folder / "result.wav"));
    EXPECT_EQ (read (folder / "elsewhere/there.wav"), recording);
    EXPECT_THAT (folder.contents(), ElementsAre ("elsewhere", "elsewhere/there.wav", "result.wav", "voice.wav"));
}

TEST (Output, HasTheRightsThatNewFilesGet)
{
    const TemporaryFolder folder;
    write (folder / "voice.wav", wav16, makeNoise (1, 300, 16));
    const auto before = umask (0027);
    const auto outcome = run ({ folder / "voice.wav", "-o", folder / "result.wav" });
    umask (before);
    ASSERT_EQ (outcome.exitStatus, 0) << outcome.errors;
    struct stat status = {};
    ASSERT_EQ (stat ((folder / "result.wav").c_str(), &status), 0);
    EXPECT_EQ (status.st_mode & 0777U, 0640U);
}

TEST (Output, ThatTheDiskDoesNotHoldIsReportedAndLeavesNothing)
{
    const TemporaryFolder folder;
    write (folder / "voice.wav", wav16, makeNoise (2, 60000, 16));

    for (const std::string result : { "result.wav", "result.flac" })
        for (const std::string bits : { "16", "24" })
        {
            SCOPED_TRACE (result);
            SCOPED_TRACE (bits);
            const auto outcome = run (Call {
                .arguments = { "--bits", bits, folder / "voice.wav", "-o", folder / result }, .largestFile = 100000 });
            EXPECT_EQ (outcome.exitStatus, 1);
            EXPECT_EQ (outcome.errors,
                       "larkspire-render: " + (folder / result) + ": cannot be written: File too large\n");
            EXPECT_THAT (folder.contents(), ElementsAre ("voice.wav"));
        }
}

TEST (Output, ThatLacksOnlyItsLastBytesIsReportedToo)
{
    const TemporaryFolder folder;
    write (folder / "voice.wav", wav16, makeNoise (2, 20000, 16));

    for (const std::string result : { "result.wav", "result.flac" })
    {
        SCOPED_TRACE (result);
        ASSERT_EQ (run ({ folder / "voice.wav", "-o", folder / result }).exitStatus, 0);
        const auto size = std::filesystem::file_size (folder / result);
        std::filesystem::remove (folder / result);
        const auto outcome =
            run (Call { .arguments = { folder / "voice.wav", "-o", folder / result }, .largestFile = size - 1 });
        EXPECT_EQ (outcome.exitStatus, 1);
        EXPECT_EQ (linesOf (outcome.errors).size(), 1) << outcome.errors;
        EXPECT_THAT (folder.contents(), ElementsAre ("voice.wav"));
    }
}

TEST (Output, ThatFailsLeavesAnOlderResultAsItWas)
{
    const TemporaryFolder folder;
    write (folder / "voice.wav", wav16, makeNoise (2, 60000, 16));
    writeBytes (folder / "result.wav", "an older result");
    const auto outcome =
        run (Call { .arguments = { folder / "voice.wav", "-o", folder / "result.wav" }, .largestFile = 100000 });
    EXPECT_EQ (outcome.exitStatus, 1);
    EXPECT_EQ (bytesOf (folder / "result.wav"), "an older result");
    EXPECT_THAT (folder.contents(), ElementsAre ("result.wav", "voice.wav"));
}

TEST (Output, InAPlaceThatTakesNoneIsReported)
{
    const TemporaryFolder folder;
    write (folder / "voice.wav", wav16, makeNoise (1, 300, 16));
    writeBytes (folder / "file", "");
    const auto before = folder.contents();

    // Root may write everywhere; below a file and into the system's own tables not even root may.
    const std::vector<std::string> results { folder / "file/result.wav",
                                             folder / "no such folder/result.wav",
                                             folder / "file/results/",
                                             "/proc/result.wav",
                                             "/proc/results/" };

    for (const auto& result : results)
    {
        SCOPED_TRACE (result);
        const auto outcome = run ({ folder / "voice.wav", "-o", result });
        EXPECT_EQ (outcome.exitStatus, 1);
        EXPECT_EQ (linesOf (outcome.errors).size(), 1) << outcome.errors;
        EXPECT_THAT (outcome.errors, testing::StartsWith ("larkspire-render: " + result + ": cannot be "));
        EXPECT_EQ (folder.contents(), before);
    }
}

TEST (Output, NeverTakesThePlaceOfSomethingThatIsNoFile)
{
    const TemporaryFolder folder;
    write (folder / "voice.wav", wav16, makeNoise (1, 300, 16));
    ASSERT_EQ (mkfifo ((folder / "pipe").c_str(), 0600), 0);
    std::filesystem::create_directories (folder / "results/voice.wav");
    const auto before = folder.contents();

    for (const std::string result : { "pipe", "results" })
    {
        SCOPED_TRACE (result);
        const auto outcome = run ({ folder / "voice.wav", "-o", folder / result });
        EXPECT_EQ (outcome.exitStatus, 1);
        EXPECT_EQ (linesOf (outcome.errors).size(), 1) << outcome.errors;
        EXPECT_EQ (folder.contents(), before);
        EXPECT_TRUE (std::filesystem::is_fifo (folder / "pipe"));
    }
}

TEST (Output, OfAnInterruptedCallIsRemoved)
{
    for (const int signal : { SIGINT, SIGTERM, SIGHUP })
    {
        SCOPED_TRACE (signal);
        const TemporaryFolder folder;
        writeLongSilence (folder / "long.wav");
        write (folder / "next.wav", wav16, makeNoise (1, 300, 16));
        std::filesystem::create_directory (folder / "results");
        writeBytes (folder / "results/long.wav", "an older result");

        Child child (Call { .arguments = { folder / "long.wav", folder / "next.wav", "-o", folder / "results" } });
        ASSERT_TRUE (folder.showsSoon ("partial"));
        EXPECT_EQ (bytesOf (folder / "results/long.wav"), "an older result");
        child.sendSignal (signal);
        const auto outcome = child.wait();
        EXPECT_EQ (outcome.signal, signal);
        EXPECT_EQ (outcome.errors,
                   "larkspire-render: " + (folder / "long.wav") + ": interrupted, nothing was written\n");
        EXPECT_THAT (folder.contents(), ElementsAre ("long.wav", "next.wav", "results", "results/long.wav"));
        EXPECT_EQ (bytesOf (folder / "results/long.wav"), "an older result");
    }
}

TEST (Output, HasItsNameOnlyWhenItIsWhole)
{
    const TemporaryFolder folder;
    writeLongSilence (folder / "long.wav");
    const Child child (Call { .arguments = { folder / "long.wav", "-o", folder / "result.wav" } });
    ASSERT_TRUE (folder.showsSoon (".result.wav.partial-"));
    EXPECT_FALSE (std::filesystem::exists (folder / "result.wav"));
}
} // namespace
