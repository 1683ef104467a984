// SPDX-License-Identifier: AGPL-3.0-only
// A real voice before and after, of the built library.
#include "base/Texts.h"
#include "measure/Instance.h"
#include "measure/Measurements.h"
#include "measure/Recording.h"
#include "measure/Tone.h"
#include "measure/VoiceModes.h"
#include "measure/VoicesInRoom.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>
#include <utility>

namespace larkspire::measure
{

namespace
{
/** The voice as it is, then as each mode renders it from a new instance on. */
struct Voices
{
    int rate = 0; // Hz
    std::vector<std::vector<float>> versions;
};

Voices voicesOf (const Subject& subject)
{
    auto recording = readRecording (recordingOf (subject.voices, "announcer"));
    Voices voices { .rate = recording.sampleRate, .versions = { std::move (recording.samples) } };

    for (const auto& mode : voiceModes)
        voices.versions.push_back (
            Instance (subject, mode, Instance::Start::fresh, voices.rate).process (voices.versions.front()));

    return voices;
}

/** A stretch of a version, shorter at the end. */
std::span<const float> stretch (const std::vector<float>& version, std::size_t from, std::size_t frames)
{
    return std::span (version).subspan (from, std::min (frames, version.size() - from));
}

std::vector<std::string> columnsWithInput (const std::vector<std::string>& endings)
{
    std::vector<std::string> columns;
    columns.reserve (endings.size() * (voiceModes.size() + 1));

    for (const auto& ending : endings)
        columns.push_back ("input_" + ending);

    const auto others = columnsForModes (endings);
    columns.insert (columns.end(), others.begin(), others.end());
    return columns;
}

constexpr double levelWindow = 0.050; // s
constexpr double levelHop = 0.025;    // s

/** The levels of windows that begin a hop apart, in dBFS. */
std::vector<double> levelsOf (const std::vector<float>& version, int rate)
{
    const auto window = static_cast<std::size_t> (levelWindow * rate);
    const auto hop = static_cast<std::size_t> (levelHop * rate);
    std::vector<double> levels;

    for (std::size_t from = 0; from + window <= version.size(); from += hop)
        levels.push_back (levelOf (stretch (version, from, window)));

    return levels;
}

/** The quantile of a part, 0 to 1: the value whose place in the order is nearest to it. */
double quantile (std::vector<double> values, double part)
{
    const auto index = static_cast<std::size_t> (std::lround (part * static_cast<double> (values.size() - 1)));
    std::nth_element (values.begin(), values.begin() + static_cast<std::ptrdiff_t> (index), values.end());
    return values[index];
}
} // namespace

Table measureVoiceLevel (const Subject& subject)
{
    Table table { .keyColumn = "time_s", .columns = columnsWithInput ({ "dbfs" }) };
    const auto voices = voicesOf (subject);
    std::vector<std::vector<double>> lists;

    for (const auto& version : voices.versions)
        lists.push_back (levelsOf (version, voices.rate));

    for (std::size_t row = 0; row < lists.front().size(); ++row)
        table.addAcross (fixed (static_cast<double> (row) * levelHop + 0.5 * levelWindow, 3), lists, row);

    return table;
}

Table measureVoiceWave (const Subject& subject)
{
    constexpr double window = 0.020; // s
    Table table { .keyColumn = "time_s", .columns = columnsWithInput ({ "low", "high" }) };
    const auto voices = voicesOf (subject);
    const auto frames = static_cast<std::size_t> (window * voices.rate);

    for (std::size_t from = 0; from < voices.versions.front().size(); from += frames)
    {
        std::vector<double> values;

        for (const auto& version : voices.versions)
        {
            const auto part = stretch (version, from, frames);
            const auto [low, high] = std::minmax_element (part.begin(), part.end());
            values.push_back (static_cast<double> (*low));
            values.push_back (static_cast<double> (*high));
        }

        table.add (fixed (static_cast<double> (from) / voices.rate, 2), std::move (values));
    }

    return table;
}

Table measureVoiceSummary (const Subject& subject)
{
    constexpr double speechAbove = -45.0; // dBFS of the input's level over a window

    Table table { .keyColumn = "version", .columns = { "peak_dbfs", "median_dbfs", "soft_dbfs", "loud_dbfs" } };
    const auto voices = voicesOf (subject);
    const auto input = levelsOf (voices.versions.front(), voices.rate);

    for (std::size_t i = 0; i < voices.versions.size(); ++i)
    {
        const auto levels = levelsOf (voices.versions[i], voices.rate);
        std::vector<double> speech;

        for (std::size_t row = 0; row < levels.size(); ++row)
            if (input[row] > speechAbove)
                speech.push_back (levels[row]);

        table.add (i == 0 ? "input" : std::string (voiceModes[i - 1].name),
                   { toDecibels (peakOf (voices.versions[i])),
                     quantile (speech, 0.5),
                     quantile (speech, 0.1),
                     quantile (speech, 0.95) });
    }

    return table;
}

} // namespace larkspire::measure
