// SPDX-License-Identifier: AGPL-3.0-only
#include "render/ProgressBar.h"

#include "base/Failure.h"
#include "base/Texts.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <vector>

namespace larkspire::render
{

namespace
{
constexpr int longestBar = 20;
constexpr int shortestBar = 5;
constexpr int shortestName = 16;
constexpr int widthOfFigures = 37; // "  100 % [", "]  12345x  1:23:45 left" and a free column

int terminalWidth()
{
    winsize size {};
    const auto known = ioctl (STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return known ? size.ws_col : 80;
}

/** Where each character of a text begins, and its end; whole ones where it is UTF-8. */
std::vector<std::size_t> boundariesIn (const std::string& text)
{
    std::vector<std::size_t> boundaries;

    for (std::size_t i = 0; i < text.size(); ++i)
        if ((static_cast<unsigned char> (text[i]) & 0xc0) != 0x80)
            boundaries.push_back (i);

    boundaries.push_back (text.size());
    return boundaries;
}

/** A text of at most so many characters, at least three: what names differ in stands at their ends, so the middle goes.
 */
std::string shortened (const std::string& text, int mostCharacters)
{
    const auto boundaries = boundariesIn (text);
    const auto most = static_cast<std::size_t> (std::max (3, mostCharacters));

    if (boundaries.size() - 1 <= most)
        return text;

    const auto behind = (most - 1) / 2;
    return text.substr (0, boundaries[most - 1 - behind]) + "…"
           + text.substr (boundaries[boundaries.size() - 1 - behind]);
}

/** A duration as a clock counts it down, with hours where there are any. */
std::string timeText (double seconds)
{
    constexpr double longest = 359999.0; // 99:59:59
    const auto whole = std::round (std::clamp (seconds, 0.0, longest));
    return clockText (whole, whole >= 3600.0);
}

/** What stands behind the bar: the speed, and the time that is left or was taken. */
std::string paceText (const RenderProgress& progress)
{
    const auto timesRealTime = progress.secondsOfWork > 0.0 ? progress.secondsDone / progress.secondsOfWork : 0.0;
    std::array<char, 32> speed {};
    std::snprintf (speed.data(), speed.size(), timesRealTime < 10.0 ? "%6.1fx" : "%6.0fx", timesRealTime);
    std::string text (speed.data());

    if (! progress.secondsInAll.has_value())
        return text + "  " + timeText (progress.secondsDone) + " done";

    const auto secondsToGo = *progress.secondsInAll - progress.secondsDone;

    if (secondsToGo <= 0.0)
        return text + "  in " + timeText (progress.secondsOfWork);

    return timesRealTime > 0.0 ? text + "  " + timeText (secondsToGo / timesRealTime) + " left" : text;
}
} // namespace

bool ProgressBar::wouldBeSeen()
{
    return isatty (STDERR_FILENO) == 1;
}

ProgressBar::ProgressBar (const std::string& number, const std::string& title)
{
    const auto room = terminalWidth() - widthOfFigures - static_cast<int> (number.size());
    barWidth = std::clamp (room - shortestName, shortestBar, longestBar);
    name = number + shortened (printable (title), room - barWidth);
}

ProgressBar::~ProgressBar()
{
    if (shown)
        std::fputc ('\n', stderr);
}

void ProgressBar::show (const RenderProgress& progress)
{
    constexpr std::chrono::milliseconds longestStand (500);
    const auto known = progress.secondsInAll.has_value();
    const auto done = known ? progress.secondsDone / std::max (*progress.secondsInAll, 1e-9) : 0.0;
    const auto percent = known ? static_cast<int> (std::clamp (done, 0.0, 1.0) * 100.0) : 0;
    const auto now = Clock::now();

    if (shown && percent == shownPercent && now - shownAt < longestStand)
        return;

    shown = true;
    shownPercent = percent;
    shownAt = now;
    const auto width = static_cast<std::size_t> (barWidth);
    const auto filled = static_cast<std::size_t> (percent * barWidth / 100);
    const auto bar = known ? std::string (filled, '#') + std::string (width - filled, '.') : std::string (width, '?');
    const auto percentText = known ? std::to_string (percent) : "?";

    // What an earlier, longer text left behind is cleared.
    std::fprintf (stderr,
                  "\r%s  %3s %% [%s]%s\x1b[K",
                  name.c_str(),
                  percentText.c_str(),
                  bar.c_str(),
                  paceText (progress).c_str());
    std::fflush (stderr);
}

} // namespace larkspire::render
