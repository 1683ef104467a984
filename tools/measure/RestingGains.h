// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "measure/Measurements.h"
#include "measure/VoiceModes.h"

#include <vector>

namespace larkspire::measure
{

/** The gains of the built library for tones one after the other, as linear factors, with the expander closed and the
    leveller at 1. The frequencies are in Hz, 30 or more.

    The tones have -68 dBFS. A little more would open Gentle's expander. Much less, and the lowest of them would fall
    silent: JUCE's filter turns what lies within 1e-8 of zero into zero, and after two such samples in a row the
    high-pass has forgotten the tone.
*/
std::vector<double>
restingGains (const Subject& subject, const VoiceMode& mode, int rate, const std::vector<double>& frequencies);

} // namespace larkspire::measure
