// SPDX-License-Identifier: AGPL-3.0-only
#include "host/PluginLibrary.h"

#include "base/Failure.h"

namespace larkspire
{

namespace
{
constexpr const char* entryName = "VSTPluginMain";
constexpr Vst2::VstInt32 larkspireId = 0x546d7771; // 'Tmwq'

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

PluginLibrary::PluginLibrary (const std::filesystem::path& path)
    : libraryPath (path),
      library (path),
      entry (library.find<EntryPoint> (entryName))
{
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
