// SPDX-License-Identifier: AGPL-3.0-only
// The limit of 4 GB. Files of that size take too long for a test, so the decision and the kind of header are tested.
#include "audio/AudioOutput.h"
#include "support/Recording.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace
{
using namespace larkspire;

TEST (LargeFiles, BeginWhere32BitSizesEnd)
{
    const AudioShape mono { .channels = 1, .sampleRate = 48000 };
    const AudioShape stereo { .channels = 2, .sampleRate = 48000 };
    constexpr std::int64_t fourGigabytes = std::int64_t { 1 } << 32;

    EXPECT_FALSE (needsLargeWav (mono, SampleType::pcm24, 0));
    EXPECT_FALSE (needsLargeWav (stereo, SampleType::pcm24, 48000 * 3600));
    EXPECT_FALSE (needsLargeWav (stereo, SampleType::pcm24, (fourGigabytes - 5000) / 6));
    EXPECT_TRUE (needsLargeWav (stereo, SampleType::pcm24, fourGigabytes / 6));
    EXPECT_FALSE (needsLargeWav (mono, SampleType::pcm16, (fourGigabytes - 5000) / 2));
    EXPECT_TRUE (needsLargeWav (mono, SampleType::pcm16, fourGigabytes / 2));
    EXPECT_TRUE (needsLargeWav (stereo, SampleType::float32, fourGigabytes / 8));
    EXPECT_TRUE (needsLargeWav (mono, SampleType::pcm16, std::nullopt));
}

TEST (LargeFiles, ThatTurnOutSmallAreOrdinaryWavFiles)
{
    const TemporaryFolder folder;
    const std::vector<float> samples { 0.5f, -0.5f, 0.25f };
    AudioOutput output (folder / "result.wav", {}, { .channels = 1, .sampleRate = 48000 }, std::nullopt);
    output.write (samples);
    output.commit();
    EXPECT_EQ (bytesOf (folder / "result.wav").substr (0, 4), "RIFF");
    EXPECT_EQ (readFloats (folder / "result.wav"), samples);
}

TEST (LargeFiles, HaveAHeaderWith64BitSizes)
{
    const TemporaryFolder folder;
    const std::vector<float> samples (100000);
    AudioOutput output (folder / "result.wav", {}, { .channels = 1, .sampleRate = 48000 }, std::int64_t { 1 } << 40);
    output.write (samples);

    // As it stands on the disk before it is known that it stayed small.
    const auto names = folder.contents();
    ASSERT_EQ (names.size(), 1);
    EXPECT_EQ (bytesOf (folder / names[0]).substr (0, 4), "RF64");
}
} // namespace
