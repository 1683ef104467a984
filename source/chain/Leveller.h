// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/LaneConstants.h"
#include "chain/LevelRider.h"

namespace larkspire
{

/** Moves the running gains by one sample.

    Above the threshold a gain falls in proportion to the overshoot, without a floor:
    g = g / (|v / threshold| * attackRate + 1). Below, it returns: g = (1 - g) * releaseRate + g, at most 1.
*/
inline ChannelPair levellerGain (const LevelRider& rider, ChannelPair gain, ChannelPair v)
{
    const ChannelPair threshold = everywhere (rider.threshold);
    const PairMask above = magnitude (gain * v) > threshold;
    const ChannelPair back = (lanes::one - gain) * everywhere (rider.releaseRate) + gain;
    const ChannelPair returned = smaller (lanes::one, back);

    // Only peaks are above; where there is none, nothing waits for the divisions.
    if (inNeither (above))
        return returned;

    const ChannelPair lowered = gain / (magnitude (v / threshold) * everywhere (rider.attackRate) + lanes::one);
    return above ? lowered : returned;
}

/** Levelling compressor with make-up: pins the long-term peak at threshold * outputGain. The channels are ridden
    separately. */
inline ChannelPair level (LevelRider& rider, ChannelPair input)
{
    const ChannelPair gain = levellerGain (rider, runningGains (rider), input);
    keepRunningGains (rider, gain);
    return ride (rider, gain, input);
}

} // namespace larkspire
