// SPDX-License-Identifier: AGPL-3.0-only
#include "render/Renderer.h"

#include "audio/Quantiser.h"
#include "base/Failure.h"
#include "base/PartialFile.h"
#include "base/StopSignal.h"
#include "plot/Painter.h"

#include <chrono>
#include <vector>

namespace larkspire::render
{

namespace
{
using Clock = std::chrono::steady_clock;

double secondsSince (Clock::time_point start)
{
    return std::chrono::duration<double> (Clock::now() - start).count();
}

/** Samples as they read back from the result. */
std::vector<float> asWritten (std::span<const float> block, SampleType samples)
{
    std::vector<float> written (block.begin(), block.end());

    if (samples != SampleType::float32)
        for (const Quantiser quantiser (bitsOf (samples)); auto& sample : written)
            sample = static_cast<float> (quantiser.toSample (quantiser.toWholeNumber (sample)));

    return written;
}

/** Draws the picture and gives it its name, or gives the line that says why that is impossible. */
std::optional<std::string> paint (const meter::Listening& measurement, const Job& job, PartialFile& file)
{
    try
    {
        const plot::Title title { .name = printable (job.input.filename().string()), .mode = nameOf (job.mode) };
        const auto png = plot::paintPng (measurement, title);
        file.write (png.data(), std::ssize (png));
        file.commit();
        return std::nullopt;
    }
    catch (const std::exception& fault)
    {
        return fault.what();
    }
}
} // namespace

RenderReport render (const PluginLibrary& library,
                     const Job& job,
                     const RenderSettings& settings,
                     const std::function<void (const RenderProgress&)>& progress)
{
    const auto start = Clock::now();

    AudioInput input (job.input);
    const auto shape = input.shape();
    const auto length = input.length();
    HostedPlugin plugin (library, { .mode = job.mode, .shape = shape, .blockSize = settings.blockSize });
    AudioOutput output (job.output, settings.encoding, shape, length);
    std::optional<PartialFile> picture;
    std::optional<meter::Listening> measurement;

    if (job.picture.has_value())
        picture.emplace (*job.picture);

    if (settings.measure || picture.has_value())
        measurement.emplace (static_cast<int> (job.mode), shape);

    const auto rate = double (shape.sampleRate);
    const auto channels = static_cast<std::size_t> (shape.channels);
    std::vector<float> buffer (static_cast<std::size_t> (settings.blockSize) * channels);
    std::vector<float> original;
    RenderProgress soFar { .secondsInAll = length ? std::optional (double (*length) / rate) : std::nullopt };
    std::size_t framesDone = 0;

    while (true)
    {
        if (stopRequested())
            throw Interrupted (job.input);

        const auto frames = input.read (buffer);

        if (frames == 0)
            break;

        const auto block = std::span (buffer).first (frames * channels);
        original.assign (block.begin(), block.end());
        plugin.process (block);
        output.write (block);

        if (measurement.has_value())
            measurement->add (original, block, asWritten (block, settings.encoding.samples));

        framesDone += frames;
        soFar.secondsDone = double (framesDone) / rate;
        soFar.secondsOfWork = secondsSince (start);
        progress (soFar);
    }

    const auto analysis = measurement ? std::optional (measurement->analysis()) : std::nullopt;
    output.commit();
    const auto pictureFault = picture ? paint (*measurement, job, *picture) : std::nullopt;
    const auto seconds = double (framesDone) / rate;
    return { .levels = output.levels(),
             .losses = output.losses(),
             .roundedOnReading = input.roundedSamples(),
             .truncation = input.truncation(),
             .pictureFault = pictureFault,
             .shape = shape,
             .seconds = seconds,
             .timesRealTime = seconds / secondsSince (start),
             .analysis = analysis };
}

} // namespace larkspire::render
