// SPDX-License-Identifier: AGPL-3.0-only
// The plug-in in the sound editor Audacity, as VST 2 and as LV2: found, and applied as an effect to recordings, in
// Medium, since Audacity's commands reach no parameter of it.
#include "daws/Audacity.h"
#include "support/RawHost.h"
#include "support/Signals.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <utility>

namespace
{
using testing::HasSubstr;

constexpr std::size_t length = 100000; // frames, no whole number of blocks
constexpr std::size_t block = 8192;    // frames that Audacity processes at a time

/** What a new instance of the library makes of two channels when it is called directly and resumed at a rate in Hz. It
    is told another rate, if there is one, while it runs. */
Channels processed (Channels channels, float rateAtResume, float rateAfterwards)
{
    RawHost host;
    host.start (rateAtResume, static_cast<int> (block));
    host.dispatch (Vst2::effSetSampleRate, 0, 0, nullptr, rateAfterwards);

    for (std::size_t from = 0; from < channels[0].size(); from += block)
        host.process (channels[0], channels[1], from, std::min (block, channels[0].size() - from));

    return channels;
}

/** The same in the way that Audacity 3.2.4 calls a plug-in, as one that writes the calls down has shown: whatever the
    rates of recording and project are, it resumes it at 44100 Hz, and tells it the recording's rate while it runs. The
    interface has rates set between suspending and resuming, and the library does not take one up before it is resumed:
    in this host it keeps to 44100 Hz. */
Channels processedAsInAudacity (Channels channels, float rate = 44100.0f)
{
    return processed (std::move (channels), 44100.0f, rate);
}

class AudacityHost : public testing::Test
{
protected:
    static void SetUpTestSuite() { audacity = std::make_unique<Audacity> (Format::vst2); }
    static void TearDownTestSuite() { audacity.reset(); }

    static inline std::unique_ptr<Audacity> audacity;
};

TEST_F (AudacityHost, FindsThePluginValidWithItsNameAndVendor)
{
    const auto entry = audacity->registered();
    EXPECT_THAT (entry, HasSubstr ("\nName=Quendal Larkspire\n"));
    EXPECT_THAT (entry, HasSubstr ("\nVendor=Quendal\n"));
    EXPECT_THAT (entry, HasSubstr ("\nVersion=1.0.0\n"));
    EXPECT_THAT (entry, HasSubstr ("\nEnabled=1\nValid=1\nEffectType=Process\nEffectFamily=VST\n"));
    EXPECT_THAT (entry, HasSubstr ("\nEffectInteractive=1\nEffectRealtime=1\nEffectAutomatable=1\n"));
}

TEST_F (AudacityHost, MakesOfAStereoRecordingWhatTheLibraryMakesOfIt)
{
    const auto input = stereoVoice (length);
    const auto expected = processedAsInAudacity (input);
    ASSERT_NE (expected, input);
    expectSameBits (audacity->applied ({ .channels = input }), expected);
}

TEST_F (AudacityHost, ResumesThePluginAt44100HzForARecordingAt48000Hz)
{
    const auto input = stereoVoice (length);
    const auto expected = processedAsInAudacity (input, 48000.0f);
    ASSERT_NE (expected, processed (input, 48000.0f, 48000.0f));
    expectSameBits (audacity->applied ({ .channels = input, .sampleRate = 48000 }), expected);
}

TEST_F (AudacityHost, GivesAMonoRecordingToTheLeftInputAndTakesTheLeftOutput)
{
    const auto input = stereoVoice (length).front();
    const auto expected = processedAsInAudacity ({ input, std::vector<float> (length) }).front();
    ASSERT_NE (expected, processedAsInAudacity ({ input, input }).front());
    expectSameBits (audacity->applied ({ .channels = { input } }), { expected });
}

TEST_F (AudacityHost, AppliesThePluginASecondTimeAsANewInstance)
{
    const auto input = stereoVoice (length);
    expectSameBits (audacity->applied ({ .channels = input, .times = 2 }),
                    processedAsInAudacity (processedAsInAudacity (input)));
}

// Of LV2 Audacity 3.2.4 makes an instance at the recording's own rate.
class AudacityLv2 : public testing::Test
{
protected:
    static void SetUpTestSuite() { audacity = std::make_unique<Audacity> (Format::lv2); }
    static void TearDownTestSuite() { audacity.reset(); }

    static inline std::unique_ptr<Audacity> audacity;
};

TEST_F (AudacityLv2, FindsThePluginValidWithItsNameAndVendor)
{
    const auto entry = audacity->registered();
    EXPECT_THAT (entry, HasSubstr ("\nName=Quendal Larkspire\n"));
    EXPECT_THAT (entry, HasSubstr ("\nVendor=Quendal\n"));
    EXPECT_THAT (entry, HasSubstr ("\nEnabled=1\nValid=1\nEffectType=Process\nEffectFamily=LV2\n"));
    EXPECT_THAT (entry, HasSubstr ("\nEffectInteractive=1\nEffectRealtime=1\nEffectAutomatable=1\n"));
}

TEST_F (AudacityLv2, MakesOfAStereoRecordingWhatTheVst2LibraryMakesOfIt)
{
    const auto input = stereoVoice (length);
    const auto expected = processed (input, 48000.0f, 48000.0f);
    ASSERT_NE (expected, processed (input, 44100.0f, 44100.0f));
    expectSameBits (audacity->applied ({ .channels = input, .sampleRate = 48000 }), expected);
}

TEST_F (AudacityLv2, MakesOfAMonoRecordingWhatTheVst2LibraryMakesOfTwoEqualChannels)
{
    const auto input = stereoVoice (length).front();
    const auto expected = processed ({ input, input }, 44100.0f, 44100.0f).front();
    expectSameBits (audacity->applied ({ .channels = { input }, .effect = "QuendalLarkspire(mono)" }), { expected });
}
} // namespace
