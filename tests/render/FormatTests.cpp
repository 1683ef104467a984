// SPDX-License-Identifier: AGPL-3.0-only
// What goes in and what comes out: kinds of file, widths, rates, channels, lengths.
#include "support/Child.h"
#include "support/Recording.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

namespace
{
struct Kind
{
    const char* extension;
    int format;
};

void expectSuccess (const Outcome& outcome)
{
    EXPECT_EQ (outcome.exitStatus, 0);
    EXPECT_EQ (outcome.errors, "");
    EXPECT_EQ (outcome.output, "");
}

/** Renders in mode bypass, with further arguments, and expects that to work. */
void bypass (const std::string& input, const std::string& output, const std::vector<std::string>& further = {})
{
    std::vector<std::string> arguments { "--mode", "bypass", input, "-o", output };
    arguments.insert (arguments.end(), further.begin(), further.end());
    expectSuccess (run (arguments));
}

TEST (Formats, BypassReturnsEveryBitOf24BitRecordings)
{
    for (const auto& [extension, format] : { Kind { "wav", wav24 }, Kind { "flac", flac24 }, Kind { "aiff", aiff24 } })
        for (const int channels : { 1, 2 })
            for (const std::string result : { "result.wav", "result.flac" })
            {
                SCOPED_TRACE (std::string (extension) + " to " + result + ", channels: " + std::to_string (channels));
                const TemporaryFolder folder;
                const auto input = folder / (std::string ("voice.") + extension);
                const auto recording = makeNoise (channels, 10001, 24);
                write (input, format, recording);
                bypass (input, folder / result);
                EXPECT_EQ (read (folder / result), recording);
            }
}

TEST (Formats, BypassReturnsEveryBitOf16BitRecordings)
{
    for (const auto& [extension, format] : { Kind { "wav", wav16 }, Kind { "flac", flac16 }, Kind { "aiff", aiff16 } })
        for (const std::string bits : { "16", "24" })
        {
            SCOPED_TRACE (std::string (extension) + " to " + bits + " bits");
            const TemporaryFolder folder;
            const auto input = folder / (std::string ("voice.") + extension);
            const auto recording = makeNoise (2, 10001, 16);
            write (input, format, recording);
            bypass (input, folder / "result.wav", { "--bits", bits });
            EXPECT_EQ (read (folder / "result.wav"), recording);
        }
}

TEST (Formats, BypassReturnsEveryBitOfFloatRecordings)
{
    const TemporaryFolder folder;
    const std::vector<float> samples { 0.0f,   1.0f,   -1.0f,        0.1f,          -0.3333333f,
                                       1.7f,   -19.0f, 0x1.8p-60f,   0.99999994f,   -1.0000001f,
                                       1e-20f, -0.0f,  0.500000059f, -0.700000048f, 0.25f };
    writeFloats (folder / "voice.wav", wavFloat, 1, samples);
    bypass (folder / "voice.wav", folder / "result.wav", { "--bits", "32f" });
    EXPECT_EQ (readFloats (folder / "result.wav"), samples);
    EXPECT_EQ (describe (folder / "result.wav").format, wavFloat);
}

TEST (Formats, BypassReturnsOggVorbisAsItDecodes)
{
    const TemporaryFolder folder;
    write (folder / "voice.ogg", oggVorbis, makeNoise (2, 30000, 16));
    bypass (folder / "voice.ogg", folder / "result.wav", { "--bits", "32f" });
    const auto decoded = readFloats (folder / "voice.ogg");
    EXPECT_EQ (decoded.size(), 60000);
    EXPECT_EQ (readFloats (folder / "result.wav"), decoded);
}

TEST (Formats, WritesTheWidthThatWasAskedFor)
{
    const TemporaryFolder folder;
    write (folder / "voice.wav", wav24, makeNoise (1, 500, 24));

    const auto formatOf = [&folder] (const std::string& result, const std::vector<std::string>& further)
    {
        bypass (folder / "voice.wav", folder / result, further);
        return describe (folder / result).format;
    };

    EXPECT_EQ (formatOf ("default.wav", {}), wav24);
    EXPECT_EQ (formatOf ("16.wav", { "--bits", "16" }), wav16);
    EXPECT_EQ (formatOf ("24.wav", { "--bits", "24" }), wav24);
    EXPECT_EQ (formatOf ("32f.wav", { "--bits", "32f" }), wavFloat);
    EXPECT_EQ (formatOf ("32F.wav", { "--bits", "32F" }), wavFloat);
    EXPECT_EQ (formatOf ("default.flac", {}), flac24);
    EXPECT_EQ (formatOf ("16.FLAC", { "--bits", "16" }), flac16);
    EXPECT_EQ (formatOf ("without-ending", {}), wav24);
    EXPECT_EQ (formatOf ("with-format", { "--format", "flac" }), flac24);
    EXPECT_EQ (formatOf ("with-format.wav", { "--format", "WAV" }), wav24);
}

TEST (Formats, RoundsToTheNearestAndLimitsToFullScale)
{
    const TemporaryFolder folder;
    constexpr float step = 1.0f / 32768.0f;
    writeFloats (folder / "voice.wav",
                 wavFloat,
                 1,
                 { 0.4f * step, 0.6f * step, -0.6f * step, 100.4f * step, 0.99999f, 1.0f, 1.5f, -1.0f, -1.5f, 19.0f });
    bypass (folder / "voice.wav", folder / "result.wav", { "--bits", "16" });

    std::vector<int> wholeNumbers;

    for (const auto sample : read (folder / "result.wav").samples)
        wholeNumbers.push_back (sample / 65536);

    EXPECT_EQ (wholeNumbers, (std::vector<int> { 0, 1, -1, 100, 32767, 32767, 32767, -32768, -32768, 32767 }));
}

TEST (Formats, KeepsTheRateTheChannelsAndTheLengthInEveryMode)
{
    for (const int rate : { 8000, 11025, 16000, 22050, 32000, 44100, 48000, 88200, 96000, 176400, 192000 })
        for (const int channels : { 1, 2 })
            for (const std::string result : { "result.wav", "result.flac" })
            {
                SCOPED_TRACE (std::to_string (rate) + " Hz, channels: " + std::to_string (channels) + ", " + result);
                const TemporaryFolder folder;
                write (folder / "voice.wav", wav16, makeNoise (channels, 4711, 16, 1, rate));
                expectSuccess (run ({ "--mode", "Powerful", folder / "voice.wav", "-o", folder / result }));
                const auto info = describe (folder / result);
                EXPECT_EQ (info.samplerate, rate);
                EXPECT_EQ (info.channels, channels);
                EXPECT_EQ (info.frames, 4711);
            }
}

TEST (Formats, RefusesARateThatFlacDoesNotKnow)
{
    const TemporaryFolder folder;
    write (folder / "voice.wav", wav16, makeNoise (1, 100, 16, 1, 700000));
    const auto outcome = run ({ folder / "voice.wav", "-o", folder / "result.flac" });
    EXPECT_EQ (outcome.exitStatus, 1);
    EXPECT_EQ (linesOf (outcome.errors).size(), 1) << outcome.errors;
    EXPECT_EQ (folder.contents(), (std::vector<std::string> { "voice.wav" }));
}

TEST (Formats, MakesAnEmptyFileOfARecordingWithoutSamples)
{
    for (const auto& [extension, format] :
         { Kind { "wav", wav16 }, Kind { "flac", flac24 }, Kind { "aiff", aiff16 }, Kind { "ogg", oggVorbis } })
        for (const std::string result : { "result.wav", "result.flac" })
        {
            SCOPED_TRACE (std::string (extension) + " to " + result);
            const TemporaryFolder folder;
            const auto input = folder / (std::string ("silence.") + extension);
            const Recording nothing { .channels = 2, .sampleRate = 44100 };
            write (input, format, nothing);
            expectSuccess (run ({ input, "-o", folder / result }));
            EXPECT_EQ (read (folder / result), nothing);
        }
}

TEST (Formats, RendersAllOfAFlacFileThatDoesNotStateItsLength)
{
    const TemporaryFolder folder;
    const auto recording = makeNoise (1, 20000, 16);
    write (folder / "voice.flac", flac16, recording);
    stateLength (folder / "voice.flac", 0);
    ASSERT_GT (describe (folder / "voice.flac").frames, 20000);

    bypass (folder / "voice.flac", folder / "result.wav");
    EXPECT_EQ (read (folder / "result.wav"), recording);
    EXPECT_EQ (describe (folder / "result.wav").format & SF_FORMAT_SUBMASK, SF_FORMAT_PCM_24);
}

TEST (Formats, WritesOrdinaryWavFiles)
{
    const TemporaryFolder folder;
    write (folder / "voice.wav", wav16, makeNoise (2, 100, 16));
    bypass (folder / "voice.wav", folder / "result.wav");
    const auto bytes = bytesOf (folder / "result.wav");
    EXPECT_EQ (bytes.substr (0, 4), "RIFF");
    EXPECT_EQ (bytes.substr (8, 8), "WAVEfmt ");
    EXPECT_EQ (bytes.substr (20, 2), std::string ("\1\0", 2)) << "not plain PCM";
    EXPECT_EQ (bytes.size(), 44 + 100 * 2 * 3);
}

TEST (Formats, WritesNothingIntoAResultThatDependsOnTheTimeOfDay)
{
    const TemporaryFolder folder;
    write (folder / "voice.wav", wav16, makeNoise (2, 100, 16));
    bypass (folder / "voice.wav", folder / "result.wav", { "--bits", "32f" });

    // The chunk with the peaks begins with a date.
    EXPECT_EQ (bytesOf (folder / "result.wav").find ("PEAK"), std::string::npos);
}
} // namespace
