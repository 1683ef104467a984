// SPDX-License-Identifier: AGPL-3.0-only
#include "host/HostedPlugin.h"

#include "base/Failure.h"

#include <array>
#include <cstdio>
#include <mutex>
#include <string>

namespace larkspire
{

namespace
{
constexpr Vst2::VstIntPtr processLevelOffline = 4;

/** Held while an instance is made, prepared or closed. */
std::mutex& lifeOfInstances()
{
    static std::mutex mutex;
    return mutex;
}

Vst2::VstIntPtr answerWithText (void* destination, const char* text)
{
    if (destination == nullptr)
        return 0;

    std::snprintf (static_cast<char*> (destination), Vst2::kVstMaxVendorStrLen, "%s", text);
    return 1;
}
} // namespace

HostedPlugin::HostedPlugin (const PluginLibrary& library, const PluginSetup& setup) : settings (setup)
{
    const std::lock_guard lock (lifeOfInstances());

    // In here, so that a failure closes the instance before the next one's turn.
    try
    {
        instance.emplace (library, host);
        prepare (library);
    }
    catch (...)
    {
        instance.reset();
        throw;
    }
}

void HostedPlugin::prepare (const PluginLibrary& library)
{
    for (auto* side : { &inputs, &outputs })
        for (auto& buffer : *side)
            buffer.resize (static_cast<std::size_t> (settings.blockSize));

    if (! instance->setChannels (settings.shape.channels))
        throw Failure (library.path(), "does not take " + std::to_string (settings.shape.channels) + " channels");

    instance->prepare (static_cast<float> (settings.shape.sampleRate), settings.blockSize);
    instance->setParameter (knobPosition (settings.mode));
    instance->resume();
    instance->dispatch (Vst2::effStartProcess);
}

HostedPlugin::~HostedPlugin()
{
    const std::lock_guard lock (lifeOfInstances());
    instance->dispatch (Vst2::effStopProcess);
    instance->suspend();
    instance.reset();
}

void HostedPlugin::process (std::span<float> interleaved)
{
    const auto channels = static_cast<std::size_t> (settings.shape.channels);
    const auto frames = interleaved.size() / channels;

    for (std::size_t channel = 0; channel < channels; ++channel)
        for (std::size_t frame = 0; frame < frames; ++frame)
            inputs[channel][frame] = interleaved[frame * channels + channel];

    const std::array<float*, 2> inputPointers { inputs[0].data(), inputs[1].data() };
    const std::array<float*, 2> outputPointers { outputs[0].data(), outputs[1].data() };
    instance->process (inputPointers.data(), outputPointers.data(), frames);

    for (std::size_t channel = 0; channel < channels; ++channel)
        for (std::size_t frame = 0; frame < frames; ++frame)
            interleaved[frame * channels + channel] = outputs[channel][frame];
}

Vst2::VstIntPtr HostedPlugin::OfflineHost::answer (
    Vst2::VstInt32 opcode, Vst2::VstInt32 index, Vst2::VstIntPtr value, void* data, float option)
{
    switch (opcode)
    {
    case Vst2::audioMasterGetSampleRate:
        return setup.shape.sampleRate;
    case Vst2::audioMasterGetBlockSize:
        return setup.blockSize;
    case Vst2::audioMasterGetCurrentProcessLevel:
        return processLevelOffline;
    case Vst2::audioMasterGetVendorString:
        return answerWithText (data, "Quendal");
    case Vst2::audioMasterGetProductString:
        return answerWithText (data, "larkspire-render");
    case Vst2::audioMasterGetVendorVersion:
        return 1;
    default:
        return PluginHost::answer (opcode, index, value, data, option);
    }
}

} // namespace larkspire
