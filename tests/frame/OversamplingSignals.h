// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <random>
#include <vector>

/** White noise, half of full scale. */
inline std::vector<float> noise (std::size_t count, unsigned int seed)
{
    std::mt19937 random (seed);
    std::vector<float> samples (count);

    for (auto& sample : samples)
        sample = static_cast<float> (static_cast<double> (random()) / 4294967296.0 - 0.5);

    return samples;
}

/** A sine that begins a number of samples late. */
inline std::vector<float> sine (std::size_t count, double cyclesPerSample, double amplitude, double delay)
{
    std::vector<float> samples (count);

    for (std::size_t i = 0; i < count; ++i)
        samples[i] = static_cast<float> (
            amplitude * std::sin (2.0 * std::numbers::pi * cyclesPerSample * (static_cast<double> (i) - delay)));

    return samples;
}

/** The largest distance between two signals of one length, from a sample on. */
inline float largestDifference (const std::vector<float>& a, const std::vector<float>& b, std::size_t from)
{
    float largest = 0.0f;

    for (std::size_t i = from; i < a.size(); ++i)
        largest = std::max (largest, std::abs (a[i] - b[i]));

    return largest;
}
