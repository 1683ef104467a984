// SPDX-License-Identifier: AGPL-3.0-only
#include "meter/TruePeakMeter.h"

#include "chain/FlushToZero.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <numbers>
#include <utility>

namespace larkspire::meter
{

namespace
{
constexpr std::size_t taps = TruePeakMeter::taps;
constexpr std::size_t before = taps / 2 - 1; // samples that count ahead of a frame; one more behind it

using Four = float __attribute__ ((vector_size (16)));

Four fourAt (const float* samples)
{
    Four four;
    std::memcpy (&four, samples, sizeof four);
    return four;
}

/** The kernel of the point that lies so far behind a sample, 0 to 1. */
std::array<float, taps> kernelAt (double offset)
{
    constexpr double beta = 9.0;
    std::array<double, taps> kernel {};
    double sum = 0.0;

    for (std::size_t tap = 0; tap < taps; ++tap)
    {
        const auto distance = static_cast<double> (tap) - static_cast<double> (before) - offset;
        const auto angle = std::numbers::pi * distance;
        const auto place = distance / (taps / 2.0);
        const auto window = std::cyl_bessel_i (0.0, beta * std::sqrt (std::max (0.0, 1.0 - place * place)));
        kernel[tap] = window * (angle == 0.0 ? 1.0 : std::sin (angle) / angle);
        sum += kernel[tap];
    }

    std::array<float, taps> normalised {};

    for (std::size_t tap = 0; tap < taps; ++tap)
        normalised[tap] = static_cast<float> (kernel[tap] / sum);

    return normalised;
}

/** Raises magnitudes to those that a kernel gives, sixteen frames at a time. The samples of the first frame's kernel
    begin at line; behind the last frame's there are fifteen more, whatever they are. */
void raise (std::span<float> magnitudes, const float* line, const float* kernel)
{
    constexpr std::size_t atOnce = 16;

    for (std::size_t first = 0; first < magnitudes.size(); first += atOnce)
    {
        Four sums[atOnce / 4] {};

        for (std::size_t tap = 0; tap < taps; ++tap)
        {
            const Four factor { kernel[tap], kernel[tap], kernel[tap], kernel[tap] };

            for (std::size_t i = 0; i < atOnce / 4; ++i)
                sums[i] += factor * fourAt (line + first + tap + 4 * i);
        }

        for (std::size_t i = 0; i < std::min (atOnce, magnitudes.size() - first); ++i)
            magnitudes[first + i] = std::max (magnitudes[first + i], std::abs (sums[i / 4][i % 4]));
    }
}
} // namespace

TruePeakMeter::TruePeakMeter (const AudioShape& shape, Listener toBeTold)
    : channels (static_cast<std::size_t> (shape.channels)),
      listener (std::move (toBeTold)),
      lines (channels, std::vector<float> (before))
{
    constexpr int enough = 192000;
    constexpr int most = 64; // for rates below those of any voice
    const auto points = std::min (most, (enough + shape.sampleRate - 1) / shape.sampleRate);

    for (int point = 1; point < points; ++point)
    {
        const auto kernel = kernelAt (static_cast<double> (point) / points);
        kernels.insert (kernels.end(), kernel.begin(), kernel.end());
    }
}

void TruePeakMeter::add (std::span<const float> interleaved)
{
    for (std::size_t channel = 0; channel < channels; ++channel)
        for (std::size_t i = channel; i < interleaved.size(); i += channels)
            lines[channel].push_back (interleaved[i]);

    look();
}

void TruePeakMeter::end()
{
    for (auto& line : lines)
        line.resize (line.size() + taps - 1 - before);

    kernels.clear(); // a sound that breaks off is not to be blamed for what a filter makes of that
    look();
}

void TruePeakMeter::look()
{
    if (lines.front().size() < taps)
        return;

    const ScopedFlushToZero flushToZero; // what fades out would take twenty times as long
    magnitudes.assign (lines.front().size() - (taps - 1), 0.0f);

    for (auto& line : lines)
    {
        const auto length = line.size();
        line.resize (length + 15);

        for (std::size_t i = 0; i < magnitudes.size(); ++i)
            magnitudes[i] = std::max (magnitudes[i], std::abs (line[before + i]));

        for (std::size_t kernel = 0; kernel < kernels.size(); kernel += taps)
            raise (magnitudes, line.data(), &kernels[kernel]);

        line.resize (length);
        line.erase (line.begin(), line.begin() + static_cast<std::ptrdiff_t> (magnitudes.size()));
    }

    largest = std::max (largest, *std::max_element (magnitudes.begin(), magnitudes.end()));

    if (listener)
        listener (magnitudes);
}

} // namespace larkspire::meter
