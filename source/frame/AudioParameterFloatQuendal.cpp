// SPDX-License-Identifier: AGPL-3.0-only
#include "frame/AudioParameterFloatQuendal.h"

#include "frame/TruncateToInt.h"
#include "settings/ValueTexts.h"

#include <cmath>

namespace juce
{

namespace
{
AudioParameterFloatAttributes attributesShowing (const AudioParameterFloatQuendal& parameter)
{
    return AudioParameterFloatAttributes().withStringFromValueFunction (
        [&parameter] (float value, int) { return String::fromUTF8 (parameter.valueToText (value).c_str()); });
}

/** Half away from zero, in 32-bit floats: 0.5 gives 1, 1.5 gives 2, 2.5 gives 3, just below a half goes down. */
float roundHalfAwayFromZero (float x) noexcept
{
    const float magnitude = std::abs (x);
    float rounded = std::nearbyint (magnitude);

    if (magnitude - rounded == 0.5f)
        rounded += 1.0f;

    return std::copysign (rounded, x);
}
} // namespace

AudioParameterFloatQuendal::AudioParameterFloatQuendal (const String& parameterID,
                                                        const String& displayName,
                                                        int mode,
                                                        float startValue,
                                                        int stepCount,
                                                        const std::vector<std::string>& choiceNames)
    : AudioParameterFloat (ParameterID (parameterID, 0),
                           displayName,
                           NormalisableRange<float> (0.0f, 1.0f, 0.0f, 1.0f, false),
                           startValue,
                           attributesShowing (*this)),
      displayMode (mode),
      numSteps (stepCount),
      choices (choiceNames)
{
    setValueNotifyingHost (startValue);
    defaultValue = startValue;
}

int AudioParameterFloatQuendal::getChoiceIndex (float position) const noexcept
{
    if (displayMode != DisplayMode::Choices || numSteps <= 1)
        return 0;

    return truncateToInt (roundHalfAwayFromZero (static_cast<float> (numSteps - 1) * position));
}

std::string AudioParameterFloatQuendal::valueToText (float position) const
{
    if (displayMode != DisplayMode::Choices)
        return larkspire::valueText (
            { .displayMode = displayMode, .rangeMin = rangeMin, .rangeMax = rangeMax, .unit = unit.toStdString() },
            position);

    if (choices.empty())
        return "Modes not set!";

    const auto index = static_cast<std::size_t> (getChoiceIndex (position));
    return index < choices.size() ? choices[index] : std::string();
}

} // namespace juce
