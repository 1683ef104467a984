// SPDX-License-Identifier: AGPL-3.0-only
// Sound from standard input and to standard output.
#include "base/FileDescriptor.h"
#include "render/RendererTest.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <thread>

namespace
{
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class Pipe : public RendererTest
{
protected:
    /** Runs a line of the shell in the folder, in which $1 is the renderer. */
    Call shell (const std::string& line) const
    {
        return { .arguments = { "-c", line, "sh", paths::renderer() },
                 .program = "sh",
                 .environment = { { "TMPDIR", folder.path().string() } },
                 .folder = folder.path() };
    }

    Outcome runShell (const std::string& line) const { return run (shell (line)); }
};

TEST_F (Pipe, StandsBetweenOtherPrograms)
{
    const auto recording = writeNoise ("voice.wav", 2, 100000);
    const auto outcome = runShell (R"(cat voice.wav | "$1" --mode bypass --bits 16 - -o - | cat >result.wav)");
    EXPECT_EQ (outcome.exitStatus, 0);
    EXPECT_EQ (outcome.errors, "");
    EXPECT_EQ (bytesOf (folder / "result.wav"), bytesOf (folder / "voice.wav")) << "sizes and all";
    EXPECT_THAT (folder.contents(), ElementsAre ("result.wav", "voice.wav"));
}

TEST_F (Pipe, TakesEveryKindAndWritesEveryKind)
{
    const auto recording = makeNoise (1, 30000, 16);

    for (const auto& [name, format] :
         { std::pair { "voice.flac", flac16 }, { "voice.mp3", mp3 }, { "voice.opus", opus } })
    {
        write (folder / name, format, recording);
        EXPECT_EQ (runShell (std::string ("cat ") + name + R"( | "$1" - -o result.wav)").errors, "");
        const auto fromPipe = bytesOf (folder / "result.wav");
        expectSuccess ({ name, "-o", "result.wav" });
        EXPECT_EQ (bytesOf (folder / "result.wav"), fromPipe) << name;
    }

    for (const std::string kind : { "wav", "flac", "mp3", "opus" })
    {
        EXPECT_EQ (runShell (R"("$1" --format )" + kind + " voice.flac -o - | cat >piped").errors, "");
        expectSuccess ({ "voice.flac", "-o", "result." + kind });
        EXPECT_EQ (bytesOf (folder / ("result." + kind)), bytesOf (folder / "piped")) << kind;
    }
}

TEST_F (Pipe, IsReadOnceForAllModesAndAlsoFromAFile)
{
    writeNoise ("voice.wav");
    EXPECT_EQ (runShell (R"(cat voice.wav | "$1" --compare --jobs 2 --plot picture.png - -o result.wav)").errors, "");
    expectSuccess ({ "--compare", "voice.wav", "-o", "other.wav" });

    for (const std::string mode : { "bypass", "Gentle", "Medium", "Powerful" })
    {
        EXPECT_EQ (bytesOf (folder / ("result-" + mode + ".wav")), bytesOf (folder / ("other-" + mode + ".wav")));
        EXPECT_TRUE (std::filesystem::exists (folder / ("picture-" + mode + ".png")));
    }

    EXPECT_EQ (runShell (R"("$1" - -o again.wav <voice.wav)").errors, "");
    EXPECT_EQ (bytesOf (folder / "again.wav"), bytesOf (folder / "other-Medium.wav"));

    // Behind what another program has taken.
    EXPECT_EQ (runShell (R"((head -c 0; dd bs=1 count=5 of=/dev/null 2>/dev/null; "$1" - -o again.wav) <voice.wav)")
                   .exitStatus,
               1);
}

TEST_F (Pipe, IsAlsoBroughtToALoudnessAndReportedOn)
{
    const std::string options = "--input-peak best --loudness -20 --settle 1";
    writeNoise ("voice.wav", 1, 100000);
    expectSuccess ({ "--input-peak", "best", "--loudness", "-20", "--settle", "1", "voice.wav", "-o", "result.wav" });
    EXPECT_EQ (runShell ("cat voice.wav | \"$1\" " + options + " - -o - | cat >piped.wav").errors, "");
    EXPECT_EQ (bytesOf (folder / "piped.wav"), bytesOf (folder / "result.wav"));
    EXPECT_THAT (runShell (R"(cat voice.wav | "$1" --report -)").output, StartsWith ("standard input  "));
    EXPECT_THAT (folder.contents(), ElementsAre ("piped.wav", "result.wav", "voice.wav"));
}

TEST_F (Pipe, WithoutSoundIsReportedByItsName)
{
    writeBytes (folder / "voice.m4a", std::string ("\0\0\0\x20", 4) + "ftypM4A isomiso2");
    const std::string name = "larkspire-render: standard input: ";

    for (const auto& [line, reason] :
         { std::pair<std::string, std::string> { R"("$1" - -o result.wav </dev/null)", "is empty\n" },
           { R"(echo text | "$1" - -o result.wav)", "is not a WAV, FLAC, AIFF, MP3, Ogg, AU, CAF or W64 file\n" },
           { R"(cat voice.m4a | "$1" - -o result.wav)",
             "is MPEG-4 audio; convert it first: ffmpeg -i - -f wav - ahead of it in the pipe\n" } })
    {
        const auto outcome = runShell (line);
        EXPECT_EQ (outcome.exitStatus, 1);
        EXPECT_EQ (outcome.errors, name + reason);
    }

    writeNoise ("voice.wav", 1, 30000);
    EXPECT_THAT (runShell (R"(head -c 10000 voice.wav | "$1" - -o result.wav)").errors,
                 StartsWith (name + "is cut off: only 0."));
    EXPECT_THAT (folder.contents(), ElementsAre ("result.wav", "voice.m4a", "voice.wav"));
}

TEST_F (Pipe, GivesNothingOfWhatFails)
{
    writeNoise ("voice.flac", 1, 60000);
    const auto bytes = bytesOf (folder / "voice.flac");
    writeBytes (folder / "voice.flac", bytes.substr (0, bytes.size() / 2));
    const auto outcome = runShell (R"("$1" voice.flac -o -)");
    EXPECT_EQ (outcome.exitStatus, 1);
    EXPECT_EQ (outcome.output, "");
    EXPECT_THAT (outcome.errors, StartsWith ("larkspire-render: voice.flac: "));
}

TEST_F (Pipe, ThatTheDiskDoesNotHoldOrNobodyReadsIsReported)
{
    writeNoise ("voice.wav", 2, 60000);
    auto call = shell (R"(cat voice.wav | "$1" - -o result.wav)");
    call.largestFile = 100000;
    auto outcome = run (call);
    EXPECT_EQ (outcome.exitStatus, 1);
    EXPECT_EQ (outcome.errors, "larkspire-render: standard input: cannot be kept on the disk: File too large\n");

    outcome = runShell (R"("$1" voice.wav -o - >/dev/full)");
    EXPECT_EQ (outcome.exitStatus, 1);
    EXPECT_EQ (outcome.errors, "larkspire-render: standard output: cannot be written: No space left on device\n");

    outcome = runShell (R"(TMPDIR=/no/folder "$1" voice.wav -o - | cat)");
    EXPECT_EQ (outcome.errors,
               "larkspire-render: standard output: cannot be kept in /no/folder: No such file or directory\n");

    // As any program whose reader has gone.
    outcome = runShell (R"(("$1" voice.wav -o -; echo $? >status) | true)");
    EXPECT_EQ (bytesOf (folder / "status"), "141\n");
    EXPECT_THAT (folder.contents(), ElementsAre ("status", "voice.wav"));
}

/** How many bytes are in a pipe, once that is as it must be; gives up after 20 seconds. */
int bytesSoonIn (int pipe, bool mustBeEmpty)
{
    int count = 0;

    for (int i = 0; i < 2000; ++i)
    {
        ioctl (pipe, FIONREAD, &count);

        if ((count == 0) == mustBeEmpty)
            break;

        std::this_thread::sleep_for (std::chrono::milliseconds (10));
    }

    return count;
}

TEST_F (Pipe, EndsWhileItWaits)
{
    writeNoise ("voice.wav", 2, 60000);
    ASSERT_EQ (mkfifo ((folder / "pipe").c_str(), 0600), 0);
    const larkspire::FileDescriptor pipe (open ((folder / "pipe").c_str(), O_RDWR | O_CLOEXEC));
    ASSERT_TRUE (pipe.isOpen());

    // For input that does not come,
    {
        ASSERT_EQ (::write (pipe.get(), "RIFF", 4), 4);
        Child child (shell (R"(exec "$1" - -o result.wav <pipe)"));
        ASSERT_EQ (bytesSoonIn (pipe.get(), true), 0);
        child.sendSignal (SIGINT);
        const auto outcome = child.wait();
        EXPECT_EQ (outcome.signal, SIGINT);
        EXPECT_EQ (outcome.errors, "larkspire-render: standard input: interrupted, nothing was written\n");
    }

    // and for a reader that does not read.
    {
        Child child (shell (R"(exec "$1" voice.wav -o - >pipe)"));
        ASSERT_GT (bytesSoonIn (pipe.get(), false), 0);
        child.sendSignal (SIGTERM);
        const auto outcome = child.wait();
        EXPECT_EQ (outcome.signal, SIGTERM);
        EXPECT_EQ (outcome.errors, "larkspire-render: standard output: interrupted, not all was written\n");
    }

    EXPECT_THAT (folder.contents(), ElementsAre ("pipe", "voice.wav"));
}

TEST_F (Pipe, IsRefusedWhereItMakesNoSense)
{
    writeNoise ("voice.wav");

    for (const auto& arguments : { std::vector<std::string> { "voice.wav", "-", "-o", "results" },
                                   { "-", "-o", "results/" },
                                   { "-", "-", "-o", "result.wav" },
                                   { "-", "-o", "result.wav", "--plot", "pictures/" },
                                   { "voice.wav", "--plot", "-", "-o", "result.wav" },
                                   { "voice.wav", "voice.wav", "-o", "-" },
                                   { ".", "-o", "-" },
                                   { "--compare", "voice.wav", "-o", "-" },
                                   { "--report", "voice.wav", "-o", "-" },
                                   { "--json", "voice.wav", "-o", "-" },
                                   { "--stats", "voice.wav", "-o", "-" } })
        EXPECT_THAT (expectFailure (2, arguments), StartsWith ("-: ")) << testing::PrintToString (arguments);

    // A terminal gets no sound and gives none.
    for (const std::string call : { "voice.wav -o -", "- -o result.wav" })
    {
        const auto outcome = runShell ("script -qec '\"" + paths::renderer() + "\" " + call + "' /dev/null </dev/null");
        EXPECT_THAT (outcome.output, HasSubstr ("is a terminal"));
    }

    EXPECT_EQ (runShell (R"("$1" - -o voice.wav <voice.wav)").errors,
               "larkspire-render: voice.wav: is the same file as the input standard input\n");
}

TEST_F (Pipe, LeavesAFileOfThatNameItsName)
{
    const auto recording = writeNoise ("-");
    expectSuccess ({ "--mode", "bypass", "./-", "-o", "result.wav" });
    EXPECT_EQ (read (folder / "result.wav"), recording);
    expectSuccess ({ "--mode", "bypass", "result.wav", "-o", "./-" });
    EXPECT_EQ (read (folder / "-"), recording);
}
} // namespace
