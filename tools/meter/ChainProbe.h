// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "audio/AudioShape.h"
#include "meter/StageGains.h"
#include "meter/TimeCourse.h"

#include <memory>
#include <span>
#include <vector>

namespace larkspire::meter
{

/** Whether two channels are one voice, which one chain takes as they are, or two, each with a mono chain of its own. */
enum class Voices
{
    together,
    split
};

/** The plug-in's chain run once more beside the plug-in, to read what the plug-in does not show: its gains.

    It is the code that the plug-in is made of, but another copy of it, and a loaded library may be anything. So all of
    its output is compared with the library's, bit by bit. If one sample differs, the gains here are not those that were
    applied there, and none are given.
*/
class ChainProbe
{
public:
    /** @param modeIndex  1 to 3, a row of the mode table; with 0, "bypass", no stage runs and there are no gains
        @param shape      of what the library gets, whose rate may be another than the recording's */
    ChainProbe (int modeIndex, const AudioShape& shape, Voices voices = Voices::together);
    ~ChainProbe();

    ChainProbe (const ChainProbe&) = delete;
    ChainProbe& operator= (const ChainProbe&) = delete;

    /** Takes whole frames, channels interleaved, linear full scale 1.0: what went into the library and what came out.
        Both have the same size. */
    void add (std::span<const float> input, std::span<const float> output);

    /** The same for what the library is given to settle on, of which nothing is kept: the gains move and are compared,
        but do not count. */
    void settle (std::span<const float> input, std::span<const float> output);

    int sampleRate() const noexcept { return rate; }

    /** Whether the library has given what the chain gives, to the bit, up to here. */
    bool matches() const noexcept { return equal; }

    /** Whether stages run at all. */
    bool runs() const noexcept { return ! chains.empty(); }

    /** Every field is nullopt unless stages run and all matched. */
    StageGains gains() const;

    /** The applied gains over time, linear; of two channels the geometric mean, which is the mean in dB. The leveller's
        is without the make-up. */
    const TimeCourse& expanderGain() const noexcept { return expanderCourse; }
    const TimeCourse& levellerGain() const noexcept { return levellerCourse; }

private:
    struct Chain;
    struct Means;
    enum class Counting
    {
        yes,
        no
    };

    void run (std::span<const float> input, std::span<const float> output, Counting counting);
    Figure ratio (std::size_t behind, std::size_t ahead) const;

    std::size_t channels;
    int rate;
    std::vector<std::unique_ptr<Chain>> chains; // two where the voices are split
    std::unique_ptr<Means> means;
    TimeCourse expanderCourse;
    TimeCourse levellerCourse;
    bool equal = true;
};

} // namespace larkspire::meter
