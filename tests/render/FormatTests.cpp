// SPDX-License-Identifier: AGPL-3.0-only
// What goes in and what comes out: kinds of file, widths, rates, channels, lengths.
#include "render/RendererTest.h"

#include <chrono>
#include <cmath>
#include <thread>
#include <tuple>

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

TEST_F (Formats, BypassReturnsEveryBitOfOtherKindsOfWholeNumbers)
{
    for (const auto& [extension, format] : { Kind { "au", au16 },
                                             Kind { "caf", caf16 },
                                             Kind { "caf", SF_FORMAT_CAF | SF_FORMAT_ALAC_16 },
                                             Kind { "w64", w64 },
                                             Kind { "rf64", SF_FORMAT_RF64 | SF_FORMAT_PCM_16 } })
    {
        const auto recording = makeNoise (2, 10001, 16);
        write (folder / ("voice." + extension), format, recording);
        bypass ("voice." + extension);
        EXPECT_EQ (read (folder / "result.wav"), recording) << extension;
    }
}

TEST_F (Formats, BypassReturnsOpusAsItDecodes)
{
    write (folder / "voice.opus", opus, makeNoise (2, 30000, 16));
    bypass ("voice.opus", "result.wav", { "--bits", "32f" });
    const auto decoded = readFloats (folder / "voice.opus");
    EXPECT_EQ (decoded.size(), 60000);
    EXPECT_EQ (readFloats (folder / "result.wav"), decoded);
}

TEST_F (Formats, BypassReturnsMp3AsItDecodesAndAsLongAsItWas)
{
    for (const int channels : { 1, 2 })
        for (const int rate : { 8000, 22050, 44100, 48000 })
        {
            write (folder / "voice.mp3", mp3, makeNoise (channels, 30001, 16, 1, rate));
            bypass ("voice.mp3", "result.wav", { "--bits", "32f" });
            const auto decoded = readFloats (folder / "voice.mp3");
            EXPECT_EQ (describe (folder / "result.wav").frames, 30001) << rate;
            EXPECT_EQ (describe (folder / "result.wav").samplerate, rate);
            EXPECT_EQ (readFloats (folder / "result.wav"), decoded) << rate;
        }
}

TEST_F (Formats, TakesAllOfAnMp3FileThatDoesNotSayHowLongItIs)
{
    // Loud behind soft: of such a file, what the first frames let expect is not half of what there is.
    auto recording = makeNoise (1, 96000, 16);
    std::fill_n (recording.samples.begin(), 48000, 0);
    write (folder / "voice.mp3", mp3, recording);
    const auto whole = bytesOf (folder / "voice.mp3");
    writeBytes (folder / "voice.mp3", whole.substr (whole.find ("\xff\xfb", 4)));
    ASSERT_NE (describe (folder / "voice.mp3").frames, 96000) << "libsndfile counts the frames by itself now";
    bypass ("voice.mp3", "result.wav", { "--bits", "32f" });

    // The encoder's own silence at both ends is part of it then.
    EXPECT_NEAR (static_cast<double> (describe (folder / "result.wav").frames), 96000.0 + 2 * 1152, 1152.0);
}

TEST_F (Formats, TakesAllOfMp3FilesThatWereJoinedToOne)
{
    write (folder / "voice.mp3", mp3, makeNoise (1, 48000, 16));
    const auto bytes = bytesOf (folder / "voice.mp3");
    const auto tag = std::string ("ID3\4\0\0\0\0\0\4....", 14);

    for (const auto& joined : { bytes + bytes, tag + bytes + tag + bytes })
    {
        writeBytes (folder / "voice.mp3", joined);
        bypass ("voice.mp3", "result.wav", { "--bits", "32f" });
        EXPECT_NEAR (static_cast<double> (describe (folder / "result.wav").frames), 2 * 48000.0 + 4 * 1152, 2 * 1152.0);
    }

    write (folder / "other.mp3", mp3, makeNoise (1, 48000, 16, 1, 22050));
    writeBytes (folder / "voice.mp3", bytes + bytesOf (folder / "other.mp3"));
    EXPECT_EQ (expectFailure (1, { "voice.mp3", "-o", "other.wav" }),
               "voice.mp3: changes its sample rate or its channels on the way; convert it first: ffmpeg -i 'voice.mp3' "
               "'voice.wav'\n");
}

