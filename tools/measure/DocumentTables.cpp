// SPDX-License-Identifier: AGPL-3.0-only
// The tables of docs/sound.md, but for those of voices.
#include "base/Texts.h"
#include "measure/Document.h"
#include "measure/Markdown.h"
#include "measure/Tone.h"
#include "measure/VoiceTables.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace larkspire::measure
{

namespace
{
/** Sample rates, as the columns and the headings have them. */
constexpr std::array<std::pair<const char*, const char*>, 3> rates {
    { { "44100", "44.1 kHz" }, { "48000", "48 kHz" }, { "96000", "96 kHz" } }
};

/** Where a curve crosses a value for the first time, between its points. */
double crossing (const std::vector<double>& x, const std::vector<double>& y, double value)
{
    for (std::size_t i = 1; i < y.size(); ++i)
        if ((y[i - 1] < value) != (y[i] < value))
            return x[i - 1] + (x[i] - x[i - 1]) * (value - y[i - 1]) / (y[i] - y[i - 1]);

    throw std::runtime_error ("a curve does not cross " + fixed (value, 1));
}

/** Where a curve ends its steepest rise from one point to the next. */
double steepestRise (const std::vector<double>& x, const std::vector<double>& y)
{
    std::size_t steepest = 1;

    for (std::size_t i = 1; i < y.size(); ++i)
        if (y[i] - y[i - 1] > y[steepest] - y[steepest - 1])
            steepest = i;

    return x[steepest];
}

/** The highest point of a response between two frequencies, both within it. */
std::string highest (const std::vector<double>& frequencies, const std::vector<double>& gains, double from, double to)
{
    std::size_t best = 0;

    for (std::size_t i = 0; i < gains.size() && frequencies[i] <= to; ++i)
        if (frequencies[best] < from || gains[i] > gains[best])
            best = i;

    return decibels (gains[best]) + " at " + numberText (frequencies[best], 0) + " Hz";
}

std::string responseTable (const Tables& tables)
{
    const auto& response = tables.at ("response");
    const auto frequencies = response.keys();
    const auto gains = [&] (const VoiceMode& mode) { return response.column (mode.column ("48000_db")); };
    auto text = headingForModes ("At 48 kHz, 0 dB at 1 kHz");
    text += lineForModes (
        "−3 dB below", [&] (auto& mode) { return numberText (crossing (frequencies, gains (mode), -3.0), 0) + " Hz"; });
    text += lineForModes ("Highest below 1 kHz",
                          [&] (auto& mode) { return highest (frequencies, gains (mode), 30.0, 999.0); });
    text += lineForModes ("Highest above 1 kHz",
                          [&] (auto& mode) { return highest (frequencies, gains (mode), 1001.0, 20000.0); });

    for (const auto& [rate, name] : rates)
    {
        const auto at = [&, end = std::string (rate) + "_db"] (const char* frequency, const VoiceMode& mode)
        { return response.at (frequency, mode.column (end)); };
        text +=
            lineForModes (std::string ("At 5 kHz and 20 kHz, sample rate ") + name,
                          [&] (auto& mode) {
                              return numberText (at ("5011.87", mode), 1) + " and " + decibels (at ("19952.62", mode));
                          });
    }

    return text;
}

std::string airTable (const Tables& tables)
{
    const auto& table = tables.at ("air-under-voice");
    auto text = headingForModes ("Level of the 250 Hz tone");

    for (const auto& row : table.rows)
        text += lineForModes (numberText (std::stod (row.key), 0) + " dBFS",
                              [&] (auto& mode) { return decibels (table.at (row.key, mode.column ("db"))); });

    return text;
}

std::string levelTable (const Tables& tables)
{
    const auto& levels = tables.at ("static-level");
    const auto& plateau = tables.at ("plateau");
    const auto inputs = levels.keys();
    const auto rising = [&] (const VoiceMode& mode) { return levels.column (mode.column ("rising_dbfs")); };
    const auto falling = [&] (const VoiceMode& mode) { return levels.column (mode.column ("falling_dbfs")); };
    const auto settled = [&] (const VoiceMode& mode) { return plateau.at (mode.name, "level_dbfs"); };
    const auto gainAt = [&] (double input)
    {
        return [&levels, input] (const VoiceMode& mode)
        { return decibels (levels.at (fixed (input, 1), mode.column ("rising_dbfs")) - input); };
    };

    auto text = headingForModes ("A 997 Hz tone in the middle");
    text += lineForModes ("Expander opens, level rising past",
                          [&] (auto& mode) { return fullScale (steepestRise (inputs, rising (mode))); });
    text += lineForModes ("Expander closes, level falling past",
                          [&] (auto& mode) { return fullScale (steepestRise (inputs, falling (mode))); });
    text += lineForModes ("Leveller holds from",
                          [&] (auto& mode)
                          { return numberText (crossing (inputs, rising (mode), settled (mode) - 0.5), 0) + " dBFS"; });
    text += lineForModes ("Settled level, input −20 dBFS", [&] (auto& mode) { return fullScale (settled (mode)); });
    text += lineForModes ("Settled peak of full scale, input −20 dBFS",
                          [&] (auto& mode) { return numberText (plateau.at (mode.name, "peak"), 3); });
    text += lineForModes ("Settled level, inputs of −36 to 0 dBFS",
                          [&] (auto& mode)
                          {
                              const auto column = rising (mode);
                              const auto first = std::find (inputs.begin(), inputs.end(), -36.0) - inputs.begin();
                              const auto [low, high] = std::minmax_element (column.begin() + first, column.end());
                              return numberText (*low, 1) + " to " + fullScale (*high);
                          });
    text += lineForModes ("Gain, expander open and leveller at rest (input −46 dBFS)", gainAt (-46.0));
    text += lineForModes ("Gain, expander closed and leveller at rest (input −80 dBFS)", gainAt (-80.0));
    return text;
}

std::string timeText (double milliseconds)
{
    if (milliseconds >= 1000.0)
        return numberText (milliseconds / 1000.0, 1) + " s";

    return numberText (milliseconds, milliseconds >= 100.0 ? 0 : 1) + " ms";
}

std::string timesTable (const Tables& tables)
{
    const auto& times = tables.at ("times");
    auto text = heading ({ "90 % of the way in dB", "Samples", "44.1 kHz", "48 kHz", "96 kHz" });

    for (const auto& row : times.rows)
        for (const auto& mode : voiceModes)
        {
            const auto frames = [&] (const std::string& rate)
            { return times.at (row.key, mode.column (rate + "_frames")); };
            std::vector<std::string> cells { row.key + ", " + capitalised (mode.name),
                                             numberText (frames ("48000"), 0) };

            for (const auto& [rate, name] : rates)
                cells.push_back (timeText (1000.0 * frames (rate) / std::stod (rate)));

            text += line (cells);
        }

    return text;
}

std::string openingTable (const Tables& tables)
{
    const auto& opening = tables.at ("opening");
    auto text = headingForModes ("Level of the tone");

    for (int level = -12; level >= -48; level -= 6)
        text += lineForModes (
            numberText (level, 0) + " dBFS",
            [&] (auto& mode)
            { return timeText (opening.at (std::to_string (level), mode.column ("stage_frames")) / 48.0); });

    return text;
}

std::string harmonicsTable (const Tables& tables)
{
    const auto& plateau = tables.at ("plateau");
    const auto cell = [&] (const char* column)
    {
        return [&plateau, column] (const VoiceMode& mode)
        {
            const auto value = plateau.at (mode.name, column);
            return value <= -99.9 ? std::string ("below −100 dB") : decibels (value);
        };
    };
    auto text = headingForModes ("Relative to the fundamental");
    text += lineForModes ("Third harmonic, soft clip alone", cell ("clip_alone_third_db"));
    text += lineForModes ("Fifth harmonic, soft clip alone", cell ("clip_alone_fifth_db"));
    text += lineForModes ("Third harmonic, whole chain", cell ("third_db"));
    text += lineForModes ("Fifth harmonic, whole chain", cell ("fifth_db"));
    return text;
}

std::string foldTable (const Tables& tables)
{
    const auto& fold = tables.at ("fold");
    auto text = heading ({ "Source", "Left output", "Right output" });
    const auto cell = [] (double factor)
    { return numberText (factor, 3) + " (" + decibels (toDecibels (std::abs (factor))) + ")"; };

    for (const auto& row : fold.rows)
        text += line ({ row.key, cell (row.values[0]), cell (row.values[1]) });

    return text;
}

} // namespace

std::string documentTable (const std::string& name, const Tables& tables)
{
    static const std::map<std::string, std::string (*) (const Tables&)> known {
        { "response", responseTable }, { "air under a voice", airTable }, { "levels", levelTable },
        { "times", timesTable },       { "opening", openingTable },       { "harmonics", harmonicsTable },
        { "fold", foldTable },
    };

    if (const auto found = voiceTables().find (name); found != voiceTables().end())
        return found->second (tables);

    if (const auto found = known.find (name); found != known.end())
        return found->second (tables);

    throw std::runtime_error ("the document asks for a table '" + name + "' that nobody makes");
}

} // namespace larkspire::measure
