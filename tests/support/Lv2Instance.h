// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "host/DynamicLibrary.h"
#include "support/Paths.h"

#include <lv2/core/lv2.h>

#include <cstddef>
#include <cstdint>
#include <string>

/** The loaded library of an LV2 bundle. */
class Lv2Library
{
public:
    /** Loads the library of a bundle, which is a folder. Throws larkspire::Failure if it is not there or does not
        describe two plug-ins. */
    explicit Lv2Library (const std::string& bundle = paths::lv2());

    /** The file within a bundle that is loaded. */
    static std::string fileOf (const std::string& bundle) { return bundle + "/larkspire.so"; }

    /** A plug-in by its index; null behind the last one. */
    const LV2_Descriptor* descriptor (std::uint32_t index) const { return describe (index); }

    /** The plug-in for mono (1) or stereo (2). */
    const LV2_Descriptor& descriptorFor (std::size_t channels) const { return *descriptor (channels == 2 ? 0 : 1); }

private:
    larkspire::DynamicLibrary library;
    LV2_Descriptor_Function describe;
};

/** One instance of the plug-in, with no port connected. */
class Lv2Instance
{
public:
    /** Throws larkspire::Failure if the plug-in refuses the rate, in Hz. */
    Lv2Instance (const Lv2Library& library, double rate, std::size_t channels);
    ~Lv2Instance() { descriptor.cleanup (instance); }
    Lv2Instance (const Lv2Instance&) = delete;
    Lv2Instance& operator= (const Lv2Instance&) = delete;

    void connect (std::size_t port, void* data) const;
    void connectInputs (float* const* channels) const;
    void connectOutputs (float* const* channels) const;
    void connectMode (float* mode) const;
    void run (std::size_t frames) const { descriptor.run (instance, static_cast<std::uint32_t> (frames)); }

private:
    const LV2_Descriptor& descriptor;
    std::size_t channelCount;
    LV2_Handle instance;
};
