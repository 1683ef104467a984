// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "host/PluginLibrary.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string>

namespace larkspire
{

/** What a plug-in's calls reach: the other side of its VST 2 interface. */
class PluginHost
{
public:
    virtual ~PluginHost() = default;

    /** One call of the plug-in's to its host, on whatever thread. This answers what every host must, the version of
        the interface, and 0 to all else. */
    virtual Vst2::VstIntPtr
    answer (Vst2::VstInt32 opcode, Vst2::VstInt32 index, Vst2::VstIntPtr value, void* data, float option);
};

/** One instance of the plug-in, from VSTPluginMain to effClose. Every operation is one call or a few of the VST 2
    interface, and none happens by itself: the instance is neither prepared nor running after construction. */
class PluginInstance
{
public:
    /** Makes an instance and opens it. Library and host must outlive it. Throws Failure if the library gives none. */
    PluginInstance (const PluginLibrary& library, PluginHost& host);

    Vst2::AEffect& effect() const noexcept { return *instance; }

    Vst2::VstIntPtr dispatch (Vst2::VstInt32 opcode,
                              Vst2::VstInt32 index = 0,
                              Vst2::VstIntPtr value = 0,
                              void* data = nullptr,
                              float option = 0.0f) const;

    /** What a text opcode writes. */
    std::string text (Vst2::VstInt32 opcode, Vst2::VstInt32 index = 0) const;

    /** The knob's parameter, 0 to 1. */
    void setParameter (float value) const { instance->setParameter (instance.get(), 0, value); }
    float getParameter() const { return instance->getParameter (instance.get(), 0); }

    /** Asks for a layout of this type both ways; whether the plug-in accepts it. */
    bool setLayout (Vst2::VstInt32 inputType, int inputChannels, Vst2::VstInt32 outputType, int outputChannels) const;

    /** Asks for mono (1) or stereo (2) on both sides; whether the plug-in accepts it. */
    bool setChannels (int channels) const;

    /** Sets the sample rate in Hz and the most frames of a block. */
    void prepare (float sampleRate, int blockSize) const;

    void resume() const { dispatch (Vst2::effMainsChanged, 0, 1); }
    void suspend() const { dispatch (Vst2::effMainsChanged, 0, 0); }

    /** Processes frames; two channels each way, which may be the same. */
    void process (float* const* inputs, float* const* outputs, std::size_t frames) const;

    /** What effGetChunk gives: of the program or of the bank. */
    std::string chunk (bool ofProgram = false) const;

    /** Hands a copy of a chunk over that ends where the chunk ends, so that memory checkers see a read behind it. */
    void setChunk (const std::string& bytes, bool ofProgram = false) const;

private:
    struct Close
    {
        void operator() (Vst2::AEffect* effect) const;
    };

    std::unique_ptr<Vst2::AEffect, Close> instance;
};

} // namespace larkspire
