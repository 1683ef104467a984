// SPDX-License-Identifier: AGPL-3.0-only
// Instances of the built library: making them, closing them, and many of them in one process.
#include "benchmarks/Cost.h"
#include "support/RawHost.h"
#include "support/Signals.h"

#include <memory>

namespace
{
/** What the user waits for who inserts the plug-in for the first time: nothing of it is in the process yet. The file is
    in the system's memory, as after any scan. */
void loadAndConstruct (benchmark::State& state)
{
    for (auto _ : state)
    {
        auto host = std::make_unique<RawHost>();
        state.PauseTiming();
        host.reset(); // the library goes with its only instance
        state.ResumeTiming();
    }

    setUnitsPerIteration (state, 1);
}

/** An instance that stays keeps the library and JUCE in place, as the first one in a session does. */
void construct (benchmark::State& state)
{
    const RawHost anchor;

    for (auto _ : state)
    {
        auto host = std::make_unique<RawHost>();
        state.PauseTiming();
        host.reset();
        state.ResumeTiming();
    }

    setUnitsPerIteration (state, 1);
}

void destroy (benchmark::State& state)
{
    const RawHost anchor;

    for (auto _ : state)
    {
        state.PauseTiming();
        auto host = std::make_unique<RawHost>();
        state.ResumeTiming();
        host.reset();
    }

    setUnitsPerIteration (state, 1);
}

/** A frame's cost with this many instances taking turns, block by block, as the tracks of a session do. */
void runManyInstances (benchmark::State& state, std::size_t count)
{
    constexpr std::size_t blockSize = 256;
    constexpr std::size_t inTheWord = 20000;
    const auto speech = voice (inTheWord + blockSize);
    const Signal signal { "a word's middle",
                          { speech.left.end() - blockSize, speech.left.end() },
                          { speech.right.end() - blockSize, speech.right.end() } };
    std::vector<std::unique_ptr<RawHost>> hosts;

    for (std::size_t i = 0; i < count; ++i)
    {
        hosts.push_back (std::make_unique<RawHost>());
        hosts.back()->start (48000.0f, blockSize);
    }

    // As many blocks for few instances as for many.
    const auto rounds = 512 / count;

    for (auto _ : state)
        for (std::size_t round = 0; round < rounds; ++round)
            for (auto& host : hosts)
            {
                auto block = signal;
                host->process (block.left, block.right, 0, blockSize);
            }

    setUnitsPerIteration (state, static_cast<double> (rounds * count * blockSize));
}

BENCHMARK (loadAndConstruct)->Name ("library/load and first instance")->UseRealTime();
BENCHMARK (construct)->Name ("instance/construction");
BENCHMARK (destroy)->Name ("instance/destruction");
BENCHMARK_CAPTURE (runManyInstances, 1, 1)->Name ("instances/1");
BENCHMARK_CAPTURE (runManyInstances, 8, 8)->Name ("instances/8");
BENCHMARK_CAPTURE (runManyInstances, 64, 64)->Name ("instances/64");
BENCHMARK_CAPTURE (runManyInstances, 256, 256)->Name ("instances/256");
BENCHMARK_CAPTURE (runManyInstances, 512, 512)->Name ("instances/512");
} // namespace
