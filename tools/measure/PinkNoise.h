// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <cstddef>
#include <vector>

namespace larkspire::measure
{

/** Pink noise, the same each time: equal power in every octave from 20 Hz to near half the sample rate, as the noise of
    quiet rooms has it roughly. Its level over all of it is 0 dBFS as a full-scale sine has it.

    White noise with a normal distribution, by the Box-Muller transform of numbers from the Mersenne Twister with seed
   1, goes through first-order sections whose poles and zeros alternate, evenly spaced in octaves. Between a pole and
   the next zero the response falls by 6 dB an octave, from there to the next pole it is level; closely spaced, that
   comes to the 3 dB an octave of pink noise (Smith and Smith, "Closed Form Fractional Integration and Differentiation
   via Real Exponentially Spaced Pole-Zero Pairs", 2016).

    @param sampleRate  in Hz
*/
std::vector<float> pinkNoise (std::size_t frames, int sampleRate);

} // namespace larkspire::measure
