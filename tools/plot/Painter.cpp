// SPDX-License-Identifier: AGPL-3.0-only
#include "plot/Painter.h"

#include "base/Texts.h"
#include "plot/Axes.h"
#include "plot/Typefaces.h"

#include <juce_graphics/juce_graphics.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <mutex>

namespace larkspire::plot
{

namespace
{
using meter::Listening;
using meter::TimeCourse;

// Dark enough for white paper, and told apart by eyes that do not see red and green alike.
const juce::Colour ink (0xff222222);
const juce::Colour paleInk (0xff6a6a6a);
const juce::Colour frameColour (0xff9a9a9a);
const juce::Colour gridColour (0xffe6e6e6);
const juce::Colour beforeColour (0xff56789a);
const juce::Colour afterColour (0xffd55e00);
const juce::Colour expanderColour (0xff007d5c);
const juce::Colour levellerColour (0xff8c3b78);

constexpr float titleHeight = 22.0f;
constexpr float headingHeight = 16.0f;
constexpr float labelHeight = 14.0f;

constexpr auto nothing = std::numeric_limits<double>::quiet_NaN();

constexpr int columnCount = rightColumn - leftColumn;

juce::String utf8 (const std::string& text)
{
    if (juce::CharPointer_UTF8::isValidString (text.c_str(), static_cast<int> (text.size())))
        return juce::String::fromUTF8 (text.c_str(), static_cast<int> (text.size()));

    auto readable = text;
    std::replace_if (
        readable.begin(), readable.end(), [] (char byte) { return static_cast<unsigned char> (byte) >= 0x80; }, '?');
    return readable;
}

/** A line in a legend. */
struct Entry
{
    juce::String text;
    juce::Colour colour;
    float thickness = 2.0f;
};

/** One drawing in progress. */
class Sheet
{
public:
    Sheet() : image (juce::Image::RGB, pictureWidth, pictureHeight, true, juce::SoftwareImageType()), graphics (image)
    {
        graphics.fillAll (juce::Colours::white);
    }

    void drawTitle (const Title& title, const Listening& measurement)
    {
        const auto& shape = measurement.shape;
        const auto facts = utf8 (secondsText (measurement.seconds())) + " s, " + juce::String (shape.sampleRate)
                           + " Hz, " + (shape.channels == 1 ? "mono" : "stereo");
        const auto factsFont = fonts.regular (headingHeight);
        const auto factsWidth = juce::GlyphArrangement::getStringWidthInt (factsFont, facts) + 4;
        const auto mode = ", mode " + utf8 (title.mode);
        const auto font = fonts.bold (titleHeight);
        const auto nameRoom = columnCount - factsWidth - 30 - juce::GlyphArrangement::getStringWidthInt (font, mode);

        graphics.setColour (ink);
        graphics.setFont (font);
        graphics.drawText (shortened (utf8 (title.name), font, nameRoom) + mode,
                           leftColumn,
                           18,
                           columnCount - factsWidth,
                           30,
                           juce::Justification::centredLeft,
                           false);
        graphics.setColour (paleInk);
        graphics.setFont (factsFont);
        graphics.drawText (
            facts, rightColumn - factsWidth, 20, factsWidth, 28, juce::Justification::centredRight, false);
    }

    /** The frame of a panel with its lines and numbers. */
    void drawPanel (Rows rows, const Axis& time, const Axis& values, const std::vector<Tick>& ticks)
    {
        graphics.setColour (gridColour);

        for (const auto& tick : timeTicks (time))
            graphics.drawVerticalLine (
                juce::roundToInt (time.pixelOf (tick.value)), float (rows.top), float (rows.bottom));

        for (const auto& tick : ticks)
            graphics.drawHorizontalLine (
                juce::roundToInt (values.pixelOf (tick.value)), float (leftColumn), float (rightColumn));

        graphics.setColour (ink);
        graphics.setFont (fonts.regular (labelHeight));

        for (const auto& tick : ticks)
            graphics.drawText (utf8 (tick.label),
                               0,
                               juce::roundToInt (values.pixelOf (tick.value)) - 10,
                               leftColumn - 8,
                               20,
                               juce::Justification::centredRight,
                               false);
    }

    void drawFrame (Rows rows)
    {
        graphics.setColour (frameColour);
        graphics.drawRect (leftColumn, rows.top, rightColumn - leftColumn + 1, rows.bottom - rows.top + 1, 1);
    }

