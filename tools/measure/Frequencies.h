// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <cmath>
#include <vector>

namespace larkspire::measure
{

/** Forty frequencies a decade, the first at or just below the lowest and the last at or just below 20 kHz; 1 kHz is
    among them. In Hz. */
inline std::vector<double> frequenciesFrom (double lowest)
{
    constexpr double perDecade = 40.0;
    constexpr double highest = 20000.0;
    const auto stepOf = [] (double frequency)
    { return static_cast<int> (std::floor (perDecade * std::log10 (frequency))); };
    std::vector<double> frequencies;

    for (int step = stepOf (lowest); step <= stepOf (highest); ++step)
        frequencies.push_back (std::pow (10.0, step / perDecade));

    return frequencies;
}

/** What the responses are relative to, in Hz. */
inline constexpr double referenceFrequency = 1000.0;

inline constexpr int usualRate = 48000; // Hz

} // namespace larkspire::measure
