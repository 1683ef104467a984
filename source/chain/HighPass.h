// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/LaneConstants.h"
#include "chain/ModeTable.h"

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

/** On x86 the framework makes what lies this close to zero zero. */
inline constexpr float highPassSnap = 1.0e-8f;

/** The way to what the framework's filter keeps to itself and its subclasses. */
struct HighPassInsides : juce::IIRFilter
{
    static constexpr auto coefficientsOf = &HighPassInsides::coefficients;
    static constexpr auto firstMemoryOf = &HighPassInsides::v1;
};

/** Takes rumble and plosives off, one sample of each channel, without looking at the filters' locks.

    What processSingleSampleRaw does, to the bit, on both filters in one register: a direct form II in its transposed
    shape, y = c0 x + v1, v1 = c1 x - c3 y + v2, v2 = c2 x - c4 y. On x86 an output close to zero, and one that is no
    number, becomes zero.
*/
inline ChannelPair highPass (juce::IIRFilter& left, juce::IIRFilter& right, ChannelPair x)
{
    const float* leftC = (left.*HighPassInsides::coefficientsOf).coefficients;
    const float* rightC = (right.*HighPassInsides::coefficientsOf).coefficients;
    float* leftV = &(left.*HighPassInsides::firstMemoryOf);
    float* rightV = &(right.*HighPassInsides::firstMemoryOf);

    const auto c0 = ChannelPair { *leftC, *rightC, *leftC, *rightC };
    const auto leftC1234 = loadFour (leftC + 1);
    const auto rightC1234 = loadFour (rightC + 1);
    const auto c12 = __builtin_shufflevector (leftC1234, rightC1234, 0, 4, 1, 5);
    const auto c34 = __builtin_shufflevector (leftC1234, rightC1234, 2, 6, 3, 7);
    const auto v = loadHalves (leftV, rightV);
    const auto v1 = shuffled<0, 2, 0, 2> (v);

    // Nothing is added to the new v2; -0 is the number that leaves every other one as it is.
    const auto v2 = __builtin_shufflevector (v, everywhere (-0.0f), 1, 3, 4, 5);

    auto y = c0 * x + v1;
#if JUCE_INTEL
    y = whereSet (magnitude (y) > lanes::highPassSnap, y);
#endif

    const auto newV12 = c12 * x - c34 * y + v2;
    const auto newV = shuffled<0, 2, 1, 3> (newV12);
    storeHalves (newV, leftV, rightV);
    return y;
}

} // namespace larkspire
