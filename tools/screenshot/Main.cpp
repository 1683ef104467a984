// SPDX-License-Identifier: AGPL-3.0-only
// larkspire-screenshot: photographs the built library's editor in a host's window, one picture a mode.
#include "host/KnobMode.h"
#include "host/PluginInstance.h"
#include "window/EditorWindow.h"
#include "window/VirtualDisplay.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>

namespace
{
using namespace larkspire;

void photograph (const PluginLibrary& library, KnobMode mode, const std::filesystem::path& folder)
{
    PluginHost host;
    PluginInstance instance (library, host);
    instance.setParameter (knobPosition (mode));

    window::EditorWindow editor (instance);
    editor.idle (std::chrono::milliseconds (800)); // the knob follows the parameter three times a second
    const auto file = folder / (std::string ("editor-") + nameOf (mode) + ".png");
    window::writePng (editor.picture(), file);
    std::printf ("%s\n", file.c_str());
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

        for (const auto mode : knobModes)
            photograph (library, mode, arguments[2]);

        return 0;
    }
    catch (const std::exception& fault)
    {
        std::fprintf (stderr, "larkspire-screenshot: %s\n", fault.what());
        return 1;
    }
}
