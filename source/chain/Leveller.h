// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/LevelRider.h"

namespace larkspire
{

/** The running gains one sample on.

    Above the threshold a gain falls in proportion to the overshoot, without a floor:
    g = g / (|v / threshold| * attackRate + 1). Below, it returns: g = (1 - g) * releaseRate + g, at most 1.
*/
inline Lanes levellerGain (const RunningRider& rider, Lanes v)
{
    constexpr Lanes one = broadcast (1.0f);
    const LaneMask above = magnitude (rider.gain * v) > rider.threshold;
    const Lanes returned = minOf (one, (one - rider.gain) * rider.releaseRate + rider.gain);

    // Only peaks are above; where there is none, nothing waits for the divisions.
    if (noneSet (above))
        return returned;

    const Lanes lowered = rider.gain / (magnitude (v / rider.threshold) * rider.attackRate + one);
    return above ? lowered : returned;
}

/** Levelling compressor with make-up: pins the long-term peak at threshold * outputGain. The channels are ridden
    separately. */
inline Lanes level (RunningRider& rider, Lanes input)
{
    rider.gain = levellerGain (rider, input);
    return rider.ride (input);
}

} // namespace larkspire
