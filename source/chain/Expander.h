// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/LevelRider.h"

namespace larkspire
{

/** The expander's decay per sample below the threshold, and the gain at which it ends. Fixed in the stage: no mode
    changes how fast and how far the noise between words goes down, only how much of it is applied. */
inline constexpr float expanderDecay = 0.9998f;
inline constexpr float expanderFloor = 0.2f;

/** The running gains one sample on.

    Above the threshold a gain grows with the ratio of the sample to the threshold:
    g = (|x / threshold| * attackRate + 1) * g, at most 1. Below, it decays to the floor, and NaN becomes the floor.
*/
inline Lanes expanderGain (const RunningRider& rider, Lanes x)
{
    constexpr Lanes one = broadcast (1.0f);
    const LaneMask above = magnitude (rider.gain * x) > rider.threshold;
    const Lanes closed = maxOf (rider.gain * broadcast (expanderDecay), broadcast (expanderFloor));

    // These branches predict well. Between words neither channel is above. In a word both are, and both gains are at 1,
    // where they stay: no attackRate is negative, so they would grow and be cut to 1. The division is seldom done.
    if (noneSet (above))
        return minOf (one, closed);

    if (allSet (above & (rider.gain == one)))
        return one;

    const Lanes opened = (magnitude (x / rider.threshold) * rider.attackRate + one) * rider.gain;
    return minOf (one, above ? opened : closed);
}

/** Downward expander: opens quickly on a voice and closes slowly on the room. The channels are ridden separately. */
inline Lanes expand (RunningRider& rider, Lanes input)
{
    rider.gain = expanderGain (rider, input);
    return rider.ride (input);
}

} // namespace larkspire
