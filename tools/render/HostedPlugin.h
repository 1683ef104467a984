// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "AudioShape.h"
#include "PluginLibrary.h"

#include <array>
#include <memory>
#include <span>
#include <vector>

namespace larkspire::render
{

/** The positions of the plug-in's knob that have a name. The numbers are those of the plug-in. */
enum class Mode
{
    bypass = 0,
    gentle = 1,
    medium = 2,
    powerful = 3
};

/** All of them, in the order of the knob. */
inline constexpr std::array<Mode, 4> allModes { Mode::bypass, Mode::gentle, Mode::medium, Mode::powerful };

/** What the plug-in calls a mode. */
constexpr const char* nameOf (Mode mode)
{
    constexpr std::array<const char*, allModes.size()> names { "bypass", "Gentle", "Medium", "Powerful" };
    return names.at (static_cast<std::size_t> (mode));
}

/** What an instance is prepared with. */
struct PluginSetup
{
    Mode mode = Mode::medium;
    AudioShape shape;
    int blockSize = 512; // the most sample frames that it gets at once
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
    struct Close
    {
        void operator() (Vst2::AEffect* effect) const;
    };

    /** The record keeps it in a field that belongs to hosts; null until the constructor has put it there. */
    static const HostedPlugin* ownerOf (const Vst2::AEffect& effect);

    void prepare (const PluginLibrary& library);

    static Vst2::VstIntPtr
    answer (Vst2::AEffect*, Vst2::VstInt32 opcode, Vst2::VstInt32, Vst2::VstIntPtr, void* data, float);

    Vst2::VstIntPtr dispatch (int opcode, Vst2::VstIntPtr value = 0, void* data = nullptr, float option = 0.0f);

    PluginSetup settings;
    std::unique_ptr<Vst2::AEffect, Close> effect;

    // Two buffers each side whatever the number of channels: the plug-in's record always says two.
    std::vector<float> inputs[2];
    std::vector<float> outputs[2];
};

} // namespace larkspire::render
