// SPDX-License-Identifier: AGPL-3.0-only
// What an instance must sound like, and all that a host does around a block.
#include "support/Comparison.h"
#include "torture/BlockSignal.h"
#include "torture/Mismatch.h"
#include "torture/ModelledInstance.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace
{
constexpr std::size_t longestOfAll = 32768; // twice the largest block size that is announced

// 999 Hz is a rate that the plug-in ignores, and so are 0, a negative one and one beyond all hardware.
constexpr std::array<float, 24> rates { 8000.0f,   11025.0f,   12000.0f,   16000.0f,  22050.0f,  24000.0f,
                                        32000.0f,  44100.0f,   48000.0f,   64000.0f,  88200.0f,  96000.0f,
                                        128000.0f, 176400.0f,  192000.0f,  352800.0f, 384000.0f, 705600.0f,
                                        768000.0f, 1234.5678f, 44099.998f, 999.0f,    0.0f,      -48000.0f };

constexpr float clipCeiling = 0.9885f;

constexpr std::array<std::size_t, 12> blockSizes { 1, 15, 16, 64, 128, 441, 512, 1024, 2048, 4096, 8192, 16384 };

/** Zero, whose sign depends on what the other channel does beside it, and what lies below all normal numbers: within a
    block the processor takes that for zero, or hands it on where it only moves it, as the compiler has it. */
bool isAsGoodAsZero (float sample)
{
    return std::abs (sample) < std::numeric_limits<float>::min();
}
} // namespace

struct ModelledInstance::Buffers
{
    GuardedBuffer inputLeft { longestOfAll };
    GuardedBuffer inputRight { longestOfAll };
    GuardedBuffer givenLeft { longestOfAll };
    GuardedBuffer givenRight { longestOfAll };
    GuardedBuffer outputLeft { longestOfAll };
    GuardedBuffer outputRight { longestOfAll };
    GuardedBuffer expectedLeft { longestOfAll };
    GuardedBuffer expectedRight { longestOfAll };
};

ModelledInstance::Buffers& ModelledInstance::buffers()
{
    static Buffers all;
    return all;
}

std::string ModelledInstance::announceRate (Dice& dice)
{
    announcedRate = dice.oneOf (rates);
    host.dispatch (Vst2::effSetSampleRate, 0, 0, nullptr, announcedRate);
    return "rate " + std::to_string (announcedRate);
}

std::string ModelledInstance::announceBlockSize (Dice& dice)
{
    announcedBlockSize = dice.oneOf (blockSizes);
    host.dispatch (Vst2::effSetBlockSize, 0, static_cast<Vst2::VstIntPtr> (announcedBlockSize));
    return "block size " + std::to_string (announcedBlockSize);
}

std::string ModelledInstance::announceLayout (Dice& dice)
{
    struct Arrangement
    {
        Vst2::VstInt32 type;
        Vst2::VstInt32 channels;
    };

    constexpr std::array arrangements {
        Arrangement { Vst2::kSpeakerArrMono, 1 },   Arrangement { Vst2::kSpeakerArrStereo, 2 },
        Arrangement { Vst2::kSpeakerArrMono, 1 },   Arrangement { Vst2::kSpeakerArrStereo, 2 },
        Arrangement { Vst2::kSpeakerArrMono, 2 },   Arrangement { Vst2::kSpeakerArrEmpty, 0 },
        Arrangement { Vst2::kSpeakerArr30Cine, 3 }, Arrangement { Vst2::kSpeakerArr51, 6 }
    };
    const auto& input = dice.oneOf (arrangements);
    const auto& output = dice.onceIn (3) ? dice.oneOf (arrangements) : input;
    const bool accepted =
        input.type == output.type && input.channels == output.channels
        && ((input.type == Vst2::kSpeakerArrMono && input.channels == 1) || input.type == Vst2::kSpeakerArrStereo);
    require (
        "the answer to a layout", host.setLayout (input.type, input.channels, output.type, output.channels), accepted);

    if (accepted)
    {
        isMono = input.type == Vst2::kSpeakerArrMono;
        sound.setMono (isMono);
    }

    return "layout " + std::to_string (input.type) + " to " + std::to_string (output.type);
}

std::string ModelledInstance::suspend (Dice&)
{
    host.suspend();
    isResumed = false;
    longestBlock.reset();
    return "suspend";
}

void ModelledInstance::noteResume()
{
    isResumed = true;
    resumesItself = true;
    longestBlock.reset();
    rate = static_cast<double> (announcedRate);
    sound.setHostRate (rate);
}

std::string ModelledInstance::resume (Dice&)
{
    host.resume();
    noteResume();
    return "resume";
}

std::string ModelledInstance::bypass (Dice& dice)
{
    isBypassed = dice.onceIn (2);
    require ("the answer to bypass", host.dispatch (Vst2::effSetBypass, 0, isBypassed ? 1 : 0), 1);
    return isBypassed ? "bypass" : "end of bypass";
}

std::string ModelledInstance::tellTheTime (Dice& dice)
{
    time.samplePos = dice.unit() * 1.0e9;
    time.sampleRate = dice.onceIn (4) ? 0.0 : 48000.0;
    time.tempo = dice.unit() * 300.0;
    time.flags = static_cast<Vst2::VstInt32> (dice.below (1u << 16));
    time.smpteFrameRate = static_cast<Vst2::VstInt32> (dice.below (20));
    host.setTime (dice.onceIn (3) ? nullptr : &time);
    return "another time";
}

