// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "frame/DisplayMode.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <string>
#include <vector>

class ParameterSlider;

namespace juce
{

/** A float parameter from 0 to 1 with a display mode, a number of positions, names for them and a change watch.

    The plain and the normalised value are the same number; what it means to the user is decided at the moment of
    display by displayMode, rangeMin, rangeMax and unit. Towards the host it is JUCE's float parameter.
*/
class AudioParameterFloatQuendal : public AudioParameterFloat
{
public:
    /** @param parameterID  the id under which hosts and settings documents know the parameter
        @param displayName  what people read
        @param mode         a value of DisplayMode
        @param startValue   the value after construction, 0 to 1, to which the slider returns on a double click
        @param stepCount    how many positions the value has, evenly spread over 0 to 1
        @param choiceNames  the names of the first positions; there may be fewer names than positions, or none
    */
    AudioParameterFloatQuendal (const String& parameterID,
                                const String& displayName,
                                int mode,
                                float startValue,
                                int stepCount,
                                const std::vector<std::string>& choiceNames);

    ~AudioParameterFloatQuendal() override = default;

    /** A copy of the names. */
    std::vector<std::string> getChoices() const { return choices; }

    /** How many positions the value has. */
    int getStepCount() const noexcept { return numSteps; }

    /** The value to which the slider returns on a double click, 0 to 1. */
    float getDefaultPosition() const noexcept { return defaultValue; }

    /** The position nearest to a value, halves going away from zero: round ((numSteps - 1) * position).

        0 where the value selects no position: in any display mode but Choices, and with fewer than two steps. A value
        that is NaN, or too large for an int, gives the smallest int.
    */
    int getChoiceIndex (float position) const noexcept;

    /** The position of the current value. */
    int getChoiceIndex() const noexcept { return getChoiceIndex (get()); }

    /** True once after every change of the value, and at the first call. For one watcher only, the audio thread; a
        value that is NaN never counts as a change. */
    bool hasChanged() noexcept
    {
        const float current = get();

        if (! (current < lastValue || current > lastValue))
            return false;

        lastValue = get(); // read again: the freshest value is the one that was seen
        return true;
    }

    /** What the user reads at this value, as UTF-8. Allocates; not for the audio thread. */
    std::string valueToText (float position) const;

    ParameterSlider* attachedSlider = nullptr;
    int displayMode = DisplayMode::Choices;
    float defaultValue = 2.0f / 9.0f;
    float lastValue = -1e20f; // so far off that the first watch reports a change
    int numSteps = 10;
    float rangeMin = 0.0f;
    float rangeMax = 1.0f;
    std::vector<std::string> choices;
    String unit;

private:
    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (AudioParameterFloatQuendal)
};

} // namespace juce
