// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <cstdint>
#include <random>

namespace larkspire
{

/** Noise that is added ahead of rounding, so that what is lost is noise and does not follow the sound.

    The sum of two numbers spread evenly over half a step to either side: its probability falls in a straight line from
   0 to one step away. With it neither mean nor variance of the error depend on the sound, and no noise that is weaker
   does that (Lipshitz, Wannamaker, Vanderkooy, "Quantization and Dither: A Theoretical Survey", J. Audio Eng. Soc. 40,
   1992).

    The same in every file: a result depends on nothing but its input.
*/
class Dither
{
public:
    /** The next number, in steps of the samples' width, above -1 and below 1. */
    double next()
    {
        const auto bits = generator();
        return (static_cast<double> (bits >> 32) - static_cast<double> (bits & 0xffffffffU)) * 0x1p-32;
    }

private:
    std::mt19937_64 generator; // from its own standard seed
};

} // namespace larkspire
