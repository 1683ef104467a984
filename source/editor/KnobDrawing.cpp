// SPDX-License-Identifier: AGPL-3.0-only
#include "editor/KnobDrawing.h"

#include <algorithm>
#include <cmath>

using juce::Colour;

namespace larkspire
{

namespace
{
/** Casts a shadow of a path: a radius in pixels, at least 1, and how far it falls downwards. */
void dropShadow (juce::Graphics& g, const juce::Path& path, Colour colour, double radius, int fall)
{
    juce::DropShadow (colour, std::max (1, static_cast<int> (radius)), { 0, fall }).drawForPath (g, path);
}

/** Turns a path that was drawn around the origin, pointing up, and moves it to the knob's centre. */
juce::AffineTransform turnedToCentre (const KnobGeometry& knob, float angle)
{
    const float c = std::cos (angle);
    const float s = std::sin (angle);
    return { c, -s, static_cast<float> (knob.centreX), s, c, static_cast<float> (knob.centreY) };
}

/** A circle around the knob's centre; the radius as a multiple of R. */
juce::Path circle (const KnobGeometry& knob, double multiple)
{
    const double radius = multiple * knob.radius;
    juce::Path path;
    path.addEllipse (static_cast<float> (knob.centreX - radius),
                     static_cast<float> (knob.centreY - radius),
                     static_cast<float> (2.0 * radius),
                     static_cast<float> (2.0 * radius));
    return path;
}

/** The slider's interval as a part of its range, where that makes a scale; a tenth elsewhere. */
float tickStep (const juce::Slider& slider)
{
    const auto step = static_cast<float> (slider.getInterval() / (slider.getMaximum() - slider.getMinimum()));
    return step >= 0.019f && ! (step > 0.79f) ? step : 0.1f;
}
} // namespace

KnobGeometry
KnobGeometry::inside (juce::Rectangle<int> area, float sliderPos, float rotaryStartAngle, float rotaryEndAngle)
{
    const double radius = std::min (area.getWidth() * 0.4, area.getHeight() * 0.4);
    const double thickness = radius * 0.04;
    return { .radius = radius,
             .thickness = thickness,
             .centreX = area.getX() + area.getWidth() * 0.5,
             .centreY = area.getY() + area.getHeight() * 0.5 + 6.0,
             .startAngle = rotaryStartAngle,
             .endAngle = rotaryEndAngle,
             .angle = rotaryStartAngle + (rotaryEndAngle - rotaryStartAngle) * sliderPos,
             .bandRadius = static_cast<float> (radius - 2.25 * thickness),
             .tickLength = static_cast<float> (radius * 0.1) };
}

void drawTicks (juce::Graphics& g, const juce::Slider& slider, const KnobGeometry& knob, bool withShadow)
{
    const float step = tickStep (slider);
    const auto halfWidth = static_cast<float> (knob.thickness * static_cast<double> (withShadow ? 0.707f : 0.4f));
    const auto top = static_cast<float> (-(knob.radius - knob.thickness));

    // The slack lets the last tick land on 1 in spite of the sum's rounding.
    for (float position = 0.0f; position <= 1.01f; position += step) // NOLINT(clang-analyzer-security.FloatLoopCounter)
    {
        // As wide as half of what its name says: the tick stands left of the axis, and is meant to.
        juce::Path tick;
        tick.addRectangle (-halfWidth, top, halfWidth, knob.tickLength);
        tick.applyTransform (turnedToCentre (knob, position * (knob.endAngle - knob.startAngle) + knob.startAngle));

        if (withShadow)
            dropShadow (g,
                        tick,
                        Colour (0x40ffffff),
                        knob.thickness * static_cast<double> (0.1f),
                        static_cast<int> (knob.thickness * 0.25));

        g.setColour (withShadow ? Colour (0xff000000) : Colour (0x50000000));
        g.fillPath (tick);
    }
}

void drawBands (juce::Graphics& g, const std::map<float, Colour>& bands, const KnobGeometry& knob)
{
    float from = knob.startAngle;

    for (const auto& [position, colour] : bands)
    {
        const float to = std::min (knob.startAngle + (knob.endAngle - knob.startAngle) * position, knob.angle);

        if (from >= knob.angle)
            continue;

        juce::Path band;
        band.addCentredArc (static_cast<float> (knob.centreX),
                            static_cast<float> (knob.centreY),
                            knob.bandRadius,
                            knob.bandRadius,
                            0.0f,
                            from,
                            to,
                            true);
        g.setColour (colour);
        g.strokePath (band, juce::PathStrokeType (static_cast<float> (static_cast<double> (knob.tickLength) * 1.8)));
        from = to;
    }
}

void drawRing (juce::Graphics& g, const KnobGeometry& knob)
{
    const auto ring = circle (knob, 1.02);
    g.setColour (Colour (0xff000000));
    g.strokePath (ring, juce::PathStrokeType (static_cast<float> (knob.thickness * 0.5)));
    dropShadow (g, ring, Colour (0x50000000), knob.thickness * 0.5, -static_cast<int> (knob.thickness));
}

void drawBody (juce::Graphics& g, const KnobGeometry& knob)
{
    dropShadow (g, circle (knob, 0.8), Colour (0xff000000), knob.thickness, static_cast<int> (knob.thickness));

    const double radius = knob.radius;
    const auto left = static_cast<float> (knob.centreX - radius + 0.2 * radius);
    const double top = knob.centreY - radius + 0.2 * radius;
    const auto diameter = static_cast<float> (2.0 * radius - 0.4 * radius);

    g.setColour (Colour (0xffffffff));
    g.fillEllipse (left, static_cast<float> (top - 1.0), diameter, diameter);
    g.setColour (Colour (0xff000000));
    g.fillEllipse (left, static_cast<float> (top + 1.0), diameter, diameter);
    g.setGradientFill (juce::ColourGradient (Colour (0xffa0a0a0),
                                             static_cast<float> (knob.centreX),
                                             static_cast<float> (knob.centreY - radius * 0.6),
                                             Colour (0xff707070),
                                             static_cast<float> (knob.centreX),
                                             static_cast<float> (knob.centreY + radius + 0.1),
                                             true));
    g.fillEllipse (left, static_cast<float> (top), diameter, diameter);
}

void drawPointer (juce::Graphics& g, const KnobGeometry& knob)
{
    const double t = knob.thickness;
    juce::Path pointer;
    pointer.addRectangle (static_cast<float> (3.0 * t * -0.5),
                          static_cast<float> (2.0 * t - (knob.radius - 0.2 * knob.radius)),
                          static_cast<float> (3.0 * t),
                          static_cast<float> (knob.radius * 0.4));
    pointer.applyTransform (turnedToCentre (knob, knob.angle));

    dropShadow (g, pointer, Colour (0xff000000), t * 0.5, static_cast<int> (t));
    g.setColour (Colour (0xfff0f0f0));
    g.fillPath (pointer);
}

} // namespace larkspire
