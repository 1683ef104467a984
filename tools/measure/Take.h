// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <cstddef>
#include <filesystem>
#include <span>
#include <vector>

namespace larkspire::measure
{

/** Frames from one up to another. */
struct Stretch
{
    std::size_t begin;
    std::size_t end;
};

/** A voice that speaks phrases with pauses of a second between them and at both ends, and a room of its own to put it
   in. Where it speaks and where it pauses is known, because it was laid out that way. */
struct Take
{
    int sampleRate;           // Hz
    int recordedRate;         // Hz
    std::vector<float> voice; // peak 1.0; digital silence in the pauses
    std::vector<float> room;  // pink noise of 0 dBFS, as a full-scale sine has it
    std::vector<Stretch> phrases;
    std::vector<Stretch> pauses; // those behind a phrase

    /** Voice and room together, at levels in dBFS: the voice by its peak, the room as a full-scale sine is 0 dBFS. */
    std::vector<float> at (double voicePeak, double roomLevel) const;
};

/** Lays out a recording of phrases that are parted by 0.4 s of digital silence or more. What a phrase begins and ends
    with is taken off where it lies more than 35 dB below the loudest moment of the voice, but for 50 ms.

    The first phrases are taken that make 5 s of speech.

    @param sampleRate  that of the take, in Hz; the phrases are brought to it one by one

    Throws Failure if the recording cannot be read, has more than one channel or holds no phrase. */
Take layOut (const std::filesystem::path& recording, int sampleRate);

/** The level of a sound in stretches of it, in dBFS as a full-scale sine is 0 dBFS. */
double levelIn (std::span<const float> sound, const std::vector<Stretch>& stretches);

} // namespace larkspire::measure
