// SPDX-License-Identifier: AGPL-3.0-only
#include "vst3/Vst3Processor.h"

#include "editor/WineRendering.h"
#include "vst3/PositionParameter.h"
#include "vst3/Vst3Editor.h"

#include <algorithm>
#include <memory>

namespace larkspire
{

Vst3Processor::Vst3Processor()
{
    // The base class leaves JUCE's default buses, which are off, and only the VST 2 wrapper turns them on by itself.
    enableAllBuses();

    auto parameter = std::make_unique<PositionParameter> (*modeParameter);
    modeParameter = parameter.get();
    juce::AudioProcessorParameterGroup tree;
    tree.addChild (std::move (parameter));
    setParameterTree (std::move (tree));
    blockGuard.takeChangesOf (*modeParameter);
}

juce::AudioProcessorEditor* Vst3Processor::createEditor()
{
    auto editor = std::make_unique<Vst3Editor> (this);
    drawInSoftwareUnderWine (*editor);
    return editor.release();
}

void Vst3Processor::processBlock (juce::AudioBuffer<float>& buffer, juce::MidiBuffer& midi)
{
    if (buffer.getNumChannels() < std::max (getTotalNumInputChannels(), getTotalNumOutputChannels()))
        buffer.clear();
    else
        LarkspireAudioProcessor::processBlock (buffer, midi);
}

std::vector<juce::VST3ClientExtensions::InterfaceId> Vst3Processor::getCompatibleClasses() const
{
    const auto id = convertVST2PluginId (JucePlugin_VSTUniqueID, JucePlugin_Name, InterfaceType::component);

#if JUCE_WINDOWS
    // JUCE finds a class by the id's bytes as they lie in memory and tells hosts of it in the same order, where they
    // read the order in which ids are written. On Windows those are two, and so there are two entries.
    auto asWritten = id;
    std::reverse (asWritten.begin(), asWritten.begin() + 4);
    std::reverse (asWritten.begin() + 4, asWritten.begin() + 6);
    std::reverse (asWritten.begin() + 6, asWritten.begin() + 8);
    return { id, asWritten };
#else
    return { id };
#endif
}

std::map<std::uint32_t, juce::String> Vst3Processor::getCompatibleParameterIds (const InterfaceId&) const
{
    return { { 0u, modeParameter->paramID } };
}

void Vst3Processor::setIHostApplication (Steinberg::FUnknown*)
{
    if (auto* const wrapper = wrapperAs<Steinberg::Vst::IComponent>())
        for (const auto direction : { Steinberg::Vst::kInput, Steinberg::Vst::kOutput })
            wrapper->activateBus (Steinberg::Vst::kAudio, direction, 0, 1);
}

std::int32_t Vst3Processor::queryIAudioProcessor (const Steinberg::TUID id, void** object)
{
    const auto isGiven = [&] (auto& guard, auto* wrapper, const Steinberg::TUID guarded)
    {
        if (wrapper == nullptr || ! Steinberg::FUnknownPrivate::iidEqual (id, guarded))
            return false;

        guard.guard (*wrapper);
        guard.addRef();
        *object = static_cast<decltype (wrapper)> (&guard);
        return true;
    };

    using namespace Steinberg::Vst;
    return isGiven (blockGuard, wrapperAs<IAudioProcessor>(), IAudioProcessor_iid)
                   || isGiven (stateGuard, wrapperAs<IComponent>(), IComponent_iid)
               ? Steinberg::kResultOk
               : Steinberg::kNoInterface;
}

} // namespace larkspire
