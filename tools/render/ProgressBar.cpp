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

namespace larkspire::render
{

namespace
{
constexpr int barWidth = 20;
constexpr int widthBesideName = barWidth + 37; // "  100 % [", "]  12345x  1:23:45 left" and a free column

int terminalWidth()
{
    winsize size {};
    const auto known = ioctl (STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return known ? size.ws_col : 80;
}

/** The first characters of a text, whole ones where it is UTF-8. */
std::string shortened (const std::string& text, int mostCharacters)
{
    int characters = 0;
    std::size_t end = 0;

    for (; end < text.size(); ++end)
    {
        const auto startsCharacter = (static_cast<unsigned char> (text[end]) & 0xc0) != 0x80;

        if (startsCharacter && ++characters > mostCharacters)
            break;
    }

    return text.substr (0, end);
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

ProgressBar::ProgressBar (const std::string& title)
    : name (shortened (printable (title), std::max (8, terminalWidth() - widthBesideName)))
{
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
    const auto filled = static_cast<std::size_t> (percent * barWidth / 100);
    const auto bar =
        known ? std::string (filled, '#') + std::string (barWidth - filled, '.') : std::string (barWidth, '?');
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
