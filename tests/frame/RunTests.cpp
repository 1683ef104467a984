// SPDX-License-Identifier: AGPL-3.0-only
// How the block loop cuts a block into runs, so that nothing but the cost differs from a walk sample by sample.
#include "support/OpenProcessor.h"
#include "support/ProbeProcessor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
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

/** All that the chain remembers, as bytes. */
std::vector<char> memoryOf (const OpenProcessor& processor)
{
    struct Open : juce::IIRFilter
    {
        static std::array<float, 2> memory (const juce::IIRFilter& f) { return { f.*&Open::v1, f.*&Open::v2 }; }
    };

    std::vector<char> bytes;
    const auto add = [&bytes] (const auto& field)
    {
        const auto* const first = reinterpret_cast<const char*> (&field);
        bytes.insert (bytes.end(), first, first + sizeof (field));
    };

    add (*processor.airFilter);
    add (*processor.bodyFilter);
    add (*processor.spareFilter);
    add (*processor.expander);
    add (*processor.leveller);
    add (Open::memory (processor.highPassLeft));
    add (Open::memory (processor.highPassRight));
    add (processor.refreshCounter);
    add (processor.samplesSinceChange.load());
    add (processor.modeParameter->lastValue);
    return bytes;
}

TEST (Run, OfThePlugInHasTheBitsOfItsSingleSamples)
{
    const juce::ScopedNoDenormals noDenormals;
    std::mt19937 random (12);
    std::uniform_real_distribution<float> sample (-1.0f, 1.0f);

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

        for (int turn = 0; turn < 500; ++turn)
        {
            std::vector<std::pair<float, float>> run (1 + random() % 64);

            for (auto& frame : run)
                frame = { sample (random), sample (random) };

            auto wanted = run;

            for (std::size_t i = 0; i < wanted.size(); ++i)
            {
                one.countSamples (i > 0 ? 1 : 0);
                wanted[i] = one.processStereoSample (wanted[i]);
            }

            ASSERT_EQ (inRuns.processRun (run), run.size());
            ASSERT_EQ (std::memcmp (run.data(), wanted.data(), run.size() * sizeof (run[0])), 0) << position;
            ASSERT_EQ (memoryOf (inRuns), memoryOf (one)) << position << ", turn " << turn;
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
protected:
    static void run (OpenProcessor& processor, std::vector<float>& left, std::vector<float>& right)
    {
        if (! GetParam().mono)
        {
            processor.run (left, right);
            return;
        }

        float* channels[] = { channelPointer (left) };
        juce::AudioBuffer<float> buffer (channels, 1, static_cast<int> (left.size()));
        juce::MidiBuffer midi;
        processor.processBlock (buffer, midi);
    }
};

TEST_P (RunOfThePlugIn, GivesALongBlockTheBitsOfBlocksOfOneSample)
{
    std::mt19937 random (13);
    std::uniform_real_distribution<float> sample (-1.0f, 1.0f);
    OpenProcessor whole;
    OpenProcessor single;
    std::size_t frames = 0;

    for (auto* processor : { &whole, &single })
    {
        processor->oversamplingFactor = GetParam().factor;
        const auto channels = juce::AudioChannelSet::canonicalChannelSet (GetParam().mono ? 1 : 2);
        ASSERT_TRUE (processor->setBusesLayout ({ { channels }, { channels } }));
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

        std::vector<float> left (random() % 500);
        auto right = left;
        frames += left.size();

        for (std::size_t i = 0; i < left.size(); ++i)
        {
            left[i] = sample (random);
            right[i] = sample (random);
        }

        std::vector<float> wantedLeft;
        std::vector<float> wantedRight;

        for (std::size_t i = 0; i < left.size(); ++i)
        {
            std::vector<float> l (1, left[i]);
            std::vector<float> r (1, right[i]);
            run (single, l, r);
            wantedLeft.push_back (l[0]);
            wantedRight.push_back (GetParam().mono ? right[i] : r[0]);
        }

        run (whole, left, right);
        ASSERT_EQ (left, wantedLeft) << "turn " << turn;
        ASSERT_EQ (right, wantedRight) << "turn " << turn;
        ASSERT_EQ (memoryOf (whole), memoryOf (single)) << "turn " << turn;
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
