// SPDX-License-Identifier: AGPL-3.0-only
#include "editor/LarkspireAudioProcessorEditor.h"

#include "editor/HostLoop.h"
#include "editor/WineRendering.h"
#include "frame/LarkspireAudioProcessor.h"

#include <cmath>
#include <cstdio>
#include <memory>

using juce::Colour;

namespace
{
/** What the window calls itself. A number of the build, beside the versions that hosts and projects are told. */
constexpr int windowVersion = 242;
} // namespace

// Here, so that the processor's own file knows of sound alone.
juce::AudioProcessorEditor* LarkspireAudioProcessor::createEditor()
{
    auto editor = std::make_unique<LarkspireAudioProcessorEditor> (this);
    larkspire::drawInSoftwareUnderWine (*editor);
    larkspire::runOnHostLoop (*editor);
    return editor.release();
}

LarkspireAudioProcessorEditor::LarkspireAudioProcessorEditor (LarkspireAudioProcessor* p)
    : AudioProcessorEditor (p),
      processorRef (p)
{
    amountLabel.setText ("Amount", juce::dontSendNotification);
    amountLabel.setBounds (
        static_cast<int> (margin), static_cast<int> (margin + headerHeight), 230, static_cast<int> (labelHeight));
    amountLabel.setJustificationType (juce::Justification::centred);
    addAndMakeVisible (amountLabel);

    slider.setBounds (static_cast<int> (margin),
                      static_cast<int> (margin + headerHeight + labelHeight),
                      230,
                      static_cast<int> (sliderHeight));
    slider.setParameter (processorRef->modeParameter);
    slider.addListener (this);
    addAndMakeVisible (slider);

    setLookAndFeel (&lookAndFeel);
    setSize (250, 250);
    startTimer (333);
}

LarkspireAudioProcessorEditor::~LarkspireAudioProcessorEditor()
{
    stopTimer();
    setLookAndFeel (nullptr);
}

void LarkspireAudioProcessorEditor::paint (juce::Graphics& g)
{
    g.fillAll (Colour (0xff303030));
    g.setColour (Colour (0xff000000));
    g.fillRect (juce::Rectangle<int> (0, 0, getWidth(), 35));

    g.setColour (Colour (0xffe0e0e0));
    g.setFont (20.0f);
    g.drawFittedText ("Quendal's Larkspire", 0, 5, getWidth(), 25, juce::Justification::centred, 1, 0.0f);

    char text[64] = {};
    std::snprintf (text, sizeof (text), "version %d", windowVersion);
    g.setFont (12.5f);
    g.setColour (Colour (0xff606060));
    g.drawFittedText (text, 0, getHeight() - 20, getWidth() - 5, 20, juce::Justification::right, 1, 0.0f);
}

void LarkspireAudioProcessorEditor::sliderValueChanged (juce::Slider* s)
{
    idleTicks = 0;

    if (s == nullptr)
        return;

    // Hosts record single values: there is no gesture around them, and projects rely on that.
    if (auto* parameter = static_cast<ParameterSlider*> (s)->parameter)
        parameter->setValueNotifyingHost (static_cast<float> (s->getValue()));
}

void LarkspireAudioProcessorEditor::buttonClicked (juce::Button* b)
{
    idleTicks = 0;
    juce::ignoreUnused (b->getToggleState());
}

void LarkspireAudioProcessorEditor::timerCallback()
{
    idleTicks = (idleTicks + 1) & 0xffff;

    if (processorRef->levelCount > 0)
    {
        levelReading = std::pow (processorRef->levelSum / static_cast<float> (processorRef->levelCount), 0.33333334f);
        processorRef->levelSum = 0.0f;
        processorRef->levelCount = 0;
    }

    slider.setValue (static_cast<double> (processorRef->modeParameter->get()), juce::dontSendNotification);
    repaint();
}
