// SPDX-License-Identifier: AGPL-3.0-only
#include "editor/ParameterSlider.h"

ParameterSlider::ParameterSlider()
{
    setSliderStyle (juce::Slider::RotaryVerticalDrag);
}

ParameterSlider::~ParameterSlider()
{
    if (parameter != nullptr)
        parameter->removeListener (&valueChangeListener);
}

void ParameterSlider::setParameter (juce::AudioParameterFloatQuendal* p)
{
    parameter = p;
    parameter->attachedSlider = this;
    setSliderStyle (juce::Slider::RotaryVerticalDrag);
    textFromValueFunction = [this] (double v)
    { return juce::String::fromUTF8 (parameter->valueToText (static_cast<float> (v)).c_str()); };

    const int steps = parameter->getStepCount();

    if (parameter->displayMode == DisplayMode::Choices)
    {
        // Only the positions that have a name can be reached with the knob.
        const auto intervals = static_cast<double> (parameter->getChoices().size()) - 1.0;
        const double top = intervals / (steps - 1);
        setRange (0.0, top, top / intervals);
    }
    else
    {
        setRange (0.0, 1.0, steps > 1 ? 1.0 / (steps - 1.0) : 0.0);
    }

    setTextBoxStyle (juce::Slider::TextBoxBelow, true, 100, 20);
    setColour (juce::Slider::textBoxOutlineColourId, juce::Colour (0x00000000));
    setColour (juce::Slider::textBoxTextColourId, juce::Colour (0xff909090));
    setVelocityModeParameters (0.05, 1, 0.1, false);
    setVelocityBasedMode (false);

    // Asked once, at the start: Alt makes the whole drag ten times finer.
    onDragStart = [this] { setMouseDragSensitivity (juce::ModifierKeys::currentModifiers.isAltDown() ? 2500 : 250); };

    setDoubleClickReturnValue (
        true, static_cast<double> (parameter->getDefaultPosition()), juce::ModifierKeys::ctrlModifier);
    parameter->addListener (&valueChangeListener);
}
