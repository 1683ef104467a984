// SPDX-License-Identifier: AGPL-3.0-only
#include "chain/PeakingFilter.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <complex>
#include <cstring>
#include <limits>
#include <random>

namespace
{
using larkspire::designPeaking;
using larkspire::PeakingFilter;

struct Design
{
    float rate;
    float gainDb;
    float frequency;
    float bandwidth;
};

// Every peaking design that the mode table holds, over rates from the lowest to far above the usual.
std::vector<Design> designsInUse()
{
    std::vector<Design> designs;

    for (const float rate : { 1000.0f, 8000.0f, 22050.0f, 29999.0f, 30000.0f, 44100.0f, 48000.0f, 96000.0f, 768000.0f })
        for (const auto& [gain, frequency, bandwidth] : std::vector<std::array<float, 3>> { { 0.0f, 10000.0f, 2.0f },
                                                                                            { 0.0f, 120.0f, 2.0f },
                                                                                            { 7.0f, 13000.0f, 2.0f },
                                                                                            { 1.0f, 150.0f, 2.3f },
                                                                                            { 12.0f, 15000.0f, 1.8f },
                                                                                            { 1.5f, 120.0f, 2.3f },
                                                                                            { 3.0f, 120.0f, 2.3f } })
            designs.push_back ({ rate, gain, frequency, bandwidth });

    return designs;
}

PeakingFilter designed (const Design& design)
{
    PeakingFilter filter;
    designPeaking (filter, design.rate, design.gainDb, design.frequency, design.bandwidth);
    return filter;
}

TEST (PeakingFilter, IsSixteenFloatsOfZero)
{
    const PeakingFilter filter;
    float floats[16];
    static_assert (sizeof (filter) == sizeof (floats));
    std::memcpy (floats, &filter, sizeof (floats));

    for (const float value : floats)
        EXPECT_EQ (value, 0.0f);
}

TEST (PeakingFilter, HasItsFieldsInOrder)
{
    EXPECT_EQ (offsetof (PeakingFilter, b0), 0u);
    EXPECT_EQ (offsetof (PeakingFilter, b2), 8u);
    EXPECT_EQ (offsetof (PeakingFilter, a0), 12u);
    EXPECT_EQ (offsetof (PeakingFilter, a2), 20u);
    EXPECT_EQ (offsetof (PeakingFilter, left), 24u);
    EXPECT_EQ (offsetof (PeakingFilter, right), 44u);
    EXPECT_EQ (offsetof (PeakingFilter::ChannelState, x0), 0u);
    EXPECT_EQ (offsetof (PeakingFilter::ChannelState, y2), 16u);
}

TEST (PeakingDesign, IsTheFormulaInSinglePrecisionToTheBit)
{
    for (const auto& d : designsInUse())
    {
        const float a = std::pow (10.0f, d.gainDb * 0.025f);
        const float w = d.frequency * std::bit_cast<float> (0x40C90FDCu) / d.rate;
        const float t = d.bandwidth * std::bit_cast<float> (0x3EB17218u) * w / std::sin (w);
        float alpha = std::sinh (t) * std::sin (w);
        alpha = alpha < 1.5f ? alpha : 1.5f;

        const auto filter = designed (d);
        EXPECT_EQ (filter.b0, 1.0f + alpha * a) << d.frequency << " Hz at " << d.rate;
        EXPECT_EQ (filter.b1, -2.0f * std::cos (w));
        EXPECT_EQ (filter.b2, 1.0f - alpha * a);
        EXPECT_EQ (filter.a0, 1.0f + alpha / a);
        EXPECT_EQ (filter.a1, -2.0f * std::cos (w));
        EXPECT_EQ (filter.a2, 1.0f - alpha / a);
    }
}

TEST (PeakingDesign, UsesTheConstantJustAboveTwoPi)
{
    // At this frequency and rate the two constants give different cosines.
    const auto filter = designed ({ 44100.0f, 12.0f, 15000.0f, 1.8f });
    const auto cosineTerm = [] (std::uint32_t bits)
    { return -2.0f * std::cos (15000.0f * std::bit_cast<float> (bits) / 44100.0f); };
    ASSERT_NE (cosineTerm (0x40C90FDCu), cosineTerm (0x40C90FDBu));
    EXPECT_EQ (filter.b1, cosineTerm (0x40C90FDCu));
}

TEST (PeakingDesign, CapsAlpha)
{
    // 1.8 octaves at 15 kHz would be 1.96 at 44.1 kHz; a1 and gain aside, a0 shows alpha: a0 = 1 + alpha / A.
    const auto wide = designed ({ 44100.0f, 12.0f, 15000.0f, 1.8f });
    const float amplitude = std::pow (10.0f, 12.0f * 0.025f);
    EXPECT_EQ (wide.a0, 1.0f + 1.5f / amplitude);
    const auto narrow = designed ({ 96000.0f, 12.0f, 15000.0f, 1.8f });
    EXPECT_LT (narrow.a0, wide.a0);
}

// At 0 Hz the bandwidth's term is 0 / 0, and what is no number anyway stays none on the way.
TEST (PeakingDesign, TakesTheCapForAnAlphaThatIsNoNumber)
{
    const float amplitude = std::pow (10.0f, 6.0f * 0.025f);

    for (const float bandwidth : { 1.0f, std::numeric_limits<float>::quiet_NaN() })
    {
        const auto filter = designed ({ 48000.0f, 6.0f, 0.0f, bandwidth });
        EXPECT_EQ (filter.b0, 1.0f + 1.5f * amplitude);
        EXPECT_EQ (filter.b2, 1.0f - 1.5f * amplitude);
        EXPECT_EQ (filter.a0, 1.0f + 1.5f / amplitude);
        EXPECT_EQ (filter.a2, 1.0f - 1.5f / amplitude);
    }
}

TEST (PeakingDesign, HasTheAskedGainAtItsCentre)
{
    for (const auto& d : std::vector<Design> { { 96000.0f, 12.0f, 15000.0f, 1.8f },
                                               { 48000.0f, 3.0f, 120.0f, 2.3f },
                                               { 44100.0f, 1.0f, 150.0f, 2.3f },
                                               { 192000.0f, 7.0f, 13000.0f, 2.0f } })
    {
        const auto f = designed (d);
        const auto z = std::exp (std::complex<double> (0.0, -2.0 * M_PI * d.frequency / d.rate));
        const auto response =
            (static_cast<double> (f.b0) + static_cast<double> (f.b1) * z + static_cast<double> (f.b2) * z * z)
            / (static_cast<double> (f.a0) + static_cast<double> (f.a1) * z + static_cast<double> (f.a2) * z * z);
        EXPECT_NEAR (20.0 * std::log10 (std::abs (response)), static_cast<double> (d.gainDb), 0.01) << d.frequency;
    }
}

TEST (PeakingDesign, SurvivesFrequenciesAtAndAboveHalfTheRate)
{
    for (const auto& d : designsInUse())
    {
        const auto f = designed (d);

        for (const float value : { f.b0, f.b1, f.b2, f.a0, f.a1, f.a2 })
            EXPECT_TRUE (std::isfinite (value)) << d.frequency << " Hz at " << d.rate;

        EXPECT_GE (f.a0, 1.0f);
    }
}

TEST (PeakingDesign, LeavesTheMemoryAlone)
{
    PeakingFilter filter;
    float value = 1.0f;

    for (auto* state : { &filter.left, &filter.right })
        for (float* field : { &state->x0, &state->x1, &state->x2, &state->y1, &state->y2 })
            *field = value++;

    designPeaking (filter, 48000.0f, 12.0f, 15000.0f, 1.8f);
    designPeaking (filter, 44100.0f, 0.0f, 120.0f, 2.0f);
    value = 1.0f;

    for (const auto* state : { &filter.left, &filter.right })
        for (const float field : { state->x0, state->x1, state->x2, state->y1, state->y2 })
            EXPECT_EQ (field, value++);
}

TEST (PeakingFilter, IsAnIdentityWithinRoundingAtZeroDecibels)
{
    std::mt19937 random (7);
    std::uniform_real_distribution<float> sample (-1.0f, 1.0f);

    for (const float frequency : { 20.0f, 120.0f, 1000.0f, 10000.0f, 23999.0f })
    {
        auto filter = designed ({ 48000.0f, 0.0f, frequency, 2.0f });

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

TEST (PeakingFilter, NormalisesThenAddsInTheGivenOrder)
{
    PeakingFilter filter {
        .b0 = 1.7f, .b1 = -1.1f, .b2 = 0.3f, .a0 = 1.3f, .a1 = -0.9f, .a2 = 0.2f, .left = {}, .right = {}
    };
    filter.left = { .x0 = 9.0f, .x1 = 0.1f, .x2 = 0.2f, .y1 = 0.3f, .y2 = 0.4f };
    filter.right = { .x0 = 9.0f, .x1 = -0.5f, .x2 = 0.6f, .y1 = -0.7f, .y2 = 0.8f };
    const float r = 1.0f / 1.3f;
    const auto expected = [r] (float x, const PeakingFilter::ChannelState& s)
    {
        float y = (r * 1.7f) * x;
        y = y + (r * -1.1f) * s.x1;
        y = y + (r * 0.3f) * s.x2;
        y = y - (r * -0.9f) * s.y1;
        y = y - (r * 0.2f) * s.y2;
        return y;
    };
    const float wantedLeft = expected (0.77f, filter.left);
    const float wantedRight = expected (-0.33f, filter.right);

    float left = 0.77f;
    float right = -0.33f;
    process (filter, left, right);

    EXPECT_EQ (left, wantedLeft);
    EXPECT_EQ (right, wantedRight);
    EXPECT_EQ (filter.left.x0, 0.77f);
    EXPECT_EQ (filter.left.x1, 0.77f);
    EXPECT_EQ (filter.left.x2, 0.1f);
    EXPECT_EQ (filter.left.y1, wantedLeft);
    EXPECT_EQ (filter.left.y2, 0.3f);
    EXPECT_EQ (filter.right.x0, -0.33f);
    EXPECT_EQ (filter.right.x1, -0.33f);
    EXPECT_EQ (filter.right.x2, -0.5f);
    EXPECT_EQ (filter.right.y1, wantedRight);
    EXPECT_EQ (filter.right.y2, -0.7f);
}

TEST (PeakingFilter, TreatsBothChannelsAlikeAndNeverMixesThem)
{
    auto filter = designed ({ 48000.0f, 12.0f, 15000.0f, 1.8f });
    auto alone = filter;
    std::mt19937 random (11);
    std::uniform_real_distribution<float> sample (-1.0f, 1.0f);

    for (int i = 0; i < 1000; ++i)
    {
        const float x = sample (random);
        float left = x;
        float right = x;
        process (filter, left, right);
        EXPECT_EQ (left, right);

        float leftAlone = x;
        float silence = 0.0f;
        process (alone, leftAlone, silence);
        EXPECT_EQ (leftAlone, left);
        EXPECT_EQ (silence, 0.0f);
    }
}
} // namespace