    /** The words above a panel: what it shows, and which line is which. */
    void drawHeading (Rows rows, const juce::String& text, const std::vector<Entry>& legend)
    {
        const auto top = rows.top - 26;
        graphics.setColour (ink);
        graphics.setFont (fonts.bold (headingHeight));
        graphics.drawText (text, leftColumn, top, columnCount, 22, juce::Justification::centredLeft, false);

        const auto font = fonts.regular (labelHeight);
        graphics.setFont (font);
        auto right = rightColumn;

        for (auto entry = legend.rbegin(); entry != legend.rend(); ++entry)
        {
            const auto width = juce::GlyphArrangement::getStringWidthInt (font, entry->text) + 2;
            graphics.setColour (ink);
            graphics.drawText (entry->text, right - width, top, width, 22, juce::Justification::centredLeft, false);
            right -= width + 6 + 24;
            graphics.setColour (entry->colour);
            graphics.fillRect (juce::Rectangle<float> (
                float (right), float (top) + 11.5f - entry->thickness / 2, 24, entry->thickness));
            right -= 22;
        }
    }

    void drawTimeLabels (const Axis& time)
    {
        graphics.setColour (ink);
        graphics.setFont (fonts.regular (labelHeight));

        for (const auto& tick : timeTicks (time))
            graphics.drawText (utf8 (tick.label),
                               juce::roundToInt (time.pixelOf (tick.value)) - 40,
                               gainRows.bottom + 6,
                               80,
                               20,
                               juce::Justification::centred,
                               false);

        graphics.setFont (fonts.regular (headingHeight));
        graphics.drawText ("Time (" + utf8 (timeUnit (time)) + ")",
                           leftColumn,
                           gainRows.bottom + 30,
                           columnCount,
                           24,
                           juce::Justification::centred,
                           false);
    }

    /** Words in the middle of a panel that has nothing to show. */
    void drawNote (Rows rows, const juce::String& text)
    {
        const auto font = fonts.regular (headingHeight);
        const auto width = juce::GlyphArrangement::getStringWidthInt (font, text) + 24;
        const juce::Rectangle<int> place (
            (leftColumn + rightColumn - width) / 2, (rows.top + rows.bottom) / 2 - 14, width, 28);
        graphics.setColour (juce::Colours::white);
        graphics.fillRect (place);
        graphics.setColour (paleInk);
        graphics.setFont (font);
        graphics.drawText (text, place, juce::Justification::centred, false);
    }

    void drawWaveform (Rows rows,
                       const Axes& axes,
                       const Axis& values,
                       const Listening& measurement,
                       const TimeCourse& course,
                       juce::Colour colour)
    {
        const juce::Graphics::ScopedSaveState saved (graphics);
        graphics.reduceClipRegion (leftColumn, rows.top, columnCount + 1, rows.bottom - rows.top + 1);
        graphics.setColour (colour);
        const auto secondsPerBin = double (course.samplesPerBin()) / measurement.shape.sampleRate;
        auto previousTop = nothing;
        auto previousBottom = nothing;
        std::size_t bin = 0;

        for (int column = leftColumn; column <= rightColumn; ++column)
        {
            auto lowest = nothing;
            auto highest = nothing;

            // All bins that begin in this column; where they are longer than columns, the one that covers it.
            while (bin < course.size() && axes.time.pixelOf (double (bin) * secondsPerBin) < column + 1.0)
            {
                lowest = std::fmin (lowest, double { course[bin].lowest });
                highest = std::fmax (highest, double { course[bin].highest });
                ++bin;
            }

            if (std::isnan (lowest) && bin > 0 && bin < course.size())
            {
                lowest = double { course[bin - 1].lowest };
                highest = double { course[bin - 1].highest };
            }

            if (std::isnan (lowest))
                continue;

            // A column reaches to its neighbour, so that a steep waveform is one line and no row of dots.
            const auto top = std::fmin (values.pixelOf (highest), previousBottom);
            const auto bottom = std::fmax (values.pixelOf (lowest), previousTop);
            previousTop = values.pixelOf (highest);
            previousBottom = values.pixelOf (lowest);
            graphics.fillRect (
                juce::Rectangle<float> (float (column), float (top), 1.0f, std::max (1.0f, float (bottom - top))));
        }
    }

