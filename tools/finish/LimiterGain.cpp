// SPDX-License-Identifier: AGPL-3.0-only
#include "finish/LimiterGain.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace larkspire::finish
{

LimiterGain::LimiterGain (double ceilingOfPeaks, double binSeconds)
    : ceiling (ceilingOfPeaks),
      returning (1.0 - std::exp (-binSeconds / 0.05))
{
    needs.fill (1.0);
    held.fill (1.0);

    // Of a Hann window over seven the sum is 4.
    for (std::size_t i = 0; i < window.size(); ++i)
        window[i] =
            0.25 * std::pow (std::sin (std::numbers::pi * static_cast<double> (i + 1) / (2.0 * reach + 2.0)), 2.0);
}

double LimiterGain::next (double peak)
{
    needs[turn % needs.size()] = peak > ceiling ? ceiling / peak : 1.0;
    const auto least = *std::min_element (needs.begin(), needs.end());
    returned = std::min (least, returned + (1.0 - returned) * returning);
    held[turn % held.size()] = returned;
    ++turn;

    double gain = 0.0;

    // The oldest first; the window is the same from both ends.
    for (std::size_t i = 0; i < held.size(); ++i)
        gain += window[i] * held[(turn + i) % held.size()];

    return std::min (gain, 1.0);
}

} // namespace larkspire::finish
