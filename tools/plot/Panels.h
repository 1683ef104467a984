// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "meter/Listening.h"
#include "plot/Axes.h"
#include "plot/Sheet.h"

namespace larkspire::plot
{

// What each panel of a picture shows. Of up to two minutes that is the sound as it goes. In a longer one words and
// pauses share pixel columns, and what a panel would show is a wall; there it shows envelopes: the RMS within the
// peaks, and of loudness and gains the median and the spread around it, over a window of some columns.

/** The waveforms before and after, in two panels. */
void drawWaveforms (Sheet& sheet, const Axes& axes, const meter::Listening& measurement);

/** The loudness before and after, short-term, and momentary too in up to a minute. */
void drawLoudness (Sheet& sheet, const Axes& axes, const meter::Listening& measurement);

/** The gains of expander and leveller, in dB, or why there are none. */
void drawGains (Sheet& sheet, const Axes& axes, const meter::Listening& measurement);

} // namespace larkspire::plot
