// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "frame/AudioParameterFloatQuendal.h"

#include <juce_gui_basics/juce_gui_basics.h>

/** Notes that a parameter has changed, on whatever thread it does. The editor polls the parameter instead. */
class ValueChangeListener : public juce::AudioProcessorParameter::Listener
{
public:
    void parameterValueChanged (int, float) override { changed = true; }
    void parameterGestureChanged (int, bool) override {}

    bool changed = true;
};

/** A rotary slider that takes its range, its default and its texts from one parameter.

    Writing the parameter on a user's move and following it back is the editor's work.
*/
class ParameterSlider : public juce::Slider
{
public:
    ParameterSlider();
    ~ParameterSlider() override;

    /** Binds the slider, once. The parameter must outlive it. The value itself is not taken over. */
    void setParameter (juce::AudioParameterFloatQuendal* p);

    juce::AudioParameterFloatQuendal* parameter = nullptr;
    ValueChangeListener valueChangeListener;

private:
    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (ParameterSlider)
};
