// SPDX-License-Identifier: AGPL-3.0-only
// What the block loop pays for its request flag and counter being relaxed atomics: one loop, compiled with them and
// with plain members, around a hook that does nothing and around the chain.
#include "benchmarks/Cost.h"
#include "host/Comparison.h"
#include "host/Signals.h"
#include "support/OpenProcessor.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <utility>
#include <vector>

namespace
{
/** A member as anybody would write it, with the two operations of an atomic that the loop uses. */
template <typename Type>
struct Plain
{
    Type load (std::memory_order) const { return value; }
    void store (Type newValue, std::memory_order) { value = newValue; }
    Type value {};
};

template <template <typename> typename Shared>
class Loop
{
public:
    virtual ~Loop() = default;
    virtual void updateSettings() = 0;
    virtual std::pair<float, float> processStereoSample (std::pair<float, float> input) = 0;

    [[gnu::noinline]] void processSamples (float* left, float* right, std::size_t count)
    {
        for (std::size_t i = 0; i < count; ++i)
        {
            samplesSinceChange.store (samplesSinceChange.load (std::memory_order_relaxed) + 1,
                                      std::memory_order_relaxed);
            refreshCounter = (refreshCounter + 1) & 0xffff;

            if (refreshCounter == 0 || settingsDue.load (std::memory_order_relaxed))
            {
                settingsDue.store (false, std::memory_order_relaxed);
                updateSettings();
            }

            const auto [leftOut, rightOut] = processStereoSample ({ left[i], right[i] });
            left[i] = leftOut;
            right[i] = rightOut;
        }
    }

protected:
    unsigned int refreshCounter = 0;
    Shared<bool> settingsDue {};
    Shared<int> samplesSinceChange {};
};

template <template <typename> typename Shared>
class Idle : public Loop<Shared>
{
public:
    void updateSettings() override {}
    std::pair<float, float> processStereoSample (std::pair<float, float> input) override { return input; }
};

template <template <typename> typename Shared>
class Chain : public Loop<Shared>
{
public:
    Chain() { processor.adoptMode (2.0f / 9.0f); }
    void updateSettings() override { processor.updateSettings(); }

    std::pair<float, float> processStereoSample (std::pair<float, float> input) override
    {
        return processor.processStereoSample (input);
    }

private:
    OpenProcessor processor;
};

template <template <typename> typename Shared>
void runLoop (benchmark::State& state, bool withChain)
{
    constexpr std::size_t frames = 4096;
    constexpr std::size_t inTheWord = 20000;
    const ScopedFlushToZero flushToZero;
    const auto signal = voice (inTheWord + frames);
    std::vector<float> left (frames);
    std::vector<float> right (frames);

    // Which hook it is shows at run time only, so that it is called by way of its table as in the plug-in.
    benchmark::DoNotOptimize (withChain);
    std::unique_ptr<Loop<Shared>> loop;

    if (withChain)
        loop = std::make_unique<Chain<Shared>>();
    else
        loop = std::make_unique<Idle<Shared>>();

    for (auto _ : state)
    {
        std::copy_n (signal.left.data() + inTheWord, frames, left.data());
        std::copy_n (signal.right.data() + inTheWord, frames, right.data());
        loop->processSamples (left.data(), right.data(), frames);
    }

    setUnitsPerIteration (state, static_cast<double> (frames));
}

template <typename Type>
using Relaxed = std::atomic<Type>;

void emptyPlain (benchmark::State& state)
{
    runLoop<Plain> (state, false);
}

void emptyRelaxed (benchmark::State& state)
{
    runLoop<Relaxed> (state, false);
}

void chainPlain (benchmark::State& state)
{
    runLoop<Plain> (state, true);
}

void chainRelaxed (benchmark::State& state)
{
    runLoop<Relaxed> (state, true);
}

BENCHMARK (emptyPlain)->Name ("flags/empty hook, plain members");
BENCHMARK (emptyRelaxed)->Name ("flags/empty hook, relaxed atomics");
BENCHMARK (chainPlain)->Name ("flags/the chain, plain members");
BENCHMARK (chainRelaxed)->Name ("flags/the chain, relaxed atomics");
} // namespace
