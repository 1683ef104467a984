// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "audio/Resampler.h"
#include "host/HostedPlugin.h"
#include "meter/ChainProbe.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace larkspire::render
{

/** How a sound goes through the plug-in. */
struct VoicePathSettings
{
    KnobMode mode = KnobMode::medium;
    AudioShape shape;
    int blockSize = 4096;           // sample frames that the plug-in gets at once
    std::optional<int> processRate; // Hz, at which it runs; nullopt is the sound's own
    meter::Voices voices = meter::Voices::together;
};

/** What the plug-in gets of a sound: its channels, at the rate that it runs at. */
AudioShape shapeForPlugin (const VoicePathSettings& settings);

/** A sound's way through the plug-in: to the rate that it runs at, through one instance or through one for each voice,
    and back. As many frames come out as go in, and in the same places, though they may come later. */
class VoicePath
{
public:
    /** @param probe  what listens around the plug-in, or null; it lives longer. Throws Failure if the library gives no
                      instance or takes no such number of channels. */
    VoicePath (const PluginLibrary& library, const VoicePathSettings& settings, meter::ChainProbe* probe);

    /** Lets the plug-in hear frames, channels interleaved, linear full scale 1.0, of which nothing comes out. Ahead of
        all others. */
    void settle (std::span<const float> interleaved);

    /** Takes frames and gives those that have come through, until the next call. */
    std::span<const float> process (std::span<const float> interleaved);

    /** Gives the frames that are still on their way. Nothing is taken afterwards. */
    std::span<const float> end();

private:
    enum class Purpose
    {
        settling,
        sound
    };

    std::span<const float> throughPlugin (std::span<const float> interleaved, Purpose purpose);
    void run (std::span<float> block);
    std::span<const float> backToTheRate (std::span<const float> interleaved);

    VoicePathSettings settings;
    std::size_t channels;
    meter::ChainProbe* probe;
    std::vector<std::unique_ptr<HostedPlugin>> plugins; // one, or one for each voice
    std::optional<Resampler> toPlugin;
    std::optional<Resampler> fromPlugin;
    std::vector<float> buffer;
    std::vector<float> voice; // one of two, where they are split
    std::vector<float> lastFrames;
    std::int64_t samplesIn = 0;
    std::int64_t samplesOut = 0;
};

} // namespace larkspire::render
