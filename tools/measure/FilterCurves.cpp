// SPDX-License-Identifier: AGPL-3.0-only
// The filters alone: what the chain's design code says of them.
#include "base/Texts.h"
#include "chain/HighPass.h"
#include "measure/DesignedPeak.h"
#include "measure/Frequencies.h"
#include "measure/Measurements.h"
#include "measure/Tone.h"
#include "measure/VoiceModes.h"

#include <array>
#include <complex>
#include <numbers>

namespace larkspire::measure
{

namespace
{
/** The gain of a filter of two poles and two zeros, in dB. */
double curveOf (const std::array<float, 3>& zeros, const std::array<float, 3>& poles, double frequency)
{
    const auto delay = std::polar (1.0, -2.0 * std::numbers::pi * frequency / usualRate);
    const auto sum = [&] (const std::array<float, 3>& c)
    { return double { c[0] } + delay * (double { c[1] } + delay * double { c[2] }); };
    return toDecibels (std::abs (sum (zeros) / sum (poles)));
}

double curveOf (const PeakSettings& settings, double frequency)
{
    const auto filter = designedPeak (settings);
    return curveOf ({ filter.b0, filter.b1, filter.b2 }, { filter.a0, filter.a1, filter.a2 }, frequency);
}
} // namespace

Table measureFilters (const Subject&)
{
    Table table { .keyColumn = "frequency_hz", .columns = columnsForModes ({ "high_pass_db", "body_db", "air_db" }) };

    for (const auto frequency : frequenciesFrom (20.0))
    {
        std::vector<double> values;

        for (const auto& mode : voiceModes)
        {
            const auto c = designHighPass (usualRate, mode.settings().highPass);
            values.push_back (curveOf ({ c[0], c[1], c[2] }, { 1.0f, c[3], c[4] }, frequency));
            values.push_back (curveOf (mode.settings().body, frequency));
            values.push_back (curveOf (mode.settings().air, frequency));
        }

        table.add (fixed (frequency, 2), std::move (values));
    }

    return table;
}

} // namespace larkspire::measure
