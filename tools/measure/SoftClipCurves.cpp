// SPDX-License-Identifier: AGPL-3.0-only
// The soft clip alone, in the chain's own code.
#include "base/Texts.h"
#include "chain/SoftClip.h"
#include "measure/Measurements.h"
#include "measure/SoftClipHarmonics.h"
#include "measure/Tone.h"

#include <cstddef>

namespace larkspire::measure
{

namespace
{
float clipped (float w)
{
    return softClip (broadcast (w))[0];
}
} // namespace

Harmonics softClipHarmonics (double peak)
{
    constexpr std::size_t period = 480;
    constexpr std::size_t periods = 10;
    constexpr double frequency = 1.0 / period;
    Tone tone (frequency);
    auto samples = tone.next (period * periods, toDecibels (peak));

    for (auto& sample : samples)
        sample = clipped (sample);

    const auto fundamental = componentAt (samples, frequency);
    const auto harmonic = [&] (int order)
    { return toDecibels (componentAt (samples, order * frequency) / fundamental); };
    return { harmonic (3), harmonic (5), harmonic (7) };
}

Table measureSoftClip (const Subject&)
{
    Table table { .keyColumn = "input", .columns = { "output" } };

    for (int i = -50; i <= 50; ++i)
    {
        const double w = 0.05 * i;
        table.add (fixed (w, 2), { static_cast<double> (clipped (static_cast<float> (w))) });
    }

    return table;
}

Table measureHarmonics (const Subject&)
{
    Table table { .keyColumn = "peak_dbfs", .columns = { "third_db", "fifth_db", "seventh_db" } };

    for (int step = 0; step <= 84; ++step)
    {
        const double decibels = -30.0 + 0.5 * step;
        const auto harmonics = softClipHarmonics (fromDecibels (decibels));
        table.add (fixed (decibels, 1), { harmonics.third, harmonics.fifth, harmonics.seventh });
    }

    return table;
}

} // namespace larkspire::measure
