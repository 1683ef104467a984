// SPDX-License-Identifier: AGPL-3.0-only
#include "frame/OversamplingSignals.h"
#include "support/ProbeProcessor.h"

#include <gtest/gtest.h>

#include <cmath>

namespace
{
using Channels = std::vector<std::vector<float>>;
using juce::AudioChannelSet;

/** Counts what a host is told. */
struct HostDisplay : juce::AudioProcessorListener
{
    void audioProcessorParameterChanged (juce::AudioProcessor*, int, float) override {}

    void audioProcessorChanged (juce::AudioProcessor* processor, const ChangeDetails& details) override
    {
        if (details.latencyChanged)
            latencies.push_back (processor->getLatencySamples());

        others += details.parameterInfoChanged || details.programChanged || details.nonParameterStateChanged ? 1 : 0;
    }

    std::vector<int> latencies;
    int others = 0;
};

/** A probe whose latency notices are counted. */
struct ListenedProbe : ProbeProcessor
{
    using ProbeProcessor::ProbeProcessor;
    ListenedProbe() { addListener (&display); }
    ~ListenedProbe() override { removeListener (&display); }

    HostDisplay display;
};

/** The delay of what comes out for an impulse, in samples: its centre of gravity, since the response is symmetric. */
double measuredDelay (ProbeProcessor& probe)
{
    Channels impulse (2, std::vector<float> (2048, 0.0f));
    impulse[0][0] = 1.0f;
    probe.run (impulse);
    double sum = 0.0;
    double moment = 0.0;

    for (std::size_t i = 0; i < impulse[0].size(); ++i)
    {
        sum += static_cast<double> (impulse[0][i]);
        moment += static_cast<double> (impulse[0][i]) * static_cast<double> (i);
    }

    return moment / sum;
}

TEST (Oversampling, IsNeverBuiltAtFactor1)
{
    ListenedProbe probe;

    for (const std::size_t size : { 1u, 17u, 0u, 4096u, 32768u })
        probe.runSilence (size);

    EXPECT_EQ (probe.oversampler, nullptr);
    EXPECT_EQ (probe.builtOversamplingFactor, 1.0f);
    EXPECT_EQ (probe.getLatencySamples(), 0);
    EXPECT_TRUE (probe.display.latencies.empty());
}

struct FactorRow
{
    int factor;
    int loopsPerSample; // 2 to the number of stages
};

class OversamplingFactor : public testing::TestWithParam<FactorRow>
{
};

TEST_P (OversamplingFactor, BuildsAStageForEachHalving)
{
    ProbeProcessor probe;
    probe.oversamplingFactor = GetParam().factor;
    probe.runSilence (1);

    ASSERT_NE (probe.oversampler, nullptr);
    EXPECT_EQ (probe.oversampler->getOversamplingFactor(), static_cast<std::size_t> (GetParam().loopsPerSample));
    EXPECT_EQ (probe.builtOversamplingFactor, static_cast<float> (GetParam().factor));
}

TEST_P (OversamplingFactor, RunsTheLoopOverTheRaisedBlockAndCountsTheScaledOne)
{
    const auto [factor, loops] = GetParam();
    ProbeProcessor probe;
    probe.oversamplingFactor = factor;

    // 32768 at factor 16 makes 524288, the largest count there is.
    for (const int size : { 1, 17, 512, 2048, 32768, 3 })
    {
        const auto counter = probe.refreshCounter;
        const int since = probe.samplesSinceChange;
        probe.seen.clear();
        probe.runSilence (static_cast<std::size_t> (size));

        const auto processed = static_cast<std::size_t> (loops) * static_cast<std::size_t> (size);
        EXPECT_EQ (probe.blockCounts.back(), factor * size);
        EXPECT_EQ (probe.seen.size(), processed);
        EXPECT_EQ (probe.refreshCounter, (counter + processed) % 65536u);
        EXPECT_EQ (probe.samplesSinceChange, since + static_cast<int> (processed));
    }
}

TEST_P (OversamplingFactor, RunsNoSampleOfAnEmptyBlock)
{
    ProbeProcessor probe;
    probe.oversamplingFactor = GetParam().factor;
    probe.runSilence (0);

    EXPECT_NE (probe.oversampler, nullptr);
    EXPECT_EQ (probe.blockCounts, (std::vector { 0 }));
    EXPECT_TRUE (probe.seen.empty());
    EXPECT_EQ (probe.refreshCounter, 0u);
    EXPECT_TRUE (probe.settingsDue);
}

TEST_P (OversamplingFactor, IsBuiltOnce)
{
    const auto input = noise (4000, 3);
    ProbeProcessor whole;
    whole.oversamplingFactor = GetParam().factor;
    Channels inOneBlock { input, input };
    whole.run (inOneBlock);

    // Another build would begin with empty filters, so that the signal would start afresh.
    ProbeProcessor cut;
    cut.oversamplingFactor = GetParam().factor;
    std::vector<float> inMany;

    for (std::size_t from = 0; from < input.size(); from += 125)
    {
        const std::vector<float> part (input.begin() + static_cast<std::ptrdiff_t> (from),
                                       input.begin() + static_cast<std::ptrdiff_t> (from + 125));
        Channels block { part, part };
        cut.run (block);
        inMany.insert (inMany.end(), block[0].begin(), block[0].end());
    }

    EXPECT_EQ (inMany, inOneBlock[0]);
    EXPECT_EQ (inOneBlock[0], inOneBlock[1]);
}

TEST_P (OversamplingFactor, TellsTheHostWhatTheSignalIsDelayedByInWholeSamples)
{
    ListenedProbe probe;
    probe.oversamplingFactor = GetParam().factor;
    const double delay = measuredDelay (probe);

    EXPECT_NEAR (delay, static_cast<double> (probe.oversampler->getLatencyInSamples()), 0.001);
    EXPECT_EQ (probe.getLatencySamples(), static_cast<int> (delay + 0.001)) << "the fraction is dropped";
    EXPECT_EQ (probe.display.latencies, (std::vector { probe.getLatencySamples() })) << "told once";
    EXPECT_GT (probe.getLatencySamples(), 0);

    probe.runSilence (100);
    EXPECT_EQ (probe.display.latencies.size(), 1u) << "and not again";
    EXPECT_EQ (probe.display.others, 0);
}

TEST_P (OversamplingFactor, LeavesAnIdleStandInOnTheWayBackTo1)
{
    ListenedProbe probe;
    probe.oversamplingFactor = GetParam().factor;
    probe.runSilence (100);
    probe.oversamplingFactor = 1;
    probe.seen.clear();

    const auto input = noise (1000, 4);
    Channels channels { input, input };
    probe.run (channels);

    ASSERT_NE (probe.oversampler, nullptr);
    EXPECT_EQ (probe.oversampler->getOversamplingFactor(), 1u);
    EXPECT_EQ (probe.builtOversamplingFactor, 1.0f);
    EXPECT_EQ (probe.seen.size(), 1000u);
    EXPECT_EQ (probe.blockCounts.back(), 1000);
    EXPECT_EQ (channels[0], input) << "no filter is in the way";
    EXPECT_EQ (probe.getLatencySamples(), 0);
    ASSERT_EQ (probe.display.latencies.size(), 2u);
    EXPECT_EQ (probe.display.latencies.back(), 0);
}

INSTANTIATE_TEST_SUITE_P (Factors,
                          OversamplingFactor,
                          testing::Values (FactorRow { 2, 2 },
                                           FactorRow { 3, 2 },
                                           FactorRow { 4, 4 },
                                           FactorRow { 8, 8 },
                                           FactorRow { 16, 16 }),
                          [] (const auto& test) { return std::to_string (test.param.factor); });

TEST (Oversampling, FollowsTheFactorUpAndDown)
{
    ListenedProbe probe;
    std::size_t processed = 0;

    for (const auto& [factor, loops] :
         std::vector<FactorRow> { { 1, 1 }, { 2, 2 }, { 3, 2 }, { 4, 4 }, { 8, 8 }, { 16, 16 }, { 5, 4 }, { 1, 1 } })
    {
        probe.oversamplingFactor = factor;
        probe.runSilence (10);
        processed += static_cast<std::size_t> (loops * 10);
        EXPECT_EQ (probe.blockCounts.back(), factor * 10);
        EXPECT_EQ (probe.seen.size(), processed) << factor;
    }

    // 3 is as late as 2, so there was nothing to tell.
    EXPECT_EQ (probe.display.latencies.size(), 6u);
    EXPECT_EQ (probe.getLatencySamples(), 0);
}

TEST (Oversampling, HasNoStageAtAFactorBelow1)
{
    for (const int factor : { 0, -1, -16 })
    {
        ProbeProcessor probe;
        probe.oversamplingFactor = factor;
        const auto input = noise (100, 5);
        Channels channels { input, input };
        probe.run (channels);

        ASSERT_NE (probe.oversampler, nullptr);
        EXPECT_EQ (probe.oversampler->getOversamplingFactor(), 1u);
        EXPECT_EQ (probe.blockCounts, (std::vector { factor * 100 }));
        EXPECT_EQ (probe.seen.size(), 100u) << "the raised block has the block's own length";
        EXPECT_EQ (channels[0], input);
        EXPECT_EQ (probe.getLatencySamples(), 0);
    }
}

struct LargeBlockRow
{
    int factor;
    int size;
    int toldCount;
    std::size_t processed;
};

class OversamplingOfALargeBlock : public testing::TestWithParam<LargeBlockRow>
{
};

TEST_P (OversamplingOfALargeBlock, IsToldAtMostTheLargestCount)
{
    const auto& row = GetParam();
    ProbeProcessor probe;
    probe.prepareToPlay (48000.0, row.size);
    probe.oversamplingFactor = row.factor;
    probe.runSilence (static_cast<std::size_t> (row.size));

    EXPECT_EQ (probe.blockCounts, (std::vector { row.toldCount }));
    EXPECT_EQ (probe.seen.size(), row.processed);
}

INSTANTIATE_TEST_SUITE_P (Blocks,
                          OversamplingOfALargeBlock,
                          testing::Values (LargeBlockRow { 2, 262143, 524286, 524286 },
                                           LargeBlockRow { 2, 262144, 524288, 524288 },
                                           LargeBlockRow { 2, 262145, 524288, 524290 },
                                           LargeBlockRow { 2, 524287, 524288, 1048574 },
                                           LargeBlockRow { 2, 524289, 524288, 1048578 },
                                           LargeBlockRow { 3, 174762, 524286, 349524 },
                                           LargeBlockRow { 3, 174763, 524288, 349526 },
                                           LargeBlockRow { 16, 32768, 524288, 524288 },
                                           LargeBlockRow { 16, 32769, 524288, 524304 }));

TEST (OversamplingOfALargeBlock, IsLeftOutWhereTheLimitMeetsTheBlocksOwnLength)
{
    ProbeProcessor probe;
    probe.oversamplingFactor = 2;
    const auto input = noise (524288, 6);
    Channels channels { input, input };
    probe.run (channels);

    EXPECT_EQ (probe.blockCounts, (std::vector { 524288 }));
    EXPECT_EQ (probe.seen.size(), 524288u);
    EXPECT_EQ (channels[0], input);
    EXPECT_NE (probe.oversampler, nullptr);
}

TEST (Oversampling, IsBuiltForThePreparedBlockSizeOfTheMoment)
{
    // A block above the 32768 samples of an unprepared processor must find room.
    ProbeProcessor probe;
    probe.prepareToPlay (48000.0, 200000);
    EXPECT_EQ (probe.oversampler, nullptr) << "preparing builds nothing";
    probe.oversamplingFactor = 4;
    probe.runSilence (200000);
    EXPECT_EQ (probe.seen.size(), 800000u);
    const auto* built = probe.oversampler.get();

    probe.prepareToPlay (48000.0, 16);
    probe.seen.clear();
    probe.runSilence (200000);
    EXPECT_EQ (probe.oversampler.get(), built) << "a standing one keeps its room";
    EXPECT_EQ (probe.seen.size(), 800000u);
}

/** How many channels the oversampler was built for. */
std::size_t channelsOf (juce::dsp::Oversampling<float>& oversampler)
{
    const std::vector<float> silence (8, 0.0f);
    const float* channels[] = { silence.data() };
    return oversampler.processSamplesUp (juce::dsp::AudioBlock<const float> (channels, 1, 8)).getNumChannels();
}

TEST (Oversampling, IsBuiltForTheChannelsOfTheBlock)
{
    for (const auto& layout : { AudioChannelSet::mono(), AudioChannelSet::stereo(), AudioChannelSet::quadraphonic() })
    {
        ProbeProcessor probe (layout, layout);
        probe.oversamplingFactor = 2;
        Channels channels (static_cast<std::size_t> (layout.size()), std::vector<float> (100, 0.0f));
        probe.run (channels);
        EXPECT_EQ (channelsOf (*probe.oversampler), channels.size());
    }
}

TEST (Oversampling, TakesChannelsBeyondTheSecondAlongUnprocessed)
{
    ProbeProcessor probe (AudioChannelSet::quadraphonic(), AudioChannelSet::quadraphonic());
    probe.oversamplingFactor = 2;
    probe.answer = [] (auto) { return std::pair { 0.0f, 0.0f }; };
    Channels channels (4, sine (4000, 0.01, 25.0, 0.0));
    probe.run (channels);

    const auto delay = static_cast<double> (probe.oversampler->getLatencyInSamples());
    const auto wanted = sine (4000, 0.01, 25.0, delay);
    EXPECT_LT (largestDifference (channels[2], wanted, 500), 0.01f) << "as late as the others, and not limited";
    EXPECT_LT (largestDifference (channels[3], wanted, 500), 0.01f);
    EXPECT_LT (std::abs (channels[0].back()), 1e-6f);
    EXPECT_LT (std::abs (channels[1].back()), 1e-6f);
}

TEST (Oversampling, IsNotBuiltAnewForAnotherCountOfChannels)
{
    ListenedProbe probe;
    probe.oversamplingFactor = 2;
    Channels impulse (2, std::vector<float> (8, 0.0f));
    impulse[0][0] = 1.0f;
    probe.run (impulse);

    juce::AudioProcessor::BusesLayout mono;
    mono.inputBuses.add (AudioChannelSet::mono());
    mono.outputBuses.add (AudioChannelSet::mono());
    ASSERT_TRUE (probe.setBusesLayout (mono));
    Channels silence (1, std::vector<float> (200, 0.0f));
    probe.run (silence);

    float largest = 0.0f;

    for (const float sample : silence[0])
        largest = std::max (largest, std::abs (sample));

    EXPECT_GT (largest, 0.5f) << "the impulse is still on its way";
    EXPECT_EQ (probe.seen.size(), 16u + 400u);
    EXPECT_EQ (probe.display.latencies.size(), 1u);

    EXPECT_EQ (channelsOf (*probe.oversampler), 2u) << "built for the first block's two";
}

TEST (Oversampling, WorksOnAMonoLayout)
{
    ProbeProcessor probe (AudioChannelSet::mono(), AudioChannelSet::mono());
    probe.oversamplingFactor = 2;
    probe.answer = [] (auto input) { return std::pair { input.first, -7.0f }; };
    Channels channels { sine (4000, 0.01, 0.5, 0.0) };
    probe.run (channels);

    const auto delay = static_cast<double> (probe.oversampler->getLatencyInSamples());
    EXPECT_LT (largestDifference (channels[0], sine (4000, 0.01, 0.5, delay), 500), 1e-4f);
    EXPECT_EQ (probe.seen.size(), 8000u);

    for (const auto& [left, right] : probe.seen)
        ASSERT_EQ (left, right);
}

TEST (Oversampling, RunsNoSampleWhileTheOversamplerIsNotReady)
{
    ProbeProcessor probe;
    probe.oversamplingFactor = 2;
    probe.builtOversamplingFactor = 2.0f;
    probe.oversampler = std::make_unique<juce::dsp::Oversampling<float>> (2);
    const auto input = noise (100, 7);
    Channels channels { input, input };
    probe.run (channels);

    EXPECT_EQ (probe.blockCounts, (std::vector { 200 }));
    EXPECT_TRUE (probe.seen.empty());
    EXPECT_EQ (channels[0], input);
    EXPECT_TRUE (probe.settingsDue);
}

TEST (Oversampling, GoesUpAfterTheBlockStartAndDownAfterTheLoop)
{
    ProbeProcessor probe;
    probe.oversamplingFactor = 2;
    probe.onBegin = [] (juce::AudioBuffer<float>& buffer)
    {
        for (int i = 0; i < buffer.getNumSamples(); ++i)
            buffer.setSample (0, i, 0.25f);
    };
    probe.answer = [] (auto input) { return std::pair { input.first + 0.5f, 0.125f }; };
    Channels channels (2, std::vector<float> (2000, 9.0f));
    probe.run (channels);

    EXPECT_NEAR (probe.seen.back().first, 0.25f, 1e-3f);
    EXPECT_NEAR (probe.seen.back().second, 9.0f, 1e-3f);
    EXPECT_NEAR (channels[0].back(), 0.75f, 1e-3f);
    EXPECT_NEAR (channels[1].back(), 0.125f, 1e-3f);
}

TEST (Oversampling, LimitsAtTheRaisedRate)
{
    ProbeProcessor probe;
    probe.oversamplingFactor = 2;
    Channels channels (2, std::vector<float> (2000, -40.0f));
    probe.run (channels);

    EXPECT_EQ (probe.seen.back(), (std::pair { -30.0f, -20.0f }));
    EXPECT_NEAR (channels[0].back(), -30.0f, 1e-2f);
    EXPECT_NEAR (channels[1].back(), -20.0f, 1e-2f);
}

TEST (Oversampling, RefreshesEvery65536SamplesOfTheRaisedRate)
{
    ProbeProcessor probe;
    probe.oversamplingFactor = 4;

    for (int block = 0; block < 40; ++block)
        probe.runSilence (1000);

    EXPECT_EQ (probe.updatesAtSample, (std::vector<std::size_t> { 0, 65535, 131071 }));
}
} // namespace
