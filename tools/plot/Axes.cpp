// SPDX-License-Identifier: AGPL-3.0-only
#include "plot/Axes.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace larkspire::plot
{

namespace
{
// dB; a gain of one shall be a line of its own and not one with the frame.
constexpr double highestGain = 2.0;

double peakOf (const meter::TimeCourse& waveform)
{
    double peak = 0.0;

    for (std::size_t i = 0; i < waveform.size(); ++i)
        peak = std::max ({ peak, -double { waveform[i].lowest }, double { waveform[i].highest } });

    return peak;
}

/** The loudest momentary loudness on either side, or the value given if there is none. */
double loudest (const meter::Listening& measurement, double otherwise)
{
    auto highest = -std::numeric_limits<double>::infinity();

    for (const auto* meter : { &measurement.before.loudness(), &measurement.after.loudness() })
        for (const auto loudness : meter->momentary())
            highest = std::fmax (highest, double { loudness });

    return std::isfinite (highest) ? highest : otherwise;
}

double lowestGain (const meter::Listening& measurement)
{
    double lowest = 1.0;

    for (const auto* gain : { &measurement.chain.expanderGain(), &measurement.chain.levellerGain() })
        for (std::size_t i = 0; i < gain->size(); ++i)
            lowest = std::min (lowest, std::max (1e-6, gain->mean (i)));

    return 20.0 * std::log10 (lowest);
}

double tensBelow (double value)
{
    return std::floor (value / 10.0) * 10.0;
}

double tensAbove (double value)
{
    return std::ceil (value / 10.0) * 10.0;
}

Axis upright (double lowest, double highest, Rows rows)
{
    return { .first = lowest,
             .last = highest,
             .firstPixel = static_cast<double> (rows.bottom),
             .lastPixel = static_cast<double> (rows.top) };
}
} // namespace

Axes axesFor (const meter::Listening& measurement)
{
    const auto seconds = measurement.frames > 0 ? measurement.seconds() : 1.0;
    const auto peak = std::max (peakOf (measurement.before.waveform()), peakOf (measurement.after.waveform()));
    const auto range = roundedUp (std::clamp (peak, 0.1, 1e6));
    const auto loudestOfAll = loudest (measurement, -30.0);

    return { .time = { .first = 0.0,
                       .last = seconds,
                       .firstPixel = static_cast<double> (leftColumn),
                       .lastPixel = static_cast<double> (rightColumn) },
             .before = upright (-range, range, beforeRows),
             .after = upright (-range, range, afterRows),
             .loudness = upright (std::min (-60.0, tensBelow (loudestOfAll) - 20.0),
                                  std::max (0.0, tensAbove (loudestOfAll)),
                                  loudnessRows),
             .gain = upright (std::min (-20.0, tensBelow (lowestGain (measurement))), highestGain, gainRows) };
}

} // namespace larkspire::plot
