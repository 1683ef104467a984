// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/ModeTable.h"
#include "chain/StereoSample.h"

#include <juce_audio_basics/juce_audio_basics.h>

namespace larkspire
{

/** Designs both channels' high-pass alike, in 64-bit floats, and keeps their memory.

    @param rate  in Hz, above twice the corner
*/
inline void
designHighPass (juce::IIRFilter& left, juce::IIRFilter& right, double rate, const HighPassSettings& settings)
{
    const auto coefficients =
        juce::IIRCoefficients::makeHighPass (rate, settings.corner, static_cast<double> (settings.q));
    left.setCoefficients (coefficients);
    right.setCoefficients (coefficients);
}

/** Takes rumble and plosives off, one sample of each channel, without looking at the filters' locks. */
inline StereoSample highPass (juce::IIRFilter& left, juce::IIRFilter& right, StereoSample input)
{
    return { left.processSingleSampleRaw (input.first), right.processSingleSampleRaw (input.second) };
}

} // namespace larkspire
