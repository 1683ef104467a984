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
#include <limits>
#include <optional>

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

constexpr std::array timeNames { "expander opens", "expander closes", "leveller falls", "leveller returns" };

/** From a step to the end, from one gain to another. */
double timeOf (const Gain& gain, std::size_t step, double startDb, double endDb)
{
    return gain.settlingTime (step, endDb, remaining * std::abs (endDb - startDb));
}

/** In frames, in the order of their names. */
std::vector<double> timesAt (const Subject& subject, const VoiceMode& mode, int rate)
{
    Instance instance (subject, mode, Instance::Start::atRest, rate);
    Gain gain (instance);
    std::vector<double> times;

    // A gain ends where it is after the step, unless it was measured there before and has not come so far.
    const auto addStep = [&] (double level, std::size_t periods, std::optional<double> end = {})
    {
        const auto start = gain.now();
        const auto step = gain.frames();
        gain.play (periods, level);
        times.push_back (timeOf (gain, step, start, end.value_or (gain.now())));
    };

    gain.play (second, quiet);
    const auto closed = gain.now();
    addStep (soft, 2 * second);
    const auto open = gain.now();
    addStep (quiet, second, closed);
    gain.play (2 * second, soft);
    addStep (loud, 2 * second);

    // It goes like 1 - exp (-t); what remains after two time constants is less than a tenth of the way in dB.
    addStep (soft, second + 2 * mode.framesToRest() / 8 / Envelope::period, open);
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

/** Of the built library, for levels that fall; in frames, NaN for those at which the leveller is not at rest, and for
    every other one. */
std::vector<double> openingsOfLibrary (const Subject& subject, const VoiceMode& mode, const std::vector<double>& levels)
{
    Instance instance (subject, mode, Instance::Start::atRest);
    Gain gain (instance);
    std::vector<double> openings;
    gain.play (second, soft);
    const auto open = gain.now();
    gain.play (second, quiet);
    const auto closed = gain.now();

    for (const auto level : levels)
    {
        if (level > soft || std::fmod (soft - level, 2.0) != 0.0)
        {
            openings.push_back (std::numeric_limits<double>::quiet_NaN());
            continue;
        }

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
    Table table { .keyColumn = "what",
                  .columns = columnsForModes ({ "44100_frames", "48000_frames", "96000_frames" }) };
    std::vector<std::vector<double>> lists;

    for (const auto& mode : voiceModes)
        for (const int rate : { 44100, 48000, 96000 })
            lists.push_back (timesAt (subject, mode, rate));

    for (std::size_t i = 0; i < timeNames.size(); ++i)
        table.addAcross (timeNames[i], lists, i);

    return table;
}

Table measureOpening (const Subject& subject)
{
    Table table { .keyColumn = "level_dbfs", .columns = columnsForModes ({ "stage_frames", "library_frames" }) };
    std::vector<double> levels;
    std::vector<std::vector<double>> lists;

    for (int level = 0; level >= -62; --level)
        levels.push_back (level);

    for (const auto& mode : voiceModes)
    {
        auto& ofStage = lists.emplace_back();

        for (const auto level : levels)
            ofStage.push_back (openingOfStage (mode, level));

        lists.push_back (openingsOfLibrary (subject, mode, levels));
    }

    table.addLists (levels, 0, lists);
    return table;
}

Table measureSteps (const Subject& subject)
{
    constexpr double before = -70.0;
    constexpr std::size_t lead = second / 5;
    Table table { .keyColumn = "time_ms", .columns = columnsForModes ({ "dbfs" }) };
    table.columns.insert (table.columns.begin(), "input_dbfs");
    std::vector<std::vector<double>> lists;

    for (const auto& mode : voiceModes)
    {
        Instance instance (subject, mode, Instance::Start::atRest);
        Gain gain (instance);
        gain.play (lead, before);
        gain.play (4 * second / 5, -18.0);
        gain.play (4 * second / 5, -36.0);
        gain.play (6 * second / 5, before);

        const auto add = [&] (const Envelope& envelope)
        {
            // Once a period, which is a millisecond.
            auto& list = lists.emplace_back (envelope.ofPeriods());
            std::transform (list.begin(), list.end(), list.begin(), toDecibels);
        };

        if (lists.empty())
            add (gain.inputEnvelope());

        add (gain.outputEnvelope());
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
