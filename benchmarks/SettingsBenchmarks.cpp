// SPDX-License-Identifier: AGPL-3.0-only
// One re-initialisation in each mode. It comes with every change of mode, and every 65536 samples.
#include "benchmarks/Cost.h"
#include "support/OpenProcessor.h"

namespace
{
void runSettings (benchmark::State& state, float position)
{
    OpenProcessor processor;
    processor.giveRate (48000.0);
    processor.setMode (position);

    for (auto _ : state)
        processor.updateSettings();

    setUnitsPerIteration (state, 1);
}

BENCHMARK_CAPTURE (runSettings, bypass, 0.0f)->Name ("settings/bypass");
BENCHMARK_CAPTURE (runSettings, Gentle, knobPosition (1))->Name ("settings/Gentle");
BENCHMARK_CAPTURE (runSettings, Medium, knobPosition (2))->Name ("settings/Medium");
BENCHMARK_CAPTURE (runSettings, Powerful, knobPosition (3))->Name ("settings/Powerful");
} // namespace
