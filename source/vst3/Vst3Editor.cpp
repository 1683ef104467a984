// SPDX-License-Identifier: AGPL-3.0-only
#include "vst3/Vst3Editor.h"

namespace larkspire
{

Vst3Editor::~Vst3Editor()
{
    if (edits > 0)
        slider.parameter->endChangeGesture();
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
