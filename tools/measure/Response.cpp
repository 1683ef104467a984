// SPDX-License-Identifier: AGPL-3.0-only
// The whole chain over frequency, of the built library at rest.
#include "measure/Frequencies.h"
#include "measure/Measurements.h"
#include "measure/RestingGains.h"
#include "measure/Tone.h"
#include "measure/VoiceModes.h"

#include <cstddef>

namespace larkspire::measure
{

Table measureResponse (const Subject& subject)
{
    Table table { .name = "response",
                  .keyColumn = "frequency_hz",
                  .columns = columnsForModes ({ "44100_db", "48000_db", "96000_db" }) };

    // The reference is measured first, in the same run.
    auto frequencies = frequenciesFrom (30.0);
    frequencies.insert (frequencies.begin(), referenceFrequency);
    std::vector<std::vector<double>> lists;

    for (const auto& mode : knob)
        for (const int rate : { 44100, 48000, 96000 })
            lists.push_back (restingGains (subject, mode, rate, frequencies));

    for (std::size_t row = 1; row < frequencies.size(); ++row)
    {
        std::vector<double> values;

        for (const auto& gains : lists)
            values.push_back (toDecibels (gains[row] / gains.front()));

        table.add (written (frequencies[row], 2), std::move (values));
    }

    return table;
}

} // namespace larkspire::measure
