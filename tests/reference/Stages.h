// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "reference/Modes.h"

#include <bit>
#include <cmath>

// The stages of the oracle: plain scalar statements with the C library's functions, one sample at a time.
namespace reference
{

/** Coefficients and memory of the high-pass: a direct form II in its transposed shape, left and right. */
struct HighPass
{
    float c0 = 0, c1 = 0, c2 = 0, c3 = 0, c4 = 0;
    std::array<float, 2> v1 {}, v2 {};
};

/** Coefficients and memory of a peaking filter: a direct form I, left and right. */
struct Biquad
{
    float b0 = 0, b1 = 0, b2 = 0, a0 = 0, a1 = 0, a2 = 0;
    std::array<float, 2> x1 {}, x2 {}, y1 {}, y2 {};
};

/** In 64-bit floats, rounded at the end. */
inline void design (HighPass& filter, double rate, double corner, float q)
{
    const double pi = 3.141592653589793;
    const double k = std::tan (pi * corner / rate);
    const double inverseQ = 1.0 / static_cast<double> (q);
    const double c = 1.0 / ((k * inverseQ + 1.0) + k * k);
    filter.c0 = static_cast<float> (c);
    filter.c1 = static_cast<float> (c * -2.0);
    filter.c2 = static_cast<float> (c);
    filter.c3 = static_cast<float> ((c + c) * (k * k - 1.0));
    filter.c4 = static_cast<float> (((1.0 - k * inverseQ) + k * k) * c);
}

/** In 32-bit floats throughout; the constants are given as their bits. */
inline void design (Biquad& filter, float rate, const Peak& peak)
{
    const float a = std::pow (10.0f, peak.gainDb * 0.025f);
    float w = peak.frequency * std::bit_cast<float> (0x40C90FDCu);
    w = w / rate;
    const float s = std::sin (w);
    const float c = std::cos (w);
    float t = peak.bandwidth * std::bit_cast<float> (0x3EB17218u);
    t = t * w;
    t = t / s;
    float alpha = std::sinh (t) * s;

    if (! (alpha < 1.5f))
        alpha = 1.5f;

    filter.b0 = 1.0f + alpha * a;
    filter.b1 = -2.0f * c;
    filter.b2 = 1.0f - alpha * a;
    filter.a0 = 1.0f + alpha / a;
    filter.a1 = -2.0f * c;
    filter.a2 = 1.0f - alpha / a;
}

/** One sample of channel 0 or 1. Outputs within 1e-8 of zero, and NaN, become zero. */
inline float run (HighPass& filter, std::size_t channel, float x)
{
    float& v1 = filter.v1[channel];
    float& v2 = filter.v2[channel];
    float y = filter.c0 * x + v1;

    if (! (y < -1.0e-8f || y > 1.0e-8f))
        y = 0.0f;

    v1 = filter.c1 * x - filter.c3 * y + v2;
    v2 = filter.c2 * x - filter.c4 * y;
    return y;
}

/** One sample of each channel in place. The coefficients are normalised each time. */
inline void run (Biquad& filter, float& left, float& right)
{
    const float r = 1.0f / filter.a0;
    const float b0 = r * filter.b0;
    const float b1 = r * filter.b1;
    const float b2 = r * filter.b2;
    const float a1 = r * filter.a1;
    const float a2 = r * filter.a2;

    for (std::size_t channel = 0; channel < 2; ++channel)
    {
        float& sample = channel == 0 ? left : right;
        const float x = sample;
        float y = b0 * x;
        y = y + b1 * filter.x1[channel];
        y = y + b2 * filter.x2[channel];
        y = y - a1 * filter.y1[channel];
        y = y - a2 * filter.y2[channel];
        filter.x2[channel] = filter.x1[channel];
        filter.x1[channel] = x;
        filter.y2[channel] = filter.y1[channel];
        filter.y1[channel] = y;
        sample = y;
    }
}

/** The expander's running gain after a sample. */
inline float expanderGain (const Rider& rider, float g, float x)
{
    if (std::fabs (g * x) > rider.threshold)
    {
        g = (std::fabs (x / rider.threshold) * rider.attackRate + 1.0f) * g;
    }
    else
    {
        g = g * 0.9998f;

        if (! (g >= 0.2f))
            g = 0.2f;
    }

    if (g > 1.0f)
        g = 1.0f;

    return g;
}

/** The leveller's running gain after a sample. */
inline float levellerGain (const Rider& rider, float g, float v)
{
    if (std::fabs (g * v) > rider.threshold)
        return g / (std::fabs (v / rider.threshold) * rider.attackRate + 1.0f);

    g = (1.0f - g) * rider.releaseRate + g;

    if (g > 1.0f)
        g = 1.0f;

    return g;
}

/** A sample with its gain applied. */
inline float ridden (const Rider& rider, float g, float x)
{
    return (g * rider.gainScale + rider.gainOffset) * x * rider.outputGain;
}

/** Both channels in place, narrowed towards the middle. */
inline void fold (float& left, float& right)
{
    const float s = (left - right) * 0.5f;
    const float m = right + left;
    left = (s + m) * 0.75f;
    right = (m - s) * 0.75f;
}

} // namespace reference
