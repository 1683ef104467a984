// SPDX-License-Identifier: AGPL-3.0-only
#include "chain/PeakingFilter.h"

#include <cmath>

namespace larkspire
{

namespace
{
// One step of the last place above the float nearest to two pi. Every project that was ever mixed with the plug-in has
// its filters designed with this number, so it stays.
constexpr float justAboveTwoPi = 6.2831859588623046875f;

constexpr float halfLogOfTwo = 0.34657359f;

// Keeps a wide filter high in the spectrum stable in shape: 1.8 octaves at 15 kHz would ask for 1.96 at 44.1 kHz.
constexpr float largestAlpha = 1.5f;
} // namespace

void designPeaking (PeakingFilter& filter, float sampleRate, float gainDb, float frequency, float bandwidth)
{
    const float amplitude = std::pow (10.0f, gainDb * 0.025f);
    const float w0 = frequency * justAboveTwoPi / sampleRate;
    const float s = std::sin (w0);
    const float c = std::cos (w0);
    const float t = bandwidth * halfLogOfTwo * w0 / s;
    const float uncapped = std::sinh (t) * s;
    const float alpha = uncapped < largestAlpha ? uncapped : largestAlpha;

    filter.b0 = 1.0f + alpha * amplitude;
    filter.b1 = -2.0f * c;
    filter.b2 = 1.0f - alpha * amplitude;
    filter.a0 = 1.0f + alpha / amplitude;
    filter.a1 = -2.0f * c;
    filter.a2 = 1.0f - alpha / amplitude;
}

} // namespace larkspire
