// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <array>
#include <complex>
#include <cstddef>
#include <span>
#include <vector>

namespace larkspire::measure
{

/** The amplitude over time of a tone of 48 frames a period, which is 1 kHz at 48 kHz: that of the last period, found
    four times a period. */
class Envelope
{
public:
    static constexpr std::size_t period = 48; // frames
    static constexpr std::size_t hop = 12;    // frames

    Envelope();

    /** Listens on. */
    void add (std::span<const float> samples);

    /** The amplitudes so far, linear: number i is the one of the period that ends behind frame (i + 1) * hop, counted
        from the first frame heard. The first three hold less than a period. */
    const std::vector<float>& amplitudes() const noexcept { return found; }

    /** Those of one whole period after the other. */
    std::vector<double> ofPeriods() const;

    /** The middle of the period that an amplitude is of, in frames from the first one heard. */
    static double middleOf (double index) { return (index + 1.0) * hop - 0.5 * period; }

private:
    std::array<std::complex<float>, period> carrier;
    std::array<std::complex<float>, period / hop> parts {}; // sums over the last hops
    std::vector<float> found;
    std::complex<float> part;
    std::size_t frame = 0;
};

} // namespace larkspire::measure
