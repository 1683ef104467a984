// SPDX-License-Identifier: AGPL-3.0-only
// The peaking filters' record and design. That they run as the oracle's do is in ScalarTranscriptionTests.cpp.
#include "chain/PeakingFilter.h"
#include "reference/Stages.h"

#include <gtest/gtest.h>

#include <complex>
#include <limits>
#include <numbers>
#include <numeric>
#include <random>
#include <vector>

namespace
{
using larkspire::PeakingFilter;

PeakingFilter designed (float rate, const reference::Peak& peak)
{
    PeakingFilter filter;
    designPeaking (filter, rate, peak.gainDb, peak.frequency, peak.bandwidth);
    return filter;
}

TEST (PeakingFilter, IsSixteenFloatsInOrderAndZero)
{
    EXPECT_EQ ((std::bit_cast<std::array<float, 16>> (PeakingFilter())), (std::array<float, 16> {}));

    std::array<float, 16> fields {};
    std::iota (fields.begin(), fields.end(), 1.0f);
    const auto [b0, b1, b2, a0, a1, a2, left, right] = std::bit_cast<PeakingFilter> (fields);
    EXPECT_EQ ((std::array { b0, b1, b2, a0, a1, a2 }), (std::array { 1.0f, 2.0f, 3.0f, 4.0f, 5.0f, 6.0f }));
    EXPECT_EQ ((std::array { left.x0, left.x1, left.x2, left.y1, left.y2 }),
               (std::array { 7.0f, 8.0f, 9.0f, 10.0f, 11.0f }));
    EXPECT_EQ ((std::array { right.x0, right.x1, right.x2, right.y1, right.y2 }),
               (std::array { 12.0f, 13.0f, 14.0f, 15.0f, 16.0f }));
}

void expectTheOraclesDesign (float rate, const reference::Peak& peak)
{
    const auto filter = designed (rate, peak);
    reference::Biquad wanted;
    design (wanted, rate, peak);
    EXPECT_EQ ((std::array { filter.b0, filter.b1, filter.b2, filter.a0, filter.a1, filter.a2 }),
               (std::array { wanted.b0, wanted.b1, wanted.b2, wanted.a0, wanted.a1, wanted.a2 }))
        << peak.gainDb << " dB, " << peak.frequency << " Hz, " << peak.bandwidth << " octaves at " << rate;

    for (const float value : { filter.b0, filter.b1, filter.b2, filter.a0, filter.a1, filter.a2 })
        EXPECT_TRUE (std::isfinite (value)) << peak.frequency << " Hz at " << rate;
}

TEST (PeakingDesign, IsTheOraclesToTheBitAndFinite)
{
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();

    // At 0 Hz the bandwidth's term is 0 / 0: the cap stands for an alpha that is NaN.
    std::vector<reference::Peak> peaks { { 6.0f, 0.0f, 1.0f }, { 6.0f, 0.0f, nan } };

    for (const auto& mode : reference::modes)
        peaks.insert (peaks.end(), { mode.air, mode.body });

    // From far below twice the centre to far above the usual rates.
    for (const float rate : { 1000.0f, 8000.0f, 22050.0f, 29999.0f, 30000.0f, 44100.0f, 48000.0f, 96000.0f, 768000.0f })
        for (const auto& peak : peaks)
            expectTheOraclesDesign (rate, peak);

    std::mt19937 random (6);
    std::uniform_real_distribution<float> gain (-20.0f, 20.0f);
    std::uniform_real_distribution<float> frequency (20.0f, 20000.0f);
    std::uniform_real_distribution<float> bandwidth (0.1f, 3.0f);

    for (int i = 0; i < 10000; ++i)
        expectTheOraclesDesign (44100.0f, { gain (random), frequency (random), bandwidth (random) });
}

TEST (PeakingDesign, HasTheAskedGainAtItsCentre)
{
    for (const auto& mode : reference::modes)
        for (const auto& peak : { mode.air, mode.body })
        {
            const auto f = designed (96000.0f, peak);
            const auto z = std::polar (1.0, -2.0 * std::numbers::pi * static_cast<double> (peak.frequency) / 96000.0);
            const auto polynomial = [z] (double c0, double c1, double c2) { return c0 + c1 * z + c2 * z * z; };
            const auto response = polynomial (f.b0, f.b1, f.b2) / polynomial (f.a0, f.a1, f.a2);
            EXPECT_NEAR (20.0 * std::log10 (std::abs (response)), static_cast<double> (peak.gainDb), 0.01)
                << mode.name << " at " << peak.frequency;
        }
}

TEST (PeakingFilter, IsAnIdentityWithinRoundingAtZeroDecibels)
{
    std::mt19937 random (7);
    std::uniform_real_distribution<float> sample (-1.0f, 1.0f);

    for (const float frequency : { 20.0f, 120.0f, 1000.0f, 10000.0f, 23999.0f })
    {
        auto filter = designed (48000.0f, { .gainDb = 0.0f, .frequency = frequency, .bandwidth = 2.0f });

        for (int i = 0; i < 10000; ++i)
        {
            const float left = sample (random);
            const float right = sample (random);
            float outLeft = left;
            float outRight = right;
            process (filter, outLeft, outRight);

            // The slow poles near z = 1 of a low centre gather rounding; 1e-3 is 60 dB below the signal.
            ASSERT_NEAR (outLeft, left, 1e-3) << frequency << " Hz, sample " << i;
            ASSERT_NEAR (outRight, right, 1e-3) << frequency << " Hz, sample " << i;
        }
    }
}
} // namespace
