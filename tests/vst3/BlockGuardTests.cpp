// SPDX-License-Identifier: AGPL-3.0-only
#include "vst3/BlockGuard.h"

#include "support/vst3/ParameterQueue.h"
#include "vst3/RecordingWrapper.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <pluginterfaces/vst/ivstprocesscontext.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <numeric>
#include <span>
#include <string>
#include <vector>

namespace
{
using larkspire::BlockGuard;
using namespace Steinberg;
using testing::Each;

constexpr int32 smallestInt = std::numeric_limits<int32>::min();
constexpr int32 largestInt = std::numeric_limits<int32>::max();

/** A channel of a host, each sample another number, with a strip before and behind that nobody may touch. */
template <typename Sample>
class HostChannel
{
public:
    HostChannel (std::size_t frames, Sample first) : memory (frames + 2 * strip, guard), original (frames)
    {
        std::iota (original.begin(), original.end(), first);
        std::ranges::copy (original, samples().begin());
    }

    std::span<Sample> samples() { return std::span (memory).subspan (strip, original.size()); }
    Sample* data() { return samples().data(); }
    bool isAsItWas() { return std::ranges::equal (samples(), original); }
    bool isSilent()
    {
        return std::ranges::all_of (samples(), [] (Sample s) { return s == Sample {}; });
    }

    bool hasIntactStrips() const
    {
        const auto isGuard = [] (Sample s) { return s == guard; };
        return std::all_of (memory.begin(), memory.begin() + strip, isGuard)
               && std::all_of (memory.end() - strip, memory.end(), isGuard);
    }

private:
    static constexpr std::ptrdiff_t strip = 64;
    static constexpr Sample guard = -12345;
    std::vector<Sample> memory;
    std::vector<Sample> original;
};

/** A block as a host gives it. */
template <typename Sample>
struct HostBlock
{
    HostBlock (int inputChannels, int outputChannels, int frames)
    {
        for (int i = 0; i < inputChannels; ++i)
            inputs.push_back (std::make_unique<HostChannel<Sample>> (frames, Sample (1000000 * (i + 1))));

        for (int i = 0; i < outputChannels; ++i)
            outputs.push_back (std::make_unique<HostChannel<Sample>> (frames, Sample (1000000 * (i + 5))));

        for (auto& channel : inputs)
            inputPointers.push_back (channel->data());

        for (auto& channel : outputs)
            outputPointers.push_back (channel->data());

        data.numSamples = frames;
        data.symbolicSampleSize = sizeof (Sample) == sizeof (double) ? Vst::kSample64 : Vst::kSample32;
        data.inputParameterChanges = &changes;
        connect (inputBuses[0], inputPointers);
        connect (outputBuses[0], outputPointers);
        data.numInputs = data.numOutputs = 1;
        data.inputs = inputBuses.data();
        data.outputs = outputBuses.data();
    }

    static void connect (Vst::AudioBusBuffers& bus, std::vector<Sample*>& channels)
    {
        bus.numChannels = static_cast<int32> (channels.size());

        if constexpr (sizeof (Sample) == sizeof (double))
            bus.channelBuffers64 = channels.data();
        else
            bus.channelBuffers32 = channels.data();
    }

    bool hasIntactStrips() const
    {
        const auto isIntact = [] (const auto& channel) { return channel->hasIntactStrips(); };
        return std::ranges::all_of (inputs, isIntact) && std::ranges::all_of (outputs, isIntact);
    }

    std::vector<std::unique_ptr<HostChannel<Sample>>> inputs;
    std::vector<std::unique_ptr<HostChannel<Sample>>> outputs;
    std::vector<Sample*> inputPointers;
    std::vector<Sample*> outputPointers;
    std::array<Vst::AudioBusBuffers, 2> inputBuses;
    std::array<Vst::AudioBusBuffers, 2> outputBuses;
    ParameterQueues changes;
    Vst::ProcessData data;
};

using FloatBlock = HostBlock<float>;
using DoubleBlock = HostBlock<double>;

class Guard : public testing::Test
{
protected:
    Guard() { guard.guard (wrapper); }

