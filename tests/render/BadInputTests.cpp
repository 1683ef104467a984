// SPDX-License-Identifier: AGPL-3.0-only
// Inputs that cannot be rendered: exit status 1, one line that says why, and no file left. And names that only look
// bad.
#include "support/Child.h"
#include "support/Recording.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace
{
/** Renders the named file of the folder and expects exactly one line about it. */
void expectFailure (const TemporaryFolder& folder, const std::string& name, const std::string& reason)
{
    SCOPED_TRACE (name);
    const auto before = folder.contents();

    for (const std::string result : { "result.wav", "result.flac" })
    {
        const auto outcome = run ({ folder / name, "-o", folder / result });
        EXPECT_EQ (outcome.exitStatus, 1);
        EXPECT_EQ (outcome.output, "");
        EXPECT_EQ (outcome.errors, "larkspire-render: " + (folder / name) + ": " + reason + "\n");
        EXPECT_EQ (folder.contents(), before);
    }
}

TEST (BadInput, ThatIsMissingIsReported)
{
    const TemporaryFolder folder;
    expectFailure (folder, "missing.wav", "cannot be read: No such file or directory");
}

TEST (BadInput, ThatIsAFolderWithoutRecordingsIsReported)
{
    const TemporaryFolder folder;
    std::filesystem::create_directory (folder / "folder.wav");
    writeBytes (folder / "folder.wav/text.txt", "no sound");
    expectFailure (folder, "folder.wav", "holds no WAV, FLAC, AIFF or Ogg file");
}

TEST (BadInput, ThatIsEmptyIsReported)
{
    const TemporaryFolder folder;
    writeBytes (folder / "empty.wav", "");
    expectFailure (folder, "empty.wav", "is empty");
}

TEST (BadInput, ThatIsANamedPipeIsReported)
{
    const TemporaryFolder folder;
    ASSERT_EQ (mkfifo ((folder / "pipe.wav").c_str(), 0600), 0);
    expectFailure (folder, "pipe.wav", "is not a regular file");
}

TEST (BadInput, ThatIsNoAudioIsReported)
{
    const TemporaryFolder folder;
    const std::string reason = "is not a WAV, FLAC, AIFF or Ogg file";
    writeBytes (folder / "text.wav", "This is no sound.\n");
    writeBytes (folder / "short.flac", "fL");
    writeBytes (folder / "picture.png", "\x89PNG\r\n\x1a\n");

    // Two beginnings that a decoder of MPEG audio takes for its own.
    writeBytes (folder / "sixteen-bit-text.txt", "\xff\xfeh\1i\1");
    writeBytes (folder / "layer-3.mp3", "\xff\xfb\x90" + std::string (2000, 'x'));

    for (const std::string name : { "text.wav", "short.flac", "picture.png", "sixteen-bit-text.txt", "layer-3.mp3" })
        expectFailure (folder, name, reason);
}

TEST (BadInput, ThatBeginsLikeAudioAndIsNoneIsReported)
{
    const TemporaryFolder folder;

    for (const std::string beginning : { "RIFF", "RIFX", "RF64", "FORM", "fLaC", "OggS" })
    {
        SCOPED_TRACE (beginning);
        writeBytes (folder / "strange.wav", beginning + "and then something else entirely, at some length");
        const auto outcome = run ({ folder / "strange.wav", "-o", folder / "result.wav" });
        EXPECT_EQ (outcome.exitStatus, 1);
        EXPECT_EQ (linesOf (outcome.errors).size(), 1) << outcome.errors;
        EXPECT_THAT (outcome.errors, testing::HasSubstr ("strange.wav: cannot be read as audio: "));
        EXPECT_EQ (folder.contents(), (std::vector<std::string> { "strange.wav" }));
    }
}

TEST (BadInput, WithMoreThanTwoChannelsIsReported)
{
    const TemporaryFolder folder;
    write (folder / "three.wav", wav16, makeNoise (3, 100, 16));
    write (folder / "six.flac", flac16, makeNoise (6, 100, 16));
    expectFailure (folder, "three.wav", "has 3 channels; only mono and stereo are rendered");
    expectFailure (folder, "six.flac", "has 6 channels; only mono and stereo are rendered");
}

TEST (BadInput, ThatIsCutOffIsReported)
{
    const TemporaryFolder folder;

    for (const auto& [name, format] : { std::pair { "voice.flac", flac16 }, std::pair { "voice.ogg", oggVorbis } })
    {
        SCOPED_TRACE (name);
        write (folder / name, format, makeNoise (1, 30000, 16));
        const auto bytes = bytesOf (folder / name);
        writeBytes (folder / name, bytes.substr (0, bytes.size() / 2));
        const auto before = folder.contents();
        const auto outcome = run ({ folder / name, "-o", folder / "result.wav" });
        EXPECT_EQ (outcome.exitStatus, 1);
        EXPECT_EQ (linesOf (outcome.errors).size(), 1) << outcome.errors;
        EXPECT_EQ (folder.contents(), before);
    }
}

TEST (BadInput, ThatHoldsLessThanItStatesIsReported)
{
    const TemporaryFolder folder;
    write (folder / "voice.flac", flac16, makeNoise (1, 30000, 16));
    stateLength (folder / "voice.flac", 30001);
    expectFailure (folder, "voice.flac", "is damaged: 30000 of 30001 samples can be read");
}

TEST (BadInput, ThatIsDamagedInTheMiddleIsReportedAlsoIfItStatesNoLength)
{
    const TemporaryFolder folder;
    write (folder / "voice.flac", flac16, makeNoise (1, 30000, 16));
    stateLength (folder / "voice.flac", 0);
    auto bytes = bytesOf (folder / "voice.flac");
    bytes.replace (bytes.size() / 2, 5, 5, '\x55');
    writeBytes (folder / "voice.flac", bytes);
    const auto before = folder.contents();
    const auto outcome = run ({ folder / "voice.flac", "-o", folder / "result.wav" });
    EXPECT_EQ (outcome.exitStatus, 1);
    EXPECT_EQ (linesOf (outcome.errors).size(), 1) << outcome.errors;
    EXPECT_THAT (outcome.errors, testing::HasSubstr ("voice.flac: cannot be read to its end: "));
    EXPECT_EQ (folder.contents(), before);
}

TEST (BadInput, WithALineEndInItsNameIsReportedInOneLine)
{
    const TemporaryFolder folder;
    const auto outcome = run ({ folder / "two\nlines.wav", "-o", folder / "result.wav" });
    EXPECT_EQ (outcome.exitStatus, 1);
    EXPECT_EQ (linesOf (outcome.errors).size(), 1) << outcome.errors;
    EXPECT_THAT (outcome.errors, testing::HasSubstr ("two\\x0alines.wav: "));
}

TEST (StrangeNames, AreRenderedLikeAnyOther)
{
    // A path is bytes: no UTF-8, spaces, what the argument parser takes for a list, what a terminal obeys.
    for (const std::string name : { "\xff\xfe\x80 voice.wav", " voice.wav", "[a,b]", "new\nline.wav", "\xc3\xa4.wav" })
    {
        SCOPED_TRACE (name);
        const TemporaryFolder folder;
        const auto recording = makeNoise (1, 300, 16);
        write (folder / name, wav16, recording);
        const auto outcome =
            run (Call { .arguments = { "--mode", "bypass", name, "-o", "results/" }, .folder = folder.path() });
        EXPECT_EQ (outcome.exitStatus, 0) << outcome.errors;
        EXPECT_EQ (outcome.errors, "");
        const auto stem = std::filesystem::path (name).stem().string();
        EXPECT_EQ (read (folder / ("results/" + stem + ".wav")), recording);
    }
}

TEST (StrangeNames, MayBeAsLongAsTheSystemAllows)
{
    const TemporaryFolder folder;
    const auto recording = makeNoise (1, 300, 16);
    const auto name = std::string (251, 'x') + ".wav";
    write (folder / "voice.wav", wav16, recording);
    const auto outcome = run ({ "--mode", "bypass", folder / "voice.wav", "-o", folder / name });
    EXPECT_EQ (outcome.exitStatus, 0) << outcome.errors;
    EXPECT_EQ (read (folder / name), recording);
}

TEST (StrangeNames, MayBeginWithADashBehindADoubleDash)
{
    const TemporaryFolder folder;
    const auto recording = makeNoise (1, 300, 16);
    write (folder / "-mode.wav", wav16, recording);
    const auto outcome = run (
        Call { .arguments = { "--mode", "bypass", "-o", "result.wav", "--", "-mode.wav" }, .folder = folder.path() });
    EXPECT_EQ (outcome.exitStatus, 0) << outcome.errors;
    EXPECT_EQ (read (folder / "result.wav"), recording);
}
} // namespace
