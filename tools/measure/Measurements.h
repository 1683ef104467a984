// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "host/PluginLibrary.h"
#include "measure/Table.h"

#include <array>
#include <filesystem>
#include <span>
#include <string_view>

namespace larkspire::measure
{

/** What is measured. */
struct Subject
{
    const PluginLibrary& library;
    std::filesystem::path voices; // a folder of recordings of speech, each with one channel, as scripts/voices makes it
};

/** The curves of the filters alone at 48 kHz, in dB, as the chain's own design code makes them. Nothing is run. */
Table measureFilters (const Subject& subject);

/** The gain of the whole chain over frequency, in dB with 0 dB at 1 kHz, at three sample rates; a tone of -68 dBFS with
    the gains at rest: expander closed, leveller at 1. There the chain is linear. */
Table measureResponse (const Subject& subject);

/** The gain of the two filters with the saturated air term over frequency at 48 kHz, in dB with 0 dB at 1 kHz, by the
    level of the tone at the plug-in's input: in the chain's own code, and of the built library at a level at which its
    expander is open and its leveller at rest. */
Table measureAir (const Subject& subject);

/** The gain of the built library for a soft high tone beside a loud low one, by the level of the loud one; in dB, 0 dB
    being its gain for a tone of 1 kHz. */
Table measureAirUnderVoice (const Subject& subject);

/** The settled level of a tone of 997 Hz by its input level, in dBFS, the input rising from -90 dBFS to 0, and falling
    from where the leveller is at rest. */
Table measureStaticLevel (const Subject& subject);

/** For each mode, what a 997 Hz tone of -20 dBFS settles at: peak, level, harmonics; and the harmonics that the soft
    clip alone makes at the peak which the leveller holds. */
Table measurePlateau (const Subject& subject);

/** How long the gains take for 90 % of their way in dB, in frames, at three sample rates. */
Table measureTimes (const Subject& subject);

/** How long the expander takes to open for 90 % of its way in dB, by the level of the tone that opens it, in frames at
    48 kHz: the stage alone, in the chain's own code, and the library where its leveller does not move. */
Table measureOpening (const Subject& subject);

/** What becomes of a tone that stands in silence, becomes loud, softer and silent again: level over time at 48 kHz. */
Table measureSteps (const Subject& subject);

/** The soft clip's output by its input, in the chain's own code. */
Table measureSoftClip (const Subject& subject);

/** The harmonics that the soft clip adds to a sine, in dB below it, by the sine's peak; in the chain's own code. */
Table measureHarmonics (const Subject& subject);

/** The stereo fold alone, as left and right factor of a source, in the chain's own code. */
Table measureFold (const Subject& subject);

/** By how much left is louder than right in the output, by how much it is in the input: at rest, where only the fold
    counts, and settled at -20 dBFS. */
Table measureImage (const Subject& subject);

/** The same over time for a 1 kHz tone of -20 dBFS that begins on the left only, the gains at rest before it. */
Table measureImageOverTime (const Subject& subject);

/** The voice and what each mode makes of it: level over 50 ms, every 25 ms. */
Table measureVoiceLevel (const Subject& subject);

/** The same as wave form: lowest and highest sample of every 20 ms. */
Table measureVoiceWave (const Subject& subject);

/** The same in a few numbers: peak, and the level of the speech, of its loud and of its soft parts. */
Table measureVoiceSummary (const Subject& subject);

// The voices below speak in pink noise, as measure/Take.h lays it out, and are heard a second time: the gains are those
// of somewhere in a long recording. Each column is of a mode and a voice.

/** The voices: at what rate they were recorded, how much they speak, their level below their peak, their brightness,
   and how far they are from a room 60 dB below their peak. */
Table measureVoices (const Subject& subject);

/** By the voice's peak, in dBFS, with a room 60 dB below it: by how much voice and room are further apart than before,
    the loudness, and by how much the voice is brighter than before. */
Table measureVoicesByLevel (const Subject& subject);

/** By the voice's peak and the level of the room: the level that the pauses come out at, and by how much voice and room
    are further apart than before. */
Table measureVoicesByRoom (const Subject& subject);

/** By the voice's peak: how much of its gain the leveller takes back in a pause of a second. */
Table measureVoicesDrift (const Subject& subject);

/** By the voice's peak: the true peak of what a new instance makes of it, at 48 and at 8 kHz. */
Table measureVoicesTruePeak (const Subject& subject);

/** One of the measurements and the name of the table that it gives. */
struct Measurement
{
    std::string_view name;
    Table (*measure) (const Subject&);
};

/** All of them. */
inline std::span<const Measurement> measurements()
{
    static constexpr std::array all {
        Measurement { "filters", measureFilters },
        Measurement { "response", measureResponse },
        Measurement { "air", measureAir },
        Measurement { "air-under-voice", measureAirUnderVoice },
        Measurement { "static-level", measureStaticLevel },
        Measurement { "plateau", measurePlateau },
        Measurement { "times", measureTimes },
        Measurement { "opening", measureOpening },
        Measurement { "steps", measureSteps },
        Measurement { "soft-clip", measureSoftClip },
        Measurement { "harmonics", measureHarmonics },
        Measurement { "fold", measureFold },
        Measurement { "image", measureImage },
        Measurement { "image-over-time", measureImageOverTime },
        Measurement { "voice-level", measureVoiceLevel },
        Measurement { "voice-wave", measureVoiceWave },
        Measurement { "voice-summary", measureVoiceSummary },
        Measurement { "voices", measureVoices },
        Measurement { "voices-by-level", measureVoicesByLevel },
        Measurement { "voices-by-room", measureVoicesByRoom },
        Measurement { "voices-drift", measureVoicesDrift },
        Measurement { "voices-true-peak", measureVoicesTruePeak },
    };
    return all;
}

} // namespace larkspire::measure
