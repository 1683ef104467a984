// SPDX-License-Identifier: AGPL-3.0-only
// The option to run the sample loop at a multiple of the host's rate.
#include "frame/AudioProcessorQuendal.h"

namespace juce
{

namespace
{
/** How often a factor can be halved, remainders dropped, before it reaches 1: each stage doubles the rate. */
std::size_t stagesForFactor (int factor) noexcept
{
    std::size_t stages = 0;

    for (; factor > 1; factor /= 2)
        ++stages;

    return stages;
}
} // namespace

void AudioProcessorQuendal::updateOversampler (int numChannels)
{
    if (static_cast<int> (builtOversamplingFactor) == oversamplingFactor)
        return;

    builtOversamplingFactor = static_cast<float> (oversamplingFactor);
    oversampler.reset();
    oversampler = std::make_unique<dsp::Oversampling<float>> (static_cast<std::size_t> (numChannels),
                                                              stagesForFactor (oversamplingFactor),
                                                              dsp::Oversampling<float>::filterHalfBandFIREquiripple,
                                                              true,   // maximum quality
                                                              false); // a latency in whole samples
    oversampler->reset();
    oversampler->initProcessing (oversamplerBlockSize);
    setLatencySamples (static_cast<int> (oversampler->getLatencyInSamples()));
}

dsp::AudioBlock<float> AudioProcessorQuendal::upsample (const dsp::AudioBlock<float>& hostBlock)
{
    return oversampler != nullptr ? oversampler->processSamplesUp (hostBlock) : dsp::AudioBlock<float>();
}

void AudioProcessorQuendal::downsample (dsp::AudioBlock<float>& hostBlock)
{
    if (oversampler != nullptr)
        oversampler->processSamplesDown (hostBlock);
}

} // namespace juce
