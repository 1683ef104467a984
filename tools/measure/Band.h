// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <span>
#include <vector>

namespace larkspire::measure
{

/** Frequencies from one to another, in Hz. */
struct Band
{
    double low;
    double high;
};

/** What of a sound lies in a band: behind a Butterworth high-pass and low-pass of fourth order each, 24 dB an octave.

    @param sampleRate  in Hz, above twice the upper end */
std::vector<float> inBand (std::span<const float> sound, Band band, int sampleRate);

} // namespace larkspire::measure
