// SPDX-License-Identifier: AGPL-3.0-only
#include "plot/Panels.h"

#include "base/Texts.h"
#include "plot/Spread.h"

#include <cmath>
#include <limits>

namespace larkspire::plot
{

namespace
{
using meter::Listening;
using meter::LoudnessMeter;
using meter::TimeCourse;

// Dark enough for white paper, and told apart by eyes that do not see red and green alike.
const juce::Colour beforeColour (0xff56789a);
const juce::Colour afterColour (0xffd55e00);
const juce::Colour expanderColour (0xff007d5c);
const juce::Colour levellerColour (0xff8c3b78);

constexpr auto nothing = std::numeric_limits<double>::quiet_NaN();

constexpr float thin = 1.4f;
constexpr float medium = 2.0f;
constexpr float thick = 2.6f;
constexpr float broad = 10.0f; // a patch in a legend

constexpr float paleLine = 0.5f;
constexpr float palePeaks = 0.35f;
constexpr float paleSpread = 0.25f;

constexpr double longestWithMomentary = 60.0; // s; in a longer sound the words are a wall
constexpr double longestInDetail = 120.0;     // s; here a column is a ninth of a second

bool isLong (const Listening& measurement)
{
    return measurement.seconds() > longestInDetail;
}

/** The window of the spreads: no wider than some columns, for each to lie beside what it shows. */
double windowFor (const Axes& axes)
{
    constexpr double columns = 8.0;
    return roundTime (columns * axes.time.last / (axes.time.lastPixel - axes.time.firstPixel));
}

juce::String windowText (const Axes& axes)
{
    const auto seconds = windowFor (axes);
    return seconds <= 60.0 ? utf8 (numberText (seconds, 0)) + " s" : utf8 (numberText (seconds / 60.0, 0)) + " min";
}

double secondsPerBin (const Listening& measurement, const TimeCourse& course)
{
    return double (course.samplesPerBin()) / measurement.shape.sampleRate;
}

/** A loudness course, each value at the middle of the window that it was measured in. */
Series loudnessSeries (const std::vector<float>& course, double window)
{
    return { .firstSeconds = LoudnessMeter::stepSeconds - window / 2,
             .stepSeconds = LoudnessMeter::stepSeconds,
             .values = { course.begin(), course.end() } };
}

/** A gain in dB. */
Series gainSeries (const Listening& measurement, const TimeCourse& course)
{
    const auto binSeconds = double (course.samplesPerBin()) / measurement.chain.sampleRate();
    Series series { .firstSeconds = binSeconds / 2, .stepSeconds = binSeconds };

    for (std::size_t bin = 0; bin < course.size(); ++bin)
        series.values.push_back (
            meter::amplitudeDecibels (course.mean (bin)).value_or (-std::numeric_limits<double>::infinity()));

    return series;
}

/** Every value of a series as a point. */
std::vector<juce::Point<double>> pointsOf (const Series& series, const Axis& time, const Axis& values)
{
    std::vector<juce::Point<double>> points;

    for (std::size_t i = 0; i < series.values.size(); ++i)
    {
        const auto value = series.values[i];
        points.emplace_back (time.pixelOf (series.firstSeconds + double (i) * series.stepSeconds),
                             std::isfinite (value) ? values.pixelOf (value) : nothing);
    }

    return points;
}

/** A gain in dB as points, one for each column at most. */
std::vector<juce::Point<double>> gainPoints (const Axes& axes, const Listening& measurement, const TimeCourse& course)
{
    std::vector<juce::Point<double>> points;
    const auto binSeconds = double (course.samplesPerBin()) / measurement.chain.sampleRate();
    double sum = 0.0;
    int count = 0;
    double firstInColumn = 0.0;

    for (std::size_t bin = 0; bin < course.size(); ++bin)
    {
        const auto x = axes.time.pixelOf ((double (bin) + 0.5) * binSeconds);

        if (count == 0)
            firstInColumn = x;

        sum += course.mean (bin);
        ++count;
        const auto last = bin + 1 == course.size();

        if (last || axes.time.pixelOf ((double (bin) + 1.5) * binSeconds) >= firstInColumn + 1.0)
        {
            const auto decibels = meter::amplitudeDecibels (sum / count);
            points.emplace_back (0.5 * (firstInColumn + x), decibels ? axes.gain.pixelOf (*decibels) : nothing);
            sum = 0.0;
            count = 0;
        }
    }

    return points;
}

/** The RMS of a sound, above and below the middle of its panel, for each pixel column. */
std::vector<Strip>
rmsStrips (const Axes& axes, const Axis& values, const Listening& measurement, const TimeCourse& course)
{
    const auto binSeconds = secondsPerBin (measurement, course);
    std::vector<Strip> strips;
    std::size_t bin = 0;

    for (int column = leftColumn; column < rightColumn; ++column)
    {
        double sum = 0.0;
        int count = 0;

        for (; bin < course.size() && axes.time.pixelOf (double (bin) * binSeconds) < column + 1.0; ++bin, ++count)
            sum += course.power (bin);

        const auto rms = std::sqrt (sum / count);
        strips.push_back ({ .column = column + 0.5, .top = values.pixelOf (rms), .bottom = values.pixelOf (-rms) });
    }

    return strips;
}

/** The median of a series as a line, over the range that most of it lies in. */
void drawSpread (Sheet& sheet,
                 Rows rows,
                 const Axes& axes,
                 const Axis& values,
                 const Series& series,
                 juce::Colour colour,
                 float thickness)
{
    const auto spreads = spreadOf (series, axes.time, windowFor (axes));
    std::vector<Strip> strips;
    std::vector<juce::Point<double>> line;

    for (const auto& spread : spreads)
    {
        strips.push_back (
            { .column = spread.column, .top = values.pixelOf (spread.high), .bottom = values.pixelOf (spread.low) });
        line.emplace_back (spread.column, values.pixelOf (spread.middle));
    }

    sheet.drawBand (rows, strips, colour.withAlpha (paleSpread));
    sheet.drawLine (rows, line, colour, thickness);
}

/** What drawSpread draws. */
std::vector<Entry> spreadEntries (const juce::String& value, const Axes& axes, float thickness)
{
    return { { value + "median over " + windowText (axes), paleInk, thickness },
             { "10 to 90 %", paleInk.withAlpha (paleSpread), broad } };
}

void append (std::vector<Entry>& legend, const std::vector<Entry>& further)
{
    legend.insert (legend.end(), further.begin(), further.end());
}

juce::String withLoudness (const juce::String& side, const meter::Figure& integrated)
{
    return integrated ? side + ", " + utf8 (numberText (*integrated, 1)) + " LUFS integrated" : side;
}
} // namespace

void drawWaveforms (Sheet& sheet, const Axes& axes, const Listening& measurement)
{
    const auto draw =
        [&] (Rows rows, const Axis& values, const TimeCourse& course, juce::Colour colour, const char* text)
    {
        const auto peaks = isLong (measurement) ? colour.withAlpha (palePeaks) : colour;
        std::vector<Entry> legend;
        sheet.drawPanel (rows, axes.time, values, ticksEvery (values.last / 2, values));
        sheet.drawWaveform (rows, axes.time, values, course, secondsPerBin (measurement, course), peaks);

        if (isLong (measurement))
        {
            sheet.drawBand (rows, rmsStrips (axes, values, measurement, course), colour);
            legend = { { "peaks", peaks, broad }, { "RMS", colour, broad } };
        }

        sheet.finishPanel (rows, text, legend);
    };

    draw (beforeRows, axes.before, measurement.before.waveform(), beforeColour, "Waveform before (full scale 1)");
    draw (afterRows, axes.after, measurement.after.waveform(), afterColour, "Waveform after (full scale 1)");
}

void drawLoudness (Sheet& sheet, const Axes& axes, const Listening& measurement)
{
    const auto analysis = measurement.analysis();
    const auto isInDetail = ! isLong (measurement);
    sheet.drawPanel (loudnessRows, axes.time, axes.loudness, ticksEvery (10.0, axes.loudness));
    std::vector<Entry> legend { { withLoudness ("before", analysis.before.integratedLufs), beforeColour, thick },
                                { withLoudness ("after", analysis.after.integratedLufs), afterColour, thick } };

    const auto drawMomentary = [&] (const LoudnessMeter& meter, juce::Colour colour)
    {
        const auto series = loudnessSeries (meter.momentary(), LoudnessMeter::momentarySeconds);
        sheet.drawLine (loudnessRows, pointsOf (series, axes.time, axes.loudness), colour.withAlpha (paleLine), thin);
    };

    const auto drawShortTerm = [&] (const LoudnessMeter& meter, juce::Colour colour)
    {
        const auto series = loudnessSeries (meter.shortTerm(), LoudnessMeter::shortTermSeconds);

        if (isInDetail)
            sheet.drawLine (loudnessRows, pointsOf (series, axes.time, axes.loudness), colour, thick);
        else
            drawSpread (sheet, loudnessRows, axes, axes.loudness, series, colour, thick);
    };

    if (isInDetail)
        legend.push_back ({ "short-term, 3 s", paleInk, thick });
    else
        append (legend, spreadEntries ("short-term, ", axes, thick));

    if (measurement.seconds() <= longestWithMomentary)
    {
        drawMomentary (measurement.before.loudness(), beforeColour);
        drawMomentary (measurement.after.loudness(), afterColour);
        legend.push_back ({ "momentary, 0.4 s", paleInk.withAlpha (paleLine), thin });
    }

    drawShortTerm (measurement.before.loudness(), beforeColour);
    drawShortTerm (measurement.after.loudness(), afterColour);

    sheet.finishPanel (loudnessRows, "Loudness (LUFS)", legend);

    if (! analysis.before.integratedLufs && ! analysis.after.integratedLufs)
        sheet.drawNote (loudnessRows, "no loudness: silence, or shorter than 0.4 s");
}

void drawGains (Sheet& sheet, const Axes& axes, const Listening& measurement)
{
    sheet.drawPanel (gainRows, axes.time, axes.gain, ticksEvery (axes.gain.first < -30.0 ? 10.0 : 5.0, axes.gain));
    std::vector<Entry> legend;

    const auto draw = [&] (const TimeCourse& course, juce::Colour colour)
    {
        if (isLong (measurement))
            drawSpread (sheet, gainRows, axes, axes.gain, gainSeries (measurement, course), colour, medium);
        else
            sheet.drawLine (gainRows, gainPoints (axes, measurement, course), colour, medium);
    };

    switch (measurement.gainsKnown())
    {
    case meter::GainsKnown::yes:
        draw (measurement.chain.expanderGain(), expanderColour);
        draw (measurement.chain.levellerGain(), levellerColour);
        legend = { { "expander", expanderColour }, { "leveller, without make-up", levellerColour } };

        if (isLong (measurement))
            append (legend, spreadEntries ({}, axes, medium));

        break;
    case meter::GainsKnown::noStageRuns:
        sheet.drawNote (gainRows, "bypass: no stage runs");
        break;
    case meter::GainsKnown::otherPlugin:
        sheet.drawNote (gainRows, "unknown: the library gives another sound than the chain that this program knows");
        break;
    }

    sheet.finishPanel (gainRows, "Gain (dB)", legend);
}

} // namespace larkspire::plot
