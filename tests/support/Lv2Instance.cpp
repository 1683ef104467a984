// SPDX-License-Identifier: AGPL-3.0-only
#include "support/Lv2Instance.h"

#include "base/Failure.h"

Lv2Library::Lv2Library (const std::string& bundle)
    : library (fileOf (bundle)),
      describe (library.find<LV2_Descriptor_Function> ("lv2_descriptor"))
{
    if (describe == nullptr || descriptor (0) == nullptr || descriptor (1) == nullptr)
        throw larkspire::Failure (bundle, "does not describe two LV2 plug-ins");
}

Lv2Instance::Lv2Instance (const Lv2Library& library, double rate, std::size_t channels)
    : descriptor (library.descriptorFor (channels)),
      channelCount (channels),
      instance (descriptor.instantiate (&descriptor, rate, paths::lv2().c_str(), nullptr))
{
    if (instance == nullptr)
        throw larkspire::Failure (descriptor.URI, "refuses a rate of " + std::to_string (rate) + " Hz");
}

void Lv2Instance::connect (std::size_t port, void* data) const
{
    descriptor.connect_port (instance, static_cast<std::uint32_t> (port), data);
}

void Lv2Instance::connectInputs (float* const* channels) const
{
    for (std::size_t i = 0; i < channelCount; ++i)
        connect (i, channels[i]);
}

void Lv2Instance::connectOutputs (float* const* channels) const
{
    for (std::size_t i = 0; i < channelCount; ++i)
        connect (channelCount + i, channels[i]);
}

void Lv2Instance::connectMode (float* mode) const
{
    connect (2 * channelCount, mode);
}
