// SPDX-License-Identifier: AGPL-3.0-only
#include "host/PluginInstance.h"

#include <array>
#include <vector>

namespace larkspire
{

namespace
{
Vst2::VstIntPtr VSTCALLBACK passOn (
    Vst2::AEffect* effect, Vst2::VstInt32 opcode, Vst2::VstInt32 index, Vst2::VstIntPtr value, void* data, float option)
{
    // The effect's record belongs to the plug-in, but for this field, which is the host's. It is empty, and there is no
    // record, while the plug-in is being made.
    const auto owner = effect != nullptr ? effect->resvd1 : 0;

    if (owner == 0)
        return opcode == Vst2::audioMasterVersion ? kVstVersion : 0;

    auto& host = *reinterpret_cast<PluginHost*> (owner); // NOLINT(performance-no-int-to-ptr)
    return host.answer (opcode, index, value, data, option);
}

Vst2::VstSpeakerArrangement arrangement (Vst2::VstInt32 type, int channels)
{
    Vst2::VstSpeakerArrangement speakers {};
    speakers.type = type;
    speakers.numChannels = channels;
    speakers.speakers[0].type = channels == 1 ? Vst2::kSpeakerM : Vst2::kSpeakerL;
    speakers.speakers[1].type = channels == 1 ? Vst2::kSpeakerUndefined : Vst2::kSpeakerR;
    return speakers;
}
} // namespace

Vst2::VstIntPtr PluginHost::answer (Vst2::VstInt32 opcode, Vst2::VstInt32, Vst2::VstIntPtr, void*, float)
{
    return opcode == Vst2::audioMasterVersion ? kVstVersion : 0;
}

void PluginInstance::Close::operator() (Vst2::AEffect* effect) const
{
    effect->dispatcher (effect, Vst2::effClose, 0, 0, nullptr, 0.0f);
}

PluginInstance::PluginInstance (const PluginLibrary& library, PluginHost& host)
    : instance (library.createEffect (passOn))
{
    instance->resvd1 = reinterpret_cast<Vst2::VstIntPtr> (&host);
    dispatch (Vst2::effOpen);
}

Vst2::VstIntPtr PluginInstance::dispatch (
    Vst2::VstInt32 opcode, Vst2::VstInt32 index, Vst2::VstIntPtr value, void* data, float option) const
{
    return instance->dispatcher (instance.get(), opcode, index, value, data, option);
}

std::string PluginInstance::text (Vst2::VstInt32 opcode, Vst2::VstInt32 index) const
{
    std::array<char, 256> buffer {};
    buffer.fill ('#'); // a text without an end shows
    buffer.back() = 0;
    dispatch (opcode, index, 0, buffer.data());
    return buffer.data();
}

bool PluginInstance::setLayout (Vst2::VstInt32 inputType,
                                int inputChannels,
                                Vst2::VstInt32 outputType,
                                int outputChannels) const
{
    auto input = arrangement (inputType, inputChannels);
    auto output = arrangement (outputType, outputChannels);
    return dispatch (Vst2::effSetSpeakerArrangement, 0, reinterpret_cast<Vst2::VstIntPtr> (&input), &output) == 1;
}

bool PluginInstance::setChannels (int channels) const
{
    const Vst2::VstInt32 type = channels == 1 ? Vst2::kSpeakerArrMono : Vst2::kSpeakerArrStereo;
    return setLayout (type, channels, type, channels);
}

void PluginInstance::prepare (float sampleRate, int blockSize) const
{
    dispatch (Vst2::effSetSampleRate, 0, 0, nullptr, sampleRate);
    dispatch (Vst2::effSetBlockSize, 0, blockSize);
}

void PluginInstance::process (float* const* inputs, float* const* outputs, std::size_t frames) const
{
    // The interface takes pointers that it might write to, and plug-ins do not.
    instance->processReplacing (instance.get(),
                                const_cast<float**> (inputs),
                                const_cast<float**> (outputs),
                                static_cast<Vst2::VstInt32> (frames));
}

std::string PluginInstance::chunk (bool ofProgram) const
{
    void* data = nullptr;
    const auto size = dispatch (Vst2::effGetChunk, ofProgram ? 1 : 0, 0, &data);
    return { static_cast<const char*> (data), static_cast<std::size_t> (size) };
}

void PluginInstance::setChunk (const std::string& bytes, bool ofProgram) const
{
    std::vector<char> copy (bytes.begin(), bytes.end());
    dispatch (Vst2::effSetChunk, ofProgram ? 1 : 0, static_cast<Vst2::VstIntPtr> (copy.size()), copy.data());
}

} // namespace larkspire
