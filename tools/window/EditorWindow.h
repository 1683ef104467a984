// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "window/Picture.h"

#include "host/PluginInstance.h"

#include <chrono>
#include <functional>
#include <string>
#include <vector>

struct _XDisplay; // NOLINT(bugprone-reserved-identifier): the X library's own name for a connection

namespace larkspire::window
{

/** A plain X11 window with a plug-in's editor in it, as a host has it. Without a title bar, so that the editor's
    corner is the window's. While it is open the plug-in's timers run in idle() and nowhere else. */
class EditorWindow
{
public:
    /** Opens a window of the size that the plug-in asks for at a place of the screen, and the editor in it. Throws
        Failure if there is no X server or the plug-in has no editor. */
    explicit EditorWindow (const PluginInstance& plugin, int x = 0, int y = 0);

    /** Closes the editor, then the window. */
    virtual ~EditorWindow();

    EditorWindow (const EditorWindow&) = delete;
    EditorWindow& operator= (const EditorWindow&) = delete;

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
    /** What the host does for the editor again and again: sends effEditIdle. */
    virtual void turn();

private:
    const PluginInstance& plugin;
    _XDisplay* display = nullptr;
    unsigned long window = 0;
    int currentWidth = 0;
    int currentHeight = 0;
};

} // namespace larkspire::window
