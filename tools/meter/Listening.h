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
    SoundFigures before;
    SoundFigures after;
    GainsKnown gainsKnown = GainsKnown::yes;
    StageGains gains;
};

/** One rendering, heard on both sides of the plug-in. */
struct Listening
{
    Listening (int modeIndex, const AudioShape& soundShape)
        : shape (soundShape),
          before (shape),
          after (shape),
          chain (modeIndex, shape)
    {
    }

    /** Takes the same frames three times, channels interleaved, linear full scale 1.0: as the plug-in got them, as it
        gave them, and as they read back from the result, which may be rounded. */
    void add (std::span<const float> input, std::span<const float> output, std::span<const float> written)
    {
        before.add (input);
        after.add (written);
        chain.add (input, output);
        frames += static_cast<std::int64_t> (input.size()) / shape.channels;
    }

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
    SoundMeter before;
    SoundMeter after;
    ChainProbe chain;
    std::int64_t frames = 0;
};

} // namespace larkspire::meter
