// SPDX-License-Identifier: AGPL-3.0-only
// What the stages of the chain do to a sound. Their arithmetic is in ScalarTranscriptionTests.cpp.
#include "chain/AirTerm.h"
#include "chain/ModeTable.h"
#include "chain/OneSample.h"
#include "chain/SoftClip.h"
#include "chain/StereoFold.h"
#include "reference/Modes.h"

#include <gtest/gtest.h>

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

const auto& medium = modeForIndex (2);

TEST (Expander, SinksToItsFloorInSilenceAndStaysThere)
{
    // The gain that is applied is another one: 0.241 in Medium, 14 dB down in Powerful.
    for (const auto& [index, applied] : { std::pair { 2, 0.241f }, std::pair { 3, 0.2f } })
    {
        auto rider = riderWith (modeForIndex (index).expander, 1.0f);

        for (int i = 0; i < 20000; ++i)
            expand (rider, pairOf ({ 0.0f, 0.0f }));

        EXPECT_EQ (rider.gainLeft, 0.2f);
        EXPECT_EQ (rider.gainRight, 0.2f);
        EXPECT_NEAR (rider.gainLeft * rider.gainScale + rider.gainOffset, applied, 0.0005f);
    }
}

TEST (Expander, OpensInProportionToTheRawSample)
{
    auto rider = riderWith (medium.expander, 0.2f);
    expand (rider, pairOf ({ 0.5f, 0.0f }));
    EXPECT_NEAR (rider.gainLeft / 0.2f, 1.0214f, 0.00005f);
    EXPECT_LE (rider.gainRight, 0.2f) << "the other channel sees its own sample only";
}

TEST (LevelRider, ComparesTheSampleAfterTheGainAndStrictly)
{
    // 0.5 * 0.5 is the threshold, not above it: the expander closes and the leveller returns.
    auto expander = riderWith (medium.expander, 0.5f);
    auto leveller = riderWith (medium.leveller, 0.5f);
    expander.threshold = leveller.threshold = 0.25f;
    expand (expander, pairOf ({ 0.5f, -0.51f }));
    EXPECT_LT (expander.gainLeft, 0.5f);
    EXPECT_GT (expander.gainRight, 0.5f);

    level (leveller, pairOf ({ 0.5f, -0.51f }));
    EXPECT_GT (leveller.gainLeft, 0.5f);
    EXPECT_LT (leveller.gainRight, 0.5f);
}

TEST (StereoFold, KeepsMoreOfItsOwnChannelAndLiftsTheMiddle)
{
    const std::pair<StereoSample, StereoSample> table[] = { { { 1.0f, 0.0f }, { 1.125f, 0.375f } },
                                                            { { 0.0f, 1.0f }, { 0.375f, 1.125f } },
                                                            { { 0.5f, 0.5f }, { 0.75f, 0.75f } },
                                                            { { 0.5f, -0.5f }, { 0.375f, -0.375f } } };

    for (const auto& [input, folded] : table)
        EXPECT_EQ (sampleOf (foldTowardsMiddle (pairOf (input))), folded);
}

TEST (AirTerm, IsBoundedWhateverTheDifference)
{
    const auto [left, right] = sampleOf (addSaturatedAir (pairOf ({ 0.0f, 0.0f }), pairOf ({ 1e6f, -1e6f })));
    EXPECT_NEAR (left, 0.0314f, 0.0001f);
    EXPECT_NEAR (right, -0.0314f, 0.0001f);
}

TEST (Leveller, PinsTheLongTermPeakInEveryMode)
{
    for (int index = 1; index < 4; ++index)
    {
        const auto& settings = reference::modeAt (index).leveller;
        const auto pinned = settings.threshold * settings.outputGain;
        auto rider = riderWith (modeForIndex (index).leveller, 1.0f);
        StereoSample out;

        for (int i = 0; i < 200000; ++i)
            out = sampleOf (level (rider, pairOf ({ 0.5f, 0.5f })));

        EXPECT_NEAR (out.first, pinned, pinned * 0.02f) << index;
    }
}

/** What the left channel becomes, the right one being silent. */
float clipped (float w)
{
    return sampleOf (softClip (pairOf ({ w, 0.0f }))).first;
}

TEST (SoftClip, HoldsItsCeilingBeyondAQuarterTurn)
{
    for (const float w : { 1.5707964f, 1.6f, 3.2f, 100.0f, std::numeric_limits<float>::infinity() })
    {
        EXPECT_EQ (clipped (w), clipped (1.5707964f)) << w;
        EXPECT_EQ (clipped (-w), -clipped (1.5707964f)) << w;
        EXPECT_FLOAT_EQ (clipped (w), 0.9885f) << w;
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

TEST (SoftClip, LeavesNaN)
{
    EXPECT_TRUE (std::isnan (clipped (std::numeric_limits<float>::quiet_NaN())));
}
} // namespace
