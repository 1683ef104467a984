// SPDX-License-Identifier: AGPL-3.0-only
// What the measurements measure with, on signals of which everything is known.
#include "measure/Envelope.h"
#include "measure/Tone.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>

namespace
{
using namespace larkspire::measure;

TEST (Tone, HasItsLevelAndGoesOnWithoutAJump)
{
    Tone inPieces (0.01);
    auto samples = inPieces.next (123, -6.0);
    const auto rest = inPieces.next (877, -6.0);
    samples.insert (samples.end(), rest.begin(), rest.end());
    EXPECT_EQ (samples, Tone (0.01).next (1000, -6.0));
    EXPECT_NEAR (peakOf (samples), 0.5012, 1e-4);
    EXPECT_NEAR (levelOf (samples), -6.0, 1e-4);
}

TEST (Component, IsTheAmplitudeOfItsToneAndOfNoOther)
{
    auto samples = Tone (0.01).next (24000, -20.0);
    const auto louder = Tone (0.0137).next (24000, -6.0);
    std::transform (samples.begin(), samples.end(), louder.begin(), samples.begin(), std::plus<>());
    EXPECT_NEAR (componentAt (samples, 0.01), 0.1, 1e-6);
    EXPECT_NEAR (componentAt (samples, 0.0137), 0.50119, 1e-5);
    EXPECT_NEAR (componentAt (samples, 0.02), 0.0, 1e-6);
}

TEST (Component, NeedsNoWholeNumberOfPeriods)
{
    EXPECT_NEAR (componentAt (Tone (0.000437).next (24000, 0.0), 0.000437), 1.0, 1e-4);
}

TEST (Decibels, EndAtTheLowestThatIsWritten)
{
    EXPECT_NEAR (toDecibels (0.5), -6.0206, 1e-4);
    EXPECT_EQ (toDecibels (0.0), lowestDecibels);
    EXPECT_NEAR (fromDecibels (-6.0206), 0.5, 1e-5);
}

TEST (Envelope, IsTheAmplitudeOfItsToneAtAnyPhase)
{
    for (const double phase : { 0.0, 0.3, 1.7 })
    {
        std::vector<float> samples (480);

        for (std::size_t i = 0; i < samples.size(); ++i)
            samples[i] = 0.25f
                         * static_cast<float> (
                             std::sin (2.0 * std::numbers::pi * static_cast<double> (i) / Envelope::period + phase));

        Envelope envelope;
        envelope.add (samples);
        ASSERT_EQ (envelope.amplitudes().size(), 40u);

        for (const auto amplitude : std::span (envelope.amplitudes()).subspan (3))
            EXPECT_NEAR (amplitude, 0.25f, 1e-6f);
    }
}

TEST (Envelope, IsHalfWayWhereTheMiddleOfItsPeriodStandsOnAStep)
{
    constexpr std::size_t step = 10 * Envelope::period;
    Tone tone (1.0 / Envelope::period);
    Envelope envelope;
    envelope.add (tone.next (step, -20.0));
    envelope.add (tone.next (step, 0.0));

    // Amplitudes are numbered so that the middle of number 41 is the step.
    EXPECT_EQ (Envelope::middleOf (41.0), static_cast<double> (step));
    EXPECT_NEAR (envelope.amplitudes()[41], 0.5f * (0.1f + 1.0f), 1e-5f);
    EXPECT_NEAR (envelope.amplitudes()[39], 0.1f, 1e-5f);
    EXPECT_NEAR (envelope.amplitudes()[43], 1.0f, 1e-5f);
}
} // namespace
