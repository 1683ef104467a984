// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "render/InputTrials.h"

#include <optional>

namespace larkspire::render
{

/** What a recording is brought to ahead of the plug-in; at most one of these. */
struct InputLevel
{
    std::optional<double> gainDb {};
    std::optional<double> peakDbfs {}; // of its largest sample
    bool best = false;                 // the peak at which the mode keeps voice and room furthest apart

    bool isGiven() const { return gainDb.has_value() || peakDbfs.has_value() || best; }

    /** How often the recording is heard to find the gain: for its peak, and once more to try levels. */
    int hearings() const { return best ? 2 : peakDbfs ? 1 : 0; }
};

/** The gain, in dB, that brings a recording to a level. 0 for silence, which no gain brings anywhere, and in bypass for
    the best level, as there is none.

    @param listener  given every block that is read

    Throws Failure if the recording cannot be read. */
double inputGainDb (const std::filesystem::path& recording,
                    const InputLevel& level,
                    const VoicePathSettings& way,
                    const Listener& listener);

} // namespace larkspire::render