std::string ModelledInstance::choosePrecision (Dice& dice)
{
    require ("the answer to a precision",
             host.dispatch (Vst2::effSetProcessPrecision, 0, dice.onceIn (2) ? 1 : 0),
             isResumed ? 0 : 1);
    return "precision";
}

std::size_t ModelledInstance::someBlockLength (Dice& dice) const
{
    const std::size_t length = dice.onceIn (20)    ? 0
                               : dice.onceIn (200) ? dice.below (16385)
                               : dice.onceIn (100) ? 2 * announcedBlockSize
                               : dice.onceIn (30)  ? announcedBlockSize
                               : dice.onceIn (5)   ? dice.below (2048)
                                                   : dice.below (256);
    return std::min (length, longestBlock.value_or (longestOfAll));
}

void ModelledInstance::expectedBlock (GuardedBuffer& left, GuardedBuffer& right)
{
    if (isBypassed)
        return;

    const ScopedFlushToZero flushToZero;
    const auto l = left.samples();
    const auto r = right.samples();

    for (std::size_t i = 0; i < l.size(); ++i)
    {
        sound.process (l[i], r[i]);

        // The model has the plug-in's own sine, which both could have wrong.
        if (sound.modeIndex != 0 && ! (std::abs (l[i]) <= clipCeiling && (isMono || std::abs (r[i]) <= clipCeiling)))
            throw Mismatch ("a voice mode lets out " + std::to_string (l[i]) + " and " + std::to_string (r[i]));
    }
}

std::string ModelledInstance::process (Dice& dice)
{
    if (! isResumed && ! resumesItself)
        return "wait for a resume";

    if (! isResumed)
        noteResume();

    resumesItself = false;

    enum Routing
    {
        inPlace,
        outOfPlace,
        oneBufferForBothOutputs,
        noRightOutput
    };

    auto routing = static_cast<Routing> (dice.onceIn (40) ? 2 + dice.below (2) : dice.below (2));

    if (isMono && routing > outOfPlace)
        routing = outOfPlace;

    if (routing > outOfPlace && ! longestBlock)
        longestBlock = 2 * announcedBlockSize;

    const std::size_t frames = someBlockLength (dice);
    auto& b = buffers();
    fillWithSomeSignal (b.inputLeft.start (frames), dice);
    fillWithSomeSignal (b.inputRight.start (frames), dice);

    for (auto* copy : { &b.givenLeft, &b.expectedLeft })
        std::ranges::copy (b.inputLeft.samples(), copy->start (frames).begin());

    for (auto* copy : { &b.givenRight, &b.expectedRight })
        std::ranges::copy (b.inputRight.samples(), copy->start (frames).begin());

    b.outputLeft.start (frames);
    b.outputRight.start (frames);

    if (routing == inPlace)
    {
        std::ranges::copy (b.inputLeft.samples(), b.outputLeft.samples().begin());
        std::ranges::copy (b.inputRight.samples(), b.outputRight.samples().begin());
    }

    float* outputs[] = { b.outputLeft.samples().data(), b.outputRight.samples().data() };
    float* inputs[] = { routing == inPlace ? outputs[0] : b.inputLeft.samples().data(),
                        routing == inPlace ? outputs[1] : b.inputRight.samples().data() };

    if (routing == oneBufferForBothOutputs)
        outputs[1] = outputs[0];
    else if (routing == noRightOutput)
        outputs[1] = nullptr;

    host.process (inputs, outputs, frames);

    expectedBlock (b.expectedLeft, b.expectedRight);

    const auto requireSamples = [] (const char* what, std::span<const float> actual, std::span<const float> expected)
    {
        for (std::size_t i = 0; i < actual.size(); ++i)
        {
            const auto bits = std::bit_cast<std::uint32_t> (actual[i]);
            hash = (hash ^ bits) * 1099511628211u;

            if (bits != std::bit_cast<std::uint32_t> (expected[i])
                && ! (isAsGoodAsZero (actual[i]) && isAsGoodAsZero (expected[i])))
                throw Mismatch (std::string (what) + ": sample " + std::to_string (i) + " of "
                                + std::to_string (actual.size()) + " is " + std::to_string (actual[i]) + ", expected "
                                + std::to_string (expected[i]));
        }
    };

    for (const auto* buffer : { &b.inputLeft, &b.inputRight, &b.outputLeft, &b.outputRight })
        buffer->requireIntactStrips();

    requireSamples ("the left input", b.inputLeft.samples(), b.givenLeft.samples());
    requireSamples ("the right input", b.inputRight.samples(), b.givenRight.samples());
    const auto outputLeft = b.outputLeft.samples();
    const auto outputRight = b.outputRight.samples();

    // Where both outputs are one buffer, the right channel is written last.
    requireSamples (
        "left", outputLeft, routing == oneBufferForBothOutputs ? b.expectedRight.samples() : b.expectedLeft.samples());

    if (! isMono && routing <= outOfPlace)
        requireSamples ("right", outputRight, b.expectedRight.samples());
    else if (isMono && routing == inPlace)
        requireSamples ("the channel beside a mono one", outputRight, b.inputRight.samples());
    else if (! std::ranges::all_of (outputRight, GuardedBuffer::isUntouched))
        throw Mismatch ("a channel was written that is none of the plug-in's");

    frameCount += frames;
    requireSilenceTowardsTheHost();
    return "process " + std::to_string (frames);
}
