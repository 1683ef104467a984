// SPDX-License-Identifier: AGPL-3.0-only
#include "host/PluginLibrary.h"

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
constexpr const char* entryName = "VSTPluginMain";
constexpr Vst2::VstInt32 larkspireId = 0x546d7771; // 'Tmwq'

#ifdef _WIN32

void* load (const std::filesystem::path& path)
{
    return LoadLibraryW (path.c_str());
}

void unload (void* library)
{
    FreeLibrary (static_cast<HMODULE> (library));
}

void* findEntry (void* library)
{
    return reinterpret_cast<void*> (GetProcAddress (static_cast<HMODULE> (library), entryName));
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

void unload (void* library)
{
    dlclose (library);
}

void* findEntry (void* library)
{
    return dlsym (library, entryName);
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

Vst2::VstIntPtr VSTCALLBACK
answerWhileChecking (Vst2::AEffect*, Vst2::VstInt32 opcode, Vst2::VstInt32, Vst2::VstIntPtr, void*, float)
{
    return opcode == Vst2::audioMasterVersion ? kVstVersion : 0;
}

void close (Vst2::AEffect& effect)
{
    effect.dispatcher (&effect, Vst2::effClose, 0, 0, nullptr, 0.0f);
}
} // namespace

void PluginLibrary::Unload::operator() (void* library) const noexcept
{
    unload (library);
}

PluginLibrary::PluginLibrary (const std::filesystem::path& path) : libraryPath (path)
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

    entry = reinterpret_cast<EntryPoint> (findEntry (handle.get()));

    if (entry == nullptr)
        throw Failure (path, "is not a VST 2 plug-in");
}

void PluginLibrary::check() const
{
    close (*createEffect (answerWhileChecking));
}

Vst2::AEffect* PluginLibrary::createEffect (Vst2::audioMasterCallback host) const
{
    auto* effect = entry (host);

    if (effect == nullptr)
        throw Failure (libraryPath, "gives no plug-in");

    if (effect->magic != Vst2::kEffectMagic)
        throw Failure (libraryPath, "is not a VST 2 plug-in");

    if (effect->uniqueID != larkspireId)
    {
        close (*effect);
        throw Failure (libraryPath, "is another plug-in, not Quendal Larkspire");
    }

    return effect;
}

} // namespace larkspire
