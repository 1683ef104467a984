// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "Vst2.h"

#include <string>
#include <vector>

/** One instance of the library, from loading to unloading. */
class Plugin
{
public:
    /** Throws std::runtime_error if the file cannot be loaded or gives no instance. */
    explicit Plugin (const std::string& path);
    ~Plugin();

    Plugin (const Plugin&) = delete;
    Plugin& operator= (const Plugin&) = delete;

    Vst2::VstIntPtr dispatch (Vst2::VstInt32 opcode,
                              Vst2::VstInt32 index = 0,
                              Vst2::VstIntPtr value = 0,
                              void* data = nullptr,
                              float option = 0.0f);

    /** What a text opcode writes. */
    std::string text (Vst2::VstInt32 opcode);

    Vst2::AEffect& effect() { return *instance; }

    void setPosition (int position) { instance->setParameter (instance, 0, static_cast<float> (position) / 9.0f); }
    float parameter() { return instance->getParameter (instance, 0); }

    /** The values that the host was told by automation, and how many gestures it was told of. */
    static inline std::vector<float> automation;
    static inline int gestures = 0;

private:
    static Vst2::VstIntPtr VSTCALLBACK
    answer (Vst2::AEffect*, Vst2::VstInt32 opcode, Vst2::VstInt32, Vst2::VstIntPtr, void*, float option);

    void* library = nullptr; // Windows' handle; its header stays out of this one
    Vst2::AEffect* instance = nullptr;
};
