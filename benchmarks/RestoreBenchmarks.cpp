// SPDX-License-Identifier: AGPL-3.0-only
// A state of a megabyte, whatever is in it: what a host waits for that opens a project, and that saves it again.
#include "benchmarks/Cost.h"
#include "benchmarks/DocumentShapes.h"
#include "support/RawHost.h"
#include "support/StateBlock.h"

#include <clocale>

namespace
{
void restore (benchmark::State& state, const DocumentShape& shape)
{
    const RawHost host;
    const auto block = state_block::around (shape.text());

    for (auto _ : state)
        host.setChunk (block);

    setUnitsPerIteration (state, 1);
}

void save (benchmark::State& state, const DocumentShape& shape)
{
    const RawHost host;
    host.setChunk (state_block::around (shape.text()));

    for (auto _ : state)
        benchmark::DoNotOptimize (host.chunk());

    setUnitsPerIteration (state, 1);
}

const bool isRegistered = []
{
    // As in hosts: the parser's idea of a letter comes from here.
    std::setlocale (LC_CTYPE, "C.UTF-8");

    for (const auto& shape : documentShapes())
    {
        const std::string name (shape.name);
        benchmark::RegisterBenchmark (("restore/" + name).c_str(), restore, shape);
        benchmark::RegisterBenchmark (("save/" + name).c_str(), save, shape);
    }

    return true;
}();
} // namespace
