// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "editor/LarkspireAudioProcessorEditor.h"

namespace larkspire
{

/** The window under VST 3, where a host takes values only between the begin and the end of an edit: a drag is one edit,
    and so is each move of the wheel and each click that sets the knob back. Message thread only. */
class Vst3Editor : public LarkspireAudioProcessorEditor
{
public:
    /** The processor must outlive the editor. */
    explicit Vst3Editor (LarkspireAudioProcessor* p) : LarkspireAudioProcessorEditor (p) {}

    /** Ends an edit that is going on: the knob may be held while the host closes the window. */
    ~Vst3Editor() override;

    /** Draws the window this many times as large. Factors are limited to a quarter and to eight; what is no positive
        number changes nothing. */
    void setScaleFactor (float factor) override;

    /** Goes back to the one size that there is before scaling: hosts may set another in spite of what they are told,
       and JUCE's wrapper sets one that is rounded at each change of the factor. */
    void resized() override;

    void sliderValueChanged (juce::Slider* s) override;
    void sliderDragStarted (juce::Slider*) override { beginEdit(); }
    void sliderDragEnded (juce::Slider*) override { endEdit(); }

private:
    void beginEdit();
    void endEdit();

    int edits = 0; // one within another

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (Vst3Editor)
};

} // namespace larkspire
