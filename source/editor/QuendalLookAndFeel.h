// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <map>

/** How the editor draws: the rotary knob with ticks and bands, two fonts, and a flat button with a hard shadow.

    All else is JUCE's. The constructor names the default sans-serif typeface for the whole process, through
    which fonts are resolved; that outlives the object.
*/
class QuendalLookAndFeel : public juce::LookAndFeel_V4
{
public:
    QuendalLookAndFeel();
    ~QuendalLookAndFeel() override;

    /** A flat face two pixels up and left of its shadow; pressed, it moves one pixel towards it. */
    void drawButtonBackground (juce::Graphics& g,
                               juce::Button& button,
                               const juce::Colour& backgroundColour,
                               bool isHighlighted,
                               bool isDown) override;

    /** A plain font of the base height, whatever the button's height. */
    juce::Font getTextButtonFont (juce::TextButton& button, int buttonHeight) override;

    /** JUCE's layout, moved by the press; the disabled text is the brighter one. */
    void drawButtonText (juce::Graphics& g, juce::TextButton& button, bool isHighlighted, bool isDown) override;

    /** The label's own font at 0.8 of the base height. */
    juce::Font getLabelFont (juce::Label& label) override;

    /** The knob: ticks, bands up to the value, ticks once more, ring, body, pointer. All colours are fixed; neither the
        mouse nor being disabled changes anything. Angles in radians, 0 straight up and growing clockwise. */
    void drawRotarySlider (juce::Graphics& g,
                           int x,
                           int y,
                           int width,
                           int height,
                           float sliderPos,
                           float rotaryStartAngle,
                           float rotaryEndAngle,
                           juce::Slider& slider) override;

    /** Coloured bands on the rotary scale of a slider, by the low 32 bits of its address as a signed int: the inner key
        is the position, 0 to 1, at which the band of that colour ends. Nothing fills it. */
    std::map<int, std::map<float, juce::Colour>> sliderBands;

    /** Base font height in pixels. */
    float fontSize = 18.0f;

private:
    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (QuendalLookAndFeel)
};
