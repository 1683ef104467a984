// SPDX-License-Identifier: AGPL-3.0-only
// Recordings that end too early: rendered as far as they go, and never as if they were whole.
#include "render/RendererTest.h"

#include <nlohmann/json.hpp>

#include <filesystem>

namespace
{
using nlohmann::json;
using testing::HasSubstr;

struct Kind
{
    std::string name;
    int format;
    int channels;
};

class Truncation : public RendererTest
{
protected:
    /** Writes a second of noise at 48 kHz. */
    Recording writeSecond (const Kind& kind) const
    {
        auto recording = makeNoise (kind.channels, 48000, 16);
        write (folder / kind.name, kind.format, recording);
        return recording;
    }

    void cutTo (const std::string& name, std::uintmax_t bytes) const
    {
        std::filesystem::resize_file (folder / name, bytes);
    }

    std::uintmax_t sizeOf (const std::string& name) const { return std::filesystem::file_size (folder / name); }

    /** Writes a size into the header of the data chunk of a WAV file that libsndfile has written. */
    void stateDataSize (const std::string& name, std::string_view littleEndian) const
    {
        auto bytes = bytesOf (folder / name);
        bytes.replace (bytes.find ("data") + 4, 4, littleEndian);
        writeBytes (folder / name, bytes);
    }

    /** Writes what follows the sound of a file. */
    void append (const std::string& name, const std::string& bytes) const
    {
        writeBytes (folder / name, bytesOf (folder / name) + bytes);
    }

