// SPDX-License-Identifier: AGPL-3.0-only
#include "host/DynamicLibrary.h"

#include "base/Failure.h"

#ifdef _WIN32
    #include <windows.h>
#else
    #include <dlfcn.h>
#endif

#include <string>

namespace larkspire
{

namespace
{
#ifdef _WIN32

void* load (const std::filesystem::path& path)
{
    return LoadLibraryW (path.c_str());
}

std::string loaderError (const std::filesystem::path&)
{
    return "error " + std::to_string (GetLastError());
}

#else

/** The loader searches for a name without a slash in the system's folders. */
std::filesystem::path withSlash (const std::filesystem::path& path)
{
    return path.has_parent_path() ? path : "." / path;
}

void* load (const std::filesystem::path& path)
{
    return dlopen (withSlash (path).c_str(), RTLD_NOW | RTLD_LOCAL);
}

/** The loader's last error, without the path that it begins with. */
std::string loaderError (const std::filesystem::path& path)
{
    const char* text = dlerror(); // NOLINT(concurrency-mt-unsafe)
    std::string reason = text != nullptr ? text : "unknown error";

    if (const auto beginning = withSlash (path).string() + ": "; reason.starts_with (beginning))
        reason.erase (0, beginning.size());

    return reason;
}

#endif
} // namespace

void DynamicLibrary::Unload::operator() (void* library) const noexcept
{
#ifdef _WIN32
    FreeLibrary (static_cast<HMODULE> (library));
#else
    dlclose (library);
#endif
}

DynamicLibrary::DynamicLibrary (const std::filesystem::path& path)
{
    std::error_code error;
    const auto status = std::filesystem::status (path, error);

    if (! std::filesystem::exists (status))
        throw Failure (path, "cannot be loaded: " + error.message());

    if (std::filesystem::is_directory (status))
        throw Failure (path, "cannot be loaded: it is a folder");

    handle.reset (load (path));

    if (handle == nullptr)
        throw Failure (path, "cannot be loaded: " + loaderError (path));
}

void* DynamicLibrary::findAddress (const char* name) const
{
#ifdef _WIN32
    return reinterpret_cast<void*> (GetProcAddress (static_cast<HMODULE> (handle.get()), name));
#else
    return dlsym (handle.get(), name);
#endif
}

} // namespace larkspire
