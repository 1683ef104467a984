// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "measure/Take.h"
#include "meter/TimeCourse.h"

#include <span>

namespace larkspire::measure
{

// What a listener notices of a take, or of what has become of it: the sound has the take's length and rate.

/** The level of the room in the pauses, in dBFS as a full-scale sine is 0 dBFS. The first 0.3 s of each do not count:
    in them the voice dies away and the expander closes. */
double pauseLevel (std::span<const float> sound, const Take& take);

/** By how much the phrases are louder than the same pauses, in LU: both weighted as ITU-R BS.1770 has it, nothing
    gated. */
double distanceOfRoom (std::span<const float> sound, const Take& take);

/** Integrated loudness in LUFS, EBU R 128; NaN below its gate. */
double loudnessOf (std::span<const float> sound, int sampleRate);

/** In dBTP; NaN for silence. */
double truePeakOf (std::span<const float> sound, int sampleRate);

/** By how much the treble of the phrases, 5 to 16 kHz, is above their middle, 0.3 to 3 kHz, in dB. NaN where the voice
    was recorded at a rate that has no such treble. */
double brightnessOf (std::span<const float> sound, const Take& take);

/** By how much a gain rises from the beginning of a pause to its end, in dB; the mean over the pauses.

    @param gain  linear, over all of the take */
double driftInPauses (const meter::TimeCourse& gain, const Take& take);

} // namespace larkspire::measure
