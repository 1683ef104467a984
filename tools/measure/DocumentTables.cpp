// SPDX-License-Identifier: AGPL-3.0-only
#include "measure/DocumentTables.h"

#include "base/Texts.h"
#include "measure/VoiceModes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>

namespace larkspire::measure
{

namespace
{
constexpr std::array rates { "44100", "48000", "96000" };

std::string kilohertz (const std::string& rate)
{
    return numberText (std::stod (rate) / 1000.0, rate.ends_with ("000") ? 0 : 1) + " kHz";
}

/** The mode as the knob names it. */
std::string title (const VoiceMode& mode)
{
    std::string name (mode.name);
    name.front() = static_cast<char> (name.front() - 'a' + 'A');
    return name;
}

std::string line (const std::vector<std::string>& cells)
{
    std::string text = "|";

    for (const auto& cell : cells)
        text.append (" ").append (cell).append (" |");

    return text + "\n";
}

/** The heading and the line below it. */
std::string heading (const std::vector<std::string>& cells)
{
    std::string rule = "|---|";

    for (std::size_t i = 1; i < cells.size(); ++i)
        rule += "---:|";

    return line (cells) + rule + "\n";
}

/** A row with one cell a mode. */
template <typename Cell>
std::string lineForModes (const std::string& what, Cell cell)
{
    std::vector<std::string> cells { what };

    for (const auto& mode : voiceModes)
        cells.push_back (cell (mode));

    return line (cells);
}

/** Where a curve crosses a value for the first time, between its points. */
double crossing (const std::vector<double>& x, const std::vector<double>& y, double value)
{
    for (std::size_t i = 1; i < y.size(); ++i)
        if ((y[i - 1] < value) != (y[i] < value))
            return x[i - 1] + (x[i] - x[i - 1]) * (value - y[i - 1]) / (y[i] - y[i - 1]);

    throw std::runtime_error ("a curve does not cross " + fixed (value, 1));
}

/** The key of the row at whose end a column rises most from one row to the next. */
std::string steepestRise (const Table& table, const std::string& name)
{
    const auto values = table.column (name);
    std::size_t steepest = 1;

    for (std::size_t i = 1; i < values.size(); ++i)
        if (values[i] - values[i - 1] > values[steepest] - values[steepest - 1])
            steepest = i;

    return table.rows[steepest].key;
}

std::string responseTable (const Tables& tables)
{
    const auto& response = tables.at ("response");
    const auto frequencies = response.keys();
    const auto highest = [&] (const VoiceMode& mode, double from, double to)
    {
        const auto values = response.column (mode.column ("48000_db"));
        std::size_t best = values.size();

        for (std::size_t i = 0; i < values.size(); ++i)
            if (frequencies[i] >= from && frequencies[i] <= to && (best == values.size() || values[i] > values[best]))
                best = i;

        return numberText (values[best], 1) + " dB at " + numberText (frequencies[best], 0) + " Hz";
    };
    auto text = heading ({ "At 48 kHz, 0 dB at 1 kHz", "Gentle", "Medium", "Powerful" });
    text += lineForModes (
        "−3 dB below",
        [&] (const VoiceMode& mode)
        { return numberText (crossing (frequencies, response.column (mode.column ("48000_db")), -3.0), 0) + " Hz"; });
    text += lineForModes ("Highest below 1 kHz", [&] (const VoiceMode& mode) { return highest (mode, 30.0, 999.0); });
    text +=
        lineForModes ("Highest above 1 kHz", [&] (const VoiceMode& mode) { return highest (mode, 1001.0, 20000.0); });

    for (const auto* rate : rates)
        text += lineForModes ("At 5 kHz and 20 kHz, sample rate " + kilohertz (rate),
                              [&] (const VoiceMode& mode)
                              {
                                  const auto column = mode.column (std::string (rate) + "_db");
                                  return numberText (response.at ("5011.87", column), 1) + " and "
                                         + numberText (response.at ("19952.62", column), 1) + " dB";
                              });

    return text;
}

std::string airTable (const Tables& tables)
{
    const auto& table = tables.at ("air-under-voice");
    auto text = heading ({ "Level of the 250 Hz tone", "Gentle", "Medium", "Powerful" });

    for (const auto& row : table.rows)
        text += lineForModes (numberText (std::stod (row.key), 0) + " dBFS",
                              [&] (const VoiceMode& mode)
                              { return numberText (table.at (row.key, mode.column ("db")), 1) + " dB"; });

    return text;
}

std::string levelTable (const Tables& tables)
{
    const auto& levels = tables.at ("static-level");
    const auto& plateau = tables.at ("plateau");
    const auto inputs = levels.keys();
    const auto settled = [&] (const VoiceMode& mode) { return plateau.at (mode.name, "level_dbfs"); };
    auto text = heading ({ "A 997 Hz tone in the middle", "Gentle", "Medium", "Powerful" });
    text += lineForModes (
        "Expander opens, level rising past",
        [&] (const VoiceMode& mode)
        { return numberText (std::stod (steepestRise (levels, mode.column ("rising_dbfs"))), 1) + " dBFS"; });
    text += lineForModes (
        "Expander closes, level falling past",
        [&] (const VoiceMode& mode)
        { return numberText (std::stod (steepestRise (levels, mode.column ("falling_dbfs"))), 1) + " dBFS"; });
    text += lineForModes ("Leveller holds from",
                          [&] (const VoiceMode& mode)
                          {
                              const auto column = levels.column (mode.column ("rising_dbfs"));
                              return numberText (crossing (inputs, column, settled (mode) - 0.5), 0) + " dBFS";
                          });
    text += lineForModes ("Settled level, input −20 dBFS",
                          [&] (const VoiceMode& mode) { return numberText (settled (mode), 1) + " dBFS"; });
    text += lineForModes ("Settled peak of full scale, input −20 dBFS",
                          [&] (const VoiceMode& mode) { return numberText (plateau.at (mode.name, "peak"), 3); });
    text += lineForModes ("Settled level, inputs of −36 to 0 dBFS",
                          [&] (const VoiceMode& mode)
                          {
                              const auto column = levels.column (mode.column ("rising_dbfs"));
                              const auto first = std::find (inputs.begin(), inputs.end(), -36.0) - inputs.begin();
                              const auto [low, high] = std::minmax_element (column.begin() + first, column.end());
                              return numberText (*low, 1) + " to " + numberText (*high, 1) + " dBFS";
                          });
    text += lineForModes ("Gain, expander open and leveller at rest (input −46 dBFS)",
                          [&] (const VoiceMode& mode)
                          { return numberText (levels.at ("-46.0", mode.column ("rising_dbfs")) + 46.0, 1) + " dB"; });
    text += lineForModes ("Gain, expander closed and leveller at rest (input −80 dBFS)",
                          [&] (const VoiceMode& mode)
                          { return numberText (levels.at ("-80.0", mode.column ("rising_dbfs")) + 80.0, 1) + " dB"; });
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
            std::vector<std::string> cells { row.key + ", " + title (mode) };
            cells.push_back (numberText (times.at (row.key, mode.column ("48000_frames")), 0));

            for (const auto* rate : rates)
                cells.push_back (timeText (1000.0 * times.at (row.key, mode.column (std::string (rate) + "_frames"))
                                           / std::stod (rate)));

            text += line (cells);
        }

