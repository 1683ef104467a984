// SPDX-License-Identifier: AGPL-3.0-only
#include "Plugin.h"

#include <windows.h>

#include <array>
#include <stdexcept>

namespace
{
using EntryPoint = Vst2::AEffect*(VSTCALLBACK*)(Vst2::audioMasterCallback);

HMODULE load (const std::string& path)
{
    if (auto* library = LoadLibraryA (path.c_str()))
        return library;

    throw std::runtime_error (path + " cannot be loaded: error " + std::to_string (GetLastError()));
}

EntryPoint entryOf (HMODULE library)
{
    if (auto* entry = reinterpret_cast<void*> (GetProcAddress (library, "VSTPluginMain")))
        return reinterpret_cast<EntryPoint> (entry);

    throw std::runtime_error ("there is no VSTPluginMain");
}
} // namespace

Plugin::Plugin (const std::string& path) : library (load (path))
{
    instance = entryOf (static_cast<HMODULE> (library)) (answer);

    if (instance == nullptr)
        throw std::runtime_error ("VSTPluginMain gave no instance");

    dispatch (Vst2::effOpen);
}

Plugin::~Plugin()
{
    dispatch (Vst2::effClose);
    FreeLibrary (static_cast<HMODULE> (library));
}

Vst2::VstIntPtr
Plugin::dispatch (Vst2::VstInt32 opcode, Vst2::VstInt32 index, Vst2::VstIntPtr value, void* data, float option)
{
    return instance->dispatcher (instance, opcode, index, value, data, option);
}

std::string Plugin::text (Vst2::VstInt32 opcode)
{
    std::array<char, 256> buffer {};
    dispatch (opcode, 0, 0, buffer.data());
    return buffer.data();
}

Vst2::VstIntPtr VSTCALLBACK
Plugin::answer (Vst2::AEffect*, Vst2::VstInt32 opcode, Vst2::VstInt32, Vst2::VstIntPtr, void*, float option)
{
    if (opcode == Vst2::audioMasterAutomate)
        automation.push_back (option);

    if (opcode == Vst2::audioMasterBeginEdit || opcode == Vst2::audioMasterEndEdit)
        ++gestures;

    return opcode == Vst2::audioMasterVersion ? kVstVersion : 0;
}
