// SPDX-License-Identifier: AGPL-3.0-only
// larkspire-screenshot: photographs the built library's editor in a host's window, one picture a mode.
#include "render/Failure.h"
#include "render/PluginLibrary.h"
#include "window/EditorWindow.h"
#include "window/VirtualDisplay.h"

#include <cstdio>
#include <exception>
#include <memory>

namespace
{
using namespace larkspire;

struct Close
{
    void operator() (Vst2::AEffect* effect) const { effect->dispatcher (effect, Vst2::effClose, 0, 0, nullptr, 0.0f); }
};

struct Shot
{
    const char* file;
    float position;
};

// The window as it comes up first is the one that everybody knows; it stands for the plug-in.
constexpr Shot shots[] = { { "editor.png", 2.0f / 9.0f },
                           { "editor-bypass.png", 0.0f },
                           { "editor-Gentle.png", 1.0f / 9.0f },
                           { "editor-Medium.png", 2.0f / 9.0f },
                           { "editor-Powerful.png", 3.0f / 9.0f } };

Vst2::VstIntPtr answer (Vst2::AEffect*, Vst2::VstInt32 opcode, Vst2::VstInt32, Vst2::VstIntPtr, void*, float)
{
    return opcode == Vst2::audioMasterVersion ? kVstVersion : 0;
}

void photograph (const render::PluginLibrary& library, const Shot& shot, const std::filesystem::path& folder)
{
    const std::unique_ptr<Vst2::AEffect, Close> effect (library.createEffect (answer));
    effect->dispatcher (effect.get(), Vst2::effOpen, 0, 0, nullptr, 0.0f);
    effect->setParameter (effect.get(), 0, shot.position);

    window::EditorWindow editor (*effect);
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
        const render::PluginLibrary library (arguments[1]);

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