    return text;
}

std::string openingTable (const Tables& tables)
{
    const auto& opening = tables.at ("opening");
    auto text = heading ({ "Level of the tone", "Gentle", "Medium", "Powerful" });

    for (const auto* level : { "-12", "-18", "-24", "-30", "-36", "-42", "-48" })
        text += lineForModes (numberText (std::stod (level), 0) + " dBFS",
                              [&] (const VoiceMode& mode)
                              { return timeText (opening.at (level, mode.column ("stage_frames")) / 48.0); });

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
            return value <= -99.9 ? std::string ("below −100 dB") : numberText (value, 1) + " dB";
        };
    };
    auto text = heading ({ "Relative to the fundamental", "Gentle", "Medium", "Powerful" });
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
    { return numberText (factor, 3) + " (" + numberText (20.0 * std::log10 (std::abs (factor)), 1) + " dB)"; };

    for (const auto& row : fold.rows)
        text += line ({ row.key, cell (row.values[0]), cell (row.values[1]) });

    return text;
}

std::string voiceTable (const Tables& tables)
{
    const auto& voice = tables.at ("voice-summary");
    auto text = heading ({ "", "Peak", "10 % of the speech is softer than", "Half", "5 % is louder than", "Range" });

    for (const auto& row : voice.rows)
    {
        const auto cell = [&] (const char* column) { return numberText (voice.at (row.key, column), 1) + " dBFS"; };
        const auto range = voice.at (row.key, "loud_dbfs") - voice.at (row.key, "soft_dbfs");
        auto name = row.key == "input" ? std::string ("Recording") : row.key;
        name.front() = static_cast<char> (name.front() >= 'a' ? name.front() - 'a' + 'A' : name.front());
        text += line ({ name,
                        cell ("peak_dbfs"),
                        cell ("soft_dbfs"),
                        cell ("median_dbfs"),
                        cell ("loud_dbfs"),
                        numberText (range, 1) + " dB" });
    }

    return text;
}
} // namespace

std::string documentTable (const std::string& name, const Tables& tables)
{
    struct Known
    {
        const char* name;
        std::string (*make) (const Tables&);
    };

    for (const auto& known : { Known { "response", responseTable },
                               Known { "air under a voice", airTable },
                               Known { "levels", levelTable },
                               Known { "times", timesTable },
                               Known { "opening", openingTable },
                               Known { "harmonics", harmonicsTable },
                               Known { "fold", foldTable },
                               Known { "voice", voiceTable } })
        if (name == known.name)
            return known.make (tables);

    throw std::runtime_error ("the document asks for a table '" + name + "' that nobody makes");
}

} // namespace larkspire::measure
