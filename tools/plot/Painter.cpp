// SPDX-License-Identifier: AGPL-3.0-only
#include "plot/Painter.h"

#include "base/Texts.h"
#include "plot/Axes.h"
#include "plot/Panels.h"
#include "plot/Sheet.h"

#include <mutex>

namespace larkspire::plot
{

namespace
{
/** A duration for reading: in seconds, and beyond two minutes as a clock shows it. */
std::string lengthText (double seconds)
{
    if (seconds <= 120.0)
        return secondsText (seconds) + " s";

    return seconds < 3600.0 ? clockText (seconds, false) + " min" : clockText (seconds, true) + " h";
}

void drawTitle (Sheet& sheet, const Title& title, const meter::Listening& measurement)
{
    const auto& shape = measurement.shape;
    sheet.drawTitle (utf8 (title.name),
                     ", mode " + utf8 (title.mode),
                     utf8 (lengthText (measurement.seconds())) + ", " + juce::String (shape.sampleRate) + " Hz, "
                         + (shape.channels == 1 ? "mono" : "stereo"));
}

/** Frees at the program's end what JUCE keeps between pictures, which it would report as lost. */
struct FreeAtEnd
{
    ~FreeAtEnd() { juce::DeletedAtShutdown::deleteAll(); }
};
} // namespace

std::vector<char> paintPng (const meter::Listening& measurement, const Title& title)
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
