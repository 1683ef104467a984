// SPDX-License-Identifier: AGPL-3.0-only
// What an LV2 host finds in the library.
#include "lv2/VoicePlugin.h"

#include <lv2/core/lv2.h>

#include <array>
#include <new>

namespace
{
using larkspire::VoicePlugin;

template <std::size_t channels>
LV2_Handle instantiate (const LV2_Descriptor*, double rate, const char*, const LV2_Feature* const*)
{
    return larkspire::isUsableRate (rate) ? new (std::nothrow) VoicePlugin (rate, channels) : nullptr;
}

void connectPort (LV2_Handle instance, std::uint32_t port, void* data)
{
    static_cast<VoicePlugin*> (instance)->connect (port, data);
}

void run (LV2_Handle instance, std::uint32_t frames)
{
    static_cast<VoicePlugin*> (instance)->run (frames);
}

void cleanUp (LV2_Handle instance)
{
    delete static_cast<VoicePlugin*> (instance);
}

template <std::size_t channels>
constexpr LV2_Descriptor describe (const char* uri)
{
    return { .URI = uri,
             .instantiate = instantiate<channels>,
             .connect_port = connectPort,
             .activate = nullptr,
             .run = run,
             .deactivate = nullptr,
             .cleanup = cleanUp,
             .extension_data = nullptr };
}

constexpr std::array descriptors { describe<2> ("urn:quendal:larkspire:stereo"),
                                   describe<1> ("urn:quendal:larkspire:mono") };
} // namespace

LV2_SYMBOL_EXPORT const LV2_Descriptor* lv2_descriptor (std::uint32_t index)
{
    return index < descriptors.size() ? &descriptors[index] : nullptr;
}
