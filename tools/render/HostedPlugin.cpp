// SPDX-License-Identifier: AGPL-3.0-only
#include "HostedPlugin.h"

#include "Failure.h"

#include <array>
#include <cstdio>
#include <mutex>
#include <string>

namespace larkspire::render
{

namespace
{
// The values that the plug-in's knob can take are ninths.
constexpr float knobSteps = 9.0f;

constexpr Vst2::VstIntPtr processLevelOffline = 4;

/** Held while an instance is made, prepared or closed. */
std::mutex& lifeOfInstances()
{
    static std::mutex mutex;
    return mutex;
}

Vst2::VstSpeakerArrangement arrangementOf (int channels)
{
    Vst2::VstSpeakerArrangement arrangement {};
    arrangement.type = channels == 1 ? Vst2::kSpeakerArrMono : Vst2::kSpeakerArrStereo;
    arrangement.numChannels = channels;
    arrangement.speakers[0].type = channels == 1 ? Vst2::kSpeakerM : Vst2::kSpeakerL;
    arrangement.speakers[1].type = channels == 1 ? Vst2::kSpeakerUndefined : Vst2::kSpeakerR;
    return arrangement;
}

Vst2::VstIntPtr answerWithText (void* destination, const char* text)
{
    if (destination == nullptr)
        return 0;

    std::snprintf (static_cast<char*> (destination), Vst2::kVstMaxVendorStrLen, "%s", text);
    return 1;
}
} // namespace

void HostedPlugin::Close::operator() (Vst2::AEffect* instance) const
{
    instance->dispatcher (instance, Vst2::effClose, 0, 0, nullptr, 0.0f);
}

HostedPlugin::HostedPlugin (const PluginLibrary& library, const PluginSetup& setup) : settings (setup)
{
    const std::lock_guard lock (lifeOfInstances());

    // In here, so that a failure closes the instance before the next one's turn.
    try
    {
        effect.reset (library.createEffect (answer));
        prepare (library);
    }
    catch (...)
    {
        effect.reset();
        throw;
    }
}

void HostedPlugin::prepare (const PluginLibrary& library)
{
    for (auto* side : { &inputs, &outputs })
        for (auto& buffer : *side)
            buffer.resize (static_cast<std::size_t> (settings.blockSize));

    effect->resvd1 = reinterpret_cast<Vst2::VstIntPtr> (this);
    dispatch (Vst2::effOpen);

    auto input = arrangementOf (settings.shape.channels);
    auto output = input;

    if (dispatch (Vst2::effSetSpeakerArrangement, reinterpret_cast<Vst2::VstIntPtr> (&input), &output) == 0)
        throw Failure (library.path(), "does not take " + std::to_string (settings.shape.channels) + " channels");

    dispatch (Vst2::effSetSampleRate, 0, nullptr, static_cast<float> (settings.shape.sampleRate));
    dispatch (Vst2::effSetBlockSize, settings.blockSize);
    effect->setParameter (effect.get(), 0, static_cast<float> (settings.mode) / knobSteps);
    dispatch (Vst2::effMainsChanged, 1);
    dispatch (Vst2::effStartProcess);
}

HostedPlugin::~HostedPlugin()
{
    const std::lock_guard lock (lifeOfInstances());
    dispatch (Vst2::effStopProcess);
    dispatch (Vst2::effMainsChanged, 0);
    effect.reset();
}

void HostedPlugin::process (std::span<float> interleaved)
{
    const auto channels = static_cast<std::size_t> (settings.shape.channels);
    const auto frames = interleaved.size() / channels;

    for (std::size_t channel = 0; channel < channels; ++channel)
        for (std::size_t frame = 0; frame < frames; ++frame)
            inputs[channel][frame] = interleaved[frame * channels + channel];

    std::array<float*, 2> inputPointers { inputs[0].data(), inputs[1].data() };
    std::array<float*, 2> outputPointers { outputs[0].data(), outputs[1].data() };
    effect->processReplacing (
        effect.get(), inputPointers.data(), outputPointers.data(), static_cast<Vst2::VstInt32> (frames));

    for (std::size_t channel = 0; channel < channels; ++channel)
        for (std::size_t frame = 0; frame < frames; ++frame)
            interleaved[frame * channels + channel] = outputs[channel][frame];
}

const HostedPlugin* HostedPlugin::ownerOf (const Vst2::AEffect& effect)
{
    return reinterpret_cast<const HostedPlugin*> (effect.resvd1); // NOLINT(performance-no-int-to-ptr)
}

Vst2::VstIntPtr
HostedPlugin::answer (Vst2::AEffect* effect, Vst2::VstInt32 opcode, Vst2::VstInt32, Vst2::VstIntPtr, void* data, float)
{
    // While it is being made, the plug-in has no record to ask with.
    const auto* host = effect != nullptr ? ownerOf (*effect) : nullptr;

    switch (opcode)
    {
    case Vst2::audioMasterVersion:
        return kVstVersion;
    case Vst2::audioMasterGetSampleRate:
        return host != nullptr ? host->settings.shape.sampleRate : 0;
    case Vst2::audioMasterGetBlockSize:
        return host != nullptr ? host->settings.blockSize : 0;
    case Vst2::audioMasterGetCurrentProcessLevel:
        return processLevelOffline;
    case Vst2::audioMasterGetVendorString:
        return answerWithText (data, "Quendal");
    case Vst2::audioMasterGetProductString:
        return answerWithText (data, "larkspire-render");
    case Vst2::audioMasterGetVendorVersion:
        return 1;
    default:
        return 0; // neither transport nor window nor automation
    }
}

Vst2::VstIntPtr HostedPlugin::dispatch (int opcode, Vst2::VstIntPtr value, void* data, float option)
{
    return effect->dispatcher (effect.get(), opcode, 0, value, data, option);
}

} // namespace larkspire::render
