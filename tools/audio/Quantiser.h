// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace larkspire
{

/** Turns samples, linear full scale 1.0, into whole numbers and back.

    number = round (sample * 2^(bits - 1) + dither), ties to even, held within the range; NaN becomes 0. Without dither
   it is the exact inverse of reading whole numbers as floats, which divides by the same power of two: samples with no
   more bits than that stay unchanged.
*/
class Quantiser
{
public:
    /** @param bits  1 to 32 */
    explicit Quantiser (int bits) : steps (static_cast<double> (std::int64_t { 1 } << (bits - 1))) {}

    /** @param dither  in steps of the whole numbers */
    std::int32_t toWholeNumber (float sample, double dither = 0.0) const
    {
        if (std::isnan (sample))
            return 0;

        return static_cast<std::int32_t> (
            std::lrint (std::clamp (double (sample) * steps + dither, -steps, steps - 1.0)));
    }

    double toSample (std::int32_t wholeNumber) const { return wholeNumber / steps; }

private:
    double steps;
};

} // namespace larkspire