    tresult announce (int32 frames)
    {
        Vst::ProcessSetup setup { Vst::kOffline, Vst::kSample32, frames, 48000.0 };
        return guard.setupProcessing (setup);
    }

    /** The lengths of the blocks that the wrapper got. */
    std::vector<int32> lengths() const
    {
        std::vector<int32> frames;

        for (const auto& block : wrapper.blocks)
            frames.push_back (block.frames);

        return frames;
    }

    RecordingWrapper wrapper;
    BlockGuard guard;
};

TEST_F (Guard, HandsABlockOnAsItIs)
{
    for (const int channels : { 1, 2 })
        for (const int frames : { 0, 1, 63, 1023, 1024 })
        {
            wrapper.blocks.clear();
            FloatBlock block (channels, channels, frames);
            EXPECT_EQ (guard.process (block.data), kResultOk);
            EXPECT_EQ (wrapper.blocks,
                       (std::vector<RecordingWrapper::Block> { { frames,
                                                                 { { channels, block.inputPointers } },
                                                                 { { channels, block.outputPointers } },
                                                                 &block.changes } }))
                << channels << " channels of " << frames;
            EXPECT_TRUE (block.hasIntactStrips());
        }
}

TEST_F (Guard, HandsOnWhateverElseABlockHolds)
{
    Vst::ProcessContext context {};
    FloatBlock block (2, 2, 3000);
    block.data.processMode = Vst::kPrefetch;
    block.data.processContext = &context;
    block.data.outputParameterChanges = &block.changes;
    block.inputBuses[0].silenceFlags = 2;
    std::vector<uint64> silence;
    wrapper.onProcess = [&] (auto& data) { silence.push_back (data.inputs[0].silenceFlags); };
    guard.process (block.data);

    ASSERT_EQ (wrapper.data.size(), 3u);

    for (const auto& data : wrapper.data)
    {
        EXPECT_EQ (data.processMode, Vst::kPrefetch);
        EXPECT_EQ (data.symbolicSampleSize, Vst::kSample32);
        EXPECT_EQ (data.processContext, &context);
        EXPECT_EQ (data.outputParameterChanges, &block.changes);
    }

    EXPECT_THAT (silence, Each (2u));
}

TEST_F (Guard, LeavesTheHostsOwnRecordsAlone)
{
    for (const int frames : { 100, 3000 })
    {
        FloatBlock block (2, 2, frames);
        block.data.numInputs = 2;
        const auto data = block.data;
        const auto inputs = block.inputBuses;
        const auto outputs = block.outputBuses;
        guard.process (block.data);
        EXPECT_EQ (std::memcmp (&block.data, &data, sizeof (data)), 0);
        EXPECT_EQ (std::memcmp (block.inputBuses.data(), inputs.data(), sizeof (inputs)), 0);
        EXPECT_EQ (std::memcmp (block.outputBuses.data(), outputs.data(), sizeof (outputs)), 0);
    }
}

TEST_F (Guard, AnnouncesALengthThatBuffersCanHaveAndCutsLongerBlocks)
{
    const std::pair<int32, int32> rows[] = { { smallestInt, 1024 }, { -1, 1024 },     { 0, 1024 },
                                             { 64, 1024 },          { 1024, 1024 },   { 1025, 1025 },
                                             { 4096, 4096 },        { 65536, 65536 }, { 65537, 65536 },
                                             { largestInt, 65536 } };

    for (const auto& [announced, longest] : rows)
    {
        ASSERT_EQ (announce (announced), kResultOk);
        const auto& setup = wrapper.setups.back();
        EXPECT_EQ (setup.maxSamplesPerBlock, longest) << announced;
        EXPECT_EQ (setup.processMode, Vst::kOffline);
        EXPECT_EQ (setup.symbolicSampleSize, Vst::kSample32);
        EXPECT_EQ (setup.sampleRate, 48000.0);

        for (const auto& [frames, expected] :
             { std::pair (longest, std::vector { longest }), std::pair (longest + 1, std::vector { longest, 1 }) })
        {
            wrapper.blocks.clear();
            FloatBlock block (2, 2, frames);
            EXPECT_EQ (guard.process (block.data), kResultOk);
            EXPECT_EQ (lengths(), expected) << announced;
        }
    }
}

TEST_F (Guard, LeavesTheHostsAnnouncementAlone)
{
    Vst::ProcessSetup setup { Vst::kRealtime, Vst::kSample32, -5, 48000.0 };
    guard.setupProcessing (setup);
    EXPECT_EQ (setup.maxSamplesPerBlock, -5);
}

TEST_F (Guard, GoesByTheFormerAnnouncementAfterOneThatIsRefused)
{
    announce (2000);
    wrapper.answers = { kResultFalse };
    EXPECT_EQ (announce (5000), kResultFalse);
    FloatBlock block (2, 2, 2001);
    guard.process (block.data);
    EXPECT_EQ (lengths(), (std::vector<int32> { 2000, 1 }));
}

/** Pointers moved on by some frames. */
std::vector<float*> movedBy (std::vector<float*> pointers, int32 frames)
{
    for (auto*& pointer : pointers)
        pointer += frames;

    return pointers;
}

TEST_F (Guard, CutsALongBlockIntoPiecesWithTheChangesInTheFirst)
{
    for (const int channels : { 1, 2 })
    {
        wrapper.blocks.clear();
        FloatBlock block (channels, channels, 2548);
        EXPECT_EQ (guard.process (block.data), kResultOk);
        std::vector<RecordingWrapper::Block> expected;

        for (const auto& [from, frames] : { std::pair (0, 1024), { 1024, 1024 }, { 2048, 500 } })
            expected.push_back ({ frames,
                                  { { channels, movedBy (block.inputPointers, from) } },
                                  { { channels, movedBy (block.outputPointers, from) } },
                                  from == 0 ? &block.changes : nullptr });

        EXPECT_EQ (wrapper.blocks, expected);
        EXPECT_TRUE (block.hasIntactStrips());
    }
}

TEST_F (Guard, CutsALongBlockThatHasNoInputOrNoOutput)
{
    for (const auto& [inputs, outputs] : { std::pair (0, 1), { 1, 0 }, { 0, 0 } })
    {
        wrapper.blocks.clear();
        FloatBlock block (2, 2, 1500);
        block.data.numInputs = inputs;
        block.data.numOutputs = outputs;
        block.data.inputs = inputs == 0 ? nullptr : block.data.inputs;
        block.data.outputs = outputs == 0 ? nullptr : block.data.outputs;
        EXPECT_EQ (guard.process (block.data), kResultOk);
        ASSERT_EQ (lengths(), (std::vector<int32> { 1024, 476 }));
        const auto& last = wrapper.blocks.back();
        ASSERT_EQ (last.inputs.size(), static_cast<std::size_t> (inputs));
        ASSERT_EQ (last.outputs.size(), static_cast<std::size_t> (outputs));
        EXPECT_TRUE (inputs == 0 || last.inputs.front().channels == movedBy (block.inputPointers, 1024));
        EXPECT_TRUE (outputs == 0 || last.outputs.front().channels == movedBy (block.outputPointers, 1024));
    }
}

TEST_F (Guard, CutsALongBlockWithoutChannels)
{
    FloatBlock block (0, 0, 1500);
    block.inputBuses[0].channelBuffers32 = nullptr;
    block.outputBuses[0].channelBuffers32 = nullptr;
    EXPECT_EQ (guard.process (block.data), kResultOk);
    EXPECT_EQ (lengths(), (std::vector<int32> { 1024, 476 }));
    EXPECT_EQ (wrapper.blocks.back().inputs, (std::vector<RecordingWrapper::Bus> { {} }));
    EXPECT_EQ (wrapper.blocks.back().outputs, (std::vector<RecordingWrapper::Bus> { {} }));
}

TEST_F (Guard, EndsABlockWithThePieceThatFails)
{
    for (const auto& answers : { std::vector<tresult> { kInternalError },
                                 { kResultOk, kInternalError },
                                 { kResultOk, kResultOk, kInternalError } })
    {
        wrapper.blocks.clear();
        wrapper.answers = { answers.begin(), answers.end() };
        FloatBlock block (2, 2, 5000);
        EXPECT_EQ (guard.process (block.data), kInternalError);
        EXPECT_EQ (wrapper.blocks.size(), answers.size());
    }

    wrapper.answers = { kResultFalse };
    FloatBlock block (2, 2, 10);
    EXPECT_EQ (guard.process (block.data), kResultFalse);
}

/** How a host lets the memory of both sides be one. */
struct Sharing
{
    const char* name;
    int leftOutput; // the input channel that it is, -1 for none
    int rightOutput;
};

constexpr std::array<Sharing, 6> sharings { {
    { "none", -1, -1 },
    { "both", 0, 1 },
    { "both, crossed", 1, 0 },
    { "the left alone", 0, -1 },
    { "the right alone", -1, 1 },
    { "the left for the right", -1, 0 },
} };

/** Makes outputs of a block what some of its inputs are. */
void share (FloatBlock& block, const Sharing& sharing)
{
    for (const auto& [output, input] :
         { std::pair<std::size_t, int> (0, sharing.leftOutput), { 1, sharing.rightOutput } })
        if (input >= 0)
            block.outputPointers[output] = block.inputPointers.at (static_cast<std::size_t> (input));
}

TEST_F (Guard, GivesTheWrapperTheInputWhateverMemoryTheOutputHas)
{
    for (const auto& sharing : sharings)
        for (const int frames : { 100, 3000 })
        {
            FloatBlock block (2, 2, frames);
            share (block, sharing);
            std::array<std::vector<float>, 2> heard;
            std::array<std::vector<float>, 2> expected;

            for (std::size_t i = 0; i < 2; ++i)
                expected.at (i).assign (block.inputs[i]->samples().begin(), block.inputs[i]->samples().end());

            wrapper.onProcess = [&] (auto& data)
            {
                for (std::size_t i = 0; i < 2; ++i)
                {
                    const auto* const input = data.inputs[0].channelBuffers32[i];
                    heard.at (i).insert (heard.at (i).end(), input, input + data.numSamples);
                }

                for (std::size_t i = 0; i < 2; ++i)
                    std::fill_n (data.outputs[0].channelBuffers32[i], data.numSamples, static_cast<float> (i) + 7.0f);
            };
            guard.process (block.data);
            EXPECT_TRUE (heard == expected) << sharing.name << ", " << frames;

            for (std::size_t i = 0; i < 2; ++i)
                EXPECT_THAT (std::span (block.outputPointers[i], static_cast<std::size_t> (frames)),
                             Each (static_cast<float> (i) + 7.0f))
                    << sharing.name << ", " << frames;

            EXPECT_TRUE (block.hasIntactStrips());
        }
}

TEST_F (Guard, SilencesWhatTheWrapperLeavesUnwrittenAndLeavesTheInputInItsPlace)
{
    for (const auto& sharing : sharings)
        for (const int frames : { 0, 1, 100, 3000 })
        {
            FloatBlock block (2, 2, frames);
            share (block, sharing);
            guard.process (block.data);

            for (auto& input : block.inputs)
                EXPECT_TRUE (input->isAsItWas()) << sharing.name;

            EXPECT_EQ (block.outputs[0]->isAsItWas() && frames > 0, sharing.leftOutput >= 0 && frames > 0);
            EXPECT_EQ (block.outputs[0]->isSilent(), sharing.leftOutput < 0 || frames == 0) << sharing.name;
            EXPECT_EQ (block.outputs[1]->isSilent(), sharing.rightOutput < 0 || frames == 0) << sharing.name;
            EXPECT_TRUE (block.hasIntactStrips());
        }
}

TEST_F (Guard, TakesMemoryThatOverlapsForTheInputsAndMemoryBesideItNot)
{
    constexpr int frames = 100;

    for (const auto& [offset, isInput] :
         { std::pair (-101, false), { -100, false }, { -99, true }, { 0, true }, { 99, true }, { 100, false } })
    {
        std::vector<float> memory (3 * frames + 2, 1.0f);
        std::array<float*, 1> input { memory.data() + frames + 1 };
        std::array<float*, 1> output { input[0] + offset };
        FloatBlock block (1, 1, frames);
        block.inputBuses[0].channelBuffers32 = input.data();
        block.outputBuses[0].channelBuffers32 = output.data();
        guard.process (block.data);
        EXPECT_THAT (std::span (output[0], frames), Each (isInput ? 1.0f : 0.0f)) << offset;
        EXPECT_EQ (std::ranges::count (memory, 0.0f), isInput ? 0 : frames) << offset;
    }
}

TEST_F (Guard, HandsOnTheFirstBusAloneAndSilencesTheOutputsOfTheOthers)
{
    for (const int frames : { 100, 3000 })
        for (const bool hasMemory : { true, false })
        {
            wrapper.blocks.clear();
            FloatBlock block (2, 2, frames);
            FloatBlock others (2, 3, frames);
            others.outputPointers[2] = nullptr;
            block.inputBuses[1] = others.inputBuses[0];
            block.outputBuses[1] = others.outputBuses[0];
            block.data.numInputs = block.data.numOutputs = 2;

            if (! hasMemory)
                block.inputBuses[1].channelBuffers32 = block.outputBuses[1].channelBuffers32 = nullptr;

            EXPECT_EQ (guard.process (block.data), kResultOk);

            for (const auto& each : wrapper.blocks)
            {
                EXPECT_EQ (each.inputs.size(), 1u);
                EXPECT_EQ (each.outputs.size(), 1u);
            }

            EXPECT_EQ (wrapper.blocks.front().inputs.front().channels, block.inputPointers);
            EXPECT_EQ (wrapper.blocks.front().outputs.front().channels, block.outputPointers);

            for (std::size_t i = 0; i < 2; ++i)
            {
                EXPECT_TRUE (block.inputs[i]->isAsItWas() && others.inputs[i]->isAsItWas());
                EXPECT_EQ (others.outputs[i]->isSilent(), hasMemory);
            }

            EXPECT_TRUE (block.hasIntactStrips() && others.hasIntactStrips());
        }
}

TEST_F (Guard, HandsAFlushOn)
{
    ParameterQueues changes;
    Vst::ProcessData flush;
    flush.inputParameterChanges = &changes;
    EXPECT_EQ (guard.process (flush), kResultOk);
    EXPECT_EQ (wrapper.blocks, (std::vector<RecordingWrapper::Block> { { 0, {}, {}, &changes } }));
}

/** What a host does wrong with a block of two channels each way. */
struct Fault
{
    const char* name;
    std::function<void (FloatBlock&)> make;
    std::array<bool, 2> isOutput { true, true }; // what the host lets be written
};

const std::vector<Fault>& faults()
{
    static const std::vector<Fault> all {
        { "no input samples at all", [] (auto& b) { b.inputBuses[0].channelBuffers32 = nullptr; } },
        { "no samples of the left input", [] (auto& b) { b.inputPointers[0] = nullptr; } },
        { "no samples of the right input", [] (auto& b) { b.inputPointers[1] = nullptr; } },
        { "no samples of either input",
          [] (auto& b) {
              b.inputPointers = { nullptr, nullptr };
          } },
        { "no input bus where there is one", [] (auto& b) { b.data.inputs = nullptr; } },
        { "-1 input channels", [] (auto& b) { b.inputBuses[0].numChannels = -1; } },
        { "the least input channels", [] (auto& b) { b.inputBuses[0].numChannels = smallestInt; } },
        { "3 input channels", [] (auto& b) { b.inputBuses[0].numChannels = 3; } },
        { "6 input channels", [] (auto& b) { b.inputBuses[0].numChannels = 6; } },
        { "the most input channels", [] (auto& b) { b.inputBuses[0].numChannels = largestInt; } },
        { "-1 input buses", [] (auto& b) { b.data.numInputs = -1; } },
        { "the least input buses", [] (auto& b) { b.data.numInputs = smallestInt; } },
        { "no output samples at all", [] (auto& b) { b.outputBuses[0].channelBuffers32 = nullptr; }, { false, false } },
        { "no samples of the left output", [] (auto& b) { b.outputPointers[0] = nullptr; }, { false, true } },
        { "no samples of the right output", [] (auto& b) { b.outputPointers[1] = nullptr; }, { true, false } },
        { "no output bus where there is one", [] (auto& b) { b.data.outputs = nullptr; }, { false, false } },
        { "-1 output channels", [] (auto& b) { b.outputBuses[0].numChannels = -1; }, { false, false } },
        { "the least output channels", [] (auto& b) { b.outputBuses[0].numChannels = smallestInt; }, { false, false } },
        { "-1 output buses", [] (auto& b) { b.data.numOutputs = -1; }, { false, false } },
        { "the least output buses", [] (auto& b) { b.data.numOutputs = smallestInt; }, { false, false } },
        { "samples of a size that there is not", [] (auto& b) { b.data.symbolicSampleSize = 2; } },
        { "samples of a negative size", [] (auto& b) { b.data.symbolicSampleSize = -1; } },
        { "no channel each way, and samples missing",
          [] (auto& b)
          {
              b.inputPointers[0] = b.outputPointers[0] = nullptr;
              b.outputBuses[0].numChannels = 1;
          },
          { false, false } },
    };

    return all;
}

TEST_F (Guard, SilencesWhatCannotBeProcessedAndHandsItsChangesOn)
{
    for (const auto& [name, make, isOutput] : faults())
        for (const int frames : { 0, 1, 100, 3000 })
        {
            wrapper.blocks.clear();
            wrapper.data.clear();
            FloatBlock block (2, 2, frames);
            make (block);
            EXPECT_EQ (guard.process (block.data), kResultOk) << name;
            EXPECT_EQ (wrapper.blocks, (std::vector<RecordingWrapper::Block> { { 0, {}, {}, &block.changes } }))
                << name;
            EXPECT_EQ (wrapper.data.front().symbolicSampleSize, Vst::kSample32);
            EXPECT_EQ (wrapper.data.front().inputs, nullptr);
            EXPECT_EQ (wrapper.data.front().outputs, nullptr);

            for (std::size_t i = 0; i < 2; ++i)
            {
                EXPECT_TRUE (block.inputs[i]->isAsItWas()) << name;
                EXPECT_TRUE (isOutput.at (i) ? block.outputs[i]->isSilent() : block.outputs[i]->isAsItWas()) << name;
            }

            EXPECT_TRUE (block.hasIntactStrips()) << name;
        }
}

TEST_F (Guard, SilencesAsManyChannelsAsTheHostGives)
{
    for (const int channels : { 3, 6, 16 })
        for (const int inputs : { channels, 2, 0 })
        {
            wrapper.blocks.clear();
            FloatBlock block (inputs, channels, 100);
            EXPECT_EQ (guard.process (block.data), kResultOk);
            EXPECT_EQ (lengths(), std::vector<int32> { 0 });

            for (auto& output : block.outputs)
                EXPECT_TRUE (output->isSilent()) << channels;

            for (auto& input : block.inputs)
                EXPECT_TRUE (input->isAsItWas()) << channels;

            EXPECT_TRUE (block.hasIntactStrips());
        }
}

TEST_F (Guard, SilencesAllBusesOfWhatCannotBeProcessed)
{
    FloatBlock block (2, 2, 100);
    FloatBlock others (6, 6, 100);
    block.inputPointers[0] = nullptr;
    block.outputBuses[1] = others.outputBuses[0];
    block.data.numOutputs = 2;
    EXPECT_EQ (guard.process (block.data), kResultOk);

    for (auto* channels : { &block.outputs, &others.outputs })
        for (auto& output : *channels)
            EXPECT_TRUE (output->isSilent());

    EXPECT_TRUE (block.hasIntactStrips() && others.hasIntactStrips());
}

TEST_F (Guard, GivesTheWrappersAnswerToTheChangesOfWhatCannotBeProcessed)
{
    wrapper.answers = { kInternalError };
    DoubleBlock block (2, 2, 10);
    EXPECT_EQ (guard.process (block.data), kInternalError);
}

TEST_F (Guard, SilencesSamplesOf64BitsToTheLastByteAndNoFurther)
{
    for (const int channels : { 1, 2, 6 })
        for (const int frames : { 0, 1, 7, 100, 70000 })
            for (const bool isInPlace : { false, true })
            {
                wrapper.blocks.clear();
                DoubleBlock block (channels, channels, frames);

                if (isInPlace)
                    std::ranges::copy (block.inputPointers, block.outputPointers.begin());

                EXPECT_EQ (guard.process (block.data), kResultOk);
                EXPECT_EQ (wrapper.blocks, (std::vector<RecordingWrapper::Block> { { 0, {}, {}, &block.changes } }));

                for (auto& output : block.outputs)
                    EXPECT_TRUE (isInPlace ? output->isAsItWas() : output->isSilent()) << frames;

                for (auto& input : block.inputs)
                    EXPECT_TRUE (isInPlace ? input->isSilent() : input->isAsItWas()) << frames;

                EXPECT_TRUE (block.hasIntactStrips()) << frames;
            }
}

TEST_F (Guard, RefusesABlockOfNegativeLengthWithoutATouch)
{
    for (const int32 frames : { -1, -1024, smallestInt })
        for (const int32 size : { Vst::kSample32, Vst::kSample64 })
            for (const bool hasMemory : { true, false })
            {
                FloatBlock block (2, 2, 64);
                block.data.numSamples = frames;
                block.data.symbolicSampleSize = size;
                block.outputPointers[1] = hasMemory ? block.outputPointers[1] : nullptr;
                EXPECT_EQ (guard.process (block.data), kInvalidArgument);
                EXPECT_TRUE (wrapper.blocks.empty());

                for (std::size_t i = 0; i < 2; ++i)
                    EXPECT_TRUE (block.inputs[i]->isAsItWas() && block.outputs[i]->isAsItWas());

                EXPECT_TRUE (block.hasIntactStrips());
            }
}

TEST_F (Guard, IsCountedAndAskedForInterfacesAsTheWrapperIs)
{
    EXPECT_EQ (guard.addRef(), 2u);
    EXPECT_EQ (wrapper.references, 2u);
    EXPECT_EQ (guard.release(), 1u);
    EXPECT_EQ (wrapper.references, 1u);

    void* object = nullptr;
    EXPECT_EQ (guard.queryInterface (FUnknown_iid, &object), kResultOk);
    EXPECT_EQ (object, &wrapper);
    wrapper.answers = { kNoInterface };
    EXPECT_EQ (guard.queryInterface (FUnknown_iid, &object), kNoInterface);
}

TEST_F (Guard, AnswersTheHostsQuestionsAsTheWrapperDoes)
{
    Vst::SpeakerArrangement arrangement = 0;
    EXPECT_EQ (guard.getBusArrangement (Vst::kOutput, 3, arrangement), kResultOk);
    EXPECT_EQ (arrangement, 71u);
    EXPECT_EQ (guard.canProcessSampleSize (Vst::kSample64), kResultOk);
    EXPECT_EQ (guard.setProcessing (1), kResultOk);
    EXPECT_EQ (wrapper.calls,
               (std::vector<std::string> { "getBusArrangement 1 3", "canProcessSampleSize 1", "setProcessing 1" }));
    EXPECT_EQ (guard.getLatencySamples(), 11u);
    EXPECT_EQ (guard.getTailSamples(), 12u);

    wrapper.answers = { kResultFalse, kResultFalse, kResultFalse };
    EXPECT_EQ (guard.getBusArrangement (Vst::kInput, 0, arrangement), kResultFalse);
    EXPECT_EQ (guard.canProcessSampleSize (Vst::kSample32), kResultFalse);
    EXPECT_EQ (guard.setProcessing (0), kResultFalse);
}

/** What the wrapper is asked when a host sets the arrangements 1 and 2: after that it gets its own once more. */
const std::vector<std::string> arrangementCalls {
    "setBusArrangements 1 to 2", "getBusArrangement 0 0", "getBusArrangement 1 0", "setBusArrangements 70 to 71"
};

TEST_F (Guard, LetsTheWrapperMakeItsBuffersForANewArrangement)
{
    announce (3000);
    wrapper.setups.clear();
    Vst::SpeakerArrangement input = 1;
    Vst::SpeakerArrangement output = 2;

    for (const auto answer : { kResultTrue, kResultFalse })
    {
        wrapper.calls.clear();
        wrapper.setups.clear();
        wrapper.answers = { answer };
        EXPECT_EQ (guard.setBusArrangements (&input, 1, &output, 1), answer);
        EXPECT_EQ (wrapper.calls, arrangementCalls);
        ASSERT_EQ (wrapper.setups.size(), 1u) << "one near the arrangement may be in force";
        EXPECT_EQ (wrapper.setups.front().processMode, Vst::kOffline);
        EXPECT_EQ (wrapper.setups.front().symbolicSampleSize, Vst::kSample32);
        EXPECT_EQ (wrapper.setups.front().maxSamplesPerBlock, 3000);
        EXPECT_EQ (wrapper.setups.front().sampleRate, 48000.0);
    }
}

TEST_F (Guard, LetsTheWrapperMakeTheBuffersOfItsBeginningsBeforeAnyAnnouncement)
{
    Vst::SpeakerArrangement arrangement = 3;
    guard.setBusArrangements (&arrangement, 1, &arrangement, 1);
    ASSERT_EQ (wrapper.setups.size(), 1u);
    EXPECT_EQ (wrapper.setups.front().processMode, Vst::kRealtime);
    EXPECT_EQ (wrapper.setups.front().symbolicSampleSize, Vst::kSample32);
    EXPECT_EQ (wrapper.setups.front().maxSamplesPerBlock, 1024);
    EXPECT_EQ (wrapper.setups.front().sampleRate, 44100.0);
}

TEST_F (Guard, LeavesTheBuffersOfAnActiveWrapperAlone)
{
    wrapper.answers = { kResultFalse, kResultTrue, kResultTrue, kResultFalse };
    Vst::SpeakerArrangement input = 1;
    Vst::SpeakerArrangement output = 2;
    EXPECT_EQ (guard.setBusArrangements (&input, 1, &output, 1), kResultFalse);
    EXPECT_EQ (wrapper.calls, arrangementCalls);
    EXPECT_TRUE (wrapper.setups.empty());
}

TEST_F (Guard, RefusesArrangementsThatAreNotThere)
{
    Vst::SpeakerArrangement stereo = 3;
    struct
    {
        Vst::SpeakerArrangement* inputs;
        int32 inputCount;
        Vst::SpeakerArrangement* outputs;
        int32 outputCount;
    } const rows[] = {
        { nullptr, 1, &stereo, 1 },  { &stereo, 1, nullptr, 1 },   { &stereo, -1, &stereo, 1 },
        { &stereo, 1, &stereo, -1 }, { nullptr, -1, nullptr, -1 }, { &stereo, smallestInt, &stereo, 1 },
    };

    for (const auto& [inputs, inputCount, outputs, outputCount] : rows)
        EXPECT_EQ (guard.setBusArrangements (inputs, inputCount, outputs, outputCount), kInvalidArgument);

    EXPECT_TRUE (wrapper.calls.empty());
    EXPECT_EQ (guard.setBusArrangements (nullptr, 0, nullptr, 0), kResultOk) << "none are some";
    EXPECT_EQ (wrapper.calls.front(), "setBusArrangements to");
}
} // namespace
