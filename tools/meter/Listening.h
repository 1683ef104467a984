// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "meter/ChainProbe.h"
#include "meter/SoundMeter.h"

#include <span>

namespace larkspire::meter
{

/** Whether the gains of a rendering are known. */
enum class GainsKnown
{
    yes,
    noStageRuns, // the mode is "bypass"
    otherPlugin  // the library gave another sound than the chain in this program
};

/** The figures of one rendering. */
struct Analysis
{
    SoundFigures before {};
    SoundFigures after {};
    GainsKnown gainsKnown = GainsKnown::yes;
    StageGains gains {};
};

/** One rendering, heard ahead of all that is done to it, around the plug-in, and as the result. */
struct Listening
{
    /** @param chainShape  of what the plug-in gets, whose rate may be another */
    Listening (int modeIndex,
               const AudioShape& soundShape,
               const AudioShape& chainShape,
               Voices voices,
               Courses coursesOfSound)
        : shape (soundShape),
          courses (coursesOfSound),
          before (shape, courses),
          after (shape, courses),
          chain (modeIndex, chainShape, voices)
    {
    }

    /** Takes frames of the recording, channels interleaved, linear full scale 1.0. */
    void addRecording (std::span<const float> recording)
    {
        before.add (recording);
        frames += static_cast<std::int64_t> (recording.size()) / shape.channels;
    }

    /** Takes frames of the result as they read back from it, which may be rounded. */
    void addResult (std::span<const float> written) { after.add (written); }

    /** Forgets the result, of which there will be another. */
    void beginResultAnew() { after = SoundMeter (shape, courses); }

    GainsKnown gainsKnown() const
    {
        if (! chain.runs())
            return GainsKnown::noStageRuns;

        return chain.matches() ? GainsKnown::yes : GainsKnown::otherPlugin;
    }

    Analysis analysis() const
    {
        return { .before = before.figures (before),
                 .after = after.figures (before),
                 .gainsKnown = gainsKnown(),
                 .gains = chain.gains() };
    }

    double seconds() const { return static_cast<double> (frames) / shape.sampleRate; }

    AudioShape shape;
    Courses courses;
    SoundMeter before;
    SoundMeter after;
    ChainProbe chain;
    std::int64_t frames = 0;
};

} // namespace larkspire::meter
