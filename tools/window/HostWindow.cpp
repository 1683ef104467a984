// SPDX-License-Identifier: AGPL-3.0-only
#include "window/HostWindow.h"

#include "base/Failure.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <array>
#include <memory>
#include <mutex>
#include <thread>

namespace larkspire::window
{

namespace
{
std::mutex refusalLock; // the plug-in's threads talk to the server too
std::vector<std::string> refusalTexts;

int noteRefusal (Display* display, XErrorEvent* event)
{
    std::array<char, 128> text {};
    XGetErrorText (display, event->error_code, text.data(), static_cast<int> (text.size()));
    const std::lock_guard lock (refusalLock);
    refusalTexts.push_back ("request " + std::to_string (event->request_code) + ": " + text.data());
    return 0;
}

Display* openDisplay()
{
    XInitThreads();

    if (auto* display = XOpenDisplay (nullptr))
    {
        XSetErrorHandler (noteRefusal);
        return display;
    }

    throw Failure (XDisplayName (nullptr), "there is no X server");
}

/** A window that no window manager would touch. */
Window makeWindow (Display* display, int x, int y, int width, int height)
{
    XSetWindowAttributes attributes {};
    attributes.override_redirect = True;
    const auto window = XCreateWindow (display,
                                       DefaultRootWindow (display),
                                       x,
                                       y,
                                       static_cast<unsigned int> (width),
                                       static_cast<unsigned int> (height),
                                       0,
                                       CopyFromParent,
                                       InputOutput,
                                       nullptr,
                                       CWOverrideRedirect,
                                       &attributes);
    XMapRaised (display, window);
    XSync (display, False);
    return window;
}

/** One channel of a pixel, moved down to eight bits. */
std::uint8_t channel (unsigned long pixel, unsigned long mask)
{
    return static_cast<std::uint8_t> ((pixel & mask) / (mask & (~mask + 1)));
}
} // namespace

HostWindow::HostWindow() : display (openDisplay()) {}

HostWindow::~HostWindow()
{
    if (window != 0)
        XDestroyWindow (display, window);

    XCloseDisplay (display);
}

void HostWindow::show (int x, int y, int width, int height)
{
    currentWidth = width;
    currentHeight = height;
    window = makeWindow (display, x, y, width, height);
}

void HostWindow::idle (std::chrono::milliseconds time)
{
    const auto end = std::chrono::steady_clock::now() + time;

    do
    {
        turn();
        std::this_thread::sleep_for (std::chrono::milliseconds (5));
    } while (std::chrono::steady_clock::now() < end);
}

bool HostWindow::idleUntil (const std::function<bool()>& holds)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds (10);

    while (! holds())
    {
        if (std::chrono::steady_clock::now() > end)
            return false;

        idle (std::chrono::milliseconds (10));
    }

    return true;
}

Picture HostWindow::picture() const
{
    XSync (display, False);
    const auto freeImage = [] (XImage* image) { XDestroyImage (image); };
    const std::unique_ptr<XImage, decltype (freeImage)> image (XGetImage (display,
                                                                          window,
                                                                          0,
                                                                          0,
                                                                          static_cast<unsigned int> (currentWidth),
                                                                          static_cast<unsigned int> (currentHeight),
                                                                          AllPlanes,
                                                                          ZPixmap));

    if (image == nullptr)
        throw Failure ("the window", "cannot be photographed");

    Picture picture { .width = currentWidth, .height = currentHeight, .pixels = {} };

    for (int y = 0; y < currentHeight; ++y)
        for (int x = 0; x < currentWidth; ++x)
        {
            const auto pixel = XGetPixel (image.get(), x, y);
            picture.pixels.push_back ({ channel (pixel, image->red_mask),
                                        channel (pixel, image->green_mask),
                                        channel (pixel, image->blue_mask) });
        }

    return picture;
}

void HostWindow::resize (int width, int height)
{
    XResizeWindow (display, window, static_cast<unsigned int> (width), static_cast<unsigned int> (height));
    XSync (display, False);
    currentWidth = width;
    currentHeight = height;
}

std::vector<std::string> HostWindow::refusals()
{
    const std::lock_guard lock (refusalLock);
    return refusalTexts;
}

} // namespace larkspire::window
