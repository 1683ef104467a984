// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "window/Picture.h"

#include <chrono>
#include <functional>
#include <string>
#include <vector>

struct _XDisplay; // NOLINT(bugprone-reserved-identifier): the X library's own name for a connection

namespace larkspire::window
{

/** A plain X11 window of a host's, in which a plug-in of whatever format has its editor. Without a title bar, so that
    the editor's corner is the window's. */
class HostWindow
{
public:
    virtual ~HostWindow();

    HostWindow (const HostWindow&) = delete;
    HostWindow& operator= (const HostWindow&) = delete;

    /** Gives the editor time, as a host does between its own work. */
    void idle (std::chrono::milliseconds time);

    /** Gives the editor time until something holds; false if it does not within ten seconds. */
    bool idleUntil (const std::function<bool()>& holds);

    /** What the window shows now; it must lie within the screen. */
    Picture picture() const;

    int width() const noexcept { return currentWidth; }
    int height() const noexcept { return currentHeight; }

    /** Gives the window another size; what is in it is the editor's affair. */
    void resize (int width, int height);

    /** The connection and the window, for those that put events in. */
    _XDisplay* connection() const noexcept { return display; }
    unsigned long handle() const noexcept { return window; }

    /** What the X server has refused this program since its start, in its own words, each with the request's number. */
    static std::vector<std::string> refusals();

protected:
    /** Connects to the X server; the window is yet to be shown. Throws Failure if there is no server. */
    HostWindow();

    /** Makes the window at a place of the screen, once. */
    void show (int x, int y, int width, int height);

    /** What the host does for the editor again and again. */
    virtual void turn() = 0;

private:
    _XDisplay* display;
    unsigned long window = 0;
    int currentWidth = 0;
    int currentHeight = 0;
};

} // namespace larkspire::window
