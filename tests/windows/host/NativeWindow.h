// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "window/Picture.h"
#include "windows/host/HostedPlugin.h"

/** A plug-in's editor in a window of this program, which takes the size that the editor asks for. */
class NativeWindow
{
public:
    explicit NativeWindow (HostedPlugin& hosted);
    ~NativeWindow();

    NativeWindow (const NativeWindow&) = delete;
    NativeWindow& operator= (const NativeWindow&) = delete;

    HostedPlugin::Size size() const { return editorSize; }

    /** Handles messages for so long, as a host does. */
    void pump (unsigned int milliseconds);

    /** Drags in the editor with the left button, from a place so far down (negative: up). */
    void drag (int x, int y, int distance);

    /** What the screen shows of the editor. */
    larkspire::window::Picture picture() const;

private:
    void resize (HostedPlugin::Size wanted);

    HostedPlugin& plugin;
    void* window = nullptr; // Windows' handles; its header stays out of this one
    void* child = nullptr;
    HostedPlugin::Size editorSize;
};
