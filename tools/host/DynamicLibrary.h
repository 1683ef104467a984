// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <filesystem>
#include <memory>

namespace larkspire
{

/** A library loaded into this process, on Linux or on Windows, for as long as this lives. */
class DynamicLibrary
{
public:
    /** Loads the library. A path without a slash is a file of the working folder. Throws Failure if there is no such
        file or if it cannot be loaded. */
    explicit DynamicLibrary (const std::filesystem::path& path);

    /** A function of the library by its exported name, or null. */
    template <typename Function>
    Function find (const char* name) const
    {
        return reinterpret_cast<Function> (findAddress (name));
    }

    /** The system's handle. */
    void* systemHandle() const noexcept { return handle.get(); }

private:
    struct Unload
    {
        void operator() (void* handle) const noexcept;
    };

    void* findAddress (const char* name) const;

    std::unique_ptr<void, Unload> handle;
};

} // namespace larkspire
