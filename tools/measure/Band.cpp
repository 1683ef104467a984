// SPDX-License-Identifier: AGPL-3.0-only
#include "measure/Band.h"

#include <array>
#include <cmath>
#include <numbers>

namespace larkspire::measure
{

namespace
{
/** One of the second-order sections that a Butterworth filter is made of, by the bilinear transform. The outer two of
    its three coefficients of the input are the same. */
struct Section
{
    double b0;
    double b1;
    double a1;
    double a2;
    double v1 = 0.0;
    double v2 = 0.0;

    double process (double x)
    {
        const auto y = b0 * x + v1;
        v1 = b1 * x - a1 * y + v2;
        v2 = b0 * x - a2 * y;
        return y;
    }
};

enum class Side
{
    lowPass,
    highPass
};

constexpr int order = 4;
using Butterworth = std::array<Section, order / 2>;

/** The poles lie evenly on a half circle: section i has the damping 2 sin ((2 i + 1) pi / (2 order)). */
Butterworth butterworth (Side side, double corner, int sampleRate)
{
    Butterworth sections {};
    const auto k = std::tan (std::numbers::pi * corner / sampleRate);

    for (std::size_t i = 0; i < sections.size(); ++i)
    {
        const auto damping = 2.0 * std::sin ((2.0 * static_cast<double> (i) + 1.0) * std::numbers::pi / (2.0 * order));
        const auto scale = 1.0 / (1.0 + damping * k + k * k);
        const auto b0 = side == Side::lowPass ? k * k * scale : scale;
        sections[i] = { .b0 = b0,
                        .b1 = side == Side::lowPass ? 2.0 * b0 : -2.0 * b0,
                        .a1 = 2.0 * (k * k - 1.0) * scale,
                        .a2 = (1.0 - damping * k + k * k) * scale };
    }

    return sections;
}
} // namespace

std::vector<float> inBand (std::span<const float> sound, Band band, int sampleRate)
{
    auto below = butterworth (Side::lowPass, band.high, sampleRate);
    auto above = butterworth (Side::highPass, band.low, sampleRate);
    std::vector<float> filtered;
    filtered.reserve (sound.size());

    for (const auto sample : sound)
    {
        auto y = static_cast<double> (sample);

        for (auto& section : below)
            y = section.process (y);

        for (auto& section : above)
            y = section.process (y);

        filtered.push_back (static_cast<float> (y));
    }

    return filtered;
}

} // namespace larkspire::measure
