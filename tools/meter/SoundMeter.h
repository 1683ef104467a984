// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "meter/LoudnessMeter.h"
#include "meter/QuietestTenth.h"
#include "meter/SoundFigures.h"
#include "meter/TimeCourse.h"
#include "meter/TruePeakMeter.h"

#include <span>

namespace larkspire::meter
{

/** Hears one sound from front to back, for its figures and its courses. */
class SoundMeter
{
public:
    explicit SoundMeter (const AudioShape& shape, Courses courses = Courses::kept);

    /** Takes whole frames, channels interleaved, linear full scale 1.0. Samples that are NaN or infinite are heard
        as silence, and a sound with any has no figures. */
    void add (std::span<const float> interleaved);

    /** @param recording  what the sound was made of, or the sound itself; see QuietestTenth::levelWhere */
    SoundFigures figures (const SoundMeter& recording) const;

    /** The samples themselves, all channels in one; empty where no courses are kept. */
    const TimeCourse& waveform() const noexcept { return waveformCourse; }
    const LoudnessMeter& loudness() const noexcept { return loudnessMeter; }

private:
    std::size_t channels;
    Courses wanted;
    LoudnessMeter loudnessMeter;
    TruePeakMeter truePeakMeter;
    QuietestTenth quietestTenth;
    TimeCourse waveformCourse;
    std::vector<float> finiteSamples;
    bool allFinite = true;
};

} // namespace larkspire::meter
