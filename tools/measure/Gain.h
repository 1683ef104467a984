// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "measure/Envelope.h"
#include "measure/Instance.h"
#include "measure/Tone.h"

#include <cstddef>

namespace larkspire::measure
{

/** A tone of 48 frames a period that changes its level now and then, and the gain that an instance gives it. */
class Gain
{
public:
    explicit Gain (Instance& measured) : instance (measured) {}

    /** Plays on at this peak level in dBFS; at least a period and whole periods, so that steps fall on zeros. */
    void play (std::size_t periods, double peakDb);

    /** How many frames have been played. */
    std::size_t frames() const noexcept { return played; }

    /** The gain of the last period, in dB. */
    double now() const { return at (output.amplitudes().size() - 1); }

    /** How many frames after a step the gain comes within so many dB of its end for good; the middle of a period
        counts. NaN if it does not come so near. */
    double settlingTime (std::size_t stepFrame, double endDb, double within) const;

    /** What has been played, and what has become of it. */
    const Envelope& inputEnvelope() const { return input; }
    const Envelope& outputEnvelope() const { return output; }

private:
    double at (std::size_t index) const;

    Instance& instance;
    Tone tone { 1.0 / Envelope::period };
    Envelope input;
    Envelope output;
    std::size_t played = 0;
};

} // namespace larkspire::measure
