// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "editor/ParameterSlider.h"
#include "editor/QuendalLookAndFeel.h"

class LarkspireAudioProcessor;

/** The window: a fixed panel of 250 by 250 pixels with a title, the mode knob and the version.

    It meets the audio side only through the parameter: a user's move goes out as single value changes without a
    gesture, and three times a second the knob is brought to where the parameter stands. Message thread only.
*/
class LarkspireAudioProcessorEditor : public juce::AudioProcessorEditor,
                                      public juce::Slider::Listener,
                                      public juce::Button::Listener,
                                      public juce::Timer
{
public:
    /** The processor must outlive the editor. */
    explicit LarkspireAudioProcessorEditor (LarkspireAudioProcessor* p);
    ~LarkspireAudioProcessorEditor() override;

    void paint (juce::Graphics& g) override;
    void resized() override {}

    void sliderValueChanged (juce::Slider* s) override;
    void sliderDragStarted (juce::Slider*) override {}
    void sliderDragEnded (juce::Slider*) override {}
    void buttonClicked (juce::Button* b) override;
    void buttonStateChanged (juce::Button*) override {}
    void timerCallback() override;

    float levelReading = 0.0f; // for a meter that is not there
    int idleTicks = 0;         // timer ticks since the last touch, modulo 65536
    juce::Label amountLabel;
    ParameterSlider slider;
    LarkspireAudioProcessor* processorRef;
    QuendalLookAndFeel lookAndFeel;
    float labelHeight = 17.0f; // the layout, in pixels
    float margin = 10.0f;
    float headerHeight = 40.0f;
    float spareGap = 6.0f;
    float spareExtent = 117.0f;
    float sliderHeight = 115.0f;

private:
    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (LarkspireAudioProcessorEditor)
};
