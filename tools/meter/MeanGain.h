// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "meter/Decibels.h"

#include <cmath>
#include <cstdint>

namespace larkspire::meter
{

/** The mean over time of a gain in dB: every sample counts alike, as on the needle of a gain meter.

    That is the decibels of the geometric mean. Factors are gathered in a product, since one logarithm a sample would
    cost more than the chain itself.
*/
class MeanGain
{
public:
    /** @param gain  linear */
    void add (double gain)
    {
        product *= gain;
        ++count;

        // Sixteen factors of at least 1e-18 do not leave the range of a double.
        if (count % 16 == 0)
        {
            sumOfLogarithms += std::log10 (product);
            product = 1.0;
        }
    }

    /** nullopt if there was no sample, or a gain of zero. */
    Figure decibels() const
    {
        if (count == 0)
            return std::nullopt;

        return finite (20.0 * (sumOfLogarithms + std::log10 (product)) / static_cast<double> (count));
    }

private:
    double product = 1.0;
    double sumOfLogarithms = 0.0;
    std::int64_t count = 0;
};

} // namespace larkspire::meter
