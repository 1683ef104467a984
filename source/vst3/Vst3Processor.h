// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "frame/LarkspireAudioProcessor.h"
#include "vst3/BlockGuard.h"
#include "vst3/StateGuard.h"

#include <cstdint>
#include <map>
#include <vector>

namespace larkspire
{

/** The plug-in as VST 3 hosts have it: the same chain, the same state, the same window, and beside them what this
    interface asks of a plug-in and VST 2 does not. It is another class so that the VST 2 library knows nothing of it.
 */
class Vst3Processor : public LarkspireAudioProcessor, private juce::VST3ClientExtensions
{
public:
    Vst3Processor();

    /** None: a list of presets with one entry without a name would do nothing but puzzle people. */
    int getNumPrograms() override { return 0; }

    juce::AudioProcessorEditor* createEditor() override;

    /** As everywhere; a block with fewer channels than the layout comes out silent. */
    void processBlock (juce::AudioBuffer<float>& buffer, juce::MidiBuffer& midi) override;
    using juce::AudioProcessor::processBlock;

    juce::VST3ClientExtensions* getVST3ClientExtensions() override { return this; }

private:
    /** The VST 2 library, in whose place hosts may put this one; its parameter 0 is the one there is. */
    std::vector<InterfaceId> getCompatibleClasses() const override;
    std::map<std::uint32_t, juce::String> getCompatibleParameterIds (const InterfaceId& compatibleClass) const override;

    /** Turns the buses on, for hosts that never do; one that wants them off says so afterwards. */
    void setIHostApplication (Steinberg::FUnknown*) override;

    /** Gives hosts the guarded ways to the audio and to the state. */
    std::int32_t queryIAudioProcessor (const Steinberg::TUID id, void** object) override;

    /** An interface of JUCE's wrapper around this, or null. It has made itself the play head, which is the only way to
        it from here. */
    template <typename Interface>
    Interface* wrapperAs() const
    {
        return dynamic_cast<Interface*> (getPlayHead());
    }

    BlockGuard blockGuard;
    StateGuard stateGuard;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (Vst3Processor)
};

} // namespace larkspire
