// SPDX-License-Identifier: AGPL-3.0-only
#include "plot/Sheet.h"

#include "base/Failure.h"
#include "plot/Lettering.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace larkspire::plot
{

namespace
{
const juce::Colour ink (0xff222222);
const juce::Colour frameColour (0xff9a9a9a);
const juce::Colour gridColour (0xffe6e6e6);

constexpr auto nothing = std::numeric_limits<double>::quiet_NaN();

constexpr int columnCount = rightColumn - leftColumn;

/** Liberation Sans where the machine has it, so that pictures look alike, else the sans-serif typeface that JUCE picks,
    else any. For a name that it does not know JUCE silently gives a typeface without letters, so only names from its
    own list are used. */
juce::String typefaceName()
{
    const juce::String preferred ("Liberation Sans");
    const auto names = juce::Font::findAllTypefaceNames();

    if (names.isEmpty())
        throw Failure ("picture", "has words, and no font is installed; install the package fonts-liberation2");

    return names.contains (preferred) ? preferred : juce::Font::getDefaultSansSerifFontName();
}

/** The pixels of a panel with its frame. */
juce::Rectangle<int> areaOf (Rows rows)
{
    return { leftColumn, rows.top, columnCount + 1, rows.bottom - rows.top + 1 };
}

/** The text, with its end cut off if there is no room for it. */
juce::String shortened (const juce::String& text, const juce::Font& font, int room)
{
    if (juce::GlyphArrangement::getStringWidthInt (font, text) <= room)
        return text;

    const auto dots = juce::String::charToString (0x2026);
    auto length = text.length();

    while (length > 1 && juce::GlyphArrangement::getStringWidthInt (font, text.substring (0, length) + dots) > room)
        --length;

    return text.substring (0, length) + dots;
}
} // namespace

juce::String utf8 (const std::string& text)
{
    if (juce::CharPointer_UTF8::isValidString (text.c_str(), static_cast<int> (text.size())))
        return juce::String::fromUTF8 (text.c_str(), static_cast<int> (text.size()));

    auto readable = text;
    std::replace_if (
        readable.begin(), readable.end(), [] (char byte) { return static_cast<unsigned char> (byte) >= 0x80; }, '?');
    return readable;
}

Sheet::Sheet()
    : image (juce::Image::RGB, pictureWidth, pictureHeight, true, juce::SoftwareImageType()),
      graphics (image),
      typeface (typefaceName()),
      titleFont (juce::FontOptions (typeface, 22.0f, juce::Font::bold)),
      headingFont (juce::FontOptions (typeface, 16.0f, juce::Font::bold)),
      textFont (juce::FontOptions (typeface, 16.0f, juce::Font::plain)),
      labelFont (juce::FontOptions (typeface, 14.0f, juce::Font::plain))
{
    graphics.fillAll (juce::Colours::white);
}

void Sheet::drawTitle (const juce::String& name, const juce::String& mode, const juce::String& facts)
{
    const auto factsWidth = juce::GlyphArrangement::getStringWidthInt (textFont, facts) + 4;
    const auto nameRoom = columnCount - factsWidth - 30 - juce::GlyphArrangement::getStringWidthInt (titleFont, mode);
    write (shortened (withoutBoxes (name, titleFont), titleFont, nameRoom) + mode,
           { leftColumn, 18, columnCount - factsWidth, 30 },
           titleFont,
           ink);
    write (
        facts, { rightColumn - factsWidth, 20, factsWidth, 28 }, textFont, paleInk, juce::Justification::centredRight);
}

void Sheet::drawPanel (Rows rows, const Axis& time, const Axis& values, const std::vector<Tick>& ticks)
{
    graphics.setColour (gridColour);

    for (const auto& tick : timeTicks (time))
        graphics.drawVerticalLine (juce::roundToInt (time.pixelOf (tick.value)), float (rows.top), float (rows.bottom));

    for (const auto& tick : ticks)
        graphics.drawHorizontalLine (
            juce::roundToInt (values.pixelOf (tick.value)), float (leftColumn), float (rightColumn));

    for (const auto& tick : ticks)
        write (utf8 (tick.label),
               { 0, juce::roundToInt (values.pixelOf (tick.value)) - 10, leftColumn - 8, 20 },
               labelFont,
               ink,
               juce::Justification::centredRight);
}

void Sheet::finishPanel (Rows rows, const juce::String& text, const std::vector<Entry>& legend)
{
    graphics.setColour (frameColour);
    graphics.drawRect (areaOf (rows));
    const auto top = rows.top - 26;
    write (text, { leftColumn, top, columnCount, 22 }, headingFont, ink);
    auto right = rightColumn;

    for (auto entry = legend.rbegin(); entry != legend.rend(); ++entry)
    {
        const auto width = juce::GlyphArrangement::getStringWidthInt (labelFont, entry->text) + 2;
        write (entry->text, { right - width, top, width, 22 }, labelFont, ink);
        right -= width + 6 + 24;
        graphics.setColour (entry->colour);
        graphics.fillRect (
            juce::Rectangle<float> (float (right), float (top) + 11.5f - entry->thickness / 2, 24, entry->thickness));
        right -= 22;
    }
}

void Sheet::drawTimeLabels (const Axis& time)
{
    for (const auto& tick : timeTicks (time))
        write (utf8 (tick.label),
               { juce::roundToInt (time.pixelOf (tick.value)) - 40, gainRows.bottom + 6, 80, 20 },
               labelFont,
               ink,
               juce::Justification::centred);

    write ("Time (" + utf8 (timeUnit (time)) + ")",
           { leftColumn, gainRows.bottom + 30, columnCount, 24 },
           textFont,
           ink,
           juce::Justification::centred);
}

void Sheet::drawNote (Rows rows, const juce::String& text)
{
    const auto width = juce::GlyphArrangement::getStringWidthInt (textFont, text) + 24;
    const juce::Rectangle<int> place (
        (leftColumn + rightColumn - width) / 2, (rows.top + rows.bottom) / 2 - 14, width, 28);
    graphics.setColour (juce::Colours::white);
    graphics.fillRect (place);
    write (text, place, textFont, paleInk, juce::Justification::centred);
}

void Sheet::drawWaveform (Rows rows,
                          const Axis& time,
                          const Axis& values,
                          const meter::TimeCourse& course,
                          double secondsPerBin,
                          juce::Colour colour)
{
    const juce::Graphics::ScopedSaveState saved (graphics);
    graphics.reduceClipRegion (areaOf (rows));
    graphics.setColour (colour);
    auto previousTop = nothing;
    auto previousBottom = nothing;
    std::size_t bin = 0;

    for (int column = leftColumn; column <= rightColumn; ++column)
    {
        auto lowest = nothing;
        auto highest = nothing;

        // All bins that begin in this column; where they are longer than columns, the one that covers it.
        while (bin < course.size() && time.pixelOf (double (bin) * secondsPerBin) < column + 1.0)
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

void Sheet::drawBand (Rows rows, const std::vector<Strip>& strips, juce::Colour colour)
{
    const juce::Graphics::ScopedSaveState saved (graphics);
    graphics.reduceClipRegion (areaOf (rows));
    graphics.setColour (colour);

    for (const auto& strip : strips)
    {
        if (std::isnan (strip.top) || std::isnan (strip.bottom))
            continue;

        const auto top = std::min (strip.top, double (rows.bottom) + 1.0);
        const auto bottom = std::clamp (strip.bottom, top + 1.0, double (rows.bottom) + 2.0);
        graphics.fillRect (
            juce::Rectangle<float> (float (strip.column) - 0.5f, float (top), 1.0f, float (bottom - top)));
    }
}

void Sheet::drawLine (Rows rows, const std::vector<juce::Point<double>>& points, juce::Colour colour, float thickness)
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
    graphics.reduceClipRegion (areaOf (rows));
    graphics.setColour (colour);
    graphics.strokePath (path,
                         juce::PathStrokeType (thickness, juce::PathStrokeType::curved, juce::PathStrokeType::rounded));
}

std::vector<char> Sheet::png() const
{
    juce::MemoryOutputStream stream;
    juce::PNGImageFormat().writeImageToStream (image, stream);
    const auto* bytes = static_cast<const char*> (stream.getData());
    return { bytes, bytes + stream.getDataSize() };
}

void Sheet::write (const juce::String& text,
                   juce::Rectangle<int> place,
                   const juce::Font& font,
                   juce::Colour colour,
                   juce::Justification justification)
{
    graphics.setColour (colour);
    graphics.setFont (font);
    graphics.drawText (text, place, justification, false);
}

} // namespace larkspire::plot
