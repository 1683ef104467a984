// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "host/PluginInstance.h"

#include <string>

/** A plug-in's editor in a window of this program. */
class NativeWindow
{
public:
    explicit NativeWindow (const larkspire::PluginInstance& hosted);
    ~NativeWindow();

    NativeWindow (const NativeWindow&) = delete;
    NativeWindow& operator= (const NativeWindow&) = delete;

    int width() const { return editorWidth; }
    int height() const { return editorHeight; }

    /** Handles messages for so long, as a host does. */
    void pump (unsigned int milliseconds);

    /** Drags in the editor with the left button, from a place so far down (negative: up). */
    void drag (int x, int y, int distance);

    /** Writes what the screen shows of the editor as a picture in the PPM format. */
    void photograph (const std::string& path);

private:
    const larkspire::PluginInstance& plugin;
    void* window = nullptr; // Windows' handles; its header stays out of this one
    void* child = nullptr;
    int editorWidth = 0;
    int editorHeight = 0;
};
