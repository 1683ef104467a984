// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "host/CallLog.h"

#include <Vst2.h>

#include <string>
#include <vector>

/** A host that does nothing but what it is told: one instance of a built library behind its VST 2 interface. */
class RawHost
{
public:
    /** Loads a library and makes an instance. Throws std::runtime_error with the loader's words if that fails. */
    explicit RawHost (const std::string& libraryPath = pluginPath());

    /** Closes the instance and unloads the library. */
    ~RawHost();

    RawHost (const RawHost&) = delete;
    RawHost& operator= (const RawHost&) = delete;

    /** The library that this build has made. */
    static std::string pluginPath();

    using EntryPoint = Vst2::AEffect* (*)(Vst2::audioMasterCallback);

    /** The entry point of a library, which this loads and leaves loaded. */
    static EntryPoint entryPoint (const std::string& libraryPath);

    /** The entry point of the library that this has loaded; good for as long as this lives. */
    EntryPoint entryPoint() const;

    Vst2::AEffect& effect() { return *instance; }

    Vst2::VstIntPtr dispatch (
        Vst2::VstInt32 opcode, Vst2::VstInt32 index = 0, Vst2::VstIntPtr value = 0, void* ptr = nullptr, float opt = 0);

    /** What a text opcode writes. */
    std::string text (Vst2::VstInt32 opcode, Vst2::VstInt32 index = 0);

    void setParameter (float value) { instance->setParameter (instance, 0, value); }
    float getParameter() { return instance->getParameter (instance, 0); }

    /** A fixture whose tests make many instances: one that lives all the time keeps the library and the framework's
        message thread in place, which is most of what an instance costs. */
    template <typename Base>
    class Anchored : public Base
    {
    public:
        static void SetUpTestSuite() { anchor = new RawHost; }
        static void TearDownTestSuite()
        {
            delete anchor;
            anchor = nullptr;
        }

    private:
        static inline RawHost* anchor = nullptr;
    };

    /** Asks for a layout of this type both ways; 1 where the plug-in accepts it. */
    Vst2::VstIntPtr askForLayout (Vst2::VstInt32 inputType,
                                  Vst2::VstInt32 inputChannels,
                                  Vst2::VstInt32 outputType,
                                  Vst2::VstInt32 outputChannels);

    /** Sets layout, rate in Hz and block size, and resumes. */
    void start (float rate, int blockSize = 4096, bool mono = false);
    void suspend() { dispatch (Vst2::effMainsChanged, 0, 0); }
    void resume() { dispatch (Vst2::effMainsChanged, 0, 1); }

    /** Processes frames of both lists in place, from the given frame on. */
    void process (std::vector<float>& left, std::vector<float>& right, std::size_t from, std::size_t frames);

    /** What the plug-in is told when it asks for the time, until another is given: nothing, at first. */
    void setTime (const Vst2::VstTimeInfo* info) { time = info; }

    /** One opcode that the plug-in has sent to its host. */
    struct Call
    {
        Vst2::VstInt32 opcode = 0;
        Vst2::VstInt32 index = 0;
        float opt = 0.0f;
    };

    /** All that the plug-in has sent since the last call of this, from whatever thread. */
    std::vector<Call> takeCalls();

    /** What effGetChunk gives: of the program or of the bank. */
    std::string chunk (bool ofProgram = false);

    /** Hands a copy of a chunk over that ends where the chunk ends, so that memory checkers see a read behind it. */
    void setChunk (const std::string& bytes, bool ofProgram = false);

private:
    static Vst2::VstIntPtr VSTCALLBACK answer (Vst2::AEffect* effect,
                                               Vst2::VstInt32 opcode,
                                               Vst2::VstInt32 index,
                                               Vst2::VstIntPtr value,
                                               void* ptr,
                                               float opt);

    void* library = nullptr;
    Vst2::AEffect* instance = nullptr;
    const Vst2::VstTimeInfo* time = nullptr;
    CallLog<Call, 4096> calls;
};
