// SPDX-License-Identifier: AGPL-3.0-only
// Real voices in a room that is known, of the built library.
#include "measure/VoicesInRoom.h"

#include "measure/Instance.h"
#include "measure/Measurements.h"
#include "measure/Take.h"
#include "measure/VoiceFigures.h"
#include "meter/ChainProbe.h"

#include <algorithm>
#include <stdexcept>

namespace larkspire::measure
{

namespace
{
using Sound = std::vector<float>;

/** How a voice is put into its room. */
struct Setting
{
    std::string key;
    int peak; // of the voice, in dBFS
    int room; // in dBFS as a full-scale sine is 0 dBFS
};

/** Voices by their peaks, the room so far below them as it is in a recording that is only turned up or down. */
std::vector<Setting> settingsByLevel (const std::vector<int>& peaks)
{
    std::vector<Setting> settings;
    settings.reserve (peaks.size());

    for (const auto peak : peaks)
        settings.push_back ({ .key = std::to_string (peak), .peak = peak, .room = peak - usualRoom });

    return settings;
}

Take takeOf (const Subject& subject, std::string_view voice, int sampleRate = usualRate)
{
    return layOut (recordingOf (subject.voices, voice), sampleRate);
}

/** What a mode makes of a sound that it has heard once before: its gains are those of somewhere in a long recording. */
Sound heardBefore (const Subject& subject, const VoiceMode& mode, const Sound& sound, int sampleRate)
{
    Instance instance (subject, mode, Instance::Start::fresh, sampleRate);
    instance.process (sound);
    return instance.process (sound);
}

/** The same for the leveller's gain in the pauses. It is read in the chain's own code, once that has given the same
    sound as the library. */
double levellerDrift (const Subject& subject, const VoiceMode& mode, const Take& take, const Sound& sound)
{
    Instance instance (subject, mode, Instance::Start::fresh, take.sampleRate);
    meter::ChainProbe probe (static_cast<int> (mode.position), { .channels = 1, .sampleRate = take.sampleRate });
    probe.settle (sound, instance.process (sound));
    probe.add (sound, instance.process (sound));

    if (! probe.matches())
        throw std::runtime_error ("the library gives another sound than the chain in this program");

    return driftInPauses (probe.levellerGain(), take);
}

/** A table with a row a setting and, for each mode, voice and figure, a column.

    @param figures  of a sound, for each mode all of them: figures (take, sound) */
template <typename Figures>
Table acrossVoices (const Subject& subject,
                    const std::string& keyColumn,
                    const std::vector<std::string>& endings,
                    const std::vector<Setting>& settings,
                    int sampleRate,
                    Figures figures)
{
    Table table { .keyColumn = keyColumn, .columns = {} };

    for (const auto& mode : voiceModes)
        for (const auto voice : voiceNames)
            for (const auto& ending : endings)
                table.columns.push_back (voiceColumn (mode, voice, ending));

    std::vector<std::vector<double>> lists (table.columns.size());

    for (std::size_t voice = 0; voice < voiceNames.size(); ++voice)
    {
        const auto take = takeOf (subject, voiceNames[voice], sampleRate);

        for (const auto& setting : settings)
        {
            const auto found = figures (take, take.at (setting.peak, setting.room));

            for (std::size_t i = 0; i < found.size(); ++i)
            {
                const auto mode = i / endings.size();
                lists[(mode * voiceNames.size() + voice) * endings.size() + i % endings.size()].push_back (found[i]);
            }
        }
    }

    for (std::size_t row = 0; row < settings.size(); ++row)
        table.addAcross (settings[row].key, lists, row);

    return table;
}

Table truePeaksAt (const Subject& subject, int sampleRate)
{
    return acrossVoices (subject,
                         "peak_dbfs",
                         { std::to_string (sampleRate) + "_dbtp" },
                         settingsByLevel ({ -24, -12, -6, 0 }),
                         sampleRate,
                         [&subject] (const Take& take, const Sound& sound)
                         {
                             std::vector<double> figures;

                             for (const auto& mode : voiceModes)
                             {
                                 Instance instance (subject, mode, Instance::Start::fresh, take.sampleRate);
                                 figures.push_back (truePeakOf (instance.process (sound), take.sampleRate));
                             }

                             return figures;
                         });
}
} // namespace

Table measureVoices (const Subject& subject)
{
    Table table { .keyColumn = "voice",
                  .columns = { "recorded_hz", "speech_s", "below_peak_db", "brightness_db", "distance_lu" } };

    for (const auto& voice : voiceNames)
    {
        const auto take = takeOf (subject, voice);
        const auto sound = take.at (0.0, -usualRoom);
        std::size_t frames = 0;

        for (const auto& phrase : take.phrases)
            frames += phrase.end - phrase.begin;

        table.add (std::string (voice),
                   { static_cast<double> (take.recordedRate),
                     static_cast<double> (frames) / take.sampleRate,
                     -levelIn (take.voice, take.phrases),
                     brightnessOf (sound, take),
                     distanceOfRoom (sound, take) });
    }

    return table;
}

Table measureVoicesByLevel (const Subject& subject)
{
    return acrossVoices (subject,
                         "peak_dbfs",
                         { "distance_lu", "loudness_lufs", "brightness_db" },
                         settingsByLevel ({ -36, -30, -27, -24, -21, -18, -12, -6 }),
                         usualRate,
                         [&subject] (const Take& take, const Sound& sound)
                         {
                             const auto distance = distanceOfRoom (sound, take);
                             const auto brightness = brightnessOf (sound, take);
                             std::vector<double> figures;

                             for (const auto& mode : voiceModes)
                             {
                                 const auto after = heardBefore (subject, mode, sound, take.sampleRate);
                                 figures.push_back (distanceOfRoom (after, take) - distance);
                                 figures.push_back (loudnessOf (after, take.sampleRate));
                                 figures.push_back (brightnessOf (after, take) - brightness);
                             }

                             return figures;
                         });
}

Table measureVoicesByRoom (const Subject& subject)
{
    std::vector<Setting> settings;

    for (const auto peak : { -24, -12 })
        for (const auto room : { -72, -65, -60, -55 })
            settings.push_back (
                { .key = std::to_string (peak) + " over " + std::to_string (room), .peak = peak, .room = room });

    return acrossVoices (subject,
                         "peak_over_room",
                         { "pause_dbfs", "distance_lu" },
                         settings,
                         usualRate,
                         [&subject] (const Take& take, const Sound& sound)
                         {
                             const auto distance = distanceOfRoom (sound, take);
                             std::vector<double> figures;

                             for (const auto& mode : voiceModes)
                             {
                                 const auto after = heardBefore (subject, mode, sound, take.sampleRate);
                                 figures.push_back (pauseLevel (after, take));
                                 figures.push_back (distanceOfRoom (after, take) - distance);
                             }

                             return figures;
                         });
}

Table measureVoicesDrift (const Subject& subject)
{
    return acrossVoices (subject,
                         "peak_dbfs",
                         { "db" },
                         settingsByLevel ({ -24, -18, -12, -6 }),
                         usualRate,
                         [&subject] (const Take& take, const Sound& sound)
                         {
                             std::vector<double> figures;
                             figures.reserve (voiceModes.size());

                             for (const auto& mode : voiceModes)
                                 figures.push_back (levellerDrift (subject, mode, take, sound));

                             return figures;
                         });
}

Table measureVoicesTruePeak (const Subject& subject)
{
    auto table = truePeaksAt (subject, 48000);
    const auto low = truePeaksAt (subject, 8000);
    table.columns.insert (table.columns.end(), low.columns.begin(), low.columns.end());

    for (std::size_t row = 0; row < table.rows.size(); ++row)
    {
        auto& values = table.rows[row].values;
        values.insert (values.end(), low.rows[row].values.begin(), low.rows[row].values.end());
    }

    return table;
}

} // namespace larkspire::measure
