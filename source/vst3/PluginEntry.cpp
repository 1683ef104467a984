// SPDX-License-Identifier: AGPL-3.0-only
#include "vst3/Vst3Processor.h"

/** What JUCE's VST 3 wrapper calls for every instance that a host makes. */
juce::AudioProcessor* JUCE_CALLTYPE createPluginFilter()
{
    return new larkspire::Vst3Processor();
}
