// SPDX-License-Identifier: AGPL-3.0-only
#include "frame/AudioProcessorQuendal.h"

#include "chain/Channels.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace juce
{

AudioProcessorQuendal::AudioProcessorQuendal (const BusesProperties&)
    : reserveLeft (std::make_unique<float[]> (maxBlockSamples)),
      reserveRight (std::make_unique<float[]> (maxBlockSamples))
{
}

AudioProcessorQuendal::~AudioProcessorQuendal()
{
    reserveLeft.reset();
    reserveRight.reset();
    oversampler.reset();
}

void AudioProcessorQuendal::prepareToPlay (double, int maximumExpectedSamplesPerBlock)
{
    oversamplerBlockSize = static_cast<std::size_t> (maximumExpectedSamplesPerBlock);
    preparedBlockSize = maximumExpectedSamplesPerBlock;
    requestUpdate();
}

void AudioProcessorQuendal::beginBlock (AudioBuffer<float>&, int) {}

int AudioProcessorQuendal::scaledSampleCount (int numSamples) const noexcept
{
    const auto scaled = std::round (static_cast<float> (oversamplingFactor) * static_cast<float> (numSamples));
    return static_cast<int> (std::min (scaled, static_cast<float> (maxBlockSamples)));
}

void AudioProcessorQuendal::processBlock (AudioBuffer<float>& buffer, MidiBuffer&)
{
    const ScopedNoDenormals noDenormals;

    updateOversampler (buffer.getNumChannels());

    const auto sampleCount = scaledSampleCount (buffer.getNumSamples());
    const auto oversampled = sampleCount != buffer.getNumSamples();

    for (auto channel = getTotalNumInputChannels(); channel < getTotalNumOutputChannels(); ++channel)
        buffer.clear (channel, 0, buffer.getNumSamples());

    dsp::AudioBlock<float> hostBlock (buffer);
    beginBlock (buffer, sampleCount);

    const auto block = oversampled ? upsample (hostBlock) : hostBlock;

    if (block.getNumSamples() > 0)
        processSamples (block.getChannelPointer (0),
                        block.getNumChannels() > 1 ? block.getChannelPointer (1) : nullptr,
                        static_cast<int> (block.getNumSamples()));

    if (oversampled)
        downsample (hostBlock);
}

void AudioProcessorQuendal::processSamples (float* left, float* right, int count)
{
    constexpr int refreshPeriod = 0x10000;
    const auto* const rightIn = getTotalNumInputChannels() >= 2 ? right : nullptr;
    auto* const rightOut = getTotalNumOutputChannels() > 1 ? right : nullptr;
    std::array<std::pair<float, float>, longestRun> buffer;

    for (int done = 0; done < count;)
    {
        countSamples (1);

        if (refreshCounter == 0 || settingsDue.load (std::memory_order_relaxed))
        {
            settingsDue.store (false, std::memory_order_relaxed);
            updateSettings();
        }

        const auto untilRefresh = refreshPeriod - static_cast<int> (refreshCounter);
        const auto length = std::min ({ longestRun, count - done, untilRefresh });
        const std::span run (buffer.data(), static_cast<std::size_t> (length));

        larkspire::readChannels (left + done, rightIn != nullptr ? rightIn + done : nullptr, run);
        const auto processed = processRun (run);
        jassert (processed >= 1 && processed <= run.size());
        larkspire::writeChannels (run.first (processed), left + done, rightOut != nullptr ? rightOut + done : nullptr);
        done += static_cast<int> (processed);
    }
}

std::size_t AudioProcessorQuendal::processRun (std::span<std::pair<float, float>> run)
{
    run[0] = processStereoSample (run[0]);
    std::size_t processed = 1;

    for (; processed < run.size() && ! settingsDue.load (std::memory_order_relaxed); ++processed)
    {
        countSamples (1);
        run[processed] = processStereoSample (run[processed]);
    }

    return processed;
}

} // namespace juce
