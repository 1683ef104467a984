// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "audio/AudioShape.h"
#include "meter/StageGains.h"
#include "meter/TimeCourse.h"

#include <memory>
#include <span>

namespace larkspire::meter
{

/** The plug-in's chain run once more beside the plug-in, to read what the plug-in does not show: its gains.

    It is the code that the plug-in is made of, but another copy of it, and a loaded library may be anything. So all of
    its output is compared with the library's, bit by bit. If one sample differs, the gains here are not those that were
    applied there, and none are given.
*/
class ChainProbe
{
public:
    /** @param modeIndex  1 to 3, a row of the mode table; with 0, "bypass", no stage runs and there are no gains */
    ChainProbe (int modeIndex, const AudioShape& shape);
    ~ChainProbe();

    ChainProbe (const ChainProbe&) = delete;
    ChainProbe& operator= (const ChainProbe&) = delete;

    /** Takes whole frames, channels interleaved, linear full scale 1.0: what went into the library and what came out.
        Both have the same size. */
    void add (std::span<const float> input, std::span<const float> output);

    /** Whether the library has given what the chain gives, to the bit, up to here. */
    bool matches() const noexcept { return equal; }

    /** Whether stages run at all. */
    bool runs() const noexcept { return chain != nullptr; }

    /** Every field is nullopt unless stages run and all matched. */
    StageGains gains() const;

    /** The applied gains over time, linear; of two channels the geometric mean, which is the mean in dB. The leveller's
        is without the make-up. */
    const TimeCourse& expanderGain() const noexcept { return expanderCourse; }
    const TimeCourse& levellerGain() const noexcept { return levellerCourse; }

private:
    struct Chain;

    std::size_t channels;
    std::unique_ptr<Chain> chain;
    TimeCourse expanderCourse;
    TimeCourse levellerCourse;
    bool equal = true;
};

} // namespace larkspire::meter
