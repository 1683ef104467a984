// SPDX-License-Identifier: AGPL-3.0-only
#include "vst3/PositionParameter.h"

#include <algorithm>

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
    // In this order NaN becomes 1, which has no name and sounds as NaN does.
    const float inRange = std::min (1.0f, std::max (position, 0.0f));
    auto text = juce::String::fromUTF8 (valueToText (inRange).c_str());

    if (text.isEmpty())
        text = "unused " + juce::String (getChoiceIndex (inRange) + 1);

    return maximumLength > 0 ? text.substring (0, maximumLength) : text;
}

float PositionParameter::getValueForText (const juce::String& text) const
{
    const auto typed = text.trim();
    const auto lastPosition = static_cast<float> (getStepCount() - 1);

    for (int i = 0; i < getStepCount(); ++i)
        if (const auto position = static_cast<float> (i) / lastPosition; typed.equalsIgnoreCase (getText (position, 0)))
            return position;

    const auto digits = typed.startsWithChar ('+') || typed.startsWithChar ('-') ? typed.substring (1) : typed;
    const bool isNumber = digits.indexOfAnyOf ("0123456789") == (digits.startsWithChar ('.') ? 1 : 0);
    return isNumber ? juce::jlimit (0.0f, 1.0f, typed.getFloatValue()) : get();
}

} // namespace larkspire
