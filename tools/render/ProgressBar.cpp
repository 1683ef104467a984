// SPDX-License-Identifier: AGPL-3.0-only
#include "ProgressBar.h"

#include "Failure.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace larkspire::render
{

namespace
{
constexpr int barWidth = 30;
constexpr int widthBesideName = barWidth + 10; // "  100 % [" and "]" and a free column

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
} // namespace

ProgressBar::ProgressBar (const std::string& title)
    : onTerminal (isatty (STDERR_FILENO) == 1),
      name (shortened (printable (title), std::max (8, terminalWidth() - widthBesideName)))
{
}

ProgressBar::~ProgressBar()
{
    if (shownPercent >= 0)
        std::fputc ('\n', stderr);
}

void ProgressBar::show (double done)
{
    const auto percent = static_cast<int> (std::clamp (done, 0.0, 1.0) * 100.0);

    if (! onTerminal || percent == shownPercent)
        return;

    shownPercent = percent;
    const auto filled = static_cast<std::size_t> (percent * barWidth / 100);
    const auto bar = std::string (filled, '#') + std::string (barWidth - filled, '.');
    std::fprintf (stderr, "\r%s  %3d %% [%s]", name.c_str(), percent, bar.c_str());
    std::fflush (stderr);
}

} // namespace larkspire::render
