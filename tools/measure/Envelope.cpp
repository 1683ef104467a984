// SPDX-License-Identifier: AGPL-3.0-only
#include "measure/Envelope.h"

#include <numbers>
#include <numeric>

namespace larkspire::measure
{

Envelope::Envelope()
{
    for (std::size_t i = 0; i < period; ++i)
        carrier[i] = std::complex<float> (std::polar (1.0, -2.0 * std::numbers::pi * static_cast<double> (i) / period));
}

void Envelope::add (std::span<const float> samples)
{
    for (const auto sample : samples)
    {
        part += carrier[frame % period] * sample;
        ++frame;

        if (frame % hop == 0)
        {
            parts[frame / hop % parts.size()] = part;
            part = 0.0f;
            const auto sum = std::accumulate (parts.begin(), parts.end(), std::complex<float>());
            found.push_back (2.0f * std::abs (sum) / static_cast<float> (period));
        }
    }
}

std::vector<double> Envelope::ofPeriods() const
{
    std::vector<double> amplitudes;

    for (auto i = period / hop - 1; i < found.size(); i += period / hop)
        amplitudes.push_back (double { found[i] });

    return amplitudes;
}

} // namespace larkspire::measure
