// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace larkspire::measure
{

/** What lies lower than this is written as this: below it are the rounding errors of 32-bit floats. In dB. */
inline constexpr double lowestDecibels = -100.0;

/** 20 log10 (ratio), at least lowestDecibels. */
double toDecibels (double ratio);

/** 10^(decibels / 20). */
double fromDecibels (double decibels);

/** A sine tone that goes on from one piece to the next without a jump in its phase. */
class Tone
{
public:
    /** @param frequency  in cycles a frame, below 0.5 */
    explicit Tone (double cyclesPerFrame) : frequency (cyclesPerFrame) {}

    /** So many frames more of it, at this peak level in dBFS. */
    std::vector<float> next (std::size_t frames, double peakDb);

private:
    double frequency;
    std::size_t frame = 0;
};

/** The peak amplitude of the sine component of a frequency, linear, through a Hann window: a tone some bins away does
    not count. The signal should hold ten cycles or more.

    @param cyclesPerFrame  above 0 and below 0.5
*/
double componentAt (std::span<const float> signal, double cyclesPerFrame);

/** The level of a signal in dBFS as a full-scale sine is 0 dBFS: its RMS times the square root of two. */
double levelOf (std::span<const float> signal);

/** The largest magnitude, linear. */
double peakOf (std::span<const float> signal);

} // namespace larkspire::measure
