// SPDX-License-Identifier: AGPL-3.0-only
#include "support/Comparison.h"

#include <algorithm>
#include <limits>

namespace
{
double distance (float a, float b)
{
    if (std::isnan (a) || std::isnan (b))
        return std::isnan (a) && std::isnan (b) ? 0.0 : std::numeric_limits<double>::infinity();

    return a == b ? 0.0 : std::abs (static_cast<double> (a) - static_cast<double> (b));
}
} // namespace

Difference compare (const Signal& actual, const Signal& expected)
{
    Difference difference;
    const auto frames = actual.left.size();

    for (std::size_t i = 0; i < frames; ++i)
    {
        const auto worst =
            std::max (distance (actual.left[i], expected.left[i]), distance (actual.right[i], expected.right[i]));

        if (worst > difference.worst)
        {
            difference.worst = worst;
            difference.where = i;
        }

        if (i >= frames - frames / 10)
            difference.worstAtEnd = std::max (difference.worstAtEnd, worst);

        difference.sameBits = difference.sameBits && bitsOf (actual.left[i]) == bitsOf (expected.left[i])
                              && bitsOf (actual.right[i]) == bitsOf (expected.right[i]);
    }

    return difference;
}
