// SPDX-License-Identifier: AGPL-3.0-only
// A plug-in for tests of the latency notice.
#include "frame/LarkspireAudioProcessor.h"

namespace
{
/** The plug-in with its oversampling factor, 1 to 16, on a second parameter. */
class LatencyPlugin : public LarkspireAudioProcessor
{
public:
    LatencyPlugin()
    {
        addParameter (factor = new juce::AudioParameterInt (juce::ParameterID ("factor", 1), "Factor", 1, 16, 1));
    }

    void processBlock (juce::AudioBuffer<float>& buffer, juce::MidiBuffer& midi) override
    {
        oversamplingFactor = factor->get();
        LarkspireAudioProcessor::processBlock (buffer, midi);
    }

    using LarkspireAudioProcessor::processBlock;

private:
    juce::AudioParameterInt* factor = nullptr; // owned by JUCE once it is added

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (LatencyPlugin)
};
} // namespace

/** What JUCE's wrapper calls for every instance that a host makes. */
juce::AudioProcessor* JUCE_CALLTYPE createPluginFilter()
{
    return new LatencyPlugin();
}
