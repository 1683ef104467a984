// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <cmath>
#include <cstdint>

namespace larkspire
{

/** Peak and RMS over all samples of all channels, linear full scale 1.0. */
struct Levels
{
    double peak = 0.0;
    double sumOfSquares = 0.0;
    std::int64_t count = 0;

    void add (double sample)
    {
        const auto magnitude = std::abs (sample);
        peak = magnitude > peak ? magnitude : peak;
        sumOfSquares += sample * sample;
        ++count;
    }

    /** The largest magnitude in dBFS; minus infinity for silence and for no samples. */
    double peakDecibels() const { return 20.0 * std::log10 (peak); }

    /** sqrt (sum / count) in dBFS, 0 dBFS being a square wave of full scale; minus infinity likewise. */
    double rmsDecibels() const
    {
        return 10.0 * std::log10 (sumOfSquares / static_cast<double> (count > 0 ? count : 1));
    }
};

} // namespace larkspire
