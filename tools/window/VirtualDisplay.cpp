// SPDX-License-Identifier: AGPL-3.0-only
#include "window/VirtualDisplay.h"

#include "base/Failure.h"

#include <X11/Xlib.h>

#include <array>
#include <csignal>
#include <cstdlib>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace larkspire::window
{

namespace
{
constexpr const char* program = "Xvfb";

/** A number far from those of real displays. Where no display is named, JUCE connects to display 0; another program
    must not find this server there, since it would die when this server ends. */
std::string displayNumber()
{
    return std::to_string (1000 + getpid() % 50000);
}

/** In the child: becomes the server, which writes the number of its display to the descriptor. Does not return. */
[[noreturn]] void becomeServer (const std::string& display, int descriptor)
{
    prctl (PR_SET_PDEATHSIG, SIGKILL);
    const auto number = std::to_string (descriptor);
    execlp (program,
            program,
            display.c_str(),
            "-displayfd",
            number.c_str(),
            "-screen",
            "0",
            "1024x768x24",
            "-nolisten",
            "tcp",
            "-noreset",
            static_cast<char*> (nullptr));
    _exit (127);
}

/** Registers the names that a window manager would have registered, those of the ICCCM, EWMH and Motif conventions.
    They stay as long as the server does. */
void introduceNames()
{
    const std::array names { "WM_PROTOCOLS",
                             "WM_STATE",
                             "WM_CHANGE_STATE",
                             "WM_TAKE_FOCUS",
                             "WM_DELETE_WINDOW",
                             "_MOTIF_WM_HINTS",
                             "_NET_FRAME_EXTENTS",
                             "_NET_WM_ALLOWED_ACTIONS",
                             "_NET_WM_PING",
                             "_NET_WM_STATE",
                             "_NET_WM_STATE_FULLSCREEN",
                             "_NET_WM_STATE_HIDDEN",
                             "_NET_WM_WINDOW_TYPE",
                             "_NET_WM_WINDOW_TYPE_COMBO",
                             "_NET_WM_WINDOW_TYPE_NORMAL",
                             "_NET_WORKAREA" };
    auto* display = XOpenDisplay (nullptr);

    if (display == nullptr)
        return;

    for (const auto* name : names)
        XInternAtom (display, name, False);

    XCloseDisplay (display);
}

/** What the descriptor gives up to the end of a line or of its data. */
std::string readLine (int descriptor)
{
    std::string line;
    char letter = 0;

    while (read (descriptor, &letter, 1) == 1 && letter != '\n')
        line += letter;

    return line;
}
} // namespace

VirtualDisplay::VirtualDisplay()
{
    std::array<int, 2> pipeEnds {};

    if (pipe (pipeEnds.data()) != 0)
        throw Failure (program, systemError (errno));

    const auto display = ":" + displayNumber();
    server = fork();

    if (server == 0)
    {
        close (pipeEnds[0]);
        becomeServer (display, pipeEnds[1]);
    }

    close (pipeEnds[1]);
    const auto number = readLine (pipeEnds[0]);
    close (pipeEnds[0]);

    if (server > 0 && number.empty())
        waitpid (server, nullptr, 0);

    if (number.empty())
        throw Failure (program, "does not start; is the package xvfb installed?");

    if (const auto* before = std::getenv ("DISPLAY")) // NOLINT(concurrency-mt-unsafe)
        displayBefore = before;

    setenv ("DISPLAY", (":" + number).c_str(), 1); // NOLINT(concurrency-mt-unsafe)
    introduceNames();
}

VirtualDisplay::~VirtualDisplay()
{
    setenv ("DISPLAY", displayBefore.c_str(), 1); // NOLINT(concurrency-mt-unsafe)
    kill (server, SIGTERM);
    waitpid (server, nullptr, 0);
}

} // namespace larkspire::window
