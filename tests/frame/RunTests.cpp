// SPDX-License-Identifier: AGPL-3.0-only
// How the block loop cuts a block into runs, so that nothing but the cost differs from a walk sample by sample.
#include "support/Comparison.h"
#include "support/OpenProcessor.h"
#include "support/ProbeProcessor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <random>
#include <span>
#include <vector>

namespace
{
/** Processes runs itself, and writes down how long they are and what is counted where they begin. */
class RunProbe : public ProbeProcessor
{
public:
    using ProbeProcessor::ProbeProcessor;

    std::size_t processRun (std::span<std::pair<float, float>> run) override
    {
        lengths.push_back (run.size());
        countersAtRun.push_back (refreshCounter);
        const auto processed = std::min (run.size(), mostOfARun);

        for (std::size_t i = 0; i < processed; ++i)
            seen.push_back (run[i]);

        countSamples (static_cast<int> (processed) - 1);

        if (lengths.size() == asksInRun)
            requestUpdate();

        return processed;
    }

    void updateSettings() override
    {
        ProbeProcessor::updateSettings();
        countersAtUpdate.emplace_back (refreshCounter, samplesSinceChange.load());
    }

    std::size_t mostOfARun = 1000;
    std::size_t asksInRun = 0; // counted from 1; none
    std::vector<std::size_t> lengths;
    std::vector<juce::uint32> countersAtRun;
    std::vector<std::pair<juce::uint32, int>> countersAtUpdate;
};

TEST (Run, IsAtMost64SamplesLong)
{
    RunProbe probe;
    probe.runSilence (200);
    EXPECT_EQ (probe.lengths, (std::vector<std::size_t> { 64, 64, 64, 8 }));
    EXPECT_EQ (probe.countersAtRun, (std::vector<juce::uint32> { 1, 65, 129, 193 })) << "its first sample is counted";
    EXPECT_EQ (probe.refreshCounter, 200u);
    EXPECT_EQ (probe.samplesSinceChange, 200);
}

TEST (Run, EndsWithTheBlock)
{
    RunProbe probe;
    probe.runSilence (10);
    probe.runSilence (0);
    probe.runSilence (70);
    EXPECT_EQ (probe.lengths, (std::vector<std::size_t> { 10, 64, 6 }));
}

TEST (Run, EndsAheadOfTheRefresh)
{
    RunProbe probe;
    probe.refreshCounter = 65500;
    probe.runSilence (100);
    EXPECT_EQ (probe.lengths, (std::vector<std::size_t> { 35, 64, 1 }));
    EXPECT_EQ (probe.countersAtRun, (std::vector<juce::uint32> { 65501, 0, 64 }));
    EXPECT_EQ (probe.updatesAtSample, (std::vector<std::size_t> { 0, 35 }));
}

TEST (Run, ThatIsCutShortGoesOnWithTheNextSample)
{
    RunProbe probe;
    probe.mostOfARun = 7;
    std::vector<std::vector<float>> channels (2, std::vector<float> (100));

    for (std::size_t i = 0; i < 100; ++i)
        channels[0][i] = 0.01f * static_cast<float> (i);

    probe.run (channels);
    ASSERT_EQ (probe.seen.size(), 100u);

    for (std::size_t i = 0; i < 100; ++i)
        EXPECT_EQ (probe.seen[i].first, 0.01f * static_cast<float> (i));

    EXPECT_EQ (probe.refreshCounter, 100u);
}

TEST (Run, ThatAsksForAnUpdateWithItsLastSampleIsAnsweredAheadOfTheNext)
{
    RunProbe probe;
    probe.asksInRun = 2;
    probe.runSilence (200);
    EXPECT_EQ (probe.updatesAtSample, (std::vector<std::size_t> { 0, 128 }));
}

TEST (Run, IsCountedInItsFirstSampleWhenSettingsAreUpdated)
{
    RunProbe probe;
    probe.runSilence (10);
    probe.requestUpdate();
    probe.runSilence (10);
    EXPECT_EQ (probe.countersAtUpdate, (std::vector<std::pair<juce::uint32, int>> { { 1, 1 }, { 11, 1 } }));
}

TEST (Run, OfTheBaseClassCountsASampleAheadOfProcessingIt)
{
    ProbeProcessor probe;
    std::vector<std::pair<int, juce::uint32>> counted;
    probe.answer = [&] (auto input)
    {
        counted.emplace_back (probe.samplesSinceChange.load(), probe.refreshCounter);
        return input;
    };
    probe.runSilence (70);

    for (std::size_t i = 0; i < 70; ++i)
        EXPECT_EQ (counted[i], (std::pair<int, juce::uint32> (static_cast<int> (i) + 1, i + 1)));
}

TEST (Run, OfTheBaseClassEndsBehindEachSampleThatAsksForAnUpdate)
{
    ProbeProcessor probe;
    probe.answer = [&] (auto input)
    {
        if (probe.seen.size() % 10 == 3)
            probe.requestUpdate();

        return input;
    };
    probe.runSilence (64);
    EXPECT_EQ (probe.updatesAtSample, (std::vector<std::size_t> { 0, 3, 13, 23, 33, 43, 53, 63 }));
    EXPECT_EQ (probe.seen.size(), 64u);
}

void expectTheSameMemory (const OpenProcessor& one, const OpenProcessor& other)
{
    ASSERT_EQ (one.memory(), other.memory());
    ASSERT_EQ (one.refreshCounter, other.refreshCounter);
    ASSERT_EQ (one.samplesSinceChange.load(), other.samplesSinceChange.load());
    ASSERT_EQ (one.modeParameter->lastValue, other.modeParameter->lastValue);
}

TEST (Run, OfThePlugInHasTheBitsOfItsSingleSamples)
{
    const ScopedFlushToZero flushToZero;
    const auto signal = noise (32000, 0.0, 12);

    for (int position = 0; position < 5; ++position)
    {
        OpenProcessor inRuns;
        OpenProcessor one;

        for (auto* processor : { &inRuns, &one })
        {
            processor->giveRate (48000.0);
            processor->adoptMode (knobPosition (position));
            processor->modeParameter->hasChanged();
            processor->settingsDue = false;
        }

        std::size_t done = 0;

        for (std::size_t length = 1; done + length <= signal.left.size(); length = length % 64 + 1)
        {
            std::vector<std::pair<float, float>> run (length);

            for (auto& frame : run)
            {
                frame = { signal.left[done], signal.right[done] };
                ++done;
            }

            auto wanted = run;

            for (std::size_t i = 0; i < wanted.size(); ++i)
            {
                one.countSamples (i > 0 ? 1 : 0);
                wanted[i] = one.processStereoSample (wanted[i]);
            }

            ASSERT_EQ (inRuns.processRun (run), run.size());
            ASSERT_EQ (run, wanted) << position << " at " << done;
            ASSERT_NO_FATAL_FAILURE (expectTheSameMemory (inRuns, one)) << position << " at " << done;
        }
    }
}

TEST (Run, OfThePlugInEndsBehindTheSampleThatFindsAChange)
{
    OpenProcessor processor;
    processor.adoptMode (knobPosition (1));
    processor.modeParameter->hasChanged();
    processor.settingsDue = false;
    std::vector<std::pair<float, float>> run (64, { 0.1f, 0.1f });
    EXPECT_EQ (processor.processRun (run), 64u);
    EXPECT_FALSE (processor.settingsDue);

    processor.setMode (knobPosition (2));
    EXPECT_EQ (processor.processRun (run), 1u);
    EXPECT_TRUE (processor.settingsDue);
    EXPECT_EQ (processor.samplesSinceChange, 0);
}

struct Layout
{
    const char* name;
    bool mono;
    int factor;
};

/** Names the layout where a test fails. */
void PrintTo (const Layout& layout, std::ostream* stream)
{
    *stream << layout.name;
}

class RunOfThePlugIn : public testing::TestWithParam<Layout>
{
};

TEST_P (RunOfThePlugIn, GivesALongBlockTheBitsOfBlocksOfOneSample)
{
    std::mt19937 random (13);
    std::uniform_real_distribution<float> sample (-1.0f, 1.0f);
    OpenProcessor whole;
    OpenProcessor single;
    const auto layout = juce::AudioChannelSet::canonicalChannelSet (GetParam().mono ? 1 : 2);
    std::size_t frames = 0;

    for (auto* processor : { &whole, &single })
    {
        processor->oversamplingFactor = GetParam().factor;
        ASSERT_TRUE (processor->setBusesLayout ({ { layout }, { layout } }));
    }

    // Changes of the parameter, requests, and a refresh that brings a new rate are among them.
    for (int turn = 0; turn < 400; ++turn)
    {
        const auto value = knobPosition (static_cast<int> (random() % 5));
        const auto changes = turn < 100 && random() % 2 == 0;
        const auto request = turn < 100 && random() % 8 == 0;

        for (auto* processor : { &whole, &single })
        {
            processor->giveRate (turn < 150 ? 48000.0 : 44100.0);

            if (changes)
                processor->setMode (value);

            if (request)
                processor->requestUpdate();
        }

        std::vector<std::vector<float>> block (GetParam().mono ? 1 : 2, std::vector<float> (random() % 500));
        frames += block[0].size();

        for (auto& channel : block)
            std::ranges::generate (channel, [&] { return sample (random); });

        auto wanted = block;

        for (std::size_t i = 0; i < wanted[0].size(); ++i)
        {
            std::vector<std::vector<float>> frame (wanted.size());

            for (std::size_t channel = 0; channel < frame.size(); ++channel)
                frame[channel].assign (1, wanted[channel][i]);

            single.run (frame);

            for (std::size_t channel = 0; channel < frame.size(); ++channel)
                wanted[channel][i] = frame[channel][0];
        }

        whole.run (block);
        ASSERT_EQ (block, wanted) << "turn " << turn;
        ASSERT_NO_FATAL_FAILURE (expectTheSameMemory (whole, single)) << "turn " << turn;
    }

    ASSERT_GT (frames, 65536u);
    EXPECT_EQ (whole.sampleRate, 44100.0) << "which came with a refresh";
}

INSTANTIATE_TEST_SUITE_P (Layouts,
                          RunOfThePlugIn,
                          testing::Values (Layout { "Stereo", false, 1 },
                                           Layout { "Mono", true, 1 },
                                           Layout { "Oversampled", false, 2 }),
                          [] (const auto& test) { return test.param.name; });
} // namespace
