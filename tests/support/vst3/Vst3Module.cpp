// SPDX-License-Identifier: AGPL-3.0-only
#include "support/vst3/Vst3Module.h"

#include "base/Failure.h"

namespace
{
#ifdef _WIN32
constexpr const char* folder = "x86_64-win";
constexpr const char* extension = ".vst3";
#else
constexpr const char* folder = "x86_64-linux";
constexpr const char* extension = ".so";
#endif
} // namespace

std::filesystem::path Vst3Module::libraryOf (const std::filesystem::path& bundle)
{
    return bundle / "Contents" / folder / (bundle.stem().string() + extension);
}

Vst3Module::Vst3Module (const std::filesystem::path& bundle) : library (libraryOf (bundle))
{
#ifdef _WIN32
    using Enter = bool (PLUGIN_API*)();
    const auto enter = library.find<Enter> ("InitDll");
    const bool isEntered = enter == nullptr || enter();
#else
    using Enter = bool (PLUGIN_API*) (void*);
    const auto enter = library.find<Enter> ("ModuleEntry");
    const bool isEntered = enter != nullptr && enter (library.systemHandle());
#endif

    using GetFactory = Steinberg::IPluginFactory*(PLUGIN_API*)();
    const auto getFactory = library.find<GetFactory> ("GetPluginFactory");

    if (! isEntered || getFactory == nullptr)
        throw larkspire::Failure (bundle, "is not a VST 3 plug-in");

    pluginFactory.reset (getFactory());
}

Vst3Module::~Vst3Module()
{
    pluginFactory.reset();

#ifdef _WIN32
    const auto* name = "ExitDll";
#else
    const auto* name = "ModuleExit";
#endif

    if (const auto leave = library.find<bool (PLUGIN_API*)()> (name))
        leave();
}
