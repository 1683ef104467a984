// SPDX-License-Identifier: AGPL-3.0-only
// The whole chain over frequency, of the built library: at rest, and under a voice's level.
#include "measure/Frequencies.h"
#include "measure/Instance.h"
#include "measure/Measurements.h"
#include "measure/Tone.h"
#include "measure/VoiceModes.h"

#include <algorithm>
#include <cstddef>

namespace larkspire::measure
{

namespace
{
// Below the threshold of the expander in each mode, far enough above the rounding errors of 32-bit floats.
constexpr double restLevel = -80.0; // dBFS

constexpr double pilotLevel = -12.0;                             // dBFS
constexpr std::array probeLevels { -60.0, -48.0, -36.0, -24.0 }; // dBFS

std::size_t frames (double seconds, int rate)
{
    return static_cast<std::size_t> (seconds * rate);
}

/** The gains of tones one after the other, as linear factors. */
std::vector<double>
gainsAtRest (const Subject& subject, const VoiceMode& mode, int rate, const std::vector<double>& frequencies)
{
    Instance instance (subject.library, mode.position, rate);
    instance.rest (mode.framesToRest());
    std::vector<double> gains;

    for (const auto frequency : frequencies)
    {
        Tone tone (frequency / rate);
        instance.process (tone.next (frames (0.1, rate), restLevel));
        const auto input = tone.next (frames (0.5, rate), restLevel);
        gains.push_back (componentAt (instance.process (input), frequency / rate) / fromDecibels (restLevel));
    }

    return gains;
}

/** Each of these by the one of the reference frequency, in dB. */
std::vector<double> relativeToReference (const std::vector<double>& gains, const std::vector<double>& frequencies)
{
    const auto reference = std::find_if (
        frequencies.begin(), frequencies.end(), [] (double f) { return std::abs (f - referenceFrequency) < 0.1; });
    const auto gain = gains[static_cast<std::size_t> (reference - frequencies.begin())];
    std::vector<double> decibels;

    for (const auto each : gains)
        decibels.push_back (toDecibels (each / gain));

    return decibels;
}

std::vector<float> sum (std::vector<float> a, const std::vector<float>& b)
{
    std::transform (a.begin(), a.end(), b.begin(), a.begin(), std::plus<>());
    return a;
}

/** The gains of a weak tone beside the pilot's own, in dB, by frequency. */
std::vector<double>
gainsBesidePilot (const Subject& subject, const VoiceMode& mode, double level, const std::vector<double>& frequencies)
{
    constexpr auto pilotFrequency = referenceFrequency / usualRate;
    Instance instance (subject.library, mode.position, usualRate);
    Tone pilot (pilotFrequency);
    instance.process (pilot.next (frames (2.0, usualRate), pilotLevel));
    std::vector<double> gains;

    for (const auto frequency : frequencies)
    {
        const bool isPilot = std::abs (frequency - referenceFrequency) < 0.1;
        Tone probe (frequency / usualRate);
        const auto next = [&] (double seconds)
        {
            const auto count = frames (seconds, usualRate);
            return isPilot ? pilot.next (count, pilotLevel)
                           : sum (pilot.next (count, pilotLevel), probe.next (count, level));
        };
        instance.process (next (0.1));
        const auto output = instance.process (next (0.5));
        const auto pilotGain = componentAt (output, pilotFrequency) / fromDecibels (pilotLevel);
        const auto probeGain =
            componentAt (output, frequency / usualRate) / fromDecibels (isPilot ? pilotLevel : level);
        gains.push_back (toDecibels (probeGain / pilotGain));
    }

    return gains;
}

/** A table with one column each of these lists. */
Table byFrequency (std::string name,
                   std::vector<std::string> columns,
                   const std::vector<double>& frequencies,
                   const std::vector<std::vector<double>>& lists)
{
    Table table { .name = std::move (name), .keyColumn = "frequency_hz", .columns = std::move (columns) };

    for (std::size_t row = 0; row < frequencies.size(); ++row)
    {
        std::vector<double> values;

        for (const auto& list : lists)
            values.push_back (list[row]);

        table.add (written (frequencies[row], 1), std::move (values));
    }

    return table;
}
} // namespace

Table measureResponse (const Subject& subject)
{
    const auto frequencies = frequenciesFrom (20.0);
    std::vector<std::vector<double>> lists;

    for (const auto& mode : knob)
        for (const int rate : { 44100, 48000, 96000 })
            lists.push_back (relativeToReference (gainsAtRest (subject, mode, rate, frequencies), frequencies));

    return byFrequency ("response", columnsForModes ({ "44100_db", "48000_db", "96000_db" }), frequencies, lists);
}

Table measureAir (const Subject& subject)
{
    const auto frequencies = frequenciesFrom (500.0);
    std::vector<std::string> endings;
    std::vector<std::vector<double>> lists;

    for (const auto level : probeLevels)
        endings.push_back ("at_" + written (level, 0) + "_db");

    for (const auto& mode : knob)
        for (const auto level : probeLevels)
            lists.push_back (gainsBesidePilot (subject, mode, level, frequencies));

    return byFrequency ("air", columnsForModes (endings), frequencies, lists);
}

} // namespace larkspire::measure
