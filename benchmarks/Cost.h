// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <benchmark/benchmark.h>

/** The counter under which every benchmark here gives its cost: seconds a frame, a call, or whatever its name says. */
inline constexpr auto costCounter = "cost";

/** The counter for the memory that a program of its own needed at once: bytes. */
inline constexpr auto memoryCounter = "memory";

/** Notes that each iteration did this many of what is counted. */
inline void setUnitsPerIteration (benchmark::State& state, double units)
{
    state.counters[costCounter] =
        benchmark::Counter (units, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
