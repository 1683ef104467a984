// SPDX-License-Identifier: AGPL-3.0-only
#include "editor/QuendalLookAndFeel.h"

#include "editor/KnobDrawing.h"
#include "editor/SansSerif.h"

#include <algorithm>

using juce::Colour;

QuendalLookAndFeel::QuendalLookAndFeel()
{
    setColour (juce::Slider::textBoxTextColourId, Colour (0xffa0a0a0));
    larkspire::nameDefaultSansSerif();
}

QuendalLookAndFeel::~QuendalLookAndFeel()
{
    sliderBands.clear();
}

juce::Font QuendalLookAndFeel::getLabelFont (juce::Label& label)
{
    auto font = label.getFont();
    font.setHeight (fontSize * 0.8f);
    return font;
}

juce::Font QuendalLookAndFeel::getTextButtonFont (juce::TextButton&, int)
{
    return juce::Font (juce::FontOptions (fontSize));
}

void QuendalLookAndFeel::drawButtonBackground (
    juce::Graphics& g, juce::Button& button, const Colour&, bool, bool isDown)
{
    const int left = std::min (button.getWidth(), 2);
    const int top = std::min (button.getHeight(), 2);
    const int width = button.getWidth() - left;
    const int height = button.getHeight() - top;
    const int pressed = isDown ? 1 : 0;

    g.setColour (Colour (0xff000000));
    g.fillRect (left, top, width, height);
    g.setColour (Colour (0xff505050));
    g.fillRect (left + pressed - 2, top + pressed - 2, width, height);
}

void QuendalLookAndFeel::drawButtonText (juce::Graphics& g, juce::TextButton& button, bool, bool isDown)
{
    const auto font = getTextButtonFont (button, button.getHeight());
    g.setFont (font);
    g.setColour (button.isEnabled() ? Colour (0xffa0a0a0) : Colour (0xffffffff));

    const int width = button.getWidth();
    const int height = button.getHeight();
    const int yIndent = std::min (4, juce::roundToInt (static_cast<float> (height) * 0.3f));
    const int cornerSize = std::min (height, width) / 2;
    const int fontHeight = juce::roundToInt (font.getHeight() * 0.6f);
    const int leftIndent = std::min (fontHeight, 2 + cornerSize / (button.isConnectedOnLeft() ? 4 : 2));
    const int rightIndent = std::min (fontHeight, 2 + cornerSize / (button.isConnectedOnRight() ? 4 : 2));
    const int textWidth = width - leftIndent - rightIndent;
    const int offset = isDown ? 3 : 1;

    if (textWidth > 0)
        g.drawFittedText (button.getButtonText(),
                          offset + leftIndent,
                          offset + yIndent,
                          textWidth,
                          height - (yIndent * 2 + 4),
                          juce::Justification::centred,
                          2,
                          0.0f);
}

void QuendalLookAndFeel::drawRotarySlider (juce::Graphics& g,
                                           int x,
                                           int y,
                                           int width,
                                           int height,
                                           float sliderPos,
                                           float rotaryStartAngle,
                                           float rotaryEndAngle,
                                           juce::Slider& slider)
{
    const auto knob =
        larkspire::KnobGeometry::inside ({ x, y, width, height }, sliderPos, rotaryStartAngle, rotaryEndAngle);
    const auto key = static_cast<int> (reinterpret_cast<std::intptr_t> (&slider));
    const auto bands = sliderBands[key];

    larkspire::drawTicks (g, slider, knob, true);
    larkspire::drawBands (g, bands, knob);
    larkspire::drawTicks (g, slider, knob, false); // once more, over the bands
    larkspire::drawRing (g, knob);
    larkspire::drawBody (g, knob);
    larkspire::drawPointer (g, knob);
}
