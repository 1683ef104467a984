// SPDX-License-Identifier: AGPL-3.0-only
#include "vst3/BlockGuard.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <functional>

using namespace Steinberg;

namespace larkspire
{

namespace
{
constexpr int32 shortestAnnouncement = 1024;
constexpr int32 longestAnnouncement = 65536; // beyond it a block is cut, and no host's number fills the memory
constexpr std::size_t mostChannels = 2;

bool isSane (const Vst::AudioBusBuffers& bus)
{
    if (bus.numChannels == 0)
        return true;

    if (bus.numChannels < 0 || bus.numChannels > static_cast<int32> (mostChannels) || bus.channelBuffers32 == nullptr)
        return false;

    return std::all_of (
        bus.channelBuffers32, bus.channelBuffers32 + bus.numChannels, [] (const auto* c) { return c != nullptr; });
}

bool isSane (const Vst::AudioBusBuffers* buses, int32 count)
{
    return count == 0 || (count > 0 && buses != nullptr && isSane (buses[0]));
}

template <typename Sample>
void clear (Sample** channels, int32 channelCount, int32 frames)
{
    for (int32 i = 0; channels != nullptr && i < channelCount; ++i)
        if (channels[i] != nullptr)
            std::fill_n (channels[i], frames, Sample {});
}

void clearOutputs (const Vst::ProcessData& data)
{
    for (int32 i = 0; data.outputs != nullptr && i < data.numOutputs; ++i)
        if (auto& bus = data.outputs[i]; data.symbolicSampleSize == Vst::kSample64)
            clear (bus.channelBuffers64, bus.numChannels, data.numSamples);
        else
            clear (bus.channelBuffers32, bus.numChannels, data.numSamples);
}

/** Whether a channel shares memory with the input. */
bool isInput (Vst::Sample32* channel, const Vst::ProcessData& data)
{
    if (data.numInputs == 0)
        return false;

    const std::less<> isBefore;
    const auto overlaps = [&] (Vst::Sample32* input)
    { return isBefore (input, channel + data.numSamples) && isBefore (channel, input + data.numSamples); };
    const auto& bus = data.inputs[0];
    return std::any_of (bus.channelBuffers32, bus.channelBuffers32 + bus.numChannels, overlaps);
}

/** Silences the outputs, but for what is an input too: the wrapper writes nothing to a bus that is off. */
void clearFreshOutputs (const Vst::ProcessData& data)
{
    for (int32 i = 0; i < data.numOutputs; ++i)
        for (int32 j = 0; data.outputs[i].channelBuffers32 != nullptr && j < data.outputs[i].numChannels; ++j)
            if (auto* channel = data.outputs[i].channelBuffers32[j]; channel != nullptr && ! isInput (channel, data))
                std::fill_n (channel, data.numSamples, Vst::Sample32 {});
}

/** A piece of a bus: its channels from a frame on. */
struct BusPiece
{
    void start (const Vst::AudioBusBuffers& whole, int32 frame)
    {
        bus = whole;

        for (int32 i = 0; i < whole.numChannels; ++i)
            channels[static_cast<std::size_t> (i)] = whole.channelBuffers32[i] + frame;

        bus.channelBuffers32 = channels.data();
    }

    Vst::AudioBusBuffers bus;
    std::array<Vst::Sample32*, mostChannels> channels {};
};
} // namespace

tresult PLUGIN_API BlockGuard::queryInterface (const TUID id, void** object)
{
    return inner->queryInterface (id, object);
}

tresult PLUGIN_API BlockGuard::setBusArrangements (Vst::SpeakerArrangement* inputs,
                                                   int32 numIns,
                                                   Vst::SpeakerArrangement* outputs,
                                                   int32 numOuts)
{
    const auto isList = [] (const auto* first, int32 count) { return count == 0 || (count > 0 && first != nullptr); };

    if (! isList (inputs, numIns) || ! isList (outputs, numOuts))
        return kInvalidArgument;

    const auto result = inner->setBusArrangements (inputs, numIns, outputs, numOuts);

    // The wrapper now has this arrangement or one near it, and its buffers are those of the one before. When it is
    // active it has changed nothing, and does not even take what it has.
    Vst::SpeakerArrangement input = 0;
    Vst::SpeakerArrangement output = 0;
    inner->getBusArrangement (Vst::kInput, 0, input);
    inner->getBusArrangement (Vst::kOutput, 0, output);

    if (inner->setBusArrangements (&input, 1, &output, 1) == kResultTrue)
        inner->setupProcessing (latestSetup);

    return result;
}

tresult PLUGIN_API BlockGuard::getBusArrangement (Vst::BusDirection direction,
                                                  int32 index,
                                                  Vst::SpeakerArrangement& arrangement)
{
    return inner->getBusArrangement (direction, index, arrangement);
}

tresult PLUGIN_API BlockGuard::canProcessSampleSize (int32 symbolicSampleSize)
{
    return inner->canProcessSampleSize (symbolicSampleSize);
}

tresult PLUGIN_API BlockGuard::setupProcessing (Vst::ProcessSetup& setup)
{
    auto bounded = setup;
    bounded.maxSamplesPerBlock = std::clamp (setup.maxSamplesPerBlock, shortestAnnouncement, longestAnnouncement);
    const auto result = inner->setupProcessing (bounded);

    if (result == kResultTrue)
        latestSetup = bounded;

    return result;
}

tresult PLUGIN_API BlockGuard::setProcessing (TBool state)
{
    return inner->setProcessing (state);
}

tresult BlockGuard::processParametersOf (const Vst::ProcessData& data)
{
    auto parameters = data;
    parameters.symbolicSampleSize = Vst::kSample32;
    parameters.numSamples = parameters.numInputs = parameters.numOutputs = 0;
    parameters.inputs = parameters.outputs = nullptr;
    return inner->process (parameters);
}

tresult PLUGIN_API BlockGuard::process (Vst::ProcessData& fromHost)
{
    if (fromHost.numSamples < 0)
        return kInvalidArgument;

    auto data = fromHost;

    if (knobChanges)
        data.inputParameterChanges = knobChanges->take (fromHost.inputParameterChanges);

    if (data.symbolicSampleSize != Vst::kSample32 || ! isSane (data.inputs, data.numInputs)
        || ! isSane (data.outputs, data.numOutputs))
    {
        clearOutputs (data);
        return processParametersOf (data);
    }

    clearFreshOutputs (data);

    // The wrapper takes no block with more buses than the plug-in has, and some hosts always give more.
    data.numInputs = std::min (data.numInputs, 1);
    data.numOutputs = std::min (data.numOutputs, 1);
    const auto longestPiece = latestSetup.maxSamplesPerBlock;

    if (data.numSamples <= longestPiece)
        return inner->process (data);

    auto piece = data;
    BusPiece input;
    BusPiece output;

    for (int32 done = 0; done < data.numSamples; done += piece.numSamples)
    {
        piece.numSamples = std::min (longestPiece, data.numSamples - done);

        if (data.numInputs == 1)
        {
            input.start (data.inputs[0], done);
            piece.inputs = &input.bus;
        }

        if (data.numOutputs == 1)
        {
            output.start (data.outputs[0], done);
            piece.outputs = &output.bus;
        }

        if (const auto result = inner->process (piece); result != kResultTrue)
            return result;

        piece.inputParameterChanges = nullptr;
    }

    return kResultTrue;
}

} // namespace larkspire
