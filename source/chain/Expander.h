// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/LevelRider.h"
#include "chain/StereoSample.h"

#include <cmath>

namespace larkspire
{

/** The expander's decay per sample below the threshold, and the gain at which it ends. Fixed in the stage: no mode
    changes how fast and how far the noise between words goes down, only how much of it is applied. */
inline constexpr float expanderDecay = 0.9998f;
inline constexpr float expanderFloor = 0.2f;

/** Moves one channel's running gain by one sample.

    Above the threshold the gain grows with the ratio of the sample to the threshold:
    g = (|x / threshold| * attackRate + 1) * g, at most 1. Below, it decays to the floor.
*/
inline float expanderGain (const LevelRider& rider, float gain, float x)
{
    if (std::abs (gain * x) > rider.threshold)
    {
        gain = (std::abs (x / rider.threshold) * rider.attackRate + 1.0f) * gain;
    }
    else
    {
        gain = gain * expanderDecay;

        if (! (gain >= expanderFloor))
            gain = expanderFloor;
    }

    return gain > 1.0f ? 1.0f : gain;
}

/** Downward expander: opens quickly on a voice and closes slowly on the room. The channels are ridden separately. */
inline StereoSample expand (LevelRider& rider, StereoSample input)
{
    rider.gainLeft = expanderGain (rider, rider.gainLeft, input.first);
    rider.gainRight = expanderGain (rider, rider.gainRight, input.second);

    return { appliedGain (rider, rider.gainLeft) * input.first * rider.outputGain,
             appliedGain (rider, rider.gainRight) * input.second * rider.outputGain };
}

} // namespace larkspire
