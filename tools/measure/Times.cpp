// SPDX-License-Identifier: AGPL-3.0-only
// How long the gains take, of the built library, and of the expander's own code where the leveller hides it.
#include "base/Texts.h"
#include "chain/Expander.h"
#include "measure/Gain.h"
#include "measure/Measurements.h"
#include "measure/VoiceModes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <functional>
#include <iterator>
#include <limits>

namespace larkspire::measure
{

namespace
{
// A time is that of 90 % of the way in dB.
constexpr double remaining = 0.1;

// Peak levels of the tone in dBFS: the expander closed and its signal still well above the rounding errors; open, and
// the leveller not yet at work; ten times as much.
constexpr double quiet = -86.0;
constexpr double soft = -42.0;
constexpr double loud = -22.0;

constexpr std::size_t second = 1000; // periods, as long as a second of 48 kHz

struct Times
{
    double expanderOpens;
    double expanderCloses;
    double levellerFalls;
    double levellerReturns;
};

/** From a step to the end, from one gain to another. */
double timeOf (const Gain& gain, std::size_t step, double startDb, double endDb)
{
    return gain.settlingTime (step, endDb, remaining * std::abs (endDb - startDb));
}

Times timesAt (const Subject& subject, const VoiceMode& mode, int rate)
{
    Instance instance (subject.library, mode.position, rate);
    instance.rest (mode.framesToRest());
    Gain gain (instance);
    Times times {};

    const auto stepTo = [&] (double level, std::size_t periods)
    {
        const auto step = gain.frames();
        gain.play (periods, level);
        return step;
    };

    gain.play (second, quiet);
    const auto closed = gain.now();

    auto step = stepTo (soft, 2 * second);
    const auto open = gain.now();
    times.expanderOpens = timeOf (gain, step, closed, open);

    step = stepTo (quiet, second);
    times.expanderCloses = timeOf (gain, step, open, closed);

    gain.play (2 * second, soft);
    step = stepTo (loud, 2 * second);
    const auto lowered = gain.now();
    times.levellerFalls = timeOf (gain, step, open, lowered);

    // It goes like 1 - exp (-t); what remains after two time constants is less than a tenth of the way in dB.
    step = stepTo (soft, second + 2 * mode.framesToRest() / 8 / Envelope::period);
    times.levellerReturns = timeOf (gain, step, lowered, open);
    return times;
}

double appliedDecibels (const LevelRider& rider, double running)
{
    return toDecibels (running * static_cast<double> (rider.gainScale) + static_cast<double> (rider.gainOffset));
}

/** In the chain's own code, in frames; NaN where it does not open. */
double openingOfStage (const VoiceMode& mode, double level)
{
    LevelRider rider;
    applySettings (rider, mode.settings().expander);
    const auto wanted = remaining * appliedDecibels (rider, static_cast<double> (expanderFloor));
    rider.gainLeft = rider.gainRight = expanderFloor;
    RunningRider expander (rider);
    Tone tone (1.0 / Envelope::period);

    for (std::size_t frame = 0; frame < 5 * second * Envelope::period;)
        for (const auto sample : tone.next (Envelope::period, level))
        {
            expand (expander, broadcast (sample));
            ++frame;

            if (appliedDecibels (rider, static_cast<double> (expander.gain[0])) >= wanted)
                return static_cast<double> (frame);
        }

    return std::numeric_limits<double>::quiet_NaN();
}

/** Of the built library, for levels falling from the one below which the leveller is at rest; in frames. */
std::vector<double> openingsOfLibrary (const Subject& subject, const VoiceMode& mode, const std::vector<double>& levels)
{
    Instance instance (subject.library, mode.position, 48000);
    instance.rest (mode.framesToRest());
    Gain gain (instance);
    std::vector<double> openings;
    gain.play (second, soft);
    const auto open = gain.now();
    gain.play (second, quiet);
    const auto closed = gain.now();

    for (const auto level : levels)
    {
        const auto step = gain.frames();
        gain.play (5 * second, level);
        openings.push_back (timeOf (gain, step, closed, open));
        gain.play (second, quiet);
    }

    return openings;
}
} // namespace

Table measureTimes (const Subject& subject)
{
    Table table { .name = "times",
                  .keyColumn = "what",
                  .columns = columnsForModes ({ "44100_frames", "48000_frames", "96000_frames" }) };
    std::vector<Times> all;

    for (const auto& mode : voiceModes)
        for (const int rate : { 44100, 48000, 96000 })
            all.push_back (timesAt (subject, mode, rate));

    const auto add = [&] (const char* what, double Times::*time)
    {
        std::vector<double> values;
        std::transform (all.begin(), all.end(), std::back_inserter (values), std::mem_fn (time));
        table.add (what, std::move (values));
    };

    add ("expander opens", &Times::expanderOpens);
    add ("expander closes", &Times::expanderCloses);
    add ("leveller falls", &Times::levellerFalls);
    add ("leveller returns", &Times::levellerReturns);
    return table;
}

Table measureOpening (const Subject& subject)
{
    Table table { .name = "opening",
                  .keyColumn = "level_dbfs",
                  .columns = columnsForModes ({ "stage_frames", "library_frames" }) };
    constexpr int highest = 0;
    constexpr int lowest = -62;
    constexpr int highestOfLibrary = static_cast<int> (soft);
    std::vector<double> levels;

    for (int level = highestOfLibrary; level >= lowest; level -= 2)
        levels.push_back (level);

    std::array<std::vector<double>, voiceModes.size()> ofLibrary;

    for (std::size_t i = 0; i < voiceModes.size(); ++i)
        ofLibrary[i] = openingsOfLibrary (subject, voiceModes[i], levels);

    for (int level = highest; level >= lowest; --level)
    {
        std::vector<double> values;
        const bool isMeasured = level <= highestOfLibrary && (highestOfLibrary - level) % 2 == 0;
        const auto index = isMeasured ? static_cast<std::size_t> ((highestOfLibrary - level) / 2) : 0;

        for (std::size_t i = 0; i < voiceModes.size(); ++i)
        {
            values.push_back (openingOfStage (voiceModes[i], level));
            values.push_back (isMeasured ? ofLibrary[i][index] : std::numeric_limits<double>::quiet_NaN());
        }

        table.add (fixed (level, 0), std::move (values));
    }

    return table;
}

Table measureSteps (const Subject& subject)
{
    constexpr double before = -70.0;
    constexpr std::size_t lead = second / 5;
    Table table { .name = "steps", .keyColumn = "time_ms", .columns = columnsForModes ({ "dbfs" }) };
    table.columns.insert (table.columns.begin(), "input_dbfs");
    std::vector<std::vector<double>> lists;

    for (const auto& mode : voiceModes)
    {
        Instance instance (subject.library, mode.position, 48000);
        instance.rest (mode.framesToRest());
        Gain gain (instance);
        gain.play (lead, before);
        gain.play (4 * second / 5, -18.0);
        gain.play (4 * second / 5, -36.0);
        gain.play (6 * second / 5, before);

        const auto add = [&] (const std::vector<float>& amplitudes)
        {
            auto& list = lists.emplace_back();

            // Once a period, which is a millisecond; the first is not yet whole.
            for (std::size_t i = Envelope::period / Envelope::hop - 1; i < amplitudes.size(); i += 4)
                list.push_back (toDecibels (static_cast<double> (amplitudes[i])));
        };

        if (lists.empty())
            add (gain.inputAmplitudes());

        add (gain.outputAmplitudes());
    }

    for (std::size_t row = 0; row < lists.front().size(); ++row)
    {
        // Half a millisecond past the whole one is the middle of the period. Every one of a word's beginning, then
        // fewer.
        const auto time = static_cast<double> (row) + 0.5 - static_cast<double> (lead);

        if (time < -50.0 || (time > 60.0 && row % 5 != 0))
            continue;

        table.addAcross (fixed (time, 1), lists, row);
    }

    return table;
}

} // namespace larkspire::measure
