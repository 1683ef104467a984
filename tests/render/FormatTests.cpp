// SPDX-License-Identifier: AGPL-3.0-only
// What goes in and what comes out: kinds of file, widths, rates, channels, lengths.
#include "render/RendererTest.h"

namespace
{
struct Kind
{
    std::string extension;
    int format;
};

class Formats : public RendererTest
{
protected:
    /** Renders in mode bypass, with further arguments, and expects that to work. */
    void bypass (const std::string& input,
                 const std::string& output = "result.wav",
                 const std::vector<std::string>& further = {}) const
    {
        std::vector<std::string> arguments { "--mode", "bypass", input, "-o", output };
        arguments.insert (arguments.end(), further.begin(), further.end());
        EXPECT_EQ (expectSuccess (arguments), "");
    }
};

TEST_F (Formats, BypassReturnsEveryBitOf24BitRecordings)
{
    for (const auto& [extension, format] : { Kind { "wav", wav24 }, Kind { "flac", flac24 }, Kind { "aiff", aiff24 } })
        for (const int channels : { 1, 2 })
            for (const std::string result : { "result.wav", "result.flac" })
            {
                const auto recording = makeNoise (channels, 10001, 24);
                write (folder / ("voice." + extension), format, recording);
                bypass ("voice." + extension, result);
                EXPECT_EQ (read (folder / result), recording) << extension << " to " << result << ", " << channels;
            }
}

TEST_F (Formats, BypassReturnsEveryBitOf16BitRecordings)
{
    for (const auto& [extension, format] : { Kind { "wav", wav16 }, Kind { "flac", flac16 }, Kind { "aiff", aiff16 } })
        for (const std::string bits : { "16", "24" })
        {
            const auto recording = makeNoise (2, 10001, 16);
            write (folder / ("voice." + extension), format, recording);
            bypass ("voice." + extension, "result.wav", { "--bits", bits });
            EXPECT_EQ (read (folder / "result.wav"), recording) << extension << " to " << bits << " bits";
        }
}

TEST_F (Formats, BypassReturnsEveryBitOfFloatRecordings)
{
    const std::vector<float> samples { 0.0f,   1.0f,   -1.0f,        0.1f,          -0.3333333f,
                                       1.7f,   -19.0f, 0x1.8p-60f,   0.99999994f,   -1.0000001f,
                                       1e-20f, -0.0f,  0.500000059f, -0.700000048f, 0.25f };
    writeFloats (folder / "voice.wav", wavFloat, 1, samples);
    bypass ("voice.wav", "result.wav", { "--bits", "32f" });
    EXPECT_EQ (readFloats (folder / "result.wav"), samples);
    EXPECT_EQ (describe (folder / "result.wav").format, wavFloat);
}

TEST_F (Formats, BypassReturnsOggVorbisAsItDecodes)
{
    write (folder / "voice.ogg", oggVorbis, makeNoise (2, 30000, 16));
    bypass ("voice.ogg", "result.wav", { "--bits", "32f" });
    const auto decoded = readFloats (folder / "voice.ogg");
    EXPECT_EQ (decoded.size(), 60000);
    EXPECT_EQ (readFloats (folder / "result.wav"), decoded);
}

TEST_F (Formats, WritesTheWidthThatWasAskedFor)
{
    write (folder / "voice.wav", wav24, makeNoise (1, 500, 16));

    const auto formatOf = [this] (const std::string& result, const std::vector<std::string>& further)
    {
        bypass ("voice.wav", result, further);
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

TEST_F (Formats, RoundsToTheNearestAndLimitsToFullScale)
{
    constexpr float step = 1.0f / 32768.0f;
    writeFloats (folder / "voice.wav",
                 wavFloat,
                 1,
                 { 0.4f * step, 0.6f * step, -0.6f * step, 100.4f * step, 0.99999f, 1.0f, 1.5f, -1.0f, -1.5f, 19.0f });
    const auto outcome = runHere ({ "--mode", "bypass", "--bits", "16", "voice.wav", "-o", "result.wav" });
    EXPECT_EQ (outcome.exitStatus, 0);
    EXPECT_EQ (outcome.output, "");
    EXPECT_EQ (outcome.errors,
               "larkspire-render: result.wav: 3 samples beyond full scale clipped; --bits 32f keeps them\n"
               "larkspire-render: result.wav: 6 samples rounded to 16 bits; --bits 32f keeps them\n");

    std::vector<int> wholeNumbers;

    for (const auto sample : read (folder / "result.wav").samples)
        wholeNumbers.push_back (sample / 65536);

    EXPECT_EQ (wholeNumbers, (std::vector<int> { 0, 1, -1, 100, 32767, 32767, 32767, -32768, -32768, 32767 }));
}

TEST_F (Formats, KeepsTheRateTheChannelsAndTheLengthInEveryMode)
{
    for (const int rate : { 8000, 11025, 16000, 22050, 32000, 44100, 48000, 88200, 96000, 176400, 192000 })
        for (const int channels : { 1, 2 })
            for (const std::string result : { "result.wav", "result.flac" })
            {
                SCOPED_TRACE (std::to_string (rate) + " Hz, channels: " + std::to_string (channels) + ", " + result);
                writeNoise ("voice.wav", channels, 4711, 1, rate);
                expectSuccess ({ "--mode", "Powerful", "voice.wav", "-o", result });
                const auto info = describe (folder / result);
                EXPECT_EQ (info.samplerate, rate);
                EXPECT_EQ (info.channels, channels);
                EXPECT_EQ (info.frames, 4711);
            }
}

TEST_F (Formats, RefusesARateThatFlacDoesNotKnow)
{
    writeNoise ("voice.wav", 1, 100, 1, 700000);
    expectFailure (1, { "voice.wav", "-o", "result.flac" });
}

TEST_F (Formats, MakesAnEmptyFileOfARecordingWithoutSamples)
{
    for (const auto& [extension, format] :
         { Kind { "wav", wav16 }, Kind { "flac", flac24 }, Kind { "aiff", aiff16 }, Kind { "ogg", oggVorbis } })
        for (const std::string result : { "result.wav", "result.flac" })
        {
            const Recording nothing { .channels = 2, .sampleRate = 44100 };
            write (folder / ("silence." + extension), format, nothing);
            expectSuccess ({ "silence." + extension, "-o", result });
            EXPECT_EQ (read (folder / result), nothing) << extension << " to " << result;
        }
}

TEST_F (Formats, RendersAllOfAFlacFileThatDoesNotStateItsLength)
{
    const auto recording = writeNoise ("voice.flac", 1, 20000);
    stateLength (folder / "voice.flac", 0);
    ASSERT_GT (describe (folder / "voice.flac").frames, 20000);

    bypass ("voice.flac");
    EXPECT_EQ (read (folder / "result.wav"), recording);
    EXPECT_EQ (describe (folder / "result.wav").format & SF_FORMAT_SUBMASK, SF_FORMAT_PCM_24);
}

TEST_F (Formats, WritesOrdinaryWavFiles)
{
    writeNoise ("voice.wav", 2, 100);
    bypass ("voice.wav");
    const auto bytes = bytesOf (folder / "result.wav");
    EXPECT_EQ (bytes.substr (0, 4), "RIFF");
    EXPECT_EQ (bytes.substr (8, 8), "WAVEfmt ");
    EXPECT_EQ (bytes.substr (20, 2), std::string ("\1\0", 2)) << "not plain PCM";
    EXPECT_EQ (bytes.size(), 44 + 100 * 2 * 3);

    // A file of floats could have a chunk of peaks, which begins with the time of day.
    bypass ("voice.wav", "result.wav", { "--bits", "32f" });
    EXPECT_EQ (bytesOf (folder / "result.wav").find ("PEAK"), std::string::npos);
}
} // namespace
