// SPDX-License-Identifier: AGPL-3.0-only
#include "frame/LarkspireAudioProcessor.h"

/** What JUCE's wrapper calls for every instance that a host makes. */
juce::AudioProcessor* JUCE_CALLTYPE createPluginFilter()
{
    return new LarkspireAudioProcessor();
}
