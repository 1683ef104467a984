// SPDX-License-Identifier: AGPL-3.0-only
// The stages of the chain, each by itself.
#include "chain/AirTerm.h"
#include "chain/ModeTable.h"
#include "chain/OneSample.h"
#include "chain/SoftClip.h"
#include "chain/StereoFold.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>

namespace
{
using namespace larkspire;

LevelRider riderWith (const RiderSettings& settings, float gain)
{
    LevelRider rider;
    applySettings (rider, settings);
    rider.gainLeft = gain;
    rider.gainRight = gain;
    return rider;
}

/** The gain that a sample is multiplied with, ahead of the make-up. */
float appliedGain (const LevelRider& rider, float runningGain)
{
    return runningGain * rider.gainScale + rider.gainOffset;
}

const auto& medium = modeForIndex (2);

TEST (Expander, HasItsConstantsInSinglePrecision)
{
    EXPECT_EQ (static_cast<double> (expanderDecay), 0.9998000264167786);
    EXPECT_EQ (static_cast<double> (expanderFloor), 0.20000000298023224);
}

TEST (Expander, SinksToItsFloorInSilenceAndStaysThere)
{
    auto rider = riderWith (medium.expander, 1.0f);

    for (int i = 0; i < 20000; ++i)
        expand (rider, pairOf ({ 0.0f, 0.0f }));

    EXPECT_EQ (rider.gainLeft, expanderFloor);
    EXPECT_EQ (rider.gainRight, expanderFloor);
    EXPECT_NEAR (appliedGain (rider, rider.gainLeft), 0.241f, 0.0005f);
}

TEST (Expander, FallsByTheFixedDecayWhateverTheReleaseRate)
{
    auto settings = medium.expander;
    settings.releaseRate = 0.5f;
    auto rider = riderWith (settings, 0.8f);
    expand (rider, pairOf ({ 0.0f, 0.0f }));
    EXPECT_EQ (rider.gainLeft, 0.8f * 0.9998f);
}

TEST (Expander, OpensInProportionToTheRawSample)
{
    auto rider = riderWith (medium.expander, 0.2f);
    expand (rider, pairOf ({ 0.5f, 0.0f }));
    EXPECT_NEAR (rider.gainLeft / 0.2f, 1.0214f, 0.00005f);
    EXPECT_EQ (rider.gainLeft, (std::abs (0.5f / 0.00020000001f) * 8.565843e-06f + 1.0f) * 0.2f);
    EXPECT_LE (rider.gainRight, 0.2f) << "the other channel sees its own sample only";
}

TEST (Expander, ComparesTheSampleAfterTheGainAndStrictly)
{
    auto rider = riderWith (medium.expander, 0.5f);
    rider.threshold = 0.25f;
    expand (rider, pairOf ({ 0.5f, -0.5f })); // 0.5 * 0.5 is the threshold, not above it
    EXPECT_EQ (rider.gainLeft, 0.5f * 0.9998f);
    EXPECT_EQ (rider.gainRight, 0.5f * 0.9998f);

    rider = riderWith (medium.expander, 0.5f);
    rider.threshold = 0.25f;
    expand (rider, pairOf ({ 0.51f, -0.51f }));
    EXPECT_GT (rider.gainLeft, 0.5f);
    EXPECT_EQ (rider.gainLeft, rider.gainRight);
}

TEST (Expander, NeverLeavesAboveOne)
{
    auto rider = riderWith (medium.expander, 0.99f);
    expand (rider, pairOf ({ 20.0f, -20.0f }));
    EXPECT_EQ (rider.gainLeft, 1.0f);
    EXPECT_EQ (rider.gainRight, 1.0f);
}

TEST (Expander, MakesAGainThatIsNoNumberTheFloor)
{
    auto rider = riderWith (medium.expander, std::numeric_limits<float>::quiet_NaN());
    expand (rider, pairOf ({ 0.0f, 0.0f }));
    EXPECT_EQ (rider.gainLeft, expanderFloor);
}

TEST (Expander, AppliesScaleOffsetAndOutputGain)
{
    LevelRider rider { .threshold = 1.0f,
                       .attackRate = 0.0f,
                       .gainLeft = 0.5f,
                       .gainRight = 0.25f,
                       .releaseRate = 0.0f,
                       .gainScale = 0.8f,
                       .gainOffset = 0.1f,
                       .outputGain = 3.0f };
    const auto [left, right] = sampleOf (expand (rider, pairOf ({ 0.5f, 0.25f })));
    EXPECT_EQ (left, ((0.5f * 0.9998f) * 0.8f + 0.1f) * 0.5f * 3.0f);
    EXPECT_EQ (right, ((0.25f * 0.9998f) * 0.8f + 0.1f) * 0.25f * 3.0f);
}

TEST (Expander, FallsFourteenDecibelsInPowerful)
{
    auto rider = riderWith (modeForIndex (3).expander, 0.2f);
    EXPECT_NEAR (20.0f * std::log10 (appliedGain (rider, 0.2f)), -13.98f, 0.01f);
}

StereoSample folded (StereoSample sample)
{
    return sampleOf (foldTowardsMiddle (pairOf (sample)));
}

TEST (StereoFold, KeepsMoreOfItsOwnChannelThanOfTheOther)
{
    EXPECT_EQ (folded ({ 1.0f, 0.0f }), (StereoSample { 1.125f, 0.375f }));
    EXPECT_EQ (folded ({ 0.0f, 1.0f }), (StereoSample { 0.375f, 1.125f }));
}

TEST (StereoFold, LiftsTheCentreAndLowersWhatIsOutOfPhase)
{
    EXPECT_EQ (folded ({ 0.5f, 0.5f }), (StereoSample { 0.75f, 0.75f }));
    EXPECT_EQ (folded ({ 0.5f, -0.5f }), (StereoSample { 0.375f, -0.375f }));
}

StereoSample withAir (StereoSample body, StereoSample air, StereoSample dry)
{
    return sampleOf (addSaturatedAir (pairOf (body), pairOf (air) - pairOf (dry)));
}

TEST (AirTerm, HasItsConstantsInSinglePrecision)
{
    EXPECT_EQ (airDrive, 50.0f);
    EXPECT_EQ (airLevel, 0.02f);
}

TEST (AirTerm, AddsTheSqueezedDifferenceToTheBody)
{
    const auto [left, right] = withAir ({ 0.1f, 0.2f }, { 0.3f, 0.4f }, { 0.3f, 0.5f });
    EXPECT_EQ (left, 0.1f) << "nothing is added where the air filter adds nothing";
    EXPECT_FLOAT_EQ (right, std::atan ((0.4f - 0.5f) * 50.0f) * 0.02f + 0.2f);
    EXPECT_FLOAT_EQ (withAir ({ 0.25f, 0.0f }, { 0.51f, 0.0f }, { 0.5f, 0.0f }).first,
                     std::atan ((0.51f - 0.5f) * 50.0f) * 0.02f + 0.25f);
}

TEST (AirTerm, IsBoundedWhateverTheDifference)
{
    const auto [left, right] = withAir ({ 0.0f, 0.0f }, { 1e6f, -1e6f }, { 0.0f, 0.0f });
    EXPECT_NEAR (left, 0.0314f, 0.0001f);
    EXPECT_NEAR (right, -0.0314f, 0.0001f);
}

TEST (Leveller, FallsInProportionToTheOvershoot)
{
    auto rider = riderWith (medium.leveller, 0.5f);
    level (rider, pairOf ({ 0.6f, 0.0f }));
    EXPECT_EQ (rider.gainLeft, 0.5f / (std::abs (0.6f / 0.015f) * 0.00020838086f + 1.0f));
    EXPECT_GT (rider.gainRight, 0.5f) << "the other channel returns towards one";
}

TEST (Leveller, HasNoFloor)
{
    auto rider = riderWith (medium.leveller, 1.0f);

    // The gain falls while gain times sample exceeds the threshold, so a loud signal drives it to threshold / sample.
    for (int i = 0; i < 100000; ++i)
        level (rider, pairOf ({ 20.0f, 20.0f }));

    EXPECT_LT (rider.gainLeft, 0.001f);
    EXPECT_GT (rider.gainLeft, 0.0f);
}

TEST (Leveller, ReturnsTowardsOneBelowTheThresholdAndStopsThere)
{
    auto rider = riderWith (medium.leveller, 0.5f);
    level (rider, pairOf ({ 0.0f, 0.0f }));
    EXPECT_EQ (rider.gainLeft, (1.0f - 0.5f) * 1.5935553e-05f + 0.5f);

    for (int i = 0; i < 2000000; ++i)
        level (rider, pairOf ({ 0.0f, 0.0f }));

    EXPECT_GT (rider.gainLeft, 0.995f);
    EXPECT_LE (rider.gainLeft, 1.0f);
}

TEST (Leveller, CutsAReturnAboveOne)
{
    auto rider = riderWith (medium.leveller, 1.25f);
    level (rider, pairOf ({ 0.0f, 0.0f }));
    EXPECT_EQ (rider.gainLeft, 1.0f);
}

TEST (Leveller, ComparesTheSampleAfterTheGainAndStrictly)
{
    auto rider = riderWith (medium.leveller, 0.5f);
    rider.threshold = 0.25f;
    level (rider, pairOf ({ 0.5f, -0.51f }));
    EXPECT_GT (rider.gainLeft, 0.5f);
    EXPECT_LT (rider.gainRight, 0.5f);
}

TEST (Leveller, PinsTheLongTermPeakInEveryMode)
{
    const std::pair<int, float> table[] = { { 1, 0.375f }, { 2, 0.18f }, { 3, 0.135f } };

    for (const auto& [index, pinned] : table)
    {
        auto rider = riderWith (modeForIndex (index).leveller, 1.0f);
        StereoSample out;

        for (int i = 0; i < 200000; ++i)
            out = sampleOf (level (rider, pairOf ({ 0.5f, 0.5f })));

        EXPECT_NEAR (out.first, pinned, pinned * 0.02f) << index;
    }
}

TEST (SoftClip, HasItsConstantsInSinglePrecision)
{
    EXPECT_EQ (std::bit_cast<std::uint32_t> (halfPi), 0x3FC90FDBu);
    EXPECT_EQ (clipCeiling, 0.9885f);
}

/** What the left channel becomes, the right one being silent. */
float clipped (float w)
{
    return sampleOf (softClip (pairOf ({ w, 0.0f }))).first;
}

TEST (SoftClip, IsASineUpToAQuarterTurn)
{
    for (const float w : { -1.5f, -0.3f, -1e-4f, 0.0f, 0.01f, 0.7f, 1.57f })
        EXPECT_FLOAT_EQ (clipped (w), std::sin (w) * 0.9885f);
}

TEST (SoftClip, HoldsItsCeilingBeyond)
{
    for (const float w : { 1.5707964f, 1.6f, 3.2f, 100.0f, std::numeric_limits<float>::infinity() })
    {
        EXPECT_EQ (clipped (w), clipped (1.5707964f)) << w;
        EXPECT_EQ (clipped (-w), -clipped (1.5707964f)) << w;
        EXPECT_FLOAT_EQ (clipped (w), 0.9885f) << w;
        EXPECT_LE (std::abs (clipped (w)), 0.9885f) << w;
    }
}

TEST (SoftClip, LetsNoFloatNearAQuarterTurnOverItsCeiling)
{
    for (float w = 1.5f; w < 1.6f; w = std::nextafter (w, 2.0f))
    {
        const auto [up, down] = sampleOf (softClip (pairOf ({ w, -w })));

        // A plain comparison: an assertion for each of the million floats would take its time.
        if (! (up <= 0.9885f && down >= -0.9885f))
            ADD_FAILURE() << w << " becomes " << up << ", its opposite " << down;
    }
}

TEST (SoftClip, LeavesWhatIsNoNumber)
{
    EXPECT_TRUE (std::isnan (clipped (std::numeric_limits<float>::quiet_NaN())));
}
} // namespace
