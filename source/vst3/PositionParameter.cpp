// SPDX-License-Identifier: AGPL-3.0-only
#include "vst3/PositionParameter.h"

namespace larkspire
{

PositionParameter::PositionParameter (const AudioParameterFloatQuendal& original)
    : AudioParameterFloatQuendal (original.paramID,
                                  original.name,
                                  original.displayMode,
                                  original.getDefaultPosition(),
                                  original.getStepCount(),
                                  original.getChoices())
{
}

juce::String PositionParameter::getText (float position, int maximumLength) const
{
    auto text = juce::String::fromUTF8 (valueToText (position).c_str());

    if (text.isEmpty())
        text = "unused " + juce::String (getChoiceIndex (position) + 1);

    return maximumLength > 0 ? text.substring (0, maximumLength) : text;
}

float PositionParameter::getValueForText (const juce::String& text) const
{
    const auto typed = text.trim();
    const auto lastPosition = static_cast<float> (getStepCount() - 1);

    for (int i = 0; i < getStepCount(); ++i)
        if (const auto position = static_cast<float> (i) / lastPosition; typed.equalsIgnoreCase (getText (position, 0)))
            return position;

    const bool isNumber = typed.containsAnyOf ("0123456789") && typed.indexOfAnyOf ("+-.0123456789") == 0;
    return isNumber ? juce::jlimit (0.0f, 1.0f, typed.getFloatValue()) : get();
}

} // namespace larkspire
