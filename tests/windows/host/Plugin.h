// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "host/KnobMode.h"
#include "host/PluginInstance.h"

#include <string>
#include <vector>

/** A host that remembers what it was told of the knob. */
class KnobListener : public larkspire::PluginHost
{
public:
    Vst2::VstIntPtr
    answer (Vst2::VstInt32 opcode, Vst2::VstInt32 index, Vst2::VstIntPtr value, void* data, float option) override
    {
        if (opcode == Vst2::audioMasterAutomate)
            automation.push_back (option);

        if (opcode == Vst2::audioMasterBeginEdit || opcode == Vst2::audioMasterEndEdit)
            ++gestures;

        return PluginHost::answer (opcode, index, value, data, option);
    }

    std::vector<float> automation;
    int gestures = 0;
};

/** One instance of the library, from loading to unloading. */
class Plugin : private larkspire::PluginLibrary, public KnobListener, public larkspire::PluginInstance
{
public:
    /** Throws larkspire::Failure if the file cannot be loaded or gives no instance. */
    explicit Plugin (const std::string& file)
        : PluginLibrary (file),
          PluginInstance (static_cast<const PluginLibrary&> (*this), *this)
    {
    }

    void setPosition (int position) const { setParameter (larkspire::knobPosition (position)); }
};
