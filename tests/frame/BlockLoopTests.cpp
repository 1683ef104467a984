// SPDX-License-Identifier: AGPL-3.0-only
#include "support/OpenProcessor.h"
#include "support/ProbeProcessor.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{
using juce::AudioChannelSet;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

TEST (BlockLoop, StartsWithTheDefaultsOfItsFields)
{
    const ProbeProcessor probe;
    EXPECT_EQ (probe.sampleRate, 96000.0);
    EXPECT_EQ (probe.refreshCounter, 0u);
    EXPECT_TRUE (probe.settingsDue);
    EXPECT_EQ (probe.samplesSinceChange, 0);
    EXPECT_TRUE (probe.settings.empty());
    EXPECT_TRUE (probe.programs.empty());
    EXPECT_EQ (probe.currentProgram, 0);
    EXPECT_EQ (probe.appliedProgram, -1);
    EXPECT_EQ (probe.programScratch.getSize(), 65536u);
    EXPECT_EQ (probe.oversamplingFactor, 1);
    EXPECT_EQ (probe.builtOversamplingFactor, 1.0f);
    EXPECT_EQ (probe.oversampler, nullptr);
    EXPECT_EQ (probe.oversamplerBlockSize, 32768u);
    EXPECT_TRUE (probe.stateTouched);
    EXPECT_EQ (probe.preparedBlockSize, 8192);
}

TEST (BlockLoop, HoldsTwoReserveBuffersOfZeros)
{
    const ProbeProcessor probe;

    for (int i = 0; i < juce::AudioProcessorQuendal::maxBlockSamples; ++i)
    {
        ASSERT_EQ (probe.reserveLeft[static_cast<std::size_t> (i)], 0.0f);
        ASSERT_EQ (probe.reserveRight[static_cast<std::size_t> (i)], 0.0f);
    }
}

TEST (BlockLoop, RunsBlockStartButNoSampleStepOnAnEmptyBlock)
{
    ProbeProcessor probe;
    probe.oversamplingFactor = 2;
    probe.runSilence (0);

    EXPECT_EQ (probe.log, (std::vector<std::string> { "begin" }));
    EXPECT_NE (probe.oversampler, nullptr);
    EXPECT_EQ (probe.refreshCounter, 0u);
    EXPECT_EQ (probe.samplesSinceChange, 0);
    EXPECT_TRUE (probe.settingsDue);
}

TEST (BlockLoop, UpdatesOnceAheadOfTheFirstSample)
{
    ProbeProcessor probe;
    probe.runSilence (3);

    EXPECT_EQ (probe.log, (std::vector<std::string> { "begin", "update", "sample", "sample", "sample" }));
    EXPECT_FALSE (probe.dueDuringUpdate) << "the request is cleared before it is answered";
}

TEST (BlockLoop, RefreshesEvery65536SamplesAcrossBlocks)
{
    ProbeProcessor probe;

    for (std::size_t done = 0; done < 140000; done += 1000)
        probe.runSilence (1000);

    // The counter is raised ahead of a sample, so the sample that makes it 0 is the 65536th.
    EXPECT_EQ (probe.updatesAtSample, (std::vector<std::size_t> { 0, 65535, 131071 }));
    EXPECT_EQ (probe.refreshCounter, 140000u % 65536u);
}

TEST (BlockLoop, KeepsTheRefreshWhereItIsWhenAnUpdateIsAskedForInBetween)
{
    ProbeProcessor probe;
    probe.runSilence (30000);
    probe.requestUpdate();
    probe.runSilence (40000);
    EXPECT_EQ (probe.updatesAtSample, (std::vector<std::size_t> { 0, 30000, 65535 }));
}

TEST (BlockLoop, TakesPreparationAsARequestAndNotesTheBlockSize)
{
    ProbeProcessor probe;
    probe.runSilence (10);
    ASSERT_FALSE (probe.settingsDue);

    probe.prepareToPlay (48000.0, 333);
    EXPECT_TRUE (probe.settingsDue);
    EXPECT_EQ (probe.samplesSinceChange, 0);
    EXPECT_EQ (probe.oversamplerBlockSize, 333u);
    EXPECT_EQ (probe.preparedBlockSize, 333);
    EXPECT_EQ (probe.sampleRate, 96000.0) << "the rate is for updateSettings to take";
}

TEST (BlockLoop, LimitsEachSideAndAMonoSoundAsTheLeft)
{
    struct
    {
        float in;
        float left;
        float right;
    } const table[] = {
        { 0.5f, 0.5f, 0.5f },          { -25.0f, -25.0f, -20.0f }, { -20.0f, -20.0f, -20.0f },
        { -30.0f, -30.0f, -20.0f },    { -30.5f, -30.0f, -20.0f }, { 20.0f, 20.0f, 20.0f },
        { 25.0f, 20.0f, 20.0f },       { nan, -30.0f, -20.0f },    { infinity, 20.0f, 20.0f },
        { -infinity, -30.0f, -20.0f },
    };

    for (const auto& [in, left, right] : table)
    {
        ProbeProcessor stereo;
        Channels both { { in }, { in } };
        stereo.run (both);
        EXPECT_EQ (stereo.seen.front(), (std::pair { left, right })) << in;

        ProbeProcessor mono (AudioChannelSet::mono(), AudioChannelSet::mono());
        Channels one { { in } };
        mono.run (one);
        EXPECT_EQ (mono.seen.front(), (std::pair { left, left })) << in;
    }
}

