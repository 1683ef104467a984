// SPDX-License-Identifier: AGPL-3.0-only
#include "measure/Tone.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>

namespace larkspire::measure
{

namespace
{
constexpr double twoPi = 2.0 * std::numbers::pi;
} // namespace

double toDecibels (double ratio)
{
    return std::max (lowestDecibels, 20.0 * std::log10 (ratio));
}

double fromDecibels (double decibels)
{
    return std::pow (10.0, decibels / 20.0);
}

std::vector<float> Tone::next (std::size_t frames, double peakDb)
{
    const auto peak = fromDecibels (peakDb);
    std::vector<float> samples (frames);

    for (auto& sample : samples)
    {
        const auto cycles = frequency * static_cast<double> (frame++);
        sample = static_cast<float> (peak * std::sin (twoPi * (cycles - std::floor (cycles))));
    }

    return samples;
}

double componentAt (std::span<const float> signal, double cyclesPerFrame)
{
    const auto turn = std::polar (1.0, -twoPi * cyclesPerFrame);
    const auto windowTurn = std::polar (1.0, twoPi / static_cast<double> (signal.size()));
    std::complex<double> carrier = 1.0;
    std::complex<double> window = 1.0;
    std::complex<double> sum = 0.0;
    double weights = 0.0;

    for (const auto sample : signal)
    {
        const auto weight = 1.0 - window.real();
        sum += carrier * (weight * static_cast<double> (sample));
        weights += weight;
        carrier *= turn;
        window *= windowTurn;
    }

    return 2.0 * std::abs (sum) / weights;
}

double levelOf (std::span<const float> signal)
{
    double squares = 0;

    for (const auto sample : signal)
        squares += static_cast<double> (sample) * static_cast<double> (sample);

    return toDecibels (std::sqrt (2.0 * squares / static_cast<double> (signal.size())));
}

double peakOf (std::span<const float> signal)
{
    double peak = 0;

    for (const auto sample : signal)
        peak = std::max (peak, std::abs (static_cast<double> (sample)));

    return peak;
}

} // namespace larkspire::measure
