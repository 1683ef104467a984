// SPDX-License-Identifier: AGPL-3.0-only
// What a program does that runs the chain without JUCE. It is compiled only, for processors that nobody here has.
#include "chain/Channels.h"
#include "chain/FlushToZero.h"
#include "chain/Passes.h"

using namespace larkspire;

void runMedium (float* left, float* right, std::span<StereoSample> frames);

void runMedium (float* left, float* right, std::span<StereoSample> frames)
{
    const ScopedFlushToZero flushToZero;
    VoiceRecords records;
    records.chain().adopt (modeForIndex (2), 48000.0);
    readChannels (left, right, frames);
    runPasses (records.chain(), frames, [] (Point, Lanes, std::size_t) {});
    writeChannels (frames, left, right);
}