TEST (BlockLoop, LimitsInModeBypassToo)
{
    OpenProcessor processor;
    processor.setMode (0.0f);
    std::vector<float> left { 25.0f, -31.0f, nan, 0.25f };
    std::vector<float> right { 25.0f, -31.0f, nan, 0.25f };
    processor.run (left, right);
    EXPECT_EQ (left, (std::vector { 20.0f, -30.0f, -30.0f, 0.25f }));
    EXPECT_EQ (right, (std::vector { 20.0f, -20.0f, -20.0f, 0.25f }));
}

TEST (BlockLoop, WritesBothMembersBackInPlace)
{
    ProbeProcessor probe;
    probe.answer = [] (auto input) { return std::pair { input.first + 1.0f, input.second + 2.0f }; };
    Channels channels { { 0.0f, 0.5f }, { 0.25f, 0.75f } };
    probe.run (channels);
    EXPECT_EQ (channels, (Channels { { 1.0f, 1.5f }, { 2.25f, 2.75f } }));
}

TEST (BlockLoop, DropsTheSecondMemberOnAMonoOutput)
{
    ProbeProcessor probe (AudioChannelSet::stereo(), AudioChannelSet::mono());
    probe.answer = [] (auto) { return std::pair { 0.1f, 0.2f }; };
    Channels channels { { 0.5f }, { 0.75f } };
    probe.run (channels);
    EXPECT_EQ (probe.seen.front(), (std::pair { 0.5f, 0.75f }));
    EXPECT_EQ (channels, (Channels { { 0.1f }, { 0.75f } }));
}

TEST (BlockLoop, ClearsOutputsWithoutAnInputAheadOfEverythingElse)
{
    ProbeProcessor probe (AudioChannelSet::mono(), AudioChannelSet::stereo());
    std::vector<float> atBegin;
    probe.onBegin = [&atBegin] (juce::AudioBuffer<float>& buffer) {
        atBegin = { buffer.getSample (0, 0), buffer.getSample (1, 0) };
    };
    probe.answer = [] (auto) { return std::pair { 0.1f, 0.2f }; };
    Channels channels { { 0.5f }, { 0.75f } };
    probe.run (channels);

    EXPECT_EQ (atBegin, (std::vector { 0.5f, 0.0f }));
    EXPECT_EQ (probe.seen.front(), (std::pair { 0.5f, 0.5f }));
    EXPECT_EQ (channels, (Channels { { 0.1f }, { 0.2f } }));
}

TEST (BlockLoop, LeavesChannelsBeyondTheSecondAlone)
{
    ProbeProcessor probe (AudioChannelSet::quadraphonic(), AudioChannelSet::quadraphonic());
    probe.answer = [] (auto) { return std::pair { 0.1f, 0.2f }; };
    Channels channels { { 0.5f }, { 0.5f }, { 50.0f }, { nan } };
    probe.run (channels);
    EXPECT_EQ (channels[0][0], 0.1f);
    EXPECT_EQ (channels[1][0], 0.2f);
    EXPECT_EQ (channels[2][0], 50.0f);
    EXPECT_TRUE (std::isnan (channels[3][0]));
}

TEST (BlockLoop, TurnsDenormalsOffForTheHooksAndBackAfterwards)
{
    constexpr unsigned int flushToZeroAndDenormalsAreZero = 0x8040;
    const auto before = _mm_getcsr();
    ProbeProcessor probe;
    probe.runSilence (1);
    EXPECT_EQ (probe.floatModes & flushToZeroAndDenormalsAreZero, flushToZeroAndDenormalsAreZero);
    EXPECT_EQ (_mm_getcsr(), before);
}

TEST (BlockLoop, TakesTheLargestBlockWhole)
{
    ProbeProcessor probe;
    probe.runSilence (524288);
    EXPECT_EQ (probe.blockCounts, (std::vector { 524288 }));
    EXPECT_EQ (probe.seen.size(), 524288u);
    EXPECT_EQ (probe.oversampler, nullptr);
}

TEST (BlockLoop, CountsALargerBlockAsTheLargestAndSurvivesIt)
{
    ProbeProcessor probe;
    Channels channels (2, std::vector<float> (524289, 0.5f));
    probe.run (channels);
    EXPECT_EQ (probe.blockCounts, (std::vector { 524288 }));
    EXPECT_TRUE (probe.seen.empty());
    EXPECT_EQ (channels[0].front(), 0.5f);
}

TEST (BlockLoop, StandsStillInHostBypass)
{
    OpenProcessor processor;
    std::vector<float> left (100, 0.5f);
    std::vector<float> right (100, 0.5f);
    processor.run (left, right);
    const auto counter = processor.refreshCounter;
    const auto memory = processor.memory();

    std::vector<float> input (100, 25.0f);
    float* channels[] = { input.data(), input.data() };
    juce::AudioBuffer<float> buffer (channels, 2, 100);
    juce::MidiBuffer midi;
    processor.processBlockBypassed (buffer, midi);

    EXPECT_EQ (input, std::vector<float> (100, 25.0f)) << "not even the limits apply";
    EXPECT_EQ (processor.refreshCounter, counter);
    EXPECT_EQ (processor.memory(), memory);
    EXPECT_EQ (processor.getBypassParameter(), nullptr);
}

TEST (BlockLoop, HasNoDoublePrecisionPath)
{
    const ProbeProcessor probe;
    EXPECT_FALSE (probe.supportsDoublePrecisionProcessing());
}
} // namespace
