// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/ChannelPair.h"

namespace larkspire
{

/** The automatic gain of a channel pair with its settings. The expander and the leveller are one each. */
struct LevelRider
{
    float threshold = 1.0f;  // linear, full scale 1.0; compared with the sample after the running gain
    float attackRate = 1.0f; // how far one sample above the threshold moves the gain, per unit of sample / threshold
    float gainLeft = 0.5f;   // the running gains, 0 to 1: the only fields that a change of mode leaves alone
    float gainRight = 0.5f;
    float releaseRate = 1.0f; // fraction of the way back to 1.0 per sample; the expander has a fixed decay instead
    float gainScale = 0.75f;  // applied gain = running gain * gainScale + gainOffset
    float gainOffset = 0.5f;
    float outputGain = 1.0f; // make-up, linear
};

static_assert (sizeof (LevelRider) == 8 * sizeof (float));

inline ChannelPair runningGains (const LevelRider& rider)
{
    return loadHalves (&rider.gainLeft, &rider.gainLeft);
}

inline void keepRunningGains (LevelRider& rider, ChannelPair gains)
{
    storeLowerHalf (gains, &rider.gainLeft);
}

/** The sample times its applied gain, which is running gain * gainScale + gainOffset, times the make-up. */
inline ChannelPair ride (const LevelRider& rider, ChannelPair runningGain, ChannelPair sample)
{
    const auto settings = loadFour (&rider.releaseRate); // gainScale, gainOffset and outputGain stand behind it
    return (runningGain * shuffled<1, 1, 1, 1> (settings) + shuffled<2, 2, 2, 2> (settings)) * sample
           * shuffled<3, 3, 3, 3> (settings);
}

} // namespace larkspire
