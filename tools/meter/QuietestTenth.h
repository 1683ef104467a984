// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "audio/AudioShape.h"
#include "meter/Decibels.h"

#include <cstddef>
#include <span>
#include <vector>

namespace larkspire::meter
{

/** The level of the quietest tenth of a sound: the 10th percentile of the RMS levels of 50 ms windows, in dBFS. Of
    speech in a room that is the noise between words. Where there is none it is the tails of the words.

    The windows follow each other without a gap or an overlap, and one takes all channels together; an unfinished one at
    the end does not count. The percentile is that of the nearest rank: the lowest level that a tenth of the windows do
    not exceed. 0 dBFS is a sine of full scale, as AES17 has it; there is no weighting.

    50 ms lie well within the gaps between words, which take 0.1 s and more, and hold two and a half periods of 50 Hz
    hum, so that hum has one level and not a swinging one. And a tenth, because speech pauses for more than a tenth of
    its time, while the quietest single window is a matter of chance.
*/
class QuietestTenth
{
public:
    static constexpr double windowSeconds = 0.05;
    static constexpr double share = 0.1;

    explicit QuietestTenth (const AudioShape& shape);

    /** Takes whole frames, channels interleaved, linear full scale 1.0. */
    void add (std::span<const float> interleaved);

    /** The level over the windows in which the recording was not digital silence. The recording itself and what was
        made of it are so measured in the same places, and silence that was edited in, which is not the room's noise,
        does not count.

        nullopt if no window counts, or if the percentile window is digital silence. */
    Figure levelWhere (const QuietestTenth& recording) const;

private:
    std::size_t samplesPerWindow;
    std::size_t samplesHeard = 0; // of the window that is being filled
    double sumOfSquares = 0.0;
    std::vector<float> powers; // mean squares of the whole windows
};

} // namespace larkspire::meter
