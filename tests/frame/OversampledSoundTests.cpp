// SPDX-License-Identifier: AGPL-3.0-only
// What comes out of an oversampled processor, and at which rate its filters are designed.
#include "frame/OversamplingSignals.h"
#include "support/OpenProcessor.h"
#include "support/ProbeProcessor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

namespace
{
using Channels = std::vector<std::vector<float>>;

struct SineRow
{
    int factor;
    float largestError; // as a fraction of the amplitude
};

class OversampledSine : public testing::TestWithParam<SineRow>
{
protected:
    // In cycles per sample: at 48 kHz 100 Hz, 997 Hz, 5 kHz, 15 kHz and 20 kHz.
    static constexpr double frequencies[] = { 100.0 / 48000.0, 997.0 / 48000.0, 5.0 / 48.0, 15.0 / 48.0, 20.0 / 48.0 };

    /** Runs two sines and checks that each comes back on its channel, late by the oversampler's latency, fraction
        included, and changed by no more than the row's error. */
    template <typename Processor, typename Run>
    static void expectDelayedSines (Processor& processor, Run&& run)
    {
        for (const double frequency : frequencies)
        {
            auto left = sine (6000, frequency, 0.5, 0.0);
            auto right = sine (6000, frequency, 0.25, 0.3);
            run (left, right);

            const auto delay = static_cast<double> (processor.oversampler->getLatencyInSamples());
            const auto leftWanted = sine (6000, frequency, 0.5, delay);
            const auto rightWanted = sine (6000, frequency, 0.25, delay + 0.3);
            EXPECT_LT (largestDifference (left, leftWanted, 1000), 0.5f * GetParam().largestError) << frequency;
            EXPECT_LT (largestDifference (right, rightWanted, 1000), 0.25f * GetParam().largestError) << frequency;
            EXPECT_EQ (processor.getLatencySamples(), static_cast<int> (delay));
        }
    }
};

TEST_P (OversampledSine, ComesBackThroughTheIdentity)
{
    ProbeProcessor probe;
    probe.oversamplingFactor = GetParam().factor;
    expectDelayedSines (probe,
                        [&probe] (auto& left, auto& right)
                        {
                            Channels channels { left, right };
                            probe.run (channels);
                            left = channels[0];
                            right = channels[1];
                        });
}

TEST_P (OversampledSine, ComesBackThroughThePlugInInModeBypass)
{
    OpenProcessor processor;
    processor.oversamplingFactor = GetParam().factor;
    processor.setMode (0.0f);
    expectDelayedSines (processor, [&processor] (auto& left, auto& right) { processor.run (left, right); });
}

// Measured over all five frequencies: 0.00019, 0.00019, 0.00050, 0.00095 and 0.0048. Each further stage of the
// framework's oversampler lets 10 dB more through. One sample of delay more or less would be an error of 0.013 at
// least.
INSTANTIATE_TEST_SUITE_P (Factors,
                          OversampledSine,
                          testing::Values (SineRow { 2, 0.00025f },
                                           SineRow { 3, 0.00025f },
                                           SineRow { 4, 0.0006f },
                                           SineRow { 8, 0.0012f },
                                           SineRow { 16, 0.006f }),
                          [] (const auto& test) { return std::to_string (test.param.factor); });

constexpr auto coefficientBytes = offsetof (larkspire::PeakingFilter, left);

/** True if the plug-in's filters stand as designed for this rate, in mode "Medium". */
bool isDesignedFor (double rate, const OpenProcessor& processor)
{
    OpenProcessor other;
    other.giveRate (rate);
    other.updateSettings();
    return std::memcmp (processor.airFilter, other.airFilter, coefficientBytes) == 0
           && std::memcmp (processor.bodyFilter, other.bodyFilter, coefficientBytes) == 0
           && std::memcmp (processor.highPassLeft.getCoefficients().coefficients,
                           other.highPassLeft.getCoefficients().coefficients,
                           5 * sizeof (float))
                  == 0;
}

void runNoise (OpenProcessor& processor, std::size_t count)
{
    auto left = noise (count, 8);
    auto right = noise (count, 9);
    processor.run (left, right);
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
    runNoise (processor, 100);
    runNoise (processor, 100);
    ASSERT_TRUE (isDesignedFor (48000.0, processor));

    processor.oversamplingFactor = 2;
    runNoise (processor, 32567);
    EXPECT_EQ (processor.refreshCounter, 65334u);
    EXPECT_TRUE (isDesignedFor (48000.0, processor)) << "the rebuild asks for no design";

    runNoise (processor, 100);
    EXPECT_EQ (processor.refreshCounter, 65534u);
    EXPECT_TRUE (isDesignedFor (48000.0, processor));

    runNoise (processor, 1);
    EXPECT_EQ (processor.refreshCounter, 0u);
    EXPECT_TRUE (isDesignedFor (96000.0, processor));
}

TEST (OversampledPlugIn, ChainRunsOnEverySampleOfTheRaisedRate)
{
    // With a flat oversampler in the way the raised chain must sound like the chain at that rate would.
    const auto raisedInput = sine (96000, 300.0 / 96000.0, 0.1, 0.0);
    OpenProcessor atTheRate;
    atTheRate.giveRate (96000.0);
    auto expected = raisedInput;
    auto expectedRight = raisedInput;
    atTheRate.run (expected, expectedRight);

    OpenProcessor raised;
    raised.giveRate (48000.0);
    raised.oversamplingFactor = 2;
    auto left = sine (30000, 300.0 / 48000.0, 0.1, 0.0);
    auto right = left;
    raised.run (left, right);

    float loudest = 0.0f;
    float loudestExpected = 0.0f;

    for (std::size_t i = 20000; i < 30000; ++i)
    {
        loudest = std::max (loudest, std::abs (left[i]));
        loudestExpected = std::max (loudestExpected, std::abs (expected[2 * i]));
    }

    EXPECT_GT (loudestExpected, 0.1f);
    EXPECT_NEAR (loudest, loudestExpected, 0.001f);
}
} // namespace
