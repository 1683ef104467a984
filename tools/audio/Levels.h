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

    /** The largest magnitude in dBFS, 0 dBFS being full scale; minus infinity for silence and for no samples. */
    double peakDecibels() const { return 20.0 * std::log10 (peak); }

    /** The RMS in dBFS, 0 dBFS being a sine of full scale as AES17 has it: 20 log10 (sqrt (2 sum / count)). Minus
        infinity likewise. */
    double rmsDecibels() const
    {
        return 10.0 * std::log10 (2.0 * sumOfSquares / static_cast<double> (count > 0 ? count : 1));
    }
};

} // namespace larkspire
