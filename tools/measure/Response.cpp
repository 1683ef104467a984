// SPDX-License-Identifier: AGPL-3.0-only
// The whole chain over frequency, of the built library at rest.
#include "base/Texts.h"
#include "measure/Frequencies.h"
#include "measure/Measurements.h"
#include "measure/RestingGains.h"
#include "measure/Tone.h"
#include "measure/VoiceModes.h"

#include <algorithm>
#include <cstddef>

namespace larkspire::measure
{

Table measureResponse (const Subject& subject)
{
    Table table { .keyColumn = "frequency_hz", .columns = columnsForModes ({ "44100_db", "48000_db", "96000_db" }) };

    // The reference is measured first, in the same run.
    auto frequencies = frequenciesFrom (30.0);
    frequencies.insert (frequencies.begin(), referenceFrequency);
    std::vector<std::vector<double>> lists;

    for (const auto& mode : voiceModes)
        for (const int rate : { 44100, 48000, 96000 })
        {
            auto& gains = lists.emplace_back (restingGains (subject, mode, rate, frequencies));
            const auto reference = gains.front();
            std::transform (
                gains.begin(), gains.end(), gains.begin(), [&] (double gain) { return toDecibels (gain / reference); });
        }

    for (std::size_t row = 1; row < frequencies.size(); ++row)
        table.addAcross (fixed (frequencies[row], 2), lists, row);

    return table;
}

} // namespace larkspire::measure
