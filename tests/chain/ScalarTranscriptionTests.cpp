// SPDX-License-Identifier: AGPL-3.0-only
// The stages on pairs against the oracle's on single floats, to the bit: ordinary samples, and any bits at all.
#include "chain/OneSample.h"
#include "chain/StereoFold.h"
#include "reference/Stages.h"
#include "support/Comparison.h"

#include <gtest/gtest.h>
#include <juce_audio_basics/juce_audio_basics.h>

#include <array>
#include <limits>
#include <random>

namespace
{
using namespace larkspire;

constexpr unsigned int seed = 20240611;

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

    /** Without NaN and the infinities, which would stay in a recursion for good. */
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

using Stage = Lanes (*) (LevelRider&, Lanes);
using Gain = float (*) (const reference::Rider&, float, float);

void expectTheSameGains (Stage stage,
                         RiderSettings ModeRow::*row,
                         Gain gain,
                         reference::Rider reference::Mode::*settings)
{
    Samples samples;

    for (int index = 0; index < 4; ++index)
        for (int i = 0; i < 300000; ++i)
        {
            LevelRider rider;
            applySettings (rider, modeForIndex (index).*row);
            const float gains[] = { samples.gain(), samples.gain() };
            const float inputs[] = { samples.next(), samples.next() };
            rider.gainLeft = gains[0];
            rider.gainRight = gains[1];

            const auto [left, right] = sampleOf (stage (rider, pairOf ({ inputs[0], inputs[1] })));

            const auto& oracle = reference::modeAt (index).*settings;
            const float wanted[] = { gain (oracle, gains[0], inputs[0]), gain (oracle, gains[1], inputs[1]) };
            ASSERT_EQ (audibleBits (rider.gainLeft), audibleBits (wanted[0])) << gains[0] << ", " << inputs[0];
            ASSERT_EQ (audibleBits (rider.gainRight), audibleBits (wanted[1])) << gains[1] << ", " << inputs[1];
            ASSERT_EQ (audibleBits (left), audibleBits (ridden (oracle, wanted[0], inputs[0]))) << inputs[0];
            ASSERT_EQ (audibleBits (right), audibleBits (ridden (oracle, wanted[1], inputs[1]))) << inputs[1];
        }
}

TEST (ScalarTranscription, OfTheExpanderHasTheSameBits)
{
    expectTheSameGains (expand, &ModeRow::expander, reference::expanderGain, &reference::Mode::expander);
}

TEST (ScalarTranscription, OfTheLevellerHasTheSameBits)
{
    expectTheSameGains (level, &ModeRow::leveller, reference::levellerGain, &reference::Mode::leveller);
}

TEST (ScalarTranscription, OfTheFoldHasTheSameBits)
{
    Samples samples;

    for (int i = 0; i < 1000000; ++i)
    {
        float l = samples.next();
        float r = samples.next();
        const auto [left, right] = sampleOf (foldTowardsMiddle (pairOf ({ l, r })));
        reference::fold (l, r);
        ASSERT_EQ (audibleBits (left), audibleBits (l));
        ASSERT_EQ (audibleBits (right), audibleBits (r));
    }
}

/** The oracle's record of a filter. */
reference::Biquad oracleOf (const PeakingFilter& f)
{
    return { f.b0,
             f.b1,
             f.b2,
             f.a0,
             f.a1,
             f.a2,
             { f.left.x1, f.right.x1 },
             { f.left.x2, f.right.x2 },
             { f.left.y1, f.right.y1 },
             { f.left.y2, f.right.y2 } };
}

void expectTheSameMemory (const PeakingFilter& actual, const reference::Biquad& wanted, const StereoSample& newest)
{
    const auto memory = oracleOf (actual);

    for (std::size_t channel = 0; channel < 2; ++channel)
    {
        ASSERT_EQ (audibleBits (memory.x1[channel]), audibleBits (wanted.x1[channel]));
        ASSERT_EQ (audibleBits (memory.x2[channel]), audibleBits (wanted.x2[channel]));
        ASSERT_EQ (audibleBits (memory.y1[channel]), audibleBits (wanted.y1[channel]));
        ASSERT_EQ (audibleBits (memory.y2[channel]), audibleBits (wanted.y2[channel]));
    }

    ASSERT_EQ (audibleBits (actual.left.x0), audibleBits (newest.first));
    ASSERT_EQ (audibleBits (actual.right.x0), audibleBits (newest.second));
}

/** Two filters side by side, and the first one alone, against the oracle's two. */
void expectTheSameFilters (PeakingFilter& lower, PeakingFilter& upper, const StereoSample& input)
{
    auto alone = lower;
    auto wantedLower = oracleOf (lower);
    auto wantedUpper = oracleOf (upper);
    const auto both = filterSideBySide (lower, upper, pairOf (input));

    float wanted[] = { input.first, input.second, input.first, input.second };
    run (wantedLower, wanted[0], wanted[1]);
    run (wantedUpper, wanted[2], wanted[3]);

    for (int lane = 0; lane < 4; ++lane)
        ASSERT_EQ (audibleBits (both[lane]), audibleBits (wanted[lane])) << "lane " << lane;

    expectTheSameMemory (lower, wantedLower, input);
    expectTheSameMemory (upper, wantedUpper, input);

    auto [left, right] = input;
    process (alone, left, right);
    ASSERT_EQ (audibleBits (left), audibleBits (wanted[0]));
    ASSERT_EQ (audibleBits (right), audibleBits (wanted[1]));
    expectTheSameMemory (alone, wantedLower, input);
}

TEST (ScalarTranscription, OfTheFiltersHasTheSameBits)
{
    Samples samples;

    for (int index = 0; index < 4; ++index)
    {
        const auto& mode = modeForIndex (index);
        PeakingFilter air;
        PeakingFilter body;
        designPeaking (air, 48000.0f, mode.air.gainDb, mode.air.frequency, mode.air.bandwidth);
        designPeaking (body, 48000.0f, mode.body.gainDb, mode.body.frequency, mode.body.bandwidth);

        for (int i = 0; i < 100000; ++i)
            ASSERT_NO_FATAL_FAILURE (
                expectTheSameFilters (air, body, { samples.nextOfAVoice(), samples.nextOfAVoice() }));
    }
}

TEST (ScalarTranscription, OfTheFiltersHasTheSameBitsOnAnyFloats)
{
    // In the chain both filters hear the same; here not a field of one is a field of the other.
    Samples samples;

    for (int i = 0; i < 100000; ++i)
    {
        std::array<float, 32> fields {};

        for (auto& field : fields)
            field = samples.next();

        auto [lower, upper] = std::bit_cast<std::array<PeakingFilter, 2>> (fields);
        ASSERT_NO_FATAL_FAILURE (expectTheSameFilters (lower, upper, { samples.next(), samples.next() }));
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
            ASSERT_EQ (audibleBits (l), audibleBits (wantedLeft.processSingleSampleRaw (input.first))) << input.first;
            ASSERT_EQ (audibleBits (r), audibleBits (wantedRight.processSingleSampleRaw (input.second)))
                << input.second;
            ASSERT_EQ (audibleBits (left.v1), audibleBits (wantedLeft.v1)) << input.first;
            ASSERT_EQ (audibleBits (left.v2), audibleBits (wantedLeft.v2)) << input.first;
            ASSERT_EQ (audibleBits (right.v1), audibleBits (wantedRight.v1)) << input.second;
            ASSERT_EQ (audibleBits (right.v2), audibleBits (wantedRight.v2)) << input.second;
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
            ASSERT_EQ (audibleBits (designed[c]), audibleBits (wanted.coefficients[c]))
                << "coefficient " << c << " at " << rate;
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
            EXPECT_EQ (audibleBits (left), audibleBits (wanted.processSingleSampleRaw (0.0f))) << sign * memory;
            EXPECT_EQ (right, 0.0f);
        }
}
} // namespace
