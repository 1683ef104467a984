// SPDX-License-Identifier: AGPL-3.0-only
#include "measure/Gain.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace larkspire::measure
{

void Gain::play (std::size_t periods, double peakDb)
{
    constexpr std::size_t atOnce = 1000; // periods; a stretch may last for minutes

    while (periods > 0)
    {
        const auto count = std::min (periods, atOnce) * Envelope::period;
        const auto samples = tone.next (count, peakDb);
        input.add (samples);
        output.add (instance.process (samples));
        played += count;
        periods -= count / Envelope::period;
    }
}

double Gain::at (std::size_t index) const
{
    return toDecibels (static_cast<double> (output.amplitudes()[index])
                       / static_cast<double> (input.amplitudes()[index]));
}

double Gain::settlingTime (std::size_t stepFrame, double endDb, double within) const
{
    const auto first = stepFrame / Envelope::hop;
    const auto distance = [&] (std::size_t index) { return std::abs (at (index) - endDb); };
    auto index = output.amplitudes().size() - 1;

    if (distance (index) > within)
        return std::numeric_limits<double>::quiet_NaN();

    while (index > first && distance (index - 1) <= within)
        --index;

    // Between the last one outside and the first one inside.
    const auto outside = distance (index - 1);
    const auto inside = distance (index);
    const auto part = outside > inside ? (outside - within) / (outside - inside) : 1.0;
    return Envelope::middleOf (static_cast<double> (index - 1) + part) - static_cast<double> (stepFrame);
}

} // namespace larkspire::measure
