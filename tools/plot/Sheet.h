// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "meter/TimeCourse.h"
#include "plot/Axes.h"

#include <juce_graphics/juce_graphics.h>

#include <string>
#include <vector>

namespace larkspire::plot
{

/** The colour of what is less important than the rest. */
inline const juce::Colour paleInk (0xff6a6a6a);

/** A line in a legend. */
struct Entry
{
    juce::String text;
    juce::Colour colour;
    float thickness = 2.0f;
};

/** A part of a band: what of a pixel column it takes, in pixels. NaN is nothing. */
struct Strip
{
    double column = 0.0; // the middle
    double top = 0.0;
    double bottom = 0.0;
};

/** Bytes as JUCE's text; if they are not UTF-8, question marks stand for those beyond ASCII. */
juce::String utf8 (const std::string& text);

/** One drawing in progress: the parts that panels are made of, each drawn over what is there. */
class Sheet
{
public:
    /** White paper. Throws Failure if no font is installed. */
    Sheet();

    /** The words above all panels: a file's name, cut if it is too long, the mode behind it, facts on the right. */
    void drawTitle (const juce::String& name, const juce::String& mode, const juce::String& facts);

    /** The lines and numbers of a panel. */
    void drawPanel (Rows rows, const Axis& time, const Axis& values, const std::vector<Tick>& ticks);

    /** What lies on top of a panel's content: its frame, and above it the words for what it shows and for its lines. */
    void finishPanel (Rows rows, const juce::String& text, const std::vector<Entry>& legend);

    /** The numbers below the lowest panel. */
    void drawTimeLabels (const Axis& time);

    /** Words in the middle of a panel that has nothing to show. */
    void drawNote (Rows rows, const juce::String& text);

    /** A sound between its lowest and highest samples.

        @param secondsPerBin  how long a bin of the course is */
    void drawWaveform (Rows rows,
                       const Axis& time,
                       const Axis& values,
                       const meter::TimeCourse& course,
                       double secondsPerBin,
                       juce::Colour colour);

    /** What lies between two lines, where both are; at least a pixel high. */
    void drawBand (Rows rows, const std::vector<Strip>& strips, juce::Colour colour);

    /** A line through points, in pixels; where y is NaN or infinite, the line is interrupted. */
    void drawLine (Rows rows, const std::vector<juce::Point<double>>& points, juce::Colour colour, float thickness);

    /** The bytes of a PNG file. */
    std::vector<char> png() const;

private:
    void write (const juce::String& text,
                juce::Rectangle<int> place,
                const juce::Font& font,
                juce::Colour colour,
                juce::Justification justification = juce::Justification::centredLeft);

    juce::Image image;
    juce::Graphics graphics;
    juce::String typeface;
    juce::Font titleFont;
    juce::Font headingFont;
    juce::Font textFont;
    juce::Font labelFont;
};

} // namespace larkspire::plot
