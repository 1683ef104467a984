// SPDX-License-Identifier: AGPL-3.0-only
#include "render/VoicePath.h"

#include <algorithm>

namespace larkspire::render
{

AudioShape shapeForPlugin (const VoicePathSettings& settings)
{
    return { .channels = settings.shape.channels,
             .sampleRate = settings.processRate.value_or (settings.shape.sampleRate) };
}

VoicePath::VoicePath (const PluginLibrary& library, const VoicePathSettings& path, meter::ChainProbe* listener)
    : settings (path),
      channels (static_cast<std::size_t> (path.shape.channels)),
      probe (listener)
{
    const auto shape = shapeForPlugin (settings);
    const auto isSplit = settings.voices == meter::Voices::split && channels == 2;
    const AudioShape ofEach { .channels = isSplit ? 1 : shape.channels, .sampleRate = shape.sampleRate };

    for (int instance = 0; instance < (isSplit ? 2 : 1); ++instance)
        plugins.push_back (std::make_unique<HostedPlugin> (
            library, PluginSetup { .mode = settings.mode, .shape = ofEach, .blockSize = settings.blockSize }));

    if (shape.sampleRate != settings.shape.sampleRate)
    {
        toPlugin.emplace (shape.channels, settings.shape.sampleRate, shape.sampleRate);
        fromPlugin.emplace (shape.channels, shape.sampleRate, settings.shape.sampleRate);
    }
}

void VoicePath::settle (std::span<const float> interleaved)
{
    if (! toPlugin.has_value())
    {
        throughPlugin (interleaved, Purpose::settling);
        return;
    }

    Resampler resampler (settings.shape.channels, settings.shape.sampleRate, shapeForPlugin (settings).sampleRate);
    throughPlugin (resampler.process (interleaved), Purpose::settling);
    throughPlugin (resampler.end(), Purpose::settling);
}

std::span<const float> VoicePath::process (std::span<const float> interleaved)
{
    samplesIn += std::ssize (interleaved);

    if (! toPlugin.has_value())
        return throughPlugin (interleaved, Purpose::sound);

    return backToTheRate (fromPlugin->process (throughPlugin (toPlugin->process (interleaved), Purpose::sound)));
}

std::span<const float> VoicePath::end()
{
    if (! toPlugin.has_value())
        return {};

    const auto processed = fromPlugin->process (throughPlugin (toPlugin->end(), Purpose::sound));
    lastFrames.assign (processed.begin(), processed.end());
    const auto rest = fromPlugin->end();
    lastFrames.insert (lastFrames.end(), rest.begin(), rest.end());

    // Two roundings of the length may have made it a frame or two shorter.
    const auto missing = samplesIn - samplesOut - std::ssize (lastFrames);
    lastFrames.resize (lastFrames.size() + static_cast<std::size_t> (std::max<std::int64_t> (0, missing)));
    return backToTheRate (lastFrames);
}

std::span<const float> VoicePath::backToTheRate (std::span<const float> interleaved)
{
    const auto wanted = static_cast<std::size_t> (samplesIn - samplesOut);
    const auto frames = interleaved.first (std::min (interleaved.size(), wanted));
    samplesOut += std::ssize (frames);
    return frames;
}

std::span<const float> VoicePath::throughPlugin (std::span<const float> interleaved, Purpose purpose)
{
    buffer.assign (interleaved.begin(), interleaved.end());
    const auto most = static_cast<std::size_t> (settings.blockSize) * channels;

    for (std::size_t done = 0; done < buffer.size(); done += most)
    {
        const auto count = std::min (most, buffer.size() - done);
        const auto block = std::span (buffer).subspan (done, count);
        run (block);

        if (probe == nullptr)
            continue;

        if (purpose == Purpose::sound)
            probe->add (interleaved.subspan (done, count), block);
        else
            probe->settle (interleaved.subspan (done, count), block);
    }

    return buffer;
}

void VoicePath::run (std::span<float> block)
{
    if (plugins.size() == 1)
    {
        plugins.front()->process (block);
        return;
    }

    for (std::size_t channel = 0; channel < channels; ++channel)
    {
        voice.clear();

        for (std::size_t i = channel; i < block.size(); i += channels)
            voice.push_back (block[i]);

        plugins[channel]->process (voice);

        for (std::size_t i = 0; i < voice.size(); ++i)
            block[i * channels + channel] = voice[i];
    }
}

} // namespace larkspire::render
