// SPDX-License-Identifier: AGPL-3.0-only
#include "host/RawHost.h"

#include <array>
#include <dlfcn.h>
#include <stdexcept>

std::string RawHost::pluginPath()
{
    return LARKSPIRE_PLUGIN_PATH;
}

namespace
{
void* load (const std::string& libraryPath)
{
    if (auto* library = dlopen (libraryPath.c_str(), RTLD_NOW | RTLD_LOCAL))
        return library;

    throw std::runtime_error (dlerror());
}

RawHost::EntryPoint entryPointOf (void* library)
{
    if (auto* entry = dlsym (library, "VSTPluginMain"))
        return reinterpret_cast<RawHost::EntryPoint> (entry);

    throw std::runtime_error (dlerror());
}
} // namespace

RawHost::EntryPoint RawHost::entryPoint (const std::string& libraryPath)
{
    return entryPointOf (load (libraryPath));
}

RawHost::EntryPoint RawHost::entryPoint() const
{
    return entryPointOf (library);
}

RawHost::RawHost (const std::string& libraryPath)
    : library (load (libraryPath)),
      instance (entryPointOf (library) (answer))
{
    if (instance == nullptr)
    {
        dlclose (library);
        throw std::runtime_error ("VSTPluginMain gave no instance");
    }

    instance->user = this;
    dispatch (Vst2::effOpen);
}

RawHost::~RawHost()
{
    dispatch (Vst2::effClose);
    dlclose (library);
}

Vst2::VstIntPtr
RawHost::dispatch (Vst2::VstInt32 opcode, Vst2::VstInt32 index, Vst2::VstIntPtr value, void* ptr, float opt)
{
    return instance->dispatcher (instance, opcode, index, value, ptr, opt);
}

std::string RawHost::text (Vst2::VstInt32 opcode, Vst2::VstInt32 index)
{
    std::array<char, 256> buffer {};
    buffer.fill ('#');
    buffer.back() = 0;
    dispatch (opcode, index, 0, buffer.data());
    return buffer.data();
}

Vst2::VstIntPtr RawHost::askForLayout (Vst2::VstInt32 inputType,
                                       Vst2::VstInt32 inputChannels,
                                       Vst2::VstInt32 outputType,
                                       Vst2::VstInt32 outputChannels)
{
    Vst2::VstSpeakerArrangement input {};
    input.type = inputType;
    input.numChannels = inputChannels;
    Vst2::VstSpeakerArrangement output {};
    output.type = outputType;
    output.numChannels = outputChannels;
    return dispatch (Vst2::effSetSpeakerArrangement, 0, reinterpret_cast<Vst2::VstIntPtr> (&input), &output);
}

void RawHost::start (float rate, int blockSize, bool mono)
{
    const Vst2::VstInt32 type = mono ? Vst2::kSpeakerArrMono : Vst2::kSpeakerArrStereo;
    const int channels = mono ? 1 : 2;

    if (askForLayout (type, channels, type, channels) != 1)
        throw std::runtime_error ("the plug-in refused its layout");

    dispatch (Vst2::effSetSampleRate, 0, 0, nullptr, rate);
    dispatch (Vst2::effSetBlockSize, 0, blockSize);
    resume();
}

void RawHost::process (std::vector<float>& left, std::vector<float>& right, std::size_t from, std::size_t frames)
{
    float* channels[] = { left.data() + from, right.data() + from };
    instance->processReplacing (instance, channels, channels, static_cast<Vst2::VstInt32> (frames));
}

std::vector<RawHost::Call> RawHost::takeCalls()
{
    return calls.takeAll();
}

std::string RawHost::chunk (bool ofProgram)
{
    void* data = nullptr;
    const auto size = dispatch (Vst2::effGetChunk, ofProgram ? 1 : 0, 0, &data);
    return { static_cast<const char*> (data), static_cast<std::size_t> (size) };
}

void RawHost::setChunk (const std::string& bytes, bool ofProgram)
{
    std::vector<char> copy (bytes.begin(), bytes.end());
    dispatch (Vst2::effSetChunk, ofProgram ? 1 : 0, static_cast<Vst2::VstIntPtr> (copy.size()), copy.data());
}

Vst2::VstIntPtr VSTCALLBACK
RawHost::answer (Vst2::AEffect* effect, Vst2::VstInt32 opcode, Vst2::VstInt32 index, Vst2::VstIntPtr, void*, float opt)
{
    if (effect == nullptr || effect->user == nullptr) // it is only just being made
        return opcode == Vst2::audioMasterVersion ? kVstVersion : 0;

    auto& host = *static_cast<RawHost*> (effect->user);
    host.calls.append ({ opcode, index, opt });

    switch (opcode)
    {
    case Vst2::audioMasterVersion:
        return kVstVersion;

    case Vst2::audioMasterGetTime:
        return reinterpret_cast<Vst2::VstIntPtr> (host.time);

    default:
        return 0;
    }
}
