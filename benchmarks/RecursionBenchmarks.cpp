// SPDX-License-Identifier: AGPL-3.0-only
// The stages that remember, each alone: what a frame has to wait for of the frame before. The longest of them is the
// floor of a chain that works the same way, whatever else is done beside it.
#include "benchmarks/Cost.h"
#include "chain/FlushToZero.h"
#include "chain/OneSample.h"
#include "chain/VoiceChain.h"
#include "support/Signals.h"

#include <span>
#include <string>
#include <vector>

namespace
{
using namespace larkspire;

constexpr std::size_t frames = 48000;
constexpr std::size_t framesOfRun = 64;

std::vector<StereoSample> sound()
{
    const auto signal = voice (frames);
    std::vector<StereoSample> interleaved (frames);

    for (std::size_t i = 0; i < frames; ++i)
        interleaved[i] = { signal.left[i], signal.right[i] };

    return interleaved;
}

/** Has a function process the sound, so many frames a call. The records are in memory from one call to the next. */
template <typename Process>
void run (benchmark::State& state, std::size_t framesOfCall, Process&& process)
{
    static const auto input = sound();
    const ScopedFlushToZero flushToZero;
    std::vector<StereoSample> output (framesOfCall);
    VoiceRecords records;
    records.chain().adopt (modeForIndex (2), 48000.0);

    for (auto _ : state)
        for (std::size_t start = 0; start < frames; start += framesOfCall)
        {
            process (records, std::span (input).subspan (start, framesOfCall), output);
            benchmark::DoNotOptimize (output.data());
            benchmark::ClobberMemory();
        }

    setUnitsPerIteration (state, static_cast<double> (frames));
}

/** A stage frame by frame on its record, and in runs. */
template <typename OnRecord, typename Begin, typename Step, typename End>
void registerStage (const std::string& name, OnRecord onRecord, Begin begin, Step step, End end)
{
    benchmark::RegisterBenchmark (("recursion/" + name).c_str(),
                                  [onRecord] (auto& state)
                                  {
                                      run (state,
                                           1,
                                           [&] (auto& records, auto input, auto& output)
                                           { storeLowerHalf (onRecord (records, pairOf (input[0])), output[0]); });
                                  });
    benchmark::RegisterBenchmark (("run/" + name).c_str(),
                                  [begin, step, end] (auto& state)
                                  {
                                      run (state,
                                           framesOfRun,
                                           [&] (auto& records, auto input, auto& output)
                                           {
                                               auto running = begin (records);

                                               for (std::size_t i = 0; i < framesOfRun; ++i)
                                                   storeLowerHalf (step (running, pairOf (input[i])), output[i]);

                                               end (running, records);
                                           });
                                  });
}

[[maybe_unused]] const bool registered = []
{
    registerStage (
        "high-pass",
        [] (auto& r, auto x) { return highPass (r.highPassLeft, r.highPassRight, x); },
        [] (auto& r) { return RunningHighPass (r.highPassLeft, r.highPassRight); },
        [] (auto& running, auto x) { return running.process (x); },
        [] (auto& running, auto& r) { running.keepIn (r.highPassLeft, r.highPassRight); });
    registerStage (
        "expander",
        [] (auto& r, auto x) { return expand (r.expander, x); },
        [] (auto& r) { return RunningRider (r.expander); },
        [] (auto& running, auto x) { return expand (running, x); },
        [] (auto& running, auto& r) { running.keepIn (r.expander); });
    registerStage (
        "filters",
        [] (auto& r, auto x) { return filterSideBySide (r.airFilter, r.bodyFilter, x); },
        [] (auto& r) { return RunningFilters (r.airFilter, r.bodyFilter); },
        [] (auto& running, auto x) { return running.process (x); },
        [] (auto& running, auto& r) { running.keepIn (r.airFilter, r.bodyFilter); });
    registerStage (
        "leveller",
        [] (auto& r, auto x) { return level (r.leveller, x); },
        [] (auto& r) { return RunningRider (r.leveller); },
        [] (auto& running, auto x) { return level (running, x); },
        [] (auto& running, auto& r) { running.keepIn (r.leveller); });
    return true;
}();
} // namespace
