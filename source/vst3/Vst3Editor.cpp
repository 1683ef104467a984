// SPDX-License-Identifier: AGPL-3.0-only
#include "vst3/Vst3Editor.h"

#include <algorithm>

namespace larkspire
{

Vst3Editor::~Vst3Editor()
{
    if (edits > 0)
        slider.parameter->endChangeGesture();
}

void Vst3Editor::setScaleFactor (float factor)
{
    constexpr float smallest = 0.25f;
    constexpr float largest = 8.0f; // a window that still fits into the memory

    if (factor > 0.0f) // and is a number
        LarkspireAudioProcessorEditor::setScaleFactor (std::clamp (factor, smallest, largest));
}

void Vst3Editor::resized()
{
    constexpr int sideLength = 250;
    setSize (sideLength, sideLength);
}

void Vst3Editor::sliderValueChanged (juce::Slider* s)
{
    beginEdit();
    LarkspireAudioProcessorEditor::sliderValueChanged (s);
    endEdit();
}

void Vst3Editor::beginEdit()
{
    if (edits++ == 0)
        slider.parameter->beginChangeGesture();
}

void Vst3Editor::endEdit()
{
    if (--edits == 0)
        slider.parameter->endChangeGesture();
}

} // namespace larkspire
