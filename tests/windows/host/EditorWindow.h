// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "Plugin.h"

#include <string>

/** A plug-in's editor in a window of this program. */
class EditorWindow
{
public:
    explicit EditorWindow (Plugin& hosted);
    ~EditorWindow();

    EditorWindow (const EditorWindow&) = delete;
    EditorWindow& operator= (const EditorWindow&) = delete;

    int width() const { return editorWidth; }
    int height() const { return editorHeight; }

    /** Handles messages for so long, as a host does. */
    void pump (unsigned int milliseconds);

    /** Drags in the editor with the left button, from a place so far down (negative: up). */
    void drag (int x, int y, int distance);

    /** Writes what the screen shows of the editor as a picture in the PPM format. */
    void photograph (const std::string& path);

private:
    Plugin& plugin;
    void* window = nullptr; // Windows' handles; its header stays out of this one
    void* child = nullptr;
    int editorWidth = 0;
    int editorHeight = 0;
};
