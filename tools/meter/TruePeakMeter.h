// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "audio/AudioShape.h"
#include "meter/Decibels.h"

#include <cstddef>
#include <functional>
#include <span>
#include <vector>

namespace larkspire::meter
{

/** The magnitude of a waveform between its samples, which a converter or another sample rate brings to light (ITU-R
    BS.1770, annex 2).

    Between two samples it looks at as many points as make 192 kHz of the sample rate or more, however low that is:

        y (n + p / phases) = sum over k of h_p (k) x (n + k),  h_p (k) = sinc (k - p / phases) w (k - p / phases)

    over 32 samples, w being a Kaiser window with beta 9, and each h_p brought to a sum of 1. That is how close
    measuring programs look that resample to 192 kHz; the fourfold sampling and the 12 samples that are the least
    which BS.1770 allows do not see all of what those see.

    It takes a tenth of the time of libebur128's, which is why it stands here.
*/
class TruePeakMeter
{
public:
    /** What is told of each frame: the largest magnitude at or behind it and ahead of the next, in any channel, linear.
        Frames come in their order. */
    using Listener = std::function<void (std::span<const float>)>;

    explicit TruePeakMeter (const AudioShape& shape, Listener listener = {});

    /** Takes whole frames, channels interleaved, finite, linear full scale 1.0. */
    void add (std::span<const float> interleaved);

    /** Tells of the last 16 frames too, whose samples alone count. Nothing is added afterwards. */
    void end();

    /** The largest magnitude so far, in dBTP; nullopt for silence. The last 16 frames count after end(). */
    Figure peak() const { return amplitudeDecibels (double { largest }); }

    static constexpr std::size_t taps = 32;

private:
    void look();

    std::size_t channels;
    Listener listener;
    std::vector<float> kernels;            // one behind the other, of every point but the sample itself
    std::vector<std::vector<float>> lines; // a channel each: what still counts of what was heard, then what is new
    std::vector<float> magnitudes;
    float largest = 0.0f;
};

} // namespace larkspire::meter