    /** A line through points of time and value; where a value is no number, or infinite, the line is interrupted. */
    void drawLine (Rows rows, const std::vector<juce::Point<double>>& points, juce::Colour colour, float thickness)
    {
        juce::Path path;
        bool open = false;

        for (const auto& point : points)
        {
            if (! std::isfinite (point.y))
            {
                open = false;
                continue;
            }

            // Far below the panel all depths are alike, and large numbers make the renderer slow.
            const juce::Point<float> place (float (point.x), float (std::min (point.y, rows.bottom + 50.0)));

            if (open)
                path.lineTo (place);
            else
                path.startNewSubPath (place);

            open = true;
        }

        const juce::Graphics::ScopedSaveState saved (graphics);
        graphics.reduceClipRegion (leftColumn, rows.top, columnCount + 1, rows.bottom - rows.top + 1);
        graphics.setColour (colour);
        graphics.strokePath (
            path, juce::PathStrokeType (thickness, juce::PathStrokeType::curved, juce::PathStrokeType::rounded));
    }

    std::vector<char> png()
    {
        juce::MemoryOutputStream stream;
        juce::PNGImageFormat().writeImageToStream (image, stream);
        const auto* bytes = static_cast<const char*> (stream.getData());
        return { bytes, bytes + stream.getDataSize() };
    }

private:
    static juce::String shortened (const juce::String& text, const juce::Font& font, int room)
    {
        if (juce::GlyphArrangement::getStringWidthInt (font, text) <= room)
            return text;

        const auto dots = juce::String::charToString (0x2026);
        auto length = text.length();

        while (length > 1 && juce::GlyphArrangement::getStringWidthInt (font, text.substring (0, length) + dots) > room)
            --length;

        return text.substring (0, length) + dots;
    }

