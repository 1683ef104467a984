// SPDX-License-Identifier: AGPL-3.0-only
#include "meter/QuietestTenth.h"

#include <algorithm>
#include <cmath>

namespace larkspire::meter
{

QuietestTenth::QuietestTenth (const AudioShape& shape)
    : samplesPerWindow (static_cast<std::size_t> (shape.channels)
                        * static_cast<std::size_t> (std::max (1L, std::lround (windowSeconds * shape.sampleRate))))
{
}

void QuietestTenth::add (std::span<const float> interleaved)
{
    for (const auto sample : interleaved)
    {
        sumOfSquares += double { sample } * double { sample };

        if (++samplesHeard == samplesPerWindow)
        {
            powers.push_back (static_cast<float> (sumOfSquares / static_cast<double> (samplesPerWindow)));
            sumOfSquares = 0.0;
            samplesHeard = 0;
        }
    }
}

Figure QuietestTenth::levelWhere (const QuietestTenth& recording) const
{
    std::vector<float> counted;

    for (std::size_t i = 0; i < std::min (powers.size(), recording.powers.size()); ++i)
        if (recording.powers[i] > 0.0f)
            counted.push_back (powers[i]);

    if (counted.empty())
        return std::nullopt;

    const auto rank = std::ceil (share * static_cast<double> (counted.size()));
    const auto place = counted.begin() + static_cast<std::ptrdiff_t> (rank) - 1;
    std::nth_element (counted.begin(), place, counted.end());
    return powerDecibels (2.0 * double { *place });
}

} // namespace larkspire::meter
