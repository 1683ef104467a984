// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/HighPass.h"
#include "chain/LevelRider.h"
#include "chain/ModeTable.h"
#include "chain/PeakingFilter.h"
#include "chain/StereoSample.h"

#include <span>

namespace larkspire
{

/** Whether the chain's filters can be designed for a sample rate, in Hz; false for NaN. */
constexpr bool isUsableRate (double rate)
{
    return rate > 999.0 && ! (rate >= 10000000001.0);
}

/** The voice chain: high-pass, expander, fold, air and body filter, saturated air, leveller, soft clip.

    It holds nothing itself: the records are its owner's, and between two calls they are all that it remembers.
*/
struct VoiceChain
{
    HighPassFilter& highPassLeft;
    HighPassFilter& highPassRight;
    LevelRider& expander;
    PeakingFilter& airFilter;
    PeakingFilter& bodyFilter;
    LevelRider& leveller;

    /** Brings a row of the table into force: writes the gain stages' settings and designs the filters, all of them at
        every call. Running gains and memories stay.

        @param rate  at which the chain runs, in Hz; the peaking filters see it rounded to a 32-bit float
    */
    void adopt (const ModeRow& mode, double rate) const;

    /** Processes frames in place, linear with full scale 1.0, already limited as readChannels does. Cut into calls of
        any length the same frames give the same bits. Whoever calls has flush-to-zero set. */
    void process (std::span<StereoSample> frames) const;
};

/** The records of a chain, for whoever has none yet. They start as a new instance of the plug-in does. */
struct VoiceRecords
{
    VoiceChain chain() { return { highPassLeft, highPassRight, expander, airFilter, bodyFilter, leveller }; }

    HighPassFilter highPassLeft;
    HighPassFilter highPassRight;
    LevelRider expander;
    PeakingFilter airFilter;
    PeakingFilter bodyFilter;
    LevelRider leveller;
};

} // namespace larkspire
