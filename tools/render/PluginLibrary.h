// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "Vst2.h"

#include <filesystem>
#include <memory>

namespace larkspire::render
{

/** The loaded library of the plug-in. */
class PluginLibrary
{
public:
    /** Loads the library and makes sure that it is the right one. A path without a slash is a file of the working
        folder. Throws Failure if there is no such file, if it cannot be loaded or if it holds something else. */
    explicit PluginLibrary (const std::filesystem::path& path);

    /** A new instance of the plug-in, not yet opened; its effClose deletes it. Throws Failure if the library gives none
        or another plug-in. */
    Vst2::AEffect* createEffect (Vst2::audioMasterCallback host) const;

    const std::filesystem::path& path() const noexcept { return libraryPath; }

private:
    struct Unload
    {
        void operator() (void* handle) const noexcept;
    };

    std::filesystem::path libraryPath;
    std::unique_ptr<void, Unload> handle;
    Vst2::AEffect* (*entry) (Vst2::audioMasterCallback) = nullptr;
};

} // namespace larkspire::render
