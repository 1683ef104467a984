// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/LaneConstants.h"
#include "chain/LevelRider.h"

namespace larkspire
{

/** The expander's decay per sample below the threshold, and the gain at which it ends. Fixed in the stage: no mode
    changes how fast and how far the noise between words goes down, only how much of it is applied. */
inline constexpr float expanderDecay = 0.9998f;
inline constexpr float expanderFloor = 0.2f;

/** Moves the running gains by one sample.

    Above the threshold a gain grows with the ratio of the sample to the threshold:
    g = (|x / threshold| * attackRate + 1) * g, at most 1. Below, it decays to the floor, and what is no number becomes
    the floor.
*/
inline ChannelPair expanderGain (const LevelRider& rider, ChannelPair gain, ChannelPair x)
{
    const ChannelPair threshold = everywhere (rider.threshold);
    const PairMask above = magnitude (gain * x) > threshold;
    const ChannelPair closed = greater (gain * lanes::expanderDecay, lanes::expanderFloor);

    // Between words neither channel is above, and in a word both gains are at 1 almost always. The processor sees these
    // two coming and goes on before the division is done; with the choice below alone it waits for it at every sample.
    if (inNeither (above))
        return smaller (lanes::one, closed);

    const ChannelPair opened = (magnitude (x / threshold) * everywhere (rider.attackRate) + lanes::one) * gain;

    if (inBoth (above & (opened > lanes::one)))
        return lanes::one;

    return smaller (lanes::one, above ? opened : closed);
}

/** Downward expander: opens quickly on a voice and closes slowly on the room. The channels are ridden separately. */
inline ChannelPair expand (LevelRider& rider, ChannelPair input)
{
    const ChannelPair gain = expanderGain (rider, runningGains (rider), input);
    keepRunningGains (rider, gain);
    return ride (rider, gain, input);
}

} // namespace larkspire
