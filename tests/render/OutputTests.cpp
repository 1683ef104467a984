// SPDX-License-Identifier: AGPL-3.0-only
// Results appear whole or not at all.
#include "render/RendererTest.h"
#include "support/Paths.h"

#include <nlohmann/json.hpp>

#include <csignal>
#include <filesystem>
#include <limits>
#include <sys/stat.h>

namespace
{
using testing::ElementsAre;
using Output = RendererTest;

TEST_F (Output, ReplacesAFileOfItsName)
{
    const auto recording = writeNoise ("voice.wav");
    writeBytes (folder / "result.wav", std::string (100000, 'x'));
    expectSuccess ({ "--mode", "bypass", "voice.wav", "-o", "result.wav" });
    EXPECT_EQ (read (folder / "result.wav"), recording);
    EXPECT_THAT (folder.contents(), ElementsAre ("result.wav", "voice.wav"));
}

TEST_F (Output, ReplacesTheFileBehindASymbolicLinkAndKeepsTheLink)
{
    const auto recording = writeNoise ("voice.wav");
    std::filesystem::create_directory (folder / "elsewhere");
    writeBytes (folder / "elsewhere/there.wav", "old");
    std::filesystem::create_symlink ("elsewhere/there.wav", folder / "result.wav");
    expectSuccess ({ "--mode", "bypass", "voice.wav", "-o", "result.wav" });
    EXPECT_TRUE (std::filesystem::is_symlink (folder / "result.wav"));
    EXPECT_EQ (read (folder / "elsewhere/there.wav"), recording);
    EXPECT_THAT (folder.contents(), ElementsAre ("elsewhere", "elsewhere/there.wav", "result.wav", "voice.wav"));
}

TEST_F (Output, IsMadeWhereASymbolicLinkPoints)
{
    const auto recording = writeNoise ("voice.wav");
    std::filesystem::create_directories (folder / "far/away");
    std::filesystem::create_symlink ("far/link.wav", folder / "result.wav");
    std::filesystem::create_symlink ("away/there.wav", folder / "far/link.wav");
    std::filesystem::create_symlink (folder / "far/absolute.wav", folder / "absolute.wav");
    expectSuccess ({ "--mode", "bypass", "voice.wav", "-o", "result.wav" });
    expectSuccess ({ "--mode", "bypass", "voice.wav", "-o", "absolute.wav" });
    EXPECT_TRUE (std::filesystem::is_symlink (folder / "result.wav"));
    EXPECT_TRUE (std::filesystem::is_symlink (folder / "far/link.wav"));
    EXPECT_EQ (read (folder / "far/away/there.wav"), recording);
    EXPECT_EQ (read (folder / "far/absolute.wav"), recording);

    // Into a folder that is not there nothing is written, and a link to itself stays one.
    std::filesystem::create_symlink ("missing/there.wav", folder / "lost.wav");
    std::filesystem::create_symlink ("circle.wav", folder / "circle.wav");
    EXPECT_THAT (expectFailure (1, { "voice.wav", "-o", "lost.wav" }), testing::HasSubstr ("No such file"));
    EXPECT_THAT (expectFailure (1, { "voice.wav", "-o", "circle.wav" }), testing::HasSubstr ("symbolic links"));
    EXPECT_TRUE (std::filesystem::is_symlink (folder / "circle.wav"));
}

TEST_F (Output, ThatLosesSamplesSaysHowManyOnce)
{
    constexpr float step = 1.0f / 8388608.0f;
    writeFloats (folder / "float.wav", wavFloat, 1, { 0.5f, 1.5f, -19.0f, 0.4f * step, 1.0f, -1.0f, 2.0f });
    writeFloats (folder / "fits.wav", wavFloat, 1, { 0.5f, -1.0f, 0.25f });
    const std::string name = "larkspire-render: result.wav: ";
    const std::string remedy = "; --bits 32f keeps them\n";
    const auto outcome = runHere ({ "--json", "--mode", "bypass", "float.wav", "-o", "result.wav" });
    EXPECT_EQ (outcome.exitStatus, 0);
    EXPECT_EQ (outcome.errors,
               name + "3 samples beyond full scale clipped" + remedy + name + "2 samples rounded to 24 bits" + remedy);
    const auto result = nlohmann::json::parse (outcome.output).at ("results").at (0);
    EXPECT_EQ (result.at ("clipped_samples"), 3);
    EXPECT_EQ (result.at ("warnings").size(), 2U);

    // NaN ends in the plug-in; in one that halves what it gets it does not.
    writeFloats (folder / "broken.wav", wavFloat, 1, { 0.5f, std::numeric_limits<float>::quiet_NaN() });
    EXPECT_EQ (runHere ({ "--plugin", paths::standIn(), "broken.wav", "-o", "result.wav" }).errors,
               name + "1 sample of NaN became silence" + remedy);

    // Nothing to say: of what fits, of floats, and in a mode that makes every sample anew.
    expectSuccess ({ "--mode", "bypass", "fits.wav", "-o", "result.wav" });
    expectSuccess ({ "--mode", "bypass", "--bits", "32f", "float.wav", "-o", "result.wav" });
    expectSuccess ({ "--mode", "Medium", "fits.wav", "-o", "result.wav" });
}

TEST_F (Output, OfSamplesThatFloatsDoNotHoldSaysSo)
{
    // 32-bit whole numbers: one of 24 bits, and two that have more.
    write (folder / "wide.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_32, { .samples = { 256 << 8, 0x12345678, 0x40000001 } });
    const auto outcome = runHere ({ "--mode", "bypass", "--bits", "32f", "wide.wav", "-o", "result.wav" });
    EXPECT_EQ (outcome.exitStatus, 0);
    EXPECT_EQ (outcome.errors,
               "larkspire-render: wide.wav: 2 samples rounded to 32-bit floats, which the plug-in works in\n");
    EXPECT_EQ (readFloats (folder / "result.wav"), readFloats (folder / "wide.wav"));
}

TEST_F (Output, HasTheRightsThatNewFilesGet)
{
    writeNoise ("voice.wav");
    const auto before = umask (0027);
    expectSuccess ({ "voice.wav", "-o", "result.wav" });
    umask (before);
    EXPECT_EQ (std::filesystem::status (folder / "result.wav").permissions(), std::filesystem::perms { 0640 });
}

TEST_F (Output, ThatTheDiskDoesNotHoldIsReportedAndLeavesNothing)
{
    writeNoise ("voice.wav", 2, 60000);

    for (const std::string result : { "result.wav", "result.flac" })
    {
        for (const std::string bits : { "16", "24" })
            EXPECT_EQ (expectFailure (1,
                                      Call { .arguments = { "--bits", bits, "voice.wav", "-o", result },
                                             .folder = folder.path(),
                                             .largestFile = 100000 }),
                       result + ": cannot be written: File too large\n");

        // Where only the last byte has no room it is the same.
        expectSuccess ({ "voice.wav", "-o", result });
        const auto size = std::filesystem::file_size (folder / result);
        std::filesystem::remove (folder / result);
        expectFailure (
            1, Call { .arguments = { "voice.wav", "-o", result }, .folder = folder.path(), .largestFile = size - 1 });
    }
}

TEST_F (Output, InMp3OrOpusThatTheDiskDoesNotHoldIsReportedAndLeavesNothing)
{
    writeNoise ("voice.wav", 2, 60000);

    for (const std::string result : { "result.mp3", "result.opus" })
    {
        expectSuccess ({ "voice.wav", "-o", result });
        const auto size = std::filesystem::file_size (folder / result);
        std::filesystem::remove (folder / result);

        for (const auto largest : { std::uintmax_t { 500 }, size / 2, size - 1 })
            EXPECT_EQ (expectFailure (1,
                                      Call { .arguments = { "voice.wav", "-o", result },
                                             .folder = folder.path(),
                                             .largestFile = largest }),
                       result + ": cannot be written: File too large\n");
    }
}

TEST_F (Output, ThatFailsLeavesAnOlderResultAsItWas)
{
    writeNoise ("voice.wav", 2, 60000);
    writeBytes (folder / "result.wav", "an older result");
    expectFailure (
        1, Call { .arguments = { "voice.wav", "-o", "result.wav" }, .folder = folder.path(), .largestFile = 100000 });
    EXPECT_EQ (bytesOf (folder / "result.wav"), "an older result");
}

TEST_F (Output, InAPlaceThatTakesNoneIsReported)
{
    writeNoise ("voice.wav");
    writeBytes (folder / "file", "");

    // Root may write everywhere; below a file and into the system's own tables not even root may.
    for (const std::string result :
         { "file/result.wav", "no such folder/result.wav", "file/results/", "/proc/result.wav", "/proc/results/" })
        EXPECT_THAT (expectFailure (1, { "voice.wav", "-o", result }), testing::StartsWith (result + ": cannot be "));
}

TEST_F (Output, NeverTakesThePlaceOfSomethingThatIsNoFile)
{
    writeNoise ("voice.wav");
    ASSERT_EQ (mkfifo ((folder / "pipe").c_str(), 0600), 0);
    std::filesystem::create_directories (folder / "results/voice.wav");

    for (const std::string result : { "pipe", "results" })
        expectFailure (1, { "voice.wav", "-o", result });

    EXPECT_TRUE (std::filesystem::is_fifo (folder / "pipe"));
}

TEST_F (Output, OfAnInterruptedCallIsRemoved)
{
    writeLongSilence (folder / "long.wav");
    writeNoise ("next.wav");
    std::filesystem::create_directory (folder / "results");
    writeBytes (folder / "results/long.wav", "an older result");

    for (const auto& [signal, kind] :
         { std::pair { SIGINT, "wav" }, { SIGTERM, "wav" }, { SIGHUP, "wav" }, { SIGINT, "mp3" }, { SIGTERM, "opus" } })
    {
        SCOPED_TRACE (signal);
        Child child (Call { .arguments = { "--format", kind, "long.wav", "next.wav", "-o", "results" },
                            .folder = folder.path() });
        ASSERT_TRUE (folder.showsSoon ("partial"));
        EXPECT_EQ (bytesOf (folder / "results/long.wav"), "an older result");
        child.sendSignal (signal);
        const auto outcome = withoutSummary (child.wait());
        EXPECT_EQ (outcome.signal, signal);
        EXPECT_EQ (outcome.errors, "larkspire-render: long.wav: interrupted, nothing was written\n");
        EXPECT_THAT (folder.contents(), ElementsAre ("long.wav", "next.wav", "results", "results/long.wav"));
        EXPECT_EQ (bytesOf (folder / "results/long.wav"), "an older result");
    }
}

TEST_F (Output, HasItsNameOnlyWhenItIsWhole)
{
    writeLongSilence (folder / "long.wav");
    const Child child (Call { .arguments = { "long.wav", "-o", "result.wav" }, .folder = folder.path() });
    ASSERT_TRUE (folder.showsSoon (".result.wav.partial-"));
    EXPECT_FALSE (std::filesystem::exists (folder / "result.wav"));
}
} // namespace
