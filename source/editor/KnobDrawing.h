// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <map>

namespace larkspire
{

/** The measures of a knob in its area: pixels and radians, angle 0 straight up and growing clockwise. */
struct KnobGeometry
{
    double radius;    // R, 0.4 of the smaller side
    double thickness; // t = 0.04 R, the unit of strokes and shadows
    double centreX;
    double centreY; // 6 pixels below the middle, where the eye expects it above the text
    float startAngle;
    float endAngle;
    float angle; // of the value
    float bandRadius;
    float tickLength;

    static KnobGeometry
    inside (juce::Rectangle<int> area, float sliderPos, float rotaryStartAngle, float rotaryEndAngle);
};

/** The marks of the scale, one per interval of the slider; eleven where the slider has too few or too many positions.
    Drawn twice: broad with a light shadow under the bands, narrow over them. */
void drawTicks (juce::Graphics& g, const juce::Slider& slider, const KnobGeometry& knob, bool withShadow);

/** Coloured bands along the scale, each up to the position that is its key and none past the value. */
void drawBands (juce::Graphics& g, const std::map<float, juce::Colour>& bands, const KnobGeometry& knob);

/** The ring around the knob, its shadow falling upwards. */
void drawRing (juce::Graphics& g, const KnobGeometry& knob);

/** The knob's shadow, its light and dark rim and its face. */
void drawBody (juce::Graphics& g, const KnobGeometry& knob);

/** The pointer with its shadow. */
void drawPointer (juce::Graphics& g, const KnobGeometry& knob);

} // namespace larkspire
