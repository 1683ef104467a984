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
    tellRate (announcedRate);
    return "rate " + std::to_string (announcedRate);
}

std::string ModelledInstance::announceBlockSize (Dice& dice)
{
    announcedBlockSize = dice.oneOf (blockSizes);
    tellBlockSize (announcedBlockSize);
    return "block size " + std::to_string (announcedBlockSize);
}

std::string ModelledInstance::suspend (Dice&)
{
    tellSuspend();
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
    tellResume();
    noteResume();
    return "resume";
}

std::string ModelledInstance::bypass (Dice& dice)
{
    isBypassed = dice.onceIn (2);
    tellBypass (isBypassed);
    return isBypassed ? "bypass" : "end of bypass";
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

    if ((isMono || ! takesOddOutputs()) && routing > outOfPlace)
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

    processBlock (inputs, outputs, frames);

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