    const std::vector<Kind> kinds {
        { "riff.wav", wav16, 1 },
        { "wide.wav", wav24, 2 },
        { "float.wav", wavFloat, 1 },
        { "big-endian.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16 | SF_ENDIAN_BIG, 1 },
        { "large.wav", SF_FORMAT_RF64 | SF_FORMAT_PCM_16, 2 },
        { "packed.wav", SF_FORMAT_WAV | SF_FORMAT_IMA_ADPCM, 1 },
        { "voice.aiff", aiff16, 2 },
        { "float.aifc", SF_FORMAT_AIFF | SF_FORMAT_FLOAT, 1 },
        { "voice.au", au16, 1 },
        { "little-endian.au", SF_FORMAT_AU | SF_FORMAT_PCM_24 | SF_ENDIAN_LITTLE, 2 },
        { "voice.w64", w64, 2 },
    };
};

TEST_F (Truncation, OfAFileThatStatesItsLengthIsSaidWithBothLengths)
{
    for (const auto& kind : kinds)
    {
        SCOPED_TRACE (kind.name);
        writeSecond (kind);
        const auto whole = sizeOf (kind.name);
        expectSuccess ({ kind.name, "-o", "result.wav" });
        cutTo (kind.name, whole / 2);
        const auto outcome = runHere ({ "--json", kind.name, "-o", "result.wav" });
        EXPECT_EQ (outcome.exitStatus, 1);
        EXPECT_THAT (outcome.errors,
                     testing::MatchesRegex ("larkspire-render: " + kind.name
                                            + ": is cut off: only 0\\.[45][0-9]+ s of 1\\.0+ s are there\n"));
        const auto result = json::parse (outcome.output).at ("results").at (0);
        EXPECT_EQ (result.at ("truncated"), true);
        EXPECT_NEAR (result.at ("stated_length_s").get<double>(), 1.0, 0.03);
        EXPECT_NEAR (result.at ("length_s").get<double>(), 0.5, 0.02);
        EXPECT_THAT (result.at ("warnings").at (0).get<std::string>(), HasSubstr ("is cut off"));
        EXPECT_NEAR (static_cast<double> (describe (folder / "result.wav").frames), 24000.0, 800.0);
    }
}

TEST_F (Truncation, TakesNothingFromWhatIsThere)
{
    auto recording = writeSecond ({ "voice.wav", wav16, 1 });
    cutTo ("voice.wav", 44 + 2 * 30000);
    runHere ({ "--mode", "bypass", "voice.wav", "-o", "result.wav" });
    recording.samples.resize (30000);
    EXPECT_EQ (read (folder / "result.wav"), recording);
}

TEST_F (Truncation, OfASingleByteIsSaid)
{
    for (const auto& kind : kinds)
    {
        SCOPED_TRACE (kind.name);
        writeSecond (kind);
        cutTo (kind.name, sizeOf (kind.name) - 1);
        EXPECT_EQ (runHere ({ kind.name, "-o", "result.wav" }).exitStatus, 1);
    }
}

TEST_F (Truncation, OfAnOggFileShowsAtItsLastPage)
{
    write (folder / "voice.ogg", oggVorbis, makeNoise (1, 480000, 16));
    expectSuccess ({ "voice.ogg", "-o", "result.wav" });
    const auto whole = sizeOf ("voice.ogg");
    const auto lastPage = bytesOf (folder / "voice.ogg").rfind ("OggS");

    for (const auto size : { whole - 1, std::uintmax_t { lastPage }, whole * 3 / 4, whole / 2 })
    {
        cutTo ("voice.ogg", size);
        const auto outcome = runHere ({ "--json", "voice.ogg", "-o", "result.wav" });
        EXPECT_EQ (outcome.exitStatus, 1);
        EXPECT_THAT (outcome.errors,
                     testing::MatchesRegex ("larkspire-render: voice.ogg: is cut off: its end is missing after "
                                            "[0-9]\\.[0-9] s\n"));
        const auto result = json::parse (outcome.output).at ("results").at (0);
        EXPECT_EQ (result.at ("truncated"), true);
        EXPECT_FALSE (result.contains ("stated_length_s"));
    }
}

TEST_F (Truncation, OfAnMp3FileShowsInItsFirstFrameOrItsLast)
{
    write (folder / "voice.mp3", mp3, makeNoise (1, 48000, 16));
    const auto whole = bytesOf (folder / "voice.mp3");
    const auto withoutNote = whole.substr (whole.find ("\xff\xfb", 4));
    expectSuccess ({ "voice.mp3", "-o", "result.wav" });

    for (const auto& [bytes, length] :
         { std::pair { whole.substr (0, whole.size() / 2), "only 0\\.[45][0-9]+ s of 1\\.0 s are there" },
           std::pair { whole.substr (0, whole.size() - 1), "only [01]\\.[09][0-9]* s of 1\\.0[0-9]* s are there" },
           std::pair { withoutNote.substr (0, withoutNote.size() / 2 + 3), "its end is missing after 0\\.[0-9]+ s" } })
    {
        writeBytes (folder / "voice.mp3", bytes);
        const auto outcome = runHere ({ "voice.mp3", "-o", "result.wav" });
        EXPECT_EQ (outcome.exitStatus, 1);
        EXPECT_THAT (outcome.errors,
                     testing::MatchesRegex (std::string ("larkspire-render: voice.mp3: is cut off: ") + length + "\n"));
        EXPECT_GT (describe (folder / "result.wav").frames, 20000);
    }
}

TEST_F (Truncation, OfACafFileThatCannotBeReadThenNamesTheCommandThatRepairsIt)
{
    writeSecond ({ "voice.caf", caf16, 1 });
    cutTo ("voice.caf", sizeOf ("voice.caf") - 1);
    EXPECT_EQ (runHere ({ "voice.caf", "-o", "result.wav" }).errors,
               "larkspire-render: voice.caf: is cut off: only 1.000 s of 1.000 s are there\n");
    std::filesystem::remove (folder / "result.wav");
    cutTo ("voice.caf", 50000);
    EXPECT_EQ (
        expectFailure (1, { "voice.caf", "-o", "result.wav" }),
        "voice.caf: is cut off and cannot be read as it is; repair it first: ffmpeg -i 'voice.caf' 'voice.wav'\n");
}

TEST_F (Truncation, IsNoFaultIfTheCallAllowsIt)
{
    writeSecond ({ "voice.wav", wav16, 1 });
    cutTo ("voice.wav", 50000);
    const auto outcome = runHere ({ "--allow-truncated", "voice.wav", "-o", "result.wav" });
    EXPECT_EQ (outcome.exitStatus, 0);
    EXPECT_THAT (outcome.errors, HasSubstr ("voice.wav: is cut off: "));
}

TEST_F (Truncation, DoesNotStopTheOthersAndIsSaidOnceForAllModes)
{
    std::filesystem::create_directory (folder / "takes");
    writeSecond ({ "takes/one.wav", wav16, 1 });
    writeSecond ({ "takes/two.wav", wav16, 1 });
    cutTo ("takes/one.wav", 50000);
    const auto outcome = runHere ({ "--compare", "takes", "-o", "results" });
    EXPECT_EQ (outcome.exitStatus, 1);
    EXPECT_EQ (linesOf (outcome.errors).size(), 1U) << outcome.errors;
    EXPECT_TRUE (std::filesystem::exists (folder / "results/one-Powerful.wav"));
    EXPECT_TRUE (std::filesystem::exists (folder / "results/two-Powerful.wav"));
}

TEST_F (Truncation, ThatLeavesNoSoundIsAnError)
{
    for (const auto& kind : { kinds[0], kinds[4], kinds[6] })
    {
        SCOPED_TRACE (kind.name);
        writeSecond (kind);
        cutTo (kind.name, sizeOf (kind.name) - std::uintmax_t { 48000 } * 2 * static_cast<unsigned> (kind.channels));

        for (const std::string allow : { "--allow-truncated", "--stats" })
            EXPECT_EQ (expectFailure (1, { allow, kind.name, "-o", "result.wav" }),
                       kind.name + ": is damaged: it ends before its first sample\n");
    }
}

TEST_F (Truncation, IsNotSeenInAFileThatCouldNotStateItsLength)
{
    // What ffmpeg, sox and arecord write.
    for (const std::string_view size : { std::string_view ("\xff\xff\xff\xff", 4),
                                         std::string_view ("\xd0\xff\xff\x7f", 4),
                                         std::string_view ("\0\xf0\xff\x7f", 4),
                                         std::string_view ("\0\0\0\x80", 4) })
    {
        const auto recording = writeSecond ({ "voice.wav", wav16, 1 });
        stateDataSize ("voice.wav", size);
        expectSuccess ({ "--mode", "bypass", "voice.wav", "-o", "result.wav" });
        EXPECT_EQ (read (folder / "result.wav"), recording);
    }
}

TEST_F (Truncation, IsSeenAlsoOfFilesThatAreNearlyTooLargeForTheirHeaders)
{
    // Recorders that begin a new file at two gigabytes come within a hundred kilobytes of that.
    for (const std::string_view size : { std::string_view ("\xff\xee\xff\x7e", 4),
                                         std::string_view ("\0\0\xfe\x7f", 4),
                                         std::string_view ("\xff\xee\xff\x7f", 4),
                                         std::string_view ("\1\1\0\x80", 4),
                                         std::string_view ("\0\xee\xff\xff", 4) })
    {
        writeSecond ({ "voice.wav", wav16, 1 });
        stateDataSize ("voice.wav", size);
        EXPECT_EQ (runHere ({ "voice.wav", "-o", "result.wav" }).exitStatus, 1);
    }
}

TEST_F (Truncation, OfTheHeaderAloneIsAnError)
{
    // A recorder that lost its power has never written the length, and libsndfile finds no sound there.
    writeSecond ({ "voice.wav", wav16, 1 });
    stateDataSize ("voice.wav", std::string_view ("\0\0\0\0", 4));
    EXPECT_THAT (expectFailure (1, { "--allow-truncated", "voice.wav", "-o", "result.wav" }),
                 testing::StartsWith ("voice.wav: is damaged: its header was never completed; repair it first"));

    // No sound and a chunk of notes is a recording of nothing.
    write (folder / "voice.wav", wav16, {});
    append ("voice.wav", std::string ("LIST\4\0\0\0INFO", 12));
    expectSuccess ({ "voice.wav", "-o", "result.wav" });
}

TEST_F (Truncation, BehindTheSoundIsNone)
{
    // A chunk of notes that was cut off, and what some programs append to Ogg files.
    const auto recording = writeSecond ({ "voice.wav", wav16, 1 });
    append ("voice.wav", std::string ("LIST\xff\0\0\0INFO", 12));
    const auto outcome = runHere ({ "--mode", "bypass", "voice.wav", "-o", "result.wav" });
    EXPECT_EQ (outcome.exitStatus, 0);
    EXPECT_EQ (outcome.errors,
               "larkspire-render: voice.wav: left behind, as it is damaged or larger than 16 MB: tags\n");
    EXPECT_EQ (read (folder / "result.wav"), recording);

    write (folder / "voice.ogg", oggVorbis, makeNoise (1, 48000, 16));
    append ("voice.ogg", std::string (1000, '\0'));
    expectSuccess ({ "voice.ogg", "-o", "result.wav" });
}

TEST_F (Truncation, IsFoundBehindOtherChunks)
{
    const auto recording = writeSecond ({ "voice.wav", wav16, 1 });
    auto bytes = bytesOf (folder / "voice.wav");

    // One of an odd length, with the byte that evens it.
    bytes.insert (12, std::string ("note\3\0\0\0abc\0", 12));
    writeBytes (folder / "voice.wav", bytes);
    expectSuccess ({ "--mode", "bypass", "voice.wav", "-o", "result.wav" });
    EXPECT_EQ (read (folder / "result.wav"), recording);
    cutTo ("voice.wav", bytes.size() - 100);
    EXPECT_THAT (runHere ({ "voice.wav", "-o", "result.wav" }).errors, HasSubstr ("is cut off"));
}
} // namespace
