// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "host/DynamicLibrary.h"
#include "support/vst3/Interface.h"

#include <pluginterfaces/base/ipluginbase.h>

#include <filesystem>

/** A loaded VST 3 bundle, on Linux or on Windows. */
class Vst3Module
{
public:
    /** Loads the library of a bundle, which is a folder. Throws larkspire::Failure if that fails. */
    explicit Vst3Module (const std::filesystem::path& bundle);
    ~Vst3Module();
    Vst3Module (const Vst3Module&) = delete;
    Vst3Module& operator= (const Vst3Module&) = delete;

    Steinberg::IPluginFactory& factory() const { return *pluginFactory; }

    /** The file within a bundle that is loaded. */
    static std::filesystem::path libraryOf (const std::filesystem::path& bundle);

private:
    larkspire::DynamicLibrary library;
    Interface<Steinberg::IPluginFactory> pluginFactory;
};
