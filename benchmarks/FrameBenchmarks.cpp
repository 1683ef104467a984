// SPDX-License-Identifier: AGPL-3.0-only
// A frame's cost through the built libraries of VST 2 and LV2 and in the scalar oracle, on a real voice.
#include "benchmarks/Cost.h"
#include "chain/FlushToZero.h"
#include "reference/ReferencePlugin.h"
#include "support/Lv2Instance.h"
#include "support/RawHost.h"
#include "support/Signals.h"

#include <algorithm>
#include <array>
#include <memory>

namespace
{
constexpr std::size_t frames = 49152; // a second and a little: whole blocks of every size
constexpr float rate = 48000.0f;

struct Mode
{
    const char* name;
    int position;
};

constexpr std::array modes {
    Mode { "bypass", 0 }, Mode { "Gentle", 1 }, Mode { "Medium", 2 }, Mode { "Powerful", 3 }, Mode { "no name", 4 }
};

/** Copies the signal block by block and has each block processed in place, as a host does. */
template <typename Process>
void runBlocks (benchmark::State& state, const Signal& signal, std::size_t blockSize, Process&& process)
{
    std::vector<float> left (blockSize);
    std::vector<float> right (blockSize);
    const auto length = signal.left.size();

    for (auto _ : state)
        for (std::size_t done = 0; done < length; done += blockSize)
        {
            const auto count = std::min (blockSize, length - done);
            std::copy_n (signal.left.data() + done, count, left.data());
            std::copy_n (signal.right.data() + done, count, right.data());
            process (left, right, count);
        }

    setUnitsPerIteration (state, static_cast<double> (length));
}

void runLibrary (benchmark::State& state, const Signal& signal, int position, bool mono, std::size_t blockSize)
{
    RawHost host;
    host.setParameter (knobPosition (position));
    host.start (rate, static_cast<int> (blockSize), mono);
    runBlocks (
        state, signal, blockSize, [&] (auto& left, auto& right, auto count) { host.process (left, right, 0, count); });
}

void runLv2 (benchmark::State& state, const Signal& signal, int position, bool mono, std::size_t blockSize)
{
    const Lv2Library library;
    const Lv2Instance instance (library, static_cast<double> (rate), mono ? 1 : 2);
    auto mode = static_cast<float> (position);
    instance.connectMode (&mode);
    runBlocks (state,
               signal,
               blockSize,
               [&] (auto& left, auto& right, auto count)
               {
                   float* const channels[] = { left.data(), right.data() };
                   instance.connectInputs (channels);
                   instance.connectOutputs (channels);
                   instance.run (count);
               });
}

void runOracle (benchmark::State& state, const Signal& signal, int position, bool mono)
{
    const larkspire::ScopedFlushToZero flushToZero;
    ReferencePlugin oracle (mono);
    oracle.setParameter (knobPosition (position));
    oracle.setHostRate (static_cast<double> (rate));
    runBlocks (state,
               signal,
               512,
               [&] (auto& left, auto& right, auto count)
               {
                   for (std::size_t i = 0; i < count; ++i)
                       oracle.process (left[i], right[i]);
               });
}

/** The library on silence, with the sound that was before it still in its filters. */
void runSilence (benchmark::State& state)
{
    RawHost host;
    host.setParameter (knobPosition (2));
    host.start (rate);
    const auto sound = voice (frames);
    std::vector<float> left (512);
    std::vector<float> right (512);

    // Each time from the middle of a word into the silence: through the decay of the filters into rest.
    for (auto _ : state)
    {
        state.PauseTiming();
        auto before = sound;
        host.process (before.left, before.right, 20000, 4096);
        state.ResumeTiming();

        for (std::size_t done = 0; done < frames; done += left.size())
        {
            std::fill (left.begin(), left.end(), 0.0f);
            std::fill (right.begin(), right.end(), 0.0f);
            host.process (left, right, 0, left.size());
        }
    }

    setUnitsPerIteration (state, static_cast<double> (frames));
}

[[maybe_unused]] const bool registered = []
{
    static const auto signal = std::make_unique<Signal> (voice (frames));

    for (const auto& mode : modes)
        for (const bool mono : { false, true })
        {
            const auto name = std::string (mode.name) + (mono ? "/mono" : "/stereo");
            benchmark::RegisterBenchmark (("oracle/" + name).c_str(),
                                          [mode, mono] (auto& state)
                                          { runOracle (state, *signal, mode.position, mono); });

            if (mode.position == 2)
                for (const std::size_t size : { 64u, 512u })
                    benchmark::RegisterBenchmark (("lv2/" + name + "/" + std::to_string (size)).c_str(),
                                                  [mode, mono, size] (auto& state)
                                                  { runLv2 (state, *signal, mode.position, mono, size); });

            for (const std::size_t size : { 16u, 64u, 256u, 512u, 1024u, 4096u })
                benchmark::RegisterBenchmark (("frame/" + name + "/" + std::to_string (size)).c_str(),
                                              [mode, mono, size] (auto& state)
                                              { runLibrary (state, *signal, mode.position, mono, size); });
        }

    for (const int level : { 0, -20, -40, -60, -74, -90 })
        benchmark::RegisterBenchmark (("noise/" + std::to_string (level) + " dB").c_str(),
                                      [level] (auto& state)
                                      { runLibrary (state, noise (frames, level, 5), 2, false, 512); });

    benchmark::RegisterBenchmark ("silence/sound", [] (auto& state) { runLibrary (state, *signal, 2, false, 512); });
    benchmark::RegisterBenchmark ("silence/after sound", runSilence);
    return true;
}();
} // namespace