TEST_F (Formats, TakesWhatStandsBehindATagOfMp3Files)
{
    const auto recording = writeNoise ("voice.flac");
    writeBytes (folder / "voice.flac", std::string ("ID3\4\0\0\0\0\0\4....", 14) + bytesOf (folder / "voice.flac"));
    bypass ("voice.flac");
    EXPECT_EQ (read (folder / "result.wav"), recording);
}

TEST_F (Formats, DithersVoiceAt16BitsAndNothingElse)
{
    // A sound below half a step, as the tail of a word: rounded it would be gone.
    std::vector<float> tail (48000);

    for (std::size_t i = 0; i < tail.size(); ++i)
        tail[i] = std::sin (static_cast<float> (i) * 0.05f) * 0.4f / 32768.0f;

    writeFloats (folder / "voice.wav", wavFloat, 1, tail);
    const auto rendered = [this] (const std::vector<std::string>& options)
    {
        auto arguments = options;
        arguments.insert (arguments.end(), { "--plugin", paths::standIn(), "voice.wav", "-o", "result.wav" });
        runHere (arguments);
        return readFloats (folder / "result.wav");
    };

    // The stand-in halves and inverts what it gets. Behind noise of half a step the tone is there in its own size.
    const auto dithered = rendered ({ "--bits", "16" });
    double product = 0.0;
    double energy = 0.0;

    for (std::size_t i = 0; i < tail.size(); ++i)
    {
        product += double { dithered[i] } * double { tail[i] };
        energy += double { tail[i] } * double { tail[i] };
    }

    EXPECT_NEAR (product / energy, -0.5, 0.05);
    EXPECT_EQ (rendered ({ "--bits", "16", "--block", "100" }), dithered);
    EXPECT_EQ (rendered ({ "--bits", "16", "--mode", "bypass" }), std::vector<float> (tail.size()));

    // Where a level is asked for samples change in bypass too.
    EXPECT_NE (rendered ({ "--bits", "16", "--mode", "bypass", "--gain", "1" }), std::vector<float> (tail.size()));

    // At 24 bits each sample is the nearest.
    for (std::size_t i = 0; const auto sample : rendered ({ "--bits", "24" }))
        ASSERT_NEAR (sample, -0.5f * tail[i++], 0.51f / 8388608.0f);
}

TEST_F (Formats, WritesMp3AndOpusInTheLengthOfTheRecording)
{
    for (const auto& [extension, format] : { Kind { "mp3", mp3 }, Kind { "opus", opus } })
        for (const int channels : { 1, 2 })
            for (const int rate : { 8000, 16000, 24000, 48000 })
                for (const int frames : { 1, 30001 })
                {
                    writeNoise ("voice.wav", channels, frames, 1, rate);
                    bypass ("voice.wav", "result." + extension);
                    const auto result = describe (folder / ("result." + extension));
                    EXPECT_EQ (result.format, format);
                    EXPECT_EQ (result.frames, frames) << extension << ", " << rate;
                    EXPECT_EQ (result.samplerate, rate);
                    EXPECT_EQ (result.channels, channels);
                }
}

