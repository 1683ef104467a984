// SPDX-License-Identifier: AGPL-3.0-only
// The stages that remember, each alone: what a frame has to wait for of the frame before. The longest of them is the
// floor of any chain with these records, whatever else is done beside it.
#include "benchmarks/Cost.h"
#include "chain/Expander.h"
#include "chain/HighPass.h"
#include "chain/Leveller.h"
#include "chain/ModeTable.h"
#include "chain/SideBySide.h"
#include "host/Comparison.h"
#include "host/Signals.h"

namespace
{
using namespace larkspire;

constexpr std::size_t frames = 48000;

template <typename Step>
void run (benchmark::State& state, Step&& step)
{
    static const auto signal = voice (frames);
    const ScopedFlushToZero flushToZero;

    for (auto _ : state)
        for (std::size_t i = 0; i < frames; ++i)
        {
            auto result = step (pairOf ({ signal.left[i], signal.right[i] }));

            // The records live in memory from one frame to the next, as they do between two calls of the hook.
            benchmark::DoNotOptimize (result);
            benchmark::ClobberMemory();
        }

    setUnitsPerIteration (state, static_cast<double> (frames));
}

const auto& medium = modeForIndex (2);

void highPassAlone (benchmark::State& state)
{
    juce::IIRFilter left;
    juce::IIRFilter right;
    designHighPass (left, right, 48000.0, medium.highPass);
    benchmark::DoNotOptimize (&left);
    benchmark::DoNotOptimize (&right);
    run (state, [&] (ChannelPair x) { return highPass (left, right, x); });
}

void expanderAlone (benchmark::State& state)
{
    LevelRider rider;
    applySettings (rider, medium.expander);
    benchmark::DoNotOptimize (&rider);
    run (state, [&] (ChannelPair x) { return expand (rider, x); });
}

void filtersAlone (benchmark::State& state)
{
    PeakingFilter air;
    PeakingFilter body;
    designPeaking (air, 48000.0f, medium.air.gainDb, medium.air.frequency, medium.air.bandwidth);
    designPeaking (body, 48000.0f, medium.body.gainDb, medium.body.frequency, medium.body.bandwidth);
    benchmark::DoNotOptimize (&air);
    benchmark::DoNotOptimize (&body);
    run (state, [&] (ChannelPair x) { return filterSideBySide (air, body, x); });
}

void levellerAlone (benchmark::State& state)
{
    LevelRider rider;
    applySettings (rider, medium.leveller);
    benchmark::DoNotOptimize (&rider);
    run (state, [&] (ChannelPair x) { return level (rider, x); });
}

BENCHMARK (highPassAlone)->Name ("recursion/high-pass");
BENCHMARK (expanderAlone)->Name ("recursion/expander");
BENCHMARK (filtersAlone)->Name ("recursion/filters");
BENCHMARK (levellerAlone)->Name ("recursion/leveller");
} // namespace
