// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "Vst2.h"
#include "host/DynamicLibrary.h"

#include <filesystem>

namespace larkspire
{

/** The loaded library of the plug-in, on Linux or on Windows. */
class PluginLibrary
{
public:
    using EntryPoint = Vst2::AEffect*(VSTCALLBACK*)(Vst2::audioMasterCallback);

    /** Loads the library. A path without a slash is a file of the working folder. Throws Failure if there is no such
        file, if it cannot be loaded or if it is not a VST 2 plug-in. */
    explicit PluginLibrary (const std::filesystem::path& path);

    /** Makes an instance and closes it again. Throws Failure if the library is not the right one. */
    void check() const;

    /** A new instance of the plug-in, not yet opened; its effClose deletes it. Throws Failure if the library gives none
        or another plug-in. */
    Vst2::AEffect* createEffect (Vst2::audioMasterCallback host) const;

    /** What VSTPluginMain is; good for as long as this lives. */
    EntryPoint entryPoint() const noexcept { return entry; }

    const std::filesystem::path& path() const noexcept { return libraryPath; }

private:
    std::filesystem::path libraryPath;
    DynamicLibrary library;
    EntryPoint entry;
};

} // namespace larkspire
