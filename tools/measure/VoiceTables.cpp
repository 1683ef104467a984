// SPDX-License-Identifier: AGPL-3.0-only
#include "measure/VoiceTables.h"

#include "measure/Markdown.h"
#include "measure/VoicesInRoom.h"
#include "meter/LevelAdvice.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace larkspire::measure
{

namespace
{
std::string wordsTable (const Tables& tables)
{
    const auto& voice = tables.at ("voice-summary");
    auto text = heading ({ "", "Peak", "10 % of the speech is softer than", "Half", "5 % is louder than", "Range" });

    for (const auto& row : voice.rows)
    {
        const auto level = [&] (const char* column) { return voice.at (row.key, column); };
        text += line ({ row.key == "input" ? "Recording" : capitalised (row.key),
                        fullScale (level ("peak_dbfs")),
                        fullScale (level ("soft_dbfs")),
                        fullScale (level ("median_dbfs")),
                        fullScale (level ("loud_dbfs")),
                        decibels (level ("loud_dbfs") - level ("soft_dbfs")) });
    }

    return text;
}

/** From the voice with the least to the one with the most. */
struct Range
{
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();
};

/** Voices without the figure do not count. */
Range rangeOver (const Table& table, const std::string& key, const VoiceMode& mode, std::string_view figure)
{
    Range range;

    for (const auto voice : voiceNames)
        if (const auto value = table.at (key, voiceColumn (mode, voice, figure)); ! std::isnan (value))
            range = { .low = std::min (range.low, value), .high = std::max (range.high, value) };

    return range;
}

enum class Sign
{
    always,
    ofNegatives
};

std::string number (double value, int digits, Sign sign)
{
    auto text = numberText (value, digits);
    const auto isZero = text.find_first_of ("123456789") == std::string::npos;
    return (sign == Sign::always && value > 0.0 && ! isZero ? "+" : "") + text;
}

/** Both ends of a range, or one number where they are written the same. */
std::string rangeText (const Range& range, int digits, Sign sign, const std::string& unit)
{
    const auto low = number (range.low, digits, sign);
    const auto high = number (range.high, digits, sign);
    return (low == high ? low : low + " to " + high) + " " + unit;
}

std::string peakText (double peak)
{
    return numberText (peak, 0) + " dBFS";
}

/** A table with a row a peak and the voices' range of one figure in each cell. */
std::string byPeak (const Table& table, std::string_view figure, int digits, Sign sign, const std::string& unit)
{
    auto text = headingForModes ("The voice peaks at");

    for (const auto& row : table.rows)
        text += lineForModes (peakText (std::stod (row.key)),
                              [&] (auto& mode)
                              { return rangeText (rangeOver (table, row.key, mode, figure), digits, sign, unit); });

    return text;
}

std::string voicesTable (const Tables& tables)
{
    const auto& table = tables.at ("voices");
    auto text =
        heading ({ "Voice", "Recorded at", "Speech", "Level below its peak", "Above a room 60 dB below its peak" });

    for (const auto& row : table.rows)
    {
        const auto figure = [&] (const char* column) { return table.at (row.key, column); };
        text += line ({ row.key,
                        numberText (figure ("recorded_hz") / 1000.0, 0) + " kHz",
                        numberText (figure ("speech_s"), 1) + " s",
                        decibels (figure ("below_peak_db")),
                        numberText (figure ("distance_lu"), 1) + " LU" });
    }

    return text;
}

std::string distanceTable (const Tables& tables)
{
    return byPeak (tables.at ("voices-by-level"), "distance_lu", 0, Sign::always, "LU");
}

std::string loudnessTable (const Tables& tables)
{
    return byPeak (tables.at ("voices-by-level"), "loudness_lufs", 1, Sign::ofNegatives, "LUFS");
}

std::string brightnessTable (const Tables& tables)
{
    return byPeak (tables.at ("voices-by-level"), "brightness_db", 0, Sign::always, "dB");
}

std::string driftTable (const Tables& tables)
{
    return byPeak (tables.at ("voices-drift"), "db", 1, Sign::always, "dB");
}

std::string roomTable (const Tables& tables)
{
    const auto& table = tables.at ("voices-by-room");
    auto text = headingForModes ("The voice peaks at, the room has");

    for (const auto& row : table.rows)
    {
        const auto peak = row.key.substr (0, row.key.find (' '));
        const auto room = row.key.substr (row.key.rfind (' ') + 1);
        text += lineForModes (
            peakText (std::stod (peak)) + ", " + peakText (std::stod (room)),
            [&] (auto& mode)
            {
                return rangeText (rangeOver (table, row.key, mode, "pause_dbfs"), 0, Sign::ofNegatives, "dBFS") + ", "
                       + rangeText (rangeOver (table, row.key, mode, "distance_lu"), 0, Sign::always, "LU");
            });
    }

    return text;
}

std::string adviceTable (const Tables& /*tables*/)
{
    const auto cells = [] (const std::string& what, auto cell)
    {
        std::vector<std::string> texts { what };

        for (const auto& advice : meter::levelAdvice)
            texts.push_back (cell (advice));

        return line (texts);
    };
    return headingForModes ("")
           + cells ("Let the voice peak between",
                    [] (auto& advice)
                    { return numberText (advice.lowestPeak, 0) + " and " + peakText (advice.highestPeak); })
           + cells ("Keep the room below", [] (auto& advice) { return peakText (advice.highestRoom); });
}

std::string truePeakTable (const Tables& tables)
{
    const auto& table = tables.at ("voices-true-peak");
    auto text = headingForModes ("The voice peaks at");

    for (const auto& [rate, name] : { std::pair { "48000", "48 kHz" }, std::pair { "8000", "8 kHz" } })
        for (const auto& row : table.rows)
            text += lineForModes (peakText (std::stod (row.key)) + ", " + name,
                                  [&, figure = std::string (rate) + "_dbtp"] (auto& mode)
                                  {
                                      const auto highest = rangeOver (table, row.key, mode, figure).high;
                                      return number (highest, 1, Sign::always) + " dBTP";
                                  });

    return text;
}
} // namespace

const std::map<std::string, std::string (*) (const Tables&)>& voiceTables()
{
    static const std::map<std::string, std::string (*) (const Tables&)> known {
        { "words", wordsTable },
        { "voices", voicesTable },
        { "distance of the room", distanceTable },
        { "loudness of voices", loudnessTable },
        { "brightness of voices", brightnessTable },
        { "drift in pauses", driftTable },
        { "voices over rooms", roomTable },
        { "level ahead", adviceTable },
        { "true peak of voices", truePeakTable },
    };
    return known;
}

} // namespace larkspire::measure
