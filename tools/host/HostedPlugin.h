// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "audio/AudioShape.h"
#include "host/KnobMode.h"
#include "host/PluginInstance.h"

#include <optional>
#include <span>
#include <vector>

namespace larkspire
{

/** What an instance is prepared with. */
struct PluginSetup
{
    KnobMode mode;
    AudioShape shape;
    int blockSize; // the most sample frames that it gets at once
};

/** One running instance of the plug-in, with this program as its host.

    Each belongs to one thread; instances in several threads may be made, run and closed at the same time. Making and
    closing take turns, since hosts do that in one thread and plug-ins may count on it.
*/
class HostedPlugin
{
public:
    /** Makes an instance, prepares it and starts it. Throws Failure if the library gives none or it does not take the
        number of channels. */
    HostedPlugin (const PluginLibrary& library, const PluginSetup& setup);

    /** Stops the instance and closes it. */
    ~HostedPlugin();

    HostedPlugin (const HostedPlugin&) = delete;
    HostedPlugin& operator= (const HostedPlugin&) = delete;

    /** Runs whole frames, channels interleaved, through the plug-in and puts the result in their place. It takes at
        most blockSize frames. */
    void process (std::span<float> interleaved);

private:
    void prepare (const PluginLibrary& library);

    /** Answers as a host that renders a file: no transport, no window, no automation. */
    class OfflineHost : public PluginHost
    {
    public:
        explicit OfflineHost (const PluginSetup& pluginSetup) : setup (pluginSetup) {}

        Vst2::VstIntPtr
        answer (Vst2::VstInt32 opcode, Vst2::VstInt32 index, Vst2::VstIntPtr value, void* data, float option) override;

    private:
        const PluginSetup& setup;
    };

    PluginSetup settings;
    OfflineHost host { settings };
    std::optional<PluginInstance> instance;

    // Two buffers each side whatever the number of channels: the plug-in's record always says two.
    std::vector<float> inputs[2];
    std::vector<float> outputs[2];
};

} // namespace larkspire
