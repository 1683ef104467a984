// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/Lanes.h"

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

/** A LevelRider while it runs: its settings in every lane of a register each, its gains as a pair held twice. */
struct RunningRider
{
    explicit RunningRider (const LevelRider& rider)
        : threshold (broadcast (rider.threshold)),
          attackRate (broadcast (rider.attackRate)),
          releaseRate (broadcast (rider.releaseRate)),
          gainScale (broadcast (rider.gainScale)),
          gainOffset (broadcast (rider.gainOffset)),
          outputGain (broadcast (rider.outputGain)),
          gain (pairOf (rider.gainLeft, rider.gainRight))
    {
    }

    /** Writes the running gains back, which are all that has changed. */
    void keepIn (LevelRider& rider) const
    {
        rider.gainLeft = gain[0];
        rider.gainRight = gain[1];
    }

    /** The sample times its applied gain, which is running gain * gainScale + gainOffset, times the make-up. */
    Lanes ride (Lanes sample) const { return (gain * gainScale + gainOffset) * sample * outputGain; }

    Lanes threshold;
    Lanes attackRate;
    Lanes releaseRate;
    Lanes gainScale;
    Lanes gainOffset;
    Lanes outputGain;
    Lanes gain;
};

} // namespace larkspire
