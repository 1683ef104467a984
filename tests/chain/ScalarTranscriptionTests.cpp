// SPDX-License-Identifier: AGPL-3.0-only
// The stages on pairs against the same formulas on single floats, to the bit: ordinary samples, and any bits at all.
#include "chain/OneSample.h"
#include "chain/StereoFold.h"

#include <gtest/gtest.h>
#include <juce_audio_basics/juce_audio_basics.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace
{
using namespace larkspire;

constexpr unsigned int seed = 20240611;

/** The bits of a float; one pattern for all that is no number, whose sign and payload nobody hears. */
std::uint32_t bits (float value)
{
    return std::isnan (value) ? 0x7fc00000u : std::bit_cast<std::uint32_t> (value);
}

/** Samples of every kind: mostly what a voice is made of, sometimes any float there is, sometimes the special ones. */
class Samples
{
public:
    float next()
    {
        switch (random() % 8)
        {
        case 0:
            return std::bit_cast<float> (static_cast<std::uint32_t> (random()));

        case 1:
            return special[random() % special.size()];

        default:
            return voice (random) * std::pow (10.0f, level (random));
        }
    }

    /** Without what only other numbers than a voice's can do to a recursion: stay for good. */
    float nextOfAVoice() { return voice (random) * std::pow (10.0f, level (random)); }

    float gain() { return random() % 50 == 0 ? next() : std::abs (voice (random)); }

private:
    static constexpr float infinity = std::numeric_limits<float>::infinity();
    static constexpr std::array special { 0.0f,     -0.0f,     std::numeric_limits<float>::quiet_NaN(),
                                          infinity, -infinity, std::numeric_limits<float>::max(),
                                          1.0e-8f,  -1.0e-8f,  std::numeric_limits<float>::denorm_min(),
                                          0.0002f,  0.015f,    -std::numeric_limits<float>::max() };

    std::mt19937 random { seed };
    std::uniform_real_distribution<float> voice { -1.0f, 1.0f };
    std::uniform_real_distribution<float> level { -6.0f, 1.0f };
};

float expandedGain (const LevelRider& rider, float g, float x)
{
    if (std::abs (g * x) > rider.threshold)
    {
        g = (std::abs (x / rider.threshold) * rider.attackRate + 1.0f) * g;
    }
    else
    {
        g = g * 0.9998f;

        if (! (g >= 0.2f))
            g = 0.2f;
    }

    return g > 1.0f ? 1.0f : g;
}

float levelledGain (const LevelRider& rider, float g, float v)
{
    if (std::abs (g * v) > rider.threshold)
        return g / (std::abs (v / rider.threshold) * rider.attackRate + 1.0f);

    g = (1.0f - g) * rider.releaseRate + g;
    return g > 1.0f ? 1.0f : g;
}

float ridden (const LevelRider& rider, float g, float x)
{
    return (g * rider.gainScale + rider.gainOffset) * x * rider.outputGain;
}

using Stage = ChannelPair (*) (LevelRider&, ChannelPair);
using Gain = float (*) (const LevelRider&, float, float);

void expectTheSameGains (Stage stage, Gain gain, RiderSettings ModeRow::*settings)
{
    Samples samples;

    for (int index = 0; index < 4; ++index)
        for (int i = 0; i < 300000; ++i)
        {
            LevelRider rider;
            applySettings (rider, modeForIndex (index).*settings);
            const float gains[] = { samples.gain(), samples.gain() };
            const float inputs[] = { samples.next(), samples.next() };
            rider.gainLeft = gains[0];
            rider.gainRight = gains[1];

            const auto [left, right] = sampleOf (stage (rider, pairOf ({ inputs[0], inputs[1] })));

            const float wanted[] = { gain (rider, gains[0], inputs[0]), gain (rider, gains[1], inputs[1]) };
            ASSERT_EQ (bits (rider.gainLeft), bits (wanted[0])) << gains[0] << ", " << inputs[0];
            ASSERT_EQ (bits (rider.gainRight), bits (wanted[1])) << gains[1] << ", " << inputs[1];
            ASSERT_EQ (bits (left), bits (ridden (rider, wanted[0], inputs[0]))) << inputs[0];
            ASSERT_EQ (bits (right), bits (ridden (rider, wanted[1], inputs[1]))) << inputs[1];
        }
}

TEST (ScalarTranscription, OfTheExpanderHasTheSameBits)
{
    expectTheSameGains (expand, expandedGain, &ModeRow::expander);
}

TEST (ScalarTranscription, OfTheLevellerHasTheSameBits)
{
    expectTheSameGains (level, levelledGain, &ModeRow::leveller);
}

TEST (ScalarTranscription, OfTheFoldHasTheSameBits)
{
    Samples samples;

    for (int i = 0; i < 1000000; ++i)
    {
        const float l = samples.next();
        const float r = samples.next();
        const float s = (l - r) * 0.5f;
        const float m = r + l;
        const auto [left, right] = sampleOf (foldTowardsMiddle (pairOf ({ l, r })));
        ASSERT_EQ (bits (left), bits ((s + m) * 0.75f)) << l << ", " << r;
        ASSERT_EQ (bits (right), bits ((m - s) * 0.75f)) << l << ", " << r;
    }
}

void expectTheSameRecord (const PeakingFilter& actual, const PeakingFilter& wanted)
{
    std::array<float, 16> a {};
    std::array<float, 16> b {};
    std::memcpy (a.data(), &actual, sizeof (a));
    std::memcpy (b.data(), &wanted, sizeof (b));

    for (std::size_t i = 0; i < a.size(); ++i)
        ASSERT_EQ (bits (a[i]), bits (b[i])) << "field " << i;
}

void expectTheSameFilters (float (Samples::*next)())
{
    Samples samples;

    for (int index = 0; index < 4; ++index)
    {
        const auto& mode = modeForIndex (index);
        PeakingFilter air;
        PeakingFilter body;
        designPeaking (air, 48000.0f, mode.air.gainDb, mode.air.frequency, mode.air.bandwidth);
        designPeaking (body, 48000.0f, mode.body.gainDb, mode.body.frequency, mode.body.bandwidth);
        auto wantedAir = air;
        auto wantedBody = body;

        for (int i = 0; i < 100000; ++i)
        {
            const StereoSample input { (samples.*next)(), (samples.*next)() };
            const auto both = filterSideBySide (air, body, pairOf (input));

            auto fromAir = input;
            auto fromBody = input;
            process (wantedAir, fromAir.first, fromAir.second);
            process (wantedBody, fromBody.first, fromBody.second);

            ASSERT_EQ (bits (both[0]), bits (fromAir.first)) << i;
            ASSERT_EQ (bits (both[1]), bits (fromAir.second)) << i;
            ASSERT_EQ (bits (both[2]), bits (fromBody.first)) << i;
            ASSERT_EQ (bits (both[3]), bits (fromBody.second)) << i;
            expectTheSameRecord (air, wantedAir);
            expectTheSameRecord (body, wantedBody);
        }
    }
}

TEST (ScalarTranscription, OfTheFiltersHasTheSameBits)
{
    expectTheSameFilters (&Samples::nextOfAVoice);
}

TEST (ScalarTranscription, OfTheFiltersHasTheSameBitsOnAnyFloats)
{
    expectTheSameFilters (&Samples::next);
}

TEST (ScalarTranscription, OfTheFiltersTellsTheirMemoriesApart)
{
    // In the chain both filters hear the same; here not a field of one is a field of the other.
    Samples samples;
    PeakingFilter filters[2];

    for (auto& filter : filters)
    {
        std::array<float, 16> fields {};

        for (auto& field : fields)
            field = samples.nextOfAVoice();

        filter = std::bit_cast<PeakingFilter> (fields);
    }

    PeakingFilter wanted[2] = { filters[0], filters[1] };
    filterSideBySide (filters[0], filters[1], pairOf ({ 0.3f, -0.7f }));

    for (std::size_t i = 0; i < 2; ++i)
    {
        float left = 0.3f;
        float right = -0.7f;
        process (wanted[i], left, right);
        expectTheSameRecord (filters[i], wanted[i]);
    }
}

/** JUCE's filter with its memory open. */
struct JuceHighPass : juce::IIRFilter
{
    JuceHighPass (double rate, const HighPassSettings& settings)
    {
        setCoefficients (juce::IIRCoefficients::makeHighPass (rate, settings.corner, static_cast<double> (settings.q)));
    }

    using juce::IIRFilter::v1;
    using juce::IIRFilter::v2;
};

void expectJucesOwnBits (float (Samples::*next)())
{
    Samples samples;

    for (int index = 0; index < 4; ++index)
    {
        // Different designs left and right, so that a coefficient taken from the wrong filter shows.
        const auto& one = modeForIndex (index).highPass;
        const auto& other = modeForIndex ((index + 1) % 4).highPass;
        HighPassFilter left { .coefficients = designHighPass (48000.0, one) };
        HighPassFilter right { .coefficients = designHighPass (44100.0, other) };
        JuceHighPass wantedLeft (48000.0, one);
        JuceHighPass wantedRight (44100.0, other);

        for (int i = 0; i < 200000; ++i)
        {
            const StereoSample input { (samples.*next)(), (samples.*next)() };
            const auto [l, r] = sampleOf (highPass (left, right, pairOf (input)));
            ASSERT_EQ (bits (l), bits (wantedLeft.processSingleSampleRaw (input.first))) << input.first;
            ASSERT_EQ (bits (r), bits (wantedRight.processSingleSampleRaw (input.second))) << input.second;
            ASSERT_EQ (bits (left.v1), bits (wantedLeft.v1)) << input.first;
            ASSERT_EQ (bits (left.v2), bits (wantedLeft.v2)) << input.first;
            ASSERT_EQ (bits (right.v1), bits (wantedRight.v1)) << input.second;
            ASSERT_EQ (bits (right.v2), bits (wantedRight.v2)) << input.second;
        }
    }
}

TEST (HighPass, IsJucesToTheBit)
{
    expectJucesOwnBits (&Samples::nextOfAVoice);
}

TEST (HighPass, IsJucesToTheBitOnAnyFloats)
{
    expectJucesOwnBits (&Samples::next);
}

TEST (HighPass, IsDesignedAsJuceDesignsIt)
{
    std::mt19937 random (seed);
    std::uniform_real_distribution<double> anyRate (1000.0, 200000.0);

    for (int i = 0; i < 100000; ++i)
    {
        const auto rate = anyRate (random);
        const auto& settings = modeForIndex (i % 4).highPass;
        const auto wanted = JuceHighPass (rate, settings).getCoefficients();
        const auto designed = designHighPass (rate, settings);

        for (std::size_t c = 0; c < designed.size(); ++c)
            ASSERT_EQ (bits (designed[c]), bits (wanted.coefficients[c])) << "coefficient " << c << " at " << rate;
    }
}

// Silence comes out as the memory alone, here on either side of what JUCE snaps to zero and right upon it.
TEST (HighPass, SnapsToZeroWhereJuceDoes)
{
    const float limit = 1.0e-8f;
    const auto& settings = modeForIndex (2).highPass;

    for (const float memory : { limit, std::nextafter (limit, 1.0f), std::nextafter (limit, 0.0f) })
        for (const float sign : { 1.0f, -1.0f })
        {
            HighPassFilter filter { .coefficients = designHighPass (48000.0, settings), .v1 = sign * memory };
            HighPassFilter other { .coefficients = filter.coefficients };
            JuceHighPass wanted (48000.0, settings);
            wanted.v1 = sign * memory;
            const auto [left, right] = sampleOf (highPass (filter, other, pairOf ({ 0.0f, 0.0f })));
            EXPECT_EQ (bits (left), bits (wanted.processSingleSampleRaw (0.0f))) << sign * memory;
            EXPECT_EQ (right, 0.0f);
        }
}
} // namespace
