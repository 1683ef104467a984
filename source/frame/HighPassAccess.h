// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/HighPass.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <algorithm>

namespace larkspire
{

/** The way to what JUCE's filter keeps to itself and its subclasses. The chain runs both channels' filters in one
    register, with the bits of processSingleSampleRaw on x86. Coefficients and memory live in JUCE's records. */
struct HighPassAccess : juce::IIRFilter
{
    /** A copy of coefficients and memory. */
    static HighPassFilter copyOf (const juce::IIRFilter& filter)
    {
        const float (&coefficients)[5] = (filter.*&HighPassAccess::coefficients).coefficients;
        return { .coefficients = std::to_array (coefficients),
                 .v1 = filter.*&HighPassAccess::v1,
                 .v2 = filter.*&HighPassAccess::v2 };
    }

    /** Writes a memory back; the coefficients are setCoefficients' to write. */
    static void keepMemory (const HighPassFilter& copy, juce::IIRFilter& filter)
    {
        filter.*& HighPassAccess::v1 = copy.v1;
        filter.*& HighPassAccess::v2 = copy.v2;
    }

    /** Coefficients as JUCE takes them. */
    static juce::IIRCoefficients coefficientsOf (const HighPassFilter& copy)
    {
        juce::IIRCoefficients coefficients;
        std::ranges::copy (copy.coefficients, coefficients.coefficients);
        return coefficients;
    }
};

} // namespace larkspire
