// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "frame/AudioParameterFloatQuendal.h"

namespace larkspire
{

/** The knob's parameter as VST 3 hosts know it: a list of positions, each with a text that can be typed.

    The value, its range and its names are those of the parameter that it is made from.
*/
class PositionParameter : public juce::AudioParameterFloatQuendal
{
public:
    explicit PositionParameter (const AudioParameterFloatQuendal& original);

    bool isDiscrete() const override { return true; }
    int getNumSteps() const override { return getStepCount(); }

    /** The nearest position's name; of one without a name its number, counted from 1. */
    juce::String getText (float position, int maximumLength) const override;

    /** The value of a typed text: a position's text in any case of letters, or a number that the text begins with,
        limited to 0 to 1. Any other text leaves the value as it is. */
    float getValueForText (const juce::String& text) const override;

private:
    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (PositionParameter)
};

} // namespace larkspire
