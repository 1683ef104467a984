// SPDX-License-Identifier: AGPL-3.0-only
// The LV2 bundle in programs that process files: the sound is that of the VST 2 library.
#include "daws/Lv2Folder.h"
#include "support/RawHost.h"
#include "support/Recording.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <tuple>

namespace
{
/** What a program is to do with in.wav, to write out.wav. */
struct Job
{
    std::size_t channels = 2;
    int position = 0;
    int sampleRate = 48000; // Hz

    std::string layout() const { return channels == 2 ? "stereo" : "mono"; }
    std::string mode() const { return std::to_string (position); }
    std::string uri() const { return "urn:quendal:larkspire:" + layout(); }
};

struct Program
{
    const char* name;
    std::vector<std::string> (*words) (const Job&);
};

std::ostream& operator<< (std::ostream& stream, const Program& program)
{
    return stream << program.name;
}

std::vector<std::string> lv2apply (const Job& job)
{
    return { "lv2apply", "-i", "in.wav", "-o", "out.wav", "-c", "mode", job.mode(), job.uri() };
}

std::vector<std::string> ffmpeg (const Job& job)
{
    const auto filter = "lv2=p=urn\\\\:quendal\\\\:larkspire\\\\:" + job.layout() + ":c=mode=" + job.mode();
    return { "ffmpeg", "-v", "error", "-i", "in.wav", "-af", filter, "-c:a", "pcm_f32le", "out.wav" };
}

std::vector<std::string> gstreamer (const Job& job)
{
    return { "gst-launch-1.0",
             "filesrc",
             "location=in.wav",
             "!",
             "wavparse",
             "!",
             "audioconvert",
             "!",
             "urn-quendal-larkspire-" + job.layout(),
             "mode=" + job.mode(),
             "!",
             "wavenc",
             "!",
             "filesink",
             "location=out.wav" };
}

std::vector<std::string> ecasound (const Job& job)
{
    const auto format = "-f:f32_le," + std::to_string (job.channels) + "," + std::to_string (job.sampleRate);
    return { "ecasound", "-q", format, "-i", "in.wav", "-o", "out.wav", "-elv2:" + job.uri() + "," + job.mode() };
}

constexpr std::array programs { Program { "lv2apply", lv2apply },
                                Program { "ffmpeg", ffmpeg },
                                Program { "GStreamer", gstreamer },
                                Program { "ecasound", ecasound } };

/** What the VST 2 library makes of one channel or two. */
Channels processed (Channels channels, const Job& job)
{
    constexpr std::size_t block = 512;
    RawHost host;
    host.setParameter (knobPosition (job.position));
    host.start (static_cast<float> (job.sampleRate), static_cast<int> (block), job.channels == 1);
    auto unused = channels.front();
    auto& right = job.channels == 1 ? unused : channels.back();

    for (std::size_t from = 0; from < unused.size(); from += block)
        host.process (channels.front(), right, from, std::min (block, unused.size() - from));

    return channels;
}

class Lv2Host : public testing::TestWithParam<std::tuple<Program, std::size_t, int>>
{
protected:
    static void SetUpTestSuite() { folder = std::make_unique<Lv2Folder>(); }
    static void TearDownTestSuite() { folder.reset(); }

    static void expectSoundOfVst2 (Channels input, int sampleRate)
    {
        const auto& [program, channels, position] = GetParam();
        const Job job { .channels = channels, .position = position, .sampleRate = sampleRate };
        input.resize (channels);
        std::filesystem::remove (*folder / "out.wav");
        writeFloatWav (*folder / "in.wav", input, sampleRate);
        const auto expected = processed (input, job);
        ASSERT_EQ (expected == input, position == 0);

        const auto outcome = folder->run (program.words (job));
        ASSERT_EQ (outcome.exitStatus, 0) << outcome.output << outcome.errors;
        expectSameBits (readFloatWav (*folder / "out.wav", sampleRate), expected);
    }

private:
    static inline std::unique_ptr<Lv2Folder> folder; // one for all: GStreamer looks once what there is
};

INSTANTIATE_TEST_SUITE_P (
    With,
    Lv2Host,
    testing::Combine (testing::ValuesIn (programs), testing::Values (1u, 2u), testing::Range (0, 4)),
    [] (const auto& test)
    {
        return std::string (std::get<0> (test.param).name) + (std::get<1> (test.param) == 1 ? "Mono" : "Stereo")
               + "AtPosition" + std::to_string (std::get<2> (test.param));
    });

TEST_P (Lv2Host, MakesOfAVoiceWhatTheVst2LibraryMakesOfIt)
{
    expectSoundOfVst2 (stereoVoice (100001), 44100);
}

TEST_P (Lv2Host, MakesOfNoiseWhatTheVst2LibraryMakesOfIt)
{
    const auto signal = noise (100001, -6.0, 1);
    expectSoundOfVst2 ({ signal.left, signal.right }, 48000);
}
} // namespace
