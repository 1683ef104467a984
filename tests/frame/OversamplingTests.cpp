// SPDX-License-Identifier: AGPL-3.0-only
#include "support/OpenProcessor.h"
#include "support/ProbeProcessor.h"
#include "support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

namespace
{
using juce::AudioChannelSet;

/** A probe that writes down which latencies its host is told. */
struct ListenedProbe : ProbeProcessor, private juce::AudioProcessorListener
{
    ListenedProbe() { addListener (this); }
    ~ListenedProbe() override { removeListener (this); }

    void audioProcessorParameterChanged (juce::AudioProcessor*, int, float) override {}

    void audioProcessorChanged (juce::AudioProcessor*,
                                const juce::AudioProcessorListener::ChangeDetails& details) override
    {
        EXPECT_TRUE (details.latencyChanged) << "nothing else is told";
        latencies.push_back (getLatencySamples());
    }

    std::vector<int> latencies;
};

/** A sine that begins a number of samples late. */
std::vector<float> sine (std::size_t count, double cyclesPerSample, double amplitude, double delay)
{
    std::vector<float> samples (count);

    for (std::size_t i = 0; i < count; ++i)
        samples[i] = static_cast<float> (
            amplitude * std::sin (2.0 * std::numbers::pi * cyclesPerSample * (static_cast<double> (i) - delay)));

    return samples;
}

/** The largest distance between two signals of one length, from a sample on. */
float largestDifference (const std::vector<float>& a, const std::vector<float>& b, std::size_t from)
{
    float largest = 0.0f;

    for (std::size_t i = from; i < a.size(); ++i)
        largest = std::max (largest, std::abs (a[i] - b[i]));

    return largest;
}

TEST (Oversampling, IsNeverBuiltAtFactor1)
{
    ListenedProbe probe;

    for (const std::size_t size : { 1u, 17u, 0u, 4096u, 32768u })
        probe.runSilence (size);

    EXPECT_EQ (probe.oversampler, nullptr);
    EXPECT_EQ (probe.builtOversamplingFactor, 1.0f);
    EXPECT_EQ (probe.getLatencySamples(), 0);
    EXPECT_TRUE (probe.latencies.empty());
}

struct FactorRow
{
    int factor;
    int loopsPerSample; // 2 to the number of stages, one for each halving
    float largestError; // of a sine, as a fraction of its amplitude
};

class OversamplingFactor : public testing::TestWithParam<FactorRow>
{
};

TEST_P (OversamplingFactor, RunsTheLoopOverTheRaisedBlockAndCountsTheScaledOne)
{
    const auto [factor, loops, error] = GetParam();
    ProbeProcessor probe;
    probe.oversamplingFactor = factor;
    probe.runSilence (0);
    ASSERT_NE (probe.oversampler, nullptr);
    EXPECT_EQ (probe.oversampler->getOversamplingFactor(), static_cast<std::size_t> (loops));
    EXPECT_EQ (probe.builtOversamplingFactor, static_cast<float> (factor));
    EXPECT_TRUE (probe.settingsDue) << "an empty block has no sample to update for";

    // 32768 at factor 16 makes 524288, the largest count there is.
    for (const int size : { 0, 1, 17, 512, 2048, 32768, 3 })
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

TEST_P (OversamplingFactor, DelaysASineByTheLatencyThatTheHostIsTold)
{
    constexpr std::size_t length = 6000;
    constexpr std::size_t blockSize = 125;
    const auto largestError = GetParam().largestError;

    // In cycles per sample: at 48 kHz 100 Hz, 997 Hz, 5 kHz, 15 kHz and 20 kHz.
    for (const double frequency : { 100.0 / 48000.0, 997.0 / 48000.0, 5.0 / 48.0, 15.0 / 48.0, 20.0 / 48.0 })
    {
        ListenedProbe probe;
        probe.oversamplingFactor = GetParam().factor;
        const Channels input { sine (length, frequency, 0.5, 0.0), sine (length, frequency, 0.25, 0.3) };
        Channels output (2);

        // Block by block: another build would begin with empty filters, and the sine would start afresh.
        for (auto first = std::ptrdiff_t { 0 }; first < std::ptrdiff_t { length }; first += blockSize)
        {
            Channels block;

            for (const auto& channel : input)
                block.emplace_back (channel.begin() + first, channel.begin() + first + blockSize);

            probe.run (block);

            for (std::size_t i = 0; i < 2; ++i)
                output[i].insert (output[i].end(), block[i].begin(), block[i].end());
        }

        const auto delay = static_cast<double> (probe.oversampler->getLatencyInSamples());
        EXPECT_LT (largestDifference (output[0], sine (length, frequency, 0.5, delay), 1000), 0.5f * largestError);
        EXPECT_LT (largestDifference (output[1], sine (length, frequency, 0.25, delay + 0.3), 1000),
                   0.25f * largestError);
        EXPECT_GT (probe.getLatencySamples(), 0);
        EXPECT_EQ (probe.getLatencySamples(), static_cast<int> (delay)) << "the fraction is dropped";
        EXPECT_EQ (probe.latencies, (std::vector { probe.getLatencySamples() })) << "told once";
    }
}

TEST_P (OversamplingFactor, LeavesAnIdleStandInOnTheWayBackTo1)
{
    ListenedProbe probe;
    probe.oversamplingFactor = GetParam().factor;
    probe.runSilence (100);
    probe.oversamplingFactor = 1;
    probe.seen.clear();

    const auto input = noise (1000, -6.0, 4).left;
    Channels channels { input, input };
    probe.run (channels);

    ASSERT_NE (probe.oversampler, nullptr);
    EXPECT_EQ (probe.oversampler->getOversamplingFactor(), 1u);
    EXPECT_EQ (probe.builtOversamplingFactor, 1.0f);
    EXPECT_EQ (probe.seen.size(), 1000u);
    EXPECT_EQ (probe.blockCounts.back(), 1000);
    EXPECT_EQ (channels[0], input) << "no filter is in the way";
    EXPECT_EQ (probe.latencies.size(), 2u);
    EXPECT_EQ (probe.latencies.back(), 0);
}

// The errors were measured over all five frequencies: 0.00019, 0.00019, 0.00050, 0.00095 and 0.0048. Each further stage
// of JUCE's oversampler lets 10 dB more through. One sample of delay more or less would be an error of 0.013 at least.
INSTANTIATE_TEST_SUITE_P (Factors,
                          OversamplingFactor,
                          testing::Values (FactorRow { 2, 2, 0.00025f },
                                           FactorRow { 3, 2, 0.00025f },
                                           FactorRow { 4, 4, 0.0006f },
                                           FactorRow { 8, 8, 0.0012f },
                                           FactorRow { 16, 16, 0.006f }),
                          [] (const auto& test) { return std::to_string (test.param.factor); });

TEST (Oversampling, HasNoStageAtAFactorBelow1)
{
    for (const int factor : { 0, -1, -16 })
    {
        ProbeProcessor probe;
        probe.oversamplingFactor = factor;
        const auto input = noise (100, -6.0, 5).left;
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

TEST (Oversampling, TellsALargeBlockAtMostTheLargestCount)
{
    struct
    {
        int factor;
        int size;
        int toldCount;
        std::size_t processed;
    } const table[] = {
        { 2, 262143, 524286, 524286 },
        { 2, 262144, 524288, 524288 },
        { 2, 262145, 524288, 524290 },
        { 2, 524287, 524288, 1048574 },
        { 2, 524288, 524288, 524288 }, // the limit is the block's own length: nothing
                                       // is raised
        { 2, 524289, 524288, 1048578 },
        { 3, 174762, 524286, 349524 },
        { 3, 174763, 524288, 349526 },
        { 16, 32768, 524288, 524288 },
        { 16, 32769, 524288, 524304 },
    };

    for (const auto& [factor, size, toldCount, processed] : table)
    {
        SCOPED_TRACE (std::to_string (factor) + " times " + std::to_string (size));
        ProbeProcessor probe;
        probe.prepareToPlay (48000.0, size);
        probe.oversamplingFactor = factor;
        const auto input = noise (static_cast<std::size_t> (size), -6.0, 6).left;
        Channels channels { input, input };
        probe.run (channels);

        EXPECT_NE (probe.oversampler, nullptr);
        EXPECT_EQ (probe.blockCounts, (std::vector { toldCount }));
        EXPECT_EQ (probe.seen.size(), processed);
        EXPECT_EQ (channels[0] == input, size == toldCount);
    }
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

TEST (Oversampling, IsBuiltForTheChannelsOfTheFirstBlockAndNotAnewForOthers)
{
    for (const auto& layout : { AudioChannelSet::mono(), AudioChannelSet::stereo(), AudioChannelSet::quadraphonic() })
    {
        ProbeProcessor probe (layout, layout);
        probe.oversamplingFactor = 2;
        Channels channels (static_cast<std::size_t> (layout.size()), std::vector<float> (100, 0.0f));
        probe.run (channels);
        EXPECT_EQ (channelsOf (*probe.oversampler), channels.size());

        ASSERT_TRUE (probe.setBusesLayout ({ { AudioChannelSet::mono() }, { AudioChannelSet::mono() } }));
        Channels one (1, std::vector<float> (100, 0.0f));
        probe.run (one);
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
    EXPECT_TRUE (std::ranges::all_of (probe.seen, [] (const auto& frame) { return frame.first == frame.second; }));
}

TEST (Oversampling, RunsNoSampleWhileTheOversamplerIsNotReady)
{
    ProbeProcessor probe;
    probe.oversamplingFactor = 2;
    probe.builtOversamplingFactor = 2.0f;
    probe.oversampler = std::make_unique<juce::dsp::Oversampling<float>> (2);
    const auto input = noise (100, -6.0, 7).left;
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
    Channels channels (2, std::vector<float> (2000, -40.0f));
    probe.run (channels);

    EXPECT_NEAR (probe.seen.back().first, 0.25f, 1e-3f);
    EXPECT_EQ (probe.seen.back().second, -20.0f) << "limited at the raised rate";
    EXPECT_NEAR (channels[0].back(), 0.75f, 1e-3f);
    EXPECT_NEAR (channels[1].back(), 0.125f, 1e-3f);
}

/** True if the plug-in's filters stand as designed for this rate, in mode "Medium". */
bool isDesignedFor (double rate, const OpenProcessor& processor)
{
    constexpr auto coefficientBytes = offsetof (larkspire::PeakingFilter, left);
    OpenProcessor other;
    other.giveRate (rate);
    other.updateSettings();
    return std::memcmp (processor.airFilter, other.airFilter, coefficientBytes) == 0
           && std::memcmp (processor.bodyFilter, other.bodyFilter, coefficientBytes) == 0
           && larkspire::HighPassAccess::copyOf (processor.highPassLeft).coefficients
                  == larkspire::HighPassAccess::copyOf (other.highPassLeft).coefficients;
}

void runNoise (OpenProcessor& processor, std::size_t count)
{
    auto input = noise (count, -6.0, 8);
    processor.run (input.left, input.right);
}

TEST (OversampledPlugIn, DesignsItsFiltersForTheRaisedRate)
{
    for (const int factor : { 2, 3, 4, 8, 16 })
    {
        OpenProcessor processor;
        processor.giveRate (48000.0);
        processor.oversamplingFactor = factor;
        runNoise (processor, 10);
        EXPECT_TRUE (isDesignedFor (48000.0 * factor, processor)) << factor;
        EXPECT_EQ (processor.sampleRate, 48000.0) << "the host's rate stays what it is";
    }
}

TEST (OversampledPlugIn, TakesANewFactorIntoItsDesignAtTheNextRefreshOnly)
{
    OpenProcessor processor;
    processor.giveRate (48000.0);
    runNoise (processor, 200);
    ASSERT_TRUE (isDesignedFor (48000.0, processor));

    processor.oversamplingFactor = 2;
    runNoise (processor, 32667);
    EXPECT_EQ (processor.refreshCounter, 65534u);
    EXPECT_TRUE (isDesignedFor (48000.0, processor)) << "the rebuild asks for no design";

    runNoise (processor, 1);
    EXPECT_EQ (processor.refreshCounter, 0u);
    EXPECT_TRUE (isDesignedFor (96000.0, processor));
}
} // namespace
