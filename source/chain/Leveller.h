// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/LevelRider.h"
#include "chain/StereoSample.h"

#include <cmath>

namespace larkspire
{

/** Moves one channel's running gain by one sample.

    Above the threshold the gain falls in proportion to the overshoot, without a floor:
    g = g / (|v / threshold| * attackRate + 1). Below, it returns: g = (1 - g) * releaseRate + g, at most 1.
*/
inline float levellerGain (const LevelRider& rider, float gain, float v)
{
    if (std::abs (gain * v) > rider.threshold)
        return gain / (std::abs (v / rider.threshold) * rider.attackRate + 1.0f);

    gain = (1.0f - gain) * rider.releaseRate + gain;
    return gain > 1.0f ? 1.0f : gain;
}

/** Levelling compressor with make-up: pins the long-term peak at threshold * outputGain. The channels are ridden
    separately. */
inline StereoSample level (LevelRider& rider, StereoSample input)
{
    rider.gainLeft = levellerGain (rider, rider.gainLeft, input.first);
    rider.gainRight = levellerGain (rider, rider.gainRight, input.second);

    return { appliedGain (rider, rider.gainLeft) * input.first * rider.outputGain,
             appliedGain (rider, rider.gainRight) * input.second * rider.outputGain };
}

} // namespace larkspire
