// SPDX-License-Identifier: AGPL-3.0-only
// The chain as a web page calls it: one voice at a time, no memory but what stands here, functions with plain numbers.
#include "chain/Channels.h"
#include "chain/FlushToZero.h"
#include "chain/VoiceChain.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <type_traits>

namespace larkspire
{

namespace
{
constexpr int bypassMode = 0;
constexpr std::size_t blockFrames = 4096;
constexpr std::size_t longestRun = 64; // what stays in the nearest cache between reading and writing

/** All that a rendering remembers between two blocks. The page copies it as bytes and puts it back, to go on from there
    later: it holds no pointer. */
struct Voice
{
    VoiceRecords records;
    int mode = bypassMode;
};

static_assert (std::is_trivially_copyable_v<Voice>);

Voice voice;
std::array<float, blockFrames> leftSamples;
std::array<float, blockFrames> rightSamples;

void forgetIfDenormal (float& number)
{
    if (std::abs (number) < std::numeric_limits<float>::min())
        number = 0.0f;
}

void forgetDenormals (PeakingFilter::ChannelState& state)
{
    for (auto* number : { &state.x1, &state.x2, &state.y1, &state.y2 })
        forgetIfDenormal (*number);
}

/** A browser has no flush-to-zero. Left alone, a filter's memory would hang at the last denormals all through a
   silence, and each frame would take half as long again. */
void forgetDenormals (VoiceRecords& records)
{
    for (auto* filter : { &records.highPassLeft, &records.highPassRight })
    {
        forgetIfDenormal (filter->v1);
        forgetIfDenormal (filter->v2);
    }

    for (auto* filter : { &records.airFilter, &records.bodyFilter })
    {
        forgetDenormals (filter->left);
        forgetDenormals (filter->right);
    }
}

void processRun (float* left, float* right, std::size_t count)
{
    std::array<StereoSample, longestRun> buffer;
    const std::span frames (buffer.data(), count);
    readChannels (left, right, frames);

    if (voice.mode != bypassMode)
        voice.records.chain().process (frames);

    writeChannels (frames, left, right);
}
} // namespace

extern "C"
{
    /** Where the page writes the left channel, or the only one, and reads it back: maxFrames samples, full scale 1.0.
     */
    float* leftChannel()
    {
        return leftSamples.data();
    }

    /** The same for the right channel. */
    float* rightChannel()
    {
        return rightSamples.data();
    }

    /** The most frames that processFrames takes at once. */
    unsigned maxFrames()
    {
        return blockFrames;
    }

    /** What the voice remembers between two calls: voiceSize() bytes, good for this very build. */
    Voice* voiceMemory()
    {
        return &voice;
    }

    unsigned voiceSize()
    {
        return sizeof (Voice);
    }

    /** Begins a recording, as a new instance of the plug-in would.

        @param rate  in Hz, one for which isUsableRate
        @param mode  the knob's position, 0 to 3
    */
    void beginVoice (double rate, int mode)
    {
        voice = {};
        voice.mode = mode;
        voice.records.chain().adopt (modeForIndex (mode), rate);
    }

    /** Processes frames in place. Blocks of one recording may have any length.

        @param frames    at most maxFrames()
        @param isStereo  0 where there is one channel
    */
    void processFrames (unsigned frames, int isStereo)
    {
        const ScopedFlushToZero flushToZero;

        for (std::size_t done = 0, count = 0; done < frames; done += count)
        {
            count = std::min (longestRun, frames - done);
            processRun (&leftSamples[done], isStereo != 0 ? &rightSamples[done] : nullptr, count);
        }

        forgetDenormals (voice.records);
    }
}

} // namespace larkspire
