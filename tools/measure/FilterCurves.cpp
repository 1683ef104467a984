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
/** z^-1 on the unit circle. */
std::complex<double> delayAt (double frequency)
{
    return std::polar (1.0, -2.0 * std::numbers::pi * frequency / usualRate);
}

double curveOf (const PeakingFilter& filter, double frequency)
{
    const auto z = delayAt (frequency);
    const auto above =
        static_cast<double> (filter.b0) + z * (static_cast<double> (filter.b1) + z * static_cast<double> (filter.b2));
    const auto below =
        static_cast<double> (filter.a0) + z * (static_cast<double> (filter.a1) + z * static_cast<double> (filter.a2));
    return toDecibels (std::abs (above / below));
}

double curveOf (const std::array<float, 5>& c, double frequency)
{
    const auto z = delayAt (frequency);
    const auto above = static_cast<double> (c[0]) + z * (static_cast<double> (c[1]) + z * static_cast<double> (c[2]));
    const auto below = 1.0 + z * (static_cast<double> (c[3]) + z * static_cast<double> (c[4]));
    return toDecibels (std::abs (above / below));
}

} // namespace

Table measureFilters (const Subject&)
{
    Table table { .name = "filters",
                  .keyColumn = "frequency_hz",
                  .columns = columnsForModes ({ "high_pass_db", "body_db", "air_db" }) };

    for (const auto frequency : frequenciesFrom (20.0))
    {
        std::vector<double> values;

        for (const auto& mode : voiceModes)
        {
            values.push_back (curveOf (designHighPass (usualRate, mode.settings().highPass), frequency));
            values.push_back (curveOf (designedPeak (mode.settings().body), frequency));
            values.push_back (curveOf (designedPeak (mode.settings().air), frequency));
        }

        table.add (fixed (frequency, 2), std::move (values));
    }

    return table;
}

} // namespace larkspire::measure
