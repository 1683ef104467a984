// SPDX-License-Identifier: AGPL-3.0-only
#include "PluginLibrary.h"

#include "Failure.h"

#include <dlfcn.h>

#include <string>

namespace larkspire::render
{

namespace
{
constexpr Vst2::VstInt32 larkspireId = 0x546d7771; // 'Tmwq'

/** The linker takes a name without a slash for one that it should search for. */
std::filesystem::path withSlash (const std::filesystem::path& path)
{
    return path.has_parent_path() ? path : "." / path;
}

/** The linker's last complaint, without the path that it begins with. */
std::string linkerError (const std::filesystem::path& path)
{
    const char* text = dlerror(); // NOLINT(concurrency-mt-unsafe)
    std::string reason = text != nullptr ? text : "unknown error";

    if (const auto beginning = path.string() + ": "; reason.starts_with (beginning))
        reason.erase (0, beginning.size());

    return reason;
}

Vst2::VstIntPtr
answerWhileChecking (Vst2::AEffect*, Vst2::VstInt32 opcode, Vst2::VstInt32, Vst2::VstIntPtr, void*, float)
{
    return opcode == Vst2::audioMasterVersion ? kVstVersion : 0;
}
} // namespace

void PluginLibrary::Unload::operator() (void* library) const noexcept
{
    dlclose (library);
}

PluginLibrary::PluginLibrary (const std::filesystem::path& path) : libraryPath (path)
{
    std::error_code error;
    const auto status = std::filesystem::status (path, error);

    if (! std::filesystem::exists (status))
        throw Failure (path, "cannot be loaded: " + error.message());

    if (std::filesystem::is_directory (status))
        throw Failure (path, "cannot be loaded: it is a folder");

    handle.reset (dlopen (withSlash (path).c_str(), RTLD_NOW | RTLD_LOCAL));

    if (handle == nullptr)
        throw Failure (path, "cannot be loaded: " + linkerError (withSlash (path)));

    entry = reinterpret_cast<decltype (entry)> (dlsym (handle.get(), "VSTPluginMain"));

    if (entry == nullptr)
        throw Failure (path, "is not a VST 2 plug-in");

    auto* effect = createEffect (answerWhileChecking);
    effect->dispatcher (effect, Vst2::effClose, 0, 0, nullptr, 0.0f);
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
        effect->dispatcher (effect, Vst2::effClose, 0, 0, nullptr, 0.0f);
        throw Failure (libraryPath, "is another plug-in, not Quendal Larkspire");
    }

    return effect;
}

} // namespace larkspire::render
