// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "audio/AudioShape.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <vector>

namespace larkspire::meter
{

/** The power that loudness is made of, bin by bin: the mean square behind the weighting filters of ITU-R BS.1770, all
    channels in one, by libebur128. So a change of gain in a bin can be reckoned with without filtering anew. */
class WeightedPower
{
public:
    using Listener = std::function<void (float)>;

    /** @param listener  told of each whole bin, in their order */
    WeightedPower (const AudioShape& shape, Listener listener);
    ~WeightedPower();

    WeightedPower (const WeightedPower&) = delete;
    WeightedPower& operator= (const WeightedPower&) = delete;

    /** The frames of a bin, a millisecond rounded down, which is how the library counts its windows; 0 below 1 kHz,
        where nothing can be told. */
    static std::size_t framesPerBin (int sampleRate) { return static_cast<std::size_t> (sampleRate) / 1000; }

    /** Takes whole frames, channels interleaved, finite, linear full scale 1.0. */
    void add (std::span<const float> interleaved);

private:
    struct Library;

    std::size_t samplesPerBin;
    std::unique_ptr<Library> library;
    Listener listener;
    std::vector<float> bin; // that is being filled
};

/** The loudness of a power in LUFS, and the power of a loudness: BS.1770, formula 2, -0.691 + 10 log10 (power). */
double lufsOf (double power);
double powerOf (double lufs);

} // namespace larkspire::meter
