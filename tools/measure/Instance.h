// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "host/HostedPlugin.h"

#include <cstddef>
#include <span>
#include <vector>

namespace larkspire::measure
{

/** One instance of the built library under measurement. */
class Instance
{
public:
    Instance (const PluginLibrary& library, KnobMode mode, int sampleRate, int channels = 1);

    /** What comes out for a signal of any length, channels interleaved, linear full scale 1.0. The instance goes on
       from where it stood. */
    std::vector<float> process (std::vector<float> interleaved);

    /** Lets it hear silence for so many frames. */
    void rest (std::size_t frames);

private:
    int channels;
    HostedPlugin plugin;
};

} // namespace larkspire::measure