TEST_F (Formats, SoundsInMp3AndOpusLikeTheRecording)
{
    // Not to the sample, of course: what is left of a tone beside it is 30 dB below.
    std::vector<float> tone (48000);

    for (std::size_t i = 0; i < tone.size(); ++i)
        tone[i] = 0.5f * std::sin (static_cast<float> (i) * 0.05f);

    writeFloats (folder / "voice.wav", wavFloat, 1, tone);

    for (const std::string result : { "result.mp3", "result.opus" })
    {
        bypass ("voice.wav", result);
        const auto decoded = readFloats (folder / result);
        ASSERT_EQ (decoded.size(), tone.size());
        double error = 0.0;

        for (std::size_t i = 2000; i < tone.size() - 2000; ++i)
            error = std::max (error, std::abs (double { decoded[i] } - double { tone[i] }));

        EXPECT_LT (error, 0.5 * 0.0316) << result;
    }
}

TEST_F (Formats, WritesTheSameMp3AndOpusEachTimeAndInBlocksOfAnySize)
{
    writeNoise ("voice.wav", 2, 30000);
    writeNoise ("other.wav", 2, 30000, 2);

    for (const std::string ending : { ".mp3", ".opus" })
    {
        const auto rendered = [&] (const std::string& name, const std::string& block)
        {
            expectSuccess ({ "--block", block, name, "-o", "result" + ending });
            return bytesOf (folder / ("result" + ending));
        };

        const auto bytes = rendered ("voice.wav", "4096");
        std::this_thread::sleep_for (std::chrono::milliseconds (1100)); // libsndfile draws its numbers from the time
        EXPECT_EQ (rendered ("voice.wav", "4096"), bytes) << ending;
        EXPECT_EQ (rendered ("voice.wav", "777"), bytes) << ending;
    }

    // Streams that are put behind each other have to have other serial numbers.
    expectSuccess ({ "other.wav", "-o", "other.opus" });
    EXPECT_NE (bytesOf (folder / "other.opus").substr (14, 4), bytesOf (folder / "result.opus").substr (14, 4));
}

TEST_F (Formats, TakesTheKindOfAResultFromItsNameOrFromTheCall)
{
    writeNoise ("voice.wav");
    expectSuccess ({ "voice.wav", "-o", "result.OPUS" });
    EXPECT_EQ (describe (folder / "result.OPUS").format, opus);
    expectSuccess ({ "voice.wav", "--format", "mp3", "-o", "results/" });
    EXPECT_EQ (describe (folder / "results/voice.mp3").format, mp3);
    expectSuccess ({ "voice.wav", "-o", "result.bwf" });
    EXPECT_EQ (describe (folder / "result.bwf").format, wav24);
}

TEST_F (Formats, RefusesARateThatMp3OrOpusDoesNotKnowAndSaysWhichItKnows)
{
    for (const auto& [rate, result, rates] :
         { std::tuple { 44100, "result.opus", "Opus files have 8000, 12000, 16000, 24000 or 48000 Hz" },
           std::tuple { 96000,
                        "result.mp3",
                        "MP3 files have 8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100 or 48000 Hz" } })
    {
        writeNoise ("voice.wav", 1, 300, 1, rate);
        EXPECT_EQ (expectFailure (1, { "voice.wav", "-o", result }),
                   std::string (result) + ": cannot be written: " + rates + ", and the recording has "
                       + std::to_string (rate)
                       + "; --format flac takes it as it is, or convert it to 48000 Hz first\n");
    }

    writeNoise ("empty.wav", 1, 0);
    EXPECT_THAT (expectFailure (1, { "empty.wav", "-o", "result.mp3" }),
                 testing::HasSubstr ("MP3 files cannot be without sound"));
}

TEST_F (Formats, HoldsMp3AndOpusWithinFullScaleAndSaysSo)
{
    writeFloats (folder / "loud.wav", wavFloat, 1, std::vector<float> (1000, 1.5f));

    for (const std::string result : { "result.mp3", "result.opus" })
    {
        const auto outcome = runHere ({ "--mode", "bypass", "loud.wav", "-o", result });
        EXPECT_EQ (outcome.exitStatus, 0);
        EXPECT_EQ (outcome.errors, "larkspire-render: " + result + ": 1000 samples beyond full scale clipped\n");
    }
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
