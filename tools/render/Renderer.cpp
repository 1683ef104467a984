// SPDX-License-Identifier: AGPL-3.0-only
#include "Renderer.h"

#include "AudioInput.h"
#include "AudioOutput.h"
#include "Failure.h"
#include "Signals.h"

#include <chrono>
#include <vector>

namespace larkspire::render
{

RenderReport render (const PluginLibrary& library,
                     const Job& job,
                     const RenderSettings& settings,
                     const std::function<void (double)>& progress)
{
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();

    AudioInput input (job.input);
    const auto shape = input.shape();
    const auto length = input.length();
    HostedPlugin plugin (library, { .mode = settings.mode, .shape = shape, .blockSize = settings.blockSize });
    AudioOutput output (job.output, settings.encoding, shape, length);

    const auto channels = static_cast<std::size_t> (shape.channels);
    std::vector<float> buffer (static_cast<std::size_t> (settings.blockSize) * channels);
    std::size_t framesDone = 0;

    while (true)
    {
        if (stopRequested())
            throw Interrupted (job.input);

        const auto frames = input.read (buffer);

        if (frames == 0)
            break;

        const auto block = std::span (buffer).first (frames * channels);
        plugin.process (block);
        output.write (block);
        framesDone += frames;

        if (length.has_value())
            progress (double (framesDone) / double (*length));
    }

    output.commit();

    const auto seconds = double (framesDone) / double (shape.sampleRate);
    const auto elapsed = std::chrono::duration<double> (Clock::now() - start).count();
    return { .levels = output.levels(), .seconds = seconds, .timesRealTime = seconds / elapsed };
}

} // namespace larkspire::render
