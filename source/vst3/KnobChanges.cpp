// SPDX-License-Identifier: AGPL-3.0-only
#include "vst3/KnobChanges.h"

using namespace Steinberg;

namespace larkspire
{

KnobChanges::KnobChanges (juce::AudioParameterFloat& knob)
    : parameter (knob),
      parameterId (juce::VST3ClientExtensions::convertJuceParameterId (knob.paramID))
{
}

Vst::IParameterChanges* KnobChanges::take (IParameterChanges* changes)
{
    all = changes;

    for (int32 i = 0; changes != nullptr && i < changes->getParameterCount(); ++i)
    {
        auto* const queue = changes->getParameterData (i);
        int32 frame = 0;
        Vst::ParamValue value = 0.0;

        if (queue == nullptr || queue->getParameterId() != parameterId
            || queue->getPoint (queue->getPointCount() - 1, frame, value) != kResultTrue)
            continue;

        // As the wrappers of both formats do: what is the same but for rounding is no change.
        if (const auto position = static_cast<float> (value);
            ! juce::approximatelyEqual (parameter.getValue(), position))
            parameter.setValue (position);
    }

    return changes != nullptr ? this : nullptr;
}

Vst::IParamValueQueue* PLUGIN_API KnobChanges::getParameterData (int32 index)
{
    auto* const queue = all->getParameterData (index);
    return queue != nullptr && queue->getParameterId() != parameterId ? queue : nullptr;
}

Vst::IParamValueQueue* PLUGIN_API KnobChanges::addParameterData (const Vst::ParamID& id, int32& index)
{
    return all->addParameterData (id, index);
}

tresult PLUGIN_API KnobChanges::queryInterface (const TUID id, void** object)
{
    return all->queryInterface (id, object);
}

} // namespace larkspire
