// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "window/HostWindow.h"

#include "host/PluginInstance.h"

namespace larkspire::window
{

/** The editor of a VST 2 plug-in in its window. While it is open the plug-in's timers run in idle() and nowhere
    else. */
class EditorWindow : public HostWindow
{
public:
    /** Opens a window of the size that the plug-in asks for at a place of the screen, and the editor in it. Throws
        Failure if there is no X server or the plug-in has no editor. */
    explicit EditorWindow (const PluginInstance& plugin, int x = 0, int y = 0);

    /** Closes the editor, then the window. */
    ~EditorWindow() override;

protected:
    /** Sends effEditIdle. */
    void turn() override;

private:
    const PluginInstance& plugin;
};

} // namespace larkspire::window
