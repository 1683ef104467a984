// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

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

/** The gain that the channel is multiplied with, ahead of the make-up: running gain * gainScale + gainOffset. */
inline float appliedGain (const LevelRider& rider, float runningGain)
{
    return runningGain * rider.gainScale + rider.gainOffset;
}

} // namespace larkspire
