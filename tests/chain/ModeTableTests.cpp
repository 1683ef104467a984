// SPDX-License-Identifier: AGPL-3.0-only
#include "chain/ModeTable.h"
#include "reference/Modes.h"
#include "support/Comparison.h"

#include <gtest/gtest.h>

namespace
{
using larkspire::modeForIndex;

void expectRider (const larkspire::RiderSettings& rider, const reference::Rider& wanted)
{
    EXPECT_EQ (rider.threshold, wanted.threshold);
    EXPECT_EQ (rider.attackRate, wanted.attackRate);
    EXPECT_EQ (rider.releaseRate, wanted.releaseRate);
    EXPECT_EQ (rider.gainScale, wanted.gainScale);
    EXPECT_EQ (rider.gainOffset, wanted.gainOffset);
    EXPECT_EQ (rider.outputGain, wanted.outputGain);
}

void expectPeak (const larkspire::PeakSettings& peak, const reference::Peak& wanted)
{
    EXPECT_EQ (peak.gainDb, wanted.gainDb);
    EXPECT_EQ (peak.frequency, wanted.frequency);
    EXPECT_EQ (peak.bandwidth, wanted.bandwidth);
}

TEST (ModeTable, HoldsTheNumbersOfTheOracle)
{
    for (int index = 0; index < 4; ++index)
    {
        const auto& wanted = reference::modeAt (index);
        const auto& mode = modeForIndex (index);
        SCOPED_TRACE (wanted.name);
        expectRider (mode.leveller, wanted.leveller);
        expectRider (mode.expander, wanted.expander);
        expectPeak (mode.air, wanted.air);
        expectPeak (mode.body, wanted.body);
        EXPECT_EQ (mode.highPass.corner, wanted.corner);
        EXPECT_EQ (mode.highPass.q, wanted.q);
    }
}

TEST (ModeTable, HasTwoThresholdsOneStepBesideTheRoundNumber)
{
    EXPECT_EQ (bitsOf (modeForIndex (1).expander.threshold), 0x38D1B718u);
    EXPECT_EQ (bitsOf (1e-4f), 0x38D1B717u);
    EXPECT_EQ (bitsOf (modeForIndex (2).expander.threshold), 0x3951B718u);
    EXPECT_EQ (bitsOf (2e-4f), 0x3951B717u);
}

TEST (ModeTable, MakesARunningGainOfOneUnityInEveryExpanderRow)
{
    for (int index = 0; index < 4; ++index)
        EXPECT_FLOAT_EQ (modeForIndex (index).expander.gainScale + modeForIndex (index).expander.gainOffset, 1.0f);
}

TEST (ModeTable, AnswersEveryIndexWithoutANameWithTheNeutralRow)
{
    for (const int index : { -2147483647 - 1, -1, 0, 4, 5, 9, 2147483647 })
        EXPECT_EQ (&modeForIndex (index), &larkspire::neutralMode) << index;
}
} // namespace
