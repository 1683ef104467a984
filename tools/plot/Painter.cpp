// SPDX-License-Identifier: AGPL-3.0-only
#include "plot/Painter.h"

#include "base/Texts.h"
#include "plot/Axes.h"
#include "plot/Sheet.h"

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
const juce::Colour beforeColour (0xff56789a);
const juce::Colour afterColour (0xffd55e00);
const juce::Colour expanderColour (0xff007d5c);
const juce::Colour levellerColour (0xff8c3b78);

constexpr auto nothing = std::numeric_limits<double>::quiet_NaN();

double secondsPerBin (const Listening& measurement, const TimeCourse& course)
{
    return double (course.samplesPerBin()) / measurement.shape.sampleRate;
}

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

void drawTitle (Sheet& sheet, const Title& title, const Listening& measurement)
{
    const auto& shape = measurement.shape;
    sheet.drawTitle (utf8 (title.name),
                     ", mode " + utf8 (title.mode),
                     utf8 (secondsText (measurement.seconds())) + " s, " + juce::String (shape.sampleRate) + " Hz, "
                         + (shape.channels == 1 ? "mono" : "stereo"));
}

void drawWaveforms (Sheet& sheet, const Axes& axes, const Listening& measurement)
{
    const auto draw =
        [&] (Rows rows, const Axis& values, const TimeCourse& course, juce::Colour colour, const char* text)
    {
        sheet.drawPanel (rows, axes.time, values, ticksEvery (values.last / 2, values));
        sheet.drawWaveform (rows, axes.time, values, course, secondsPerBin (measurement, course), colour);
        sheet.finishPanel (rows, text, {});
    };

    draw (beforeRows, axes.before, measurement.before.waveform(), beforeColour, "Waveform before (full scale 1)");
    draw (afterRows, axes.after, measurement.after.waveform(), afterColour, "Waveform after (full scale 1)");
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
    sheet.finishPanel (loudnessRows, "Loudness (LUFS)", legend);

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

    sheet.finishPanel (gainRows, "Gain (dB)", legend);
}

/** Frees at the program's end what JUCE keeps between pictures, which it would report as lost. */
struct FreeAtEnd
{
    ~FreeAtEnd() { juce::DeletedAtShutdown::deleteAll(); }
};
} // namespace

std::vector<char> paintPng (const Listening& measurement, const Title& title)
{
    // JUCE keeps its typefaces in one place for the whole program.
    static std::mutex oneAtATime;
    const std::lock_guard lock (oneAtATime);

    const auto axes = axesFor (measurement);
    Sheet sheet;
    drawTitle (sheet, title, measurement);
    drawWaveforms (sheet, axes, measurement);
    drawLoudness (sheet, axes, measurement);
    drawGains (sheet, axes, measurement);
    sheet.drawTimeLabels (axes.time);

    // Last, so that it is destroyed ahead of all that JUCE has made by now.
    static const FreeAtEnd freeAtEnd;
    return sheet.png();
}

} // namespace larkspire::plot
