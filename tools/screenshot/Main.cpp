// SPDX-License-Identifier: AGPL-3.0-only
// larkspire-screenshot: photographs the built library's editor in a host's window, one picture a mode.
#include "host/KnobMode.h"
#include "host/PluginInstance.h"
#include "window/EditorWindow.h"
#include "window/VirtualDisplay.h"

#include <cstdio>
#include <exception>
#include <filesystem>

namespace
{
using namespace larkspire;

struct Shot
{
    const char* file;
    KnobMode mode;
};

// The window as it comes up first is the one that everybody knows; it stands for the plug-in.
constexpr Shot shots[] = { { "editor.png", KnobMode::medium },
                           { "editor-bypass.png", KnobMode::bypass },
                           { "editor-Gentle.png", KnobMode::gentle },
                           { "editor-Medium.png", KnobMode::medium },
                           { "editor-Powerful.png", KnobMode::powerful } };

void photograph (const PluginLibrary& library, const Shot& shot, const std::filesystem::path& folder)
{
    PluginHost host;
    PluginInstance instance (library, host);
    instance.setParameter (knobPosition (shot.mode));

    window::EditorWindow editor (instance);
    editor.idle (std::chrono::milliseconds (800)); // the knob follows the parameter three times a second
    window::writePng (editor.picture(), folder / shot.file);
    std::printf ("%s\n", (folder / shot.file).c_str());
}
} // namespace

int main (int argumentCount, char** arguments)
{
    if (argumentCount != 3)
    {
        std::fputs ("usage: larkspire-screenshot LIBRARY FOLDER\n", stderr);
        return 2;
    }

    try
    {
        const window::VirtualDisplay display;
        std::filesystem::create_directories (arguments[2]);
        const PluginLibrary library (arguments[1]);

        for (const auto& shot : shots)
            photograph (library, shot, arguments[2]);

        return 0;
    }
    catch (const std::exception& fault)
    {
        std::fprintf (stderr, "larkspire-screenshot: %s\n", fault.what());
        return 1;
    }
}
