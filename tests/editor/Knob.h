// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "editor/Canvas.h"
#include "editor/KnobDrawing.h"
#include "editor/QuendalLookAndFeel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

inline constexpr float startAngle = 1.2f * std::numbers::pi_v<float>;
inline constexpr float endAngle = 2.8f * std::numbers::pi_v<float>;
inline constexpr float upwards = 2.0f * std::numbers::pi_v<float>;
inline constexpr float downwards = std::numbers::pi_v<float>;
inline const juce::Colour background { 0xff303030 };

/** A knob of the window's look, drawn into an area of an image. */
class Knob : public testing::Test
{
protected:
    Knob() { slider.setRange (0.0, 3.0 / 9.0, 1.0 / 9.0); }

    /** Draws it at a position of its scale, 0 to 1. */
    void draw (float position, juce::Rectangle<int> newArea = { 0, 0, 500, 500 })
    {
        area = newArea;
        knob = larkspire::KnobGeometry::inside (area, position, startAngle, endAngle);
        image = drawn (area.getRight() + 10,
                       area.getBottom() + 10,
                       background,
                       [&] (juce::Graphics& g)
                       {
                           lookAndFeel.drawRotarySlider (g,
                                                         area.getX(),
                                                         area.getY(),
                                                         area.getWidth(),
                                                         area.getHeight(),
                                                         position,
                                                         startAngle,
                                                         endAngle,
                                                         slider);
                       });
    }

    /** The pixel at a distance from the centre, in a direction, and so far clockwise beside the line there. */
    juce::Colour at (double distance, double angle, double beside = 0.0) const
    {
        return image.getPixelAt (
            static_cast<int> (std::floor (knob.centreX + distance * std::sin (angle) + beside * std::cos (angle))),
            static_cast<int> (std::floor (knob.centreY - distance * std::cos (angle) + beside * std::sin (angle))));
    }

    static float angleOf (float position) { return startAngle + (endAngle - startAngle) * position; }

    GuiTest gui;
    QuendalLookAndFeel lookAndFeel;
    juce::Slider slider;
    juce::Rectangle<int> area;
    larkspire::KnobGeometry knob {};
    juce::Image image;
};
