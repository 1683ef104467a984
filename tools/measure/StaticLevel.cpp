// SPDX-License-Identifier: AGPL-3.0-only
// Where a tone settles, of the built library.
#include "base/Texts.h"
#include "measure/Instance.h"
#include "measure/Measurements.h"
#include "measure/SoftClipHarmonics.h"
#include "measure/Tone.h"
#include "measure/VoiceModes.h"

#include <cstddef>
#include <limits>

namespace larkspire::measure
{

namespace
{
// Of no simple ratio to the rate, so that the samples meet every part of the wave.
constexpr double frequency = 997.0 / usualRate;

constexpr std::size_t settling = 48000; // frames at each level
constexpr std::size_t listening = 24000;

// With room to spare below the input at which the leveller begins to work.
constexpr double highestFalling = -42.0; // dBFS

constexpr double speakingLevel = -20.0; // dBFS

double settledLevel (Instance& instance, Tone& tone, double input)
{
    instance.process (tone.next (settling, input));
    return levelOf (instance.process (tone.next (listening, input)));
}

/** The output levels, the inputs rising. */
std::vector<double> risingLevels (const Subject& subject, const VoiceMode& mode, const std::vector<double>& inputs)
{
    Instance instance (subject, mode, Instance::Start::atRest);
    Tone tone (frequency);
    std::vector<double> levels;
    levels.reserve (inputs.size());

    for (const auto input : inputs)
        levels.push_back (settledLevel (instance, tone, input));

    return levels;
}

/** The same on the way down, NaN for inputs above the highest of it. */
std::vector<double> fallingLevels (const Subject& subject, const VoiceMode& mode, const std::vector<double>& inputs)
{
    Instance instance (subject, mode, Instance::Start::atRest);
    Tone tone (frequency);
    settledLevel (instance, tone, highestFalling);
    std::vector<double> levels (inputs.size(), std::numeric_limits<double>::quiet_NaN());

    for (auto i = inputs.size(); i-- > 0;)
        if (inputs[i] <= highestFalling)
            levels[i] = settledLevel (instance, tone, inputs[i]);

    return levels;
}
} // namespace

Table measureStaticLevel (const Subject& subject)
{
    Table table { .keyColumn = "input_dbfs", .columns = columnsForModes ({ "rising_dbfs", "falling_dbfs" }) };
    std::vector<double> inputs;

    for (int i = 0; i <= 180; ++i)
        inputs.push_back (-90.0 + 0.5 * i);

    std::vector<std::vector<double>> lists;

    for (const auto& mode : voiceModes)
    {
        lists.push_back (risingLevels (subject, mode, inputs));
        lists.push_back (fallingLevels (subject, mode, inputs));
    }

    table.addLists (inputs, 1, lists);
    return table;
}

Table measurePlateau (const Subject& subject)
{
    Table table { .keyColumn = "mode",
                  .columns = { "held",
                               "peak",
                               "level_dbfs",
                               "third_db",
                               "fifth_db",
                               "clip_alone_third_db",
                               "clip_alone_fifth_db" } };

    for (const auto& mode : voiceModes)
    {
        Instance instance (subject, mode, Instance::Start::fresh);
        Tone tone (frequency);
        instance.process (tone.next (2 * settling, speakingLevel));
        const auto output = instance.process (tone.next (settling, speakingLevel));
        const auto fundamental = componentAt (output, frequency);
        const auto harmonic = [&] (int order)
        { return toDecibels (componentAt (output, order * frequency) / fundamental); };

        const auto& leveller = mode.settings().leveller;
        const auto held = static_cast<double> (leveller.threshold) * static_cast<double> (leveller.outputGain);
        const auto alone = softClipHarmonics (held);
        table.add (std::string (mode.name),
                   { held, peakOf (output), levelOf (output), harmonic (3), harmonic (5), alone.third, alone.fifth });
    }

    return table;
}

} // namespace larkspire::measure
