// SPDX-License-Identifier: AGPL-3.0-only
#include "finish/GatedLoudness.h"

#include "meter/WeightedPower.h"

#include <algorithm>

namespace larkspire::finish
{

namespace
{
/** The mean power of the blocks that are not below a gate; 0 if there are none. */
double meanAbove (const std::vector<float>& steps, double gate)
{
    double sum = 0.0;
    std::size_t count = 0;

    for (std::size_t i = 3; i < steps.size(); ++i)
    {
        const auto power =
            0.25 * (double { steps[i - 3] } + double { steps[i - 2] } + double { steps[i - 1] } + double { steps[i] });

        if (power >= gate)
        {
            sum += power;
            ++count;
        }
    }

    return count > 0 ? sum / static_cast<double> (count) : 0.0;
}
} // namespace

GatedLoudness::GatedLoudness (int sampleRate, std::size_t binLength)
    : framesPerStep (0.1 * sampleRate),
      framesPerBin (static_cast<double> (binLength))
{
}

void GatedLoudness::add (double power)
{
    framesHeard += framesPerBin;

    // A bin over the edge of a step belongs to both.
    const auto beyond = framesHeard - framesPerStep;

    if (beyond < 0.0)
    {
        energy += power * framesPerBin;
        return;
    }

    steps.push_back (static_cast<float> ((energy + power * (framesPerBin - beyond)) / framesPerStep));
    framesHeard = beyond;
    energy = power * beyond;
}

meter::Figure GatedLoudness::integrated() const
{
    static const double absoluteGate = meter::powerOf (-70.0);
    const auto ungated = meanAbove (steps, absoluteGate);

    if (ungated == 0.0)
        return std::nullopt;

    return meter::lufsOf (meanAbove (steps, std::max (absoluteGate, 0.1 * ungated)));
}

} // namespace larkspire::finish
