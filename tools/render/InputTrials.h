// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "meter/GainTrial.h"
#include "render/VoicePath.h"

#include <filesystem>
#include <functional>
#include <vector>

namespace larkspire::render
{

/** What listens to a recording that is read ahead of its rendering. */
using Listener = std::function<void (std::span<const float>)>;

/** Reads a recording from front to back. Throws Failure if that is impossible.

    @param listener  given every block, channels interleaved */
void hear (const std::filesystem::path& recording, const Listener& listener);

/** The largest finite magnitude of samples, linear. */
class PeakMeter
{
public:
    void add (std::span<const float> samples);

    /** In dBFS; nullopt for silence. */
    meter::Figure peak() const { return meter::amplitudeDecibels (double { largest }); }

private:
    float largest = 0.0f;
};

/** What a mode would make of voice and room with a gain ahead of it. */
struct Trial
{
    KnobMode mode = KnobMode::medium;
    double gainDb = 0.0;
    meter::VoiceAndRoom before {}; // with the gain
    meter::VoiceAndRoom after {};
    bool closes = false; // whether the expander does where only the room is heard
};

/** Tries modes and gains on a recording, all of them while it is read once. The chains are those that this program has
    inside. Of bypass, in which no stage runs, there is no trial.

    @param wanted    modes and gains; the rest is filled in
    @param listener  given what is read, for whatever else has to be known */
std::vector<Trial> tryOut (const std::filesystem::path& recording,
                           const VoicePathSettings& way,
                           std::vector<Trial> wanted,
                           const Listener& listener);

/** The gains that bring a peak to each of the levels that are worth a trial, -36 to -6 dBFS in steps of 3 dB: below,
    16-bit recordings come down to their own noise, and above, every mode brings the room nearer to the voice. */
std::vector<Trial> trialsOfLevels (KnobMode mode, double peakDbfs);

/** The one that keeps voice and room furthest apart, the quieter of two alike; null if none has both. */
const Trial* bestOf (const std::vector<Trial>& trials);

} // namespace larkspire::render