    juce::Image image;
    juce::Graphics graphics;
    Typefaces fonts;
};

/** A loudness course as points, each at the middle of the window that it was measured in. */
std::vector<juce::Point<double>> loudnessPoints (const Axes& axes, const std::vector<float>& course, double window)
{
    std::vector<juce::Point<double>> points;

    for (std::size_t step = 0; step < course.size(); ++step)
    {
        const auto end = double (step + 1) * meter::LoudnessMeter::stepSeconds;
        points.emplace_back (axes.time.pixelOf (end - window / 2),
                             std::isfinite (course[step]) ? axes.loudness.pixelOf (double { course[step] }) : nothing);
    }

    return points;
}

/** A gain in dB as points, one for each column at most. */
std::vector<juce::Point<double>> gainPoints (const Axes& axes, const Listening& measurement, const TimeCourse& course)
{
    std::vector<juce::Point<double>> points;
    const auto secondsPerBin = double (course.samplesPerBin()) / measurement.shape.sampleRate;
    double sum = 0.0;
    int count = 0;
    double firstInColumn = 0.0;

    for (std::size_t bin = 0; bin < course.size(); ++bin)
    {
        const auto x = axes.time.pixelOf ((double (bin) + 0.5) * secondsPerBin);

        if (count == 0)
            firstInColumn = x;

        sum += course.mean (bin);
        ++count;
        const auto last = bin + 1 == course.size();

        if (last || axes.time.pixelOf ((double (bin) + 1.5) * secondsPerBin) >= firstInColumn + 1.0)
        {
            const auto decibels = meter::amplitudeDecibels (sum / count);
            points.emplace_back (0.5 * (firstInColumn + x), decibels ? axes.gain.pixelOf (*decibels) : nothing);
            sum = 0.0;
            count = 0;
        }
    }

    return points;
}

void drawWaveformPanel (Sheet& sheet,
                        Rows rows,
                        const Axes& axes,
                        const Axis& values,
                        const Listening& measurement,
                        const Entry& waveform,
                        const TimeCourse& course)
{
    sheet.drawPanel (rows, axes.time, values, ticksEvery (values.last / 2, values));
    sheet.drawWaveform (rows, axes, values, measurement, course, waveform.colour);
    sheet.drawFrame (rows);
    sheet.drawHeading (rows, waveform.text, {});
}

juce::String withLoudness (const juce::String& side, const meter::Figure& integrated)
{
    return integrated ? side + ", " + utf8 (numberText (*integrated, 1)) + " LUFS integrated" : side;
}

void drawLoudness (Sheet& sheet, const Axes& axes, const Listening& measurement)
{
    const auto analysis = measurement.analysis();
    const auto shortTerm = meter::LoudnessMeter::shortTermSeconds;
    const auto& before = measurement.before.loudness();
    const auto& after = measurement.after.loudness();
    constexpr float pale = 0.5f;
    constexpr float thin = 1.4f;
    constexpr float thick = 2.6f;

    // In a longer sound the words stand so close that their loudness is a grey wall.
    constexpr double longestWithMomentary = 60.0;

    sheet.drawPanel (loudnessRows, axes.time, axes.loudness, ticksEvery (10.0, axes.loudness));
    std::vector<Entry> legend { { withLoudness ("before", analysis.before.integratedLufs), beforeColour, thick },
                                { withLoudness ("after", analysis.after.integratedLufs), afterColour, thick },
                                { "short-term, 3 s", paleInk, thick } };

    if (measurement.seconds() <= longestWithMomentary)
    {
        const auto draw = [&] (const meter::LoudnessMeter& meter, juce::Colour colour)
        {
            const auto points = loudnessPoints (axes, meter.momentary(), meter::LoudnessMeter::momentarySeconds);
            sheet.drawLine (loudnessRows, points, colour.withAlpha (pale), thin);
        };

        draw (before, beforeColour);
        draw (after, afterColour);
        legend.push_back ({ "momentary, 0.4 s", paleInk.withAlpha (pale), thin });
    }

    sheet.drawLine (loudnessRows, loudnessPoints (axes, before.shortTerm(), shortTerm), beforeColour, thick);
    sheet.drawLine (loudnessRows, loudnessPoints (axes, after.shortTerm(), shortTerm), afterColour, thick);
    sheet.drawFrame (loudnessRows);
    sheet.drawHeading (loudnessRows, "Loudness (LUFS)", legend);

    if (! analysis.before.integratedLufs && ! analysis.after.integratedLufs)
        sheet.drawNote (loudnessRows, "no loudness: silence, or shorter than 0.4 s");
}

void drawGains (Sheet& sheet, const Axes& axes, const Listening& measurement)
{
    sheet.drawPanel (gainRows, axes.time, axes.gain, ticksEvery (axes.gain.first < -30.0 ? 10.0 : 5.0, axes.gain));
    std::vector<Entry> legend;

    switch (measurement.gainsKnown())
    {
    case meter::GainsKnown::yes:
        sheet.drawLine (
            gainRows, gainPoints (axes, measurement, measurement.chain.expanderGain()), expanderColour, 2.0f);
        sheet.drawLine (
            gainRows, gainPoints (axes, measurement, measurement.chain.levellerGain()), levellerColour, 2.0f);
        legend = { { "expander", expanderColour }, { "leveller, without make-up", levellerColour } };
        break;
    case meter::GainsKnown::noStageRuns:
        sheet.drawNote (gainRows, "bypass: no stage runs");
        break;
    case meter::GainsKnown::otherPlugin:
        sheet.drawNote (gainRows, "unknown: the library gives another sound than the chain that this program knows");
        break;
    }

    sheet.drawFrame (gainRows);
    sheet.drawHeading (gainRows, "Gain (dB)", legend);
}

/** Frees at the program's end what the framework keeps between pictures, which it would report as lost. */
struct FreeAtEnd
{
    ~FreeAtEnd() { juce::DeletedAtShutdown::deleteAll(); }
};
} // namespace

std::vector<char> paintPng (const Listening& measurement, const Title& title)
{
    // The framework keeps its typefaces in one place for the whole program.
    static std::mutex oneAtATime;
    const std::lock_guard lock (oneAtATime);

    const auto axes = axesFor (measurement);
    Sheet sheet;
    sheet.drawTitle (title, measurement);
    drawWaveformPanel (sheet,
                       beforeRows,
                       axes,
                       axes.before,
                       measurement,
                       { "Waveform before (full scale 1)", beforeColour },
                       measurement.before.waveform());
    drawWaveformPanel (sheet,
                       afterRows,
                       axes,
                       axes.after,
                       measurement,
                       { "Waveform after (full scale 1)", afterColour },
                       measurement.after.waveform());
    drawLoudness (sheet, axes, measurement);
    drawGains (sheet, axes, measurement);
    sheet.drawTimeLabels (axes.time);

    // Last, so that it is destroyed ahead of all that the framework has made by now.
    static const FreeAtEnd freeAtEnd;
    return sheet.png();
}

} // namespace larkspire::plot
