// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>
#include <pluginterfaces/vst/ivstparameterchanges.h>

namespace larkspire
{

/** Takes the knob's changes out of a block, and is what is left of them. JUCE's wrapper would tell its listeners of
   each under a lock, which the window may hold while the host is busy with it. Audio thread only. */
class KnobChanges : public Steinberg::Vst::IParameterChanges
{
public:
    virtual ~KnobChanges() = default;

    /** The knob's parameter must outlive this. */
    explicit KnobChanges (juce::AudioParameterFloat& knob);

    /** Sets the knob to the last of its values among a block's changes. Gives what is left for the wrapper, none if it
        was given none; good until the next call. */
    IParameterChanges* take (IParameterChanges* changes);

    Steinberg::int32 PLUGIN_API getParameterCount() override { return all->getParameterCount(); }
    Steinberg::Vst::IParamValueQueue* PLUGIN_API getParameterData (Steinberg::int32 index) override;
    Steinberg::Vst::IParamValueQueue* PLUGIN_API addParameterData (const Steinberg::Vst::ParamID& id,
                                                                   Steinberg::int32& index) override;

    Steinberg::tresult PLUGIN_API queryInterface (const Steinberg::TUID id, void** object) override;
    Steinberg::uint32 PLUGIN_API addRef() override { return all->addRef(); }
    Steinberg::uint32 PLUGIN_API release() override { return all->release(); }

private:
    juce::AudioProcessorParameter& parameter;
    const Steinberg::Vst::ParamID parameterId;
    IParameterChanges* all = nullptr;
};

} // namespace larkspire
