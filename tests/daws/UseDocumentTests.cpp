// SPDX-License-Identifier: AGPL-3.0-only
// The lines for a shell in docs/use.md, pasted as they stand into a folder with the recordings that they speak of.
#include "daws/Lv2Folder.h"
#include "support/FirstMatch.h"
#include "support/RawHost.h"
#include "support/Recording.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace
{
/** The lines that begin with a program's name, without the blanks ahead of them. */
std::vector<std::string> linesFor (const std::string& program)
{
    return allFound (bytesOf (paths::source ("docs/use.md")), "\n    (" + program + " [^\n]*)");
}

class UseDocument : public testing::Test
{
protected:
    UseDocument() { writeFloatWav (folder / "voice.wav", { voice }, 48000); }

    /** Runs a line and gives what it has made; the name of that is the last word that ends like it. */
    std::string result (const std::string& line, const std::string& ending) const
    {
        const auto outcome = folder.run ({ "sh", "-c", line });
        EXPECT_EQ (outcome.exitStatus, 0) << line << "\n" << outcome.errors;
        return folder / allFound (line, "([a-z]+\\." + ending + ")\\b").back();
    }

    /** What the VST 2 library makes of the voice in Medium. */
    std::vector<float> processed() const
    {
        RawHost host;
        host.setParameter (knobPosition (2));
        host.start (48000.0f, static_cast<int> (voice.size()), true);
        auto samples = voice, unused = voice;
        host.process (samples, unused, 0, samples.size());
        return samples;
    }

    const std::vector<float> voice = stereoVoice (100001).front();
    const Lv2Folder folder;
};

TEST_F (UseDocument, HasLinesThatGiveTheSoundOfMedium)
{
    const auto expected = processed();

    for (const std::string program : { "ffmpeg", "gst-launch-1.0", "ecasound", "lv2apply" })
    {
        const auto line = linesFor (program).at (0);
        const auto samples = readFloats (result (line, "wav"));
        ASSERT_EQ (samples.size(), expected.size()) << line;

        for (std::size_t i = 0; i < samples.size(); ++i)
            ASSERT_NEAR (samples[i], expected[i], program == "lv2apply" ? 0x1p-15 : 0x1p-22) << line << ": " << i;

        std::filesystem::remove (folder / "clear.wav");
    }
}

TEST_F (UseDocument, HasLinesForFilmsAndForOtherFilters)
{
    ASSERT_EQ (linesFor ("ffmpeg").size(), 3u) << "each has its test";
    ASSERT_EQ (folder
                   .run ({ "ffmpeg",
                           "-v",
                           "error",
                           "-f",
                           "lavfi",
                           "-i",
                           "testsrc=d=2:size=64x64",
                           "-i",
                           "voice.wav",
                           "-ac",
                           "2",
                           "-shortest",
                           "talk.mp4" })
                   .exitStatus,
               0);
    const auto film = result (linesFor ("ffmpeg").at (1), "mp4");
    const auto streamsOf = [this] (const std::string& file)
    {
        return folder
            .run ({ "ffprobe", "-v", "error", "-show_entries", "stream=codec_type,channels", "-of", "csv", file })
            .output;
    };
    EXPECT_THAT (streamsOf (film), testing::HasSubstr ("audio,2\n"));
    EXPECT_EQ (streamsOf (film), streamsOf (folder / "talk.mp4"));

    const auto limited = readFloats (result (linesFor ("ffmpeg").at (2), "wav"));
    const auto expected = processed();
    const auto peakOf = [] (const std::vector<float>& samples)
    {
        return std::abs (*std::max_element (
            samples.begin(), samples.end(), [] (float a, float b) { return std::abs (a) < std::abs (b); }));
    };
    ASSERT_EQ (limited.size(), expected.size());
    EXPECT_GT (peakOf (expected), 0.9f);
    EXPECT_NEAR (peakOf (limited), 0.891f, 0.001f);
}
} // namespace
