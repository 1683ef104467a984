// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "host/PluginInstance.h"
#include "support/KnobPosition.h"
#include "support/Paths.h"

#include <atomic>
#include <mutex>
#include <string>
#include <vector>

/** What the plug-in asks of its host, written down, from whatever thread. */
class CallLog : public larkspire::PluginHost
{
public:
    /** What the plug-in is told when it asks for the time, until another is given: nothing, at first. */
    void setTime (const Vst2::VstTimeInfo* info) { time = info; }

    /** One opcode that the plug-in has sent to its host. */
    struct Call
    {
        Vst2::VstInt32 opcode = 0;
        Vst2::VstInt32 index = 0;
        float opt = 0.0f;
    };

    /** All that the plug-in has sent since the last call of this. */
    std::vector<Call> takeCalls();

    /** From here on calls are answered and not written down: writing locks and allocates, which is what the tests of
        the audio thread look for. */
    void stopLogging() { logging = false; }

    Vst2::VstIntPtr
    answer (Vst2::VstInt32 opcode, Vst2::VstInt32 index, Vst2::VstIntPtr value, void* data, float option) override;

private:
    const Vst2::VstTimeInfo* time = nullptr;
    std::atomic<bool> logging { true };
    std::mutex mutex;
    std::vector<Call> calls;
};

/** A host that does nothing but what it is told: one instance of a library that is loaded for it, and a list of what
   the plug-in asks for, which lives longer than the instance. */
class RawHost : private larkspire::PluginLibrary, public CallLog, public larkspire::PluginInstance
{
public:
    /** Loads a library and makes an instance. Throws larkspire::Failure if that fails. */
    explicit RawHost (const std::string& pluginPath = paths::plugin());

    using larkspire::PluginLibrary::entryPoint;

    /** A fixture whose tests make many instances: one that lives all the time keeps the library and JUCE's message
        thread in place, which is most of what an instance costs. */
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

    /** Sets layout, rate in Hz and block size, and resumes. Throws std::runtime_error if the layout is refused. */
    void start (float rate, int blockSize = 4096, bool mono = false) const;

    using larkspire::PluginInstance::process;

    /** Processes frames of both lists in place, from the given frame on. */
    void process (std::vector<float>& left, std::vector<float>& right, std::size_t from, std::size_t frames) const;
};
