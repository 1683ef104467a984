// SPDX-License-Identifier: AGPL-3.0-only
#include "plot/Spread.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace larkspire::plot
{

namespace
{
constexpr double lowShare = 0.1;
constexpr double highShare = 0.9;

/** Of sorted values, the lowest that a share of them do not exceed. */
double ranked (const std::vector<double>& sorted, double share)
{
    const auto rank = std::ceil (share * static_cast<double> (sorted.size()) - 1e-9); // a share is no exact number
    return sorted[static_cast<std::size_t> (std::max (1.0, rank)) - 1];
}

/** The first index of a series whose time is not before a moment. */
std::size_t indexAt (const Series& series, double seconds)
{
    const auto steps = std::ceil ((seconds - series.firstSeconds) / series.stepSeconds);
    return static_cast<std::size_t> (std::clamp (steps, 0.0, static_cast<double> (series.values.size())));
}
} // namespace

std::vector<Spread> spreadOf (const Series& series, const Axis& time, double windowSeconds)
{
    constexpr auto nothing = std::numeric_limits<double>::quiet_NaN();
    const auto secondsPerPixel = (time.last - time.first) / (time.lastPixel - time.firstPixel);
    std::vector<Spread> spreads;
    std::vector<double> window;
    const auto columns = std::lround (time.lastPixel - time.firstPixel);

    for (long i = 0; i < columns; ++i)
    {
        const auto column = time.firstPixel + double (i) + 0.5;
        const auto seconds = time.first + (column - time.firstPixel) * secondsPerPixel;
        window.clear();

        const auto end = indexAt (series, seconds + windowSeconds / 2);

        for (auto index = indexAt (series, seconds - windowSeconds / 2); index < end; ++index)
            if (! std::isnan (series.values[index]))
                window.push_back (series.values[index]);

        std::sort (window.begin(), window.end());
        const auto at = [&window] (double share) { return window.empty() ? nothing : ranked (window, share); };
        spreads.push_back ({ .column = column, .low = at (lowShare), .middle = at (0.5), .high = at (highShare) });
    }

    return spreads;
}

} // namespace larkspire::plot
