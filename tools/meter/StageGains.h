// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "meter/Decibels.h"

namespace larkspire::meter
{

/** What each stage of the chain did to the level, in dB, in the order of the signal.

    Two kinds of figure. The expander and the leveller are gains that move: theirs is the mean over time of the applied
    gain (running gain times scale plus offset), every sample alike, each channel's mean and then the mean of the
    channels. The leveller's is without the make-up, which is a constant of the mode and stands by itself. The other
    stages have no gain that could be read, so theirs is the ratio of the RMS behind the stage to the RMS in front of
    it, over the whole sound and all channels. Loud words weigh in such a ratio and pauses do not, so the figures do not
    add up to a change of loudness.
*/
struct StageGains
{
    Figure highPassDb;
    Figure expanderDb;
    Figure foldDb;
    Figure airAndBodyDb; // the body filter with the saturated air term on top
    Figure levellerDb;
    Figure makeUpDb;
    Figure softClipDb; // with the ceiling of the clip, -0.1 dB

    bool operator== (const StageGains&) const = default;
};

} // namespace larkspire::meter
