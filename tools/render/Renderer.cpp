// SPDX-License-Identifier: AGPL-3.0-only
#include "render/Renderer.h"

#include "base/Failure.h"
#include "base/PartialFile.h"
#include "base/StandardStreams.h"
#include "base/StopSignal.h"
#include "plot/Painter.h"
#include "render/VoicePath.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <memory>
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

/** How a result is stored. At 16 bits what rounding does is heard in quiet passages, so that is dithered; in bypass
    nothing may change that was not asked for. */
Encoding encodingOf (const Job& job, const RenderSettings& settings)
{
    auto encoding = settings.encoding;
    encoding.dithered = encoding.samples == SampleType::pcm16 && (job.mode != KnobMode::bypass || ! settings.isPlain());
    return encoding;
}

/** Draws the picture and gives it its name, or gives the line that says why that is impossible. */
std::optional<std::string> paint (const meter::Listening& measurement, const Job& job, PartialFile& file)
{
    try
    {
        const plot::Title title { .name = printable (isStandardStream (job.input) ? nameOfInput (job.input)
                                                                                  : job.input.filename().string()),
                                  .mode = nameOf (job.mode) };
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

/** A recording as the plug-in's way begins: what is read, and its beginning once more where it was read ahead. */
class Source
{
public:
    explicit Source (const std::filesystem::path& path) : input (path) {}

    const AudioInput& file() const { return input; }

    /** Reads so many samples, or all that there are, which will be read again. */
    std::span<const float> readAhead (std::size_t samples)
    {
        ahead.resize (samples);
        std::size_t filled = 0;

        for (std::size_t count = 1; count > 0 && filled < samples; filled += count)
            count = readFile (std::span (ahead).subspan (filled));

        ahead.resize (filled);
        return ahead;
    }

    /** Reads whole frames, as many as fit, and gives the number of samples: 0 is the end. */
    std::size_t read (std::span<float> interleaved)
    {
        const auto again = std::min (interleaved.size(), ahead.size() - aheadUsed);

        if (again == 0)
            return readFile (interleaved);

        std::copy_n (ahead.begin() + static_cast<std::ptrdiff_t> (aheadUsed), again, interleaved.begin());
        aheadUsed += again;
        return again;
    }

private:
    std::size_t readFile (std::span<float> interleaved)
    {
        return input.read (interleaved) * static_cast<std::size_t> (input.shape().channels);
    }

    AudioInput input;
    std::vector<float> ahead;
    std::size_t aheadUsed = 0;
};

VoicePathSettings wayOf (const Job& job, const RenderSettings& settings, const AudioShape& shape)
{
    return { .mode = job.mode,
             .shape = shape,
             .blockSize = settings.blockSize,
             .processRate = settings.processRate,
             .voices = settings.voices };
}

/** How far a job is, over all of its passes through the sound: each counts alike. */
class Passes
{
public:
    Passes (const Job& jobToDo, const std::function<void (const RenderProgress&)>& listener)
        : job (jobToDo),
          progress (listener)
    {
    }

    /** @param frames  of the sound, if their number is known */
    void expect (std::optional<std::int64_t> frames, const AudioShape& shape, int passes)
    {
        channels = static_cast<std::size_t> (shape.channels);
        framesASecond = double (shape.sampleRate) * passes;
        soFar.secondsInAll = frames ? std::optional (double (*frames) / shape.sampleRate) : std::nullopt;
    }

    /** Takes note of so many samples. Throws Interrupted if a signal asked for an end. */
    void add (std::size_t samples)
    {
        if (stopRequested())
            throw Interrupted (nameOfInput (job.input));

        framesDone += samples / channels;
        soFar.secondsDone = double (framesDone) / framesASecond;
        soFar.secondsOfWork = secondsSince (start);
        progress (soFar);
    }

    double secondsOfWork() const { return secondsSince (start); }

private:
    const Job& job;
    const std::function<void (const RenderProgress&)>& progress;
    Clock::time_point start = Clock::now();
    RenderProgress soFar;
    std::size_t channels = 1;
    std::size_t framesDone = 0;
    double framesASecond = 1.0; // of all passes
};
} // namespace

RenderReport render (const PluginLibrary& library,
                     const Job& job,
                     const RenderSettings& settings,
                     const std::function<void (const RenderProgress&)>& progress)
{
    Passes passes (job, progress);
    Source source (job.input);
    const auto shape = source.file().shape();
    const auto length = source.file().length();
    const auto rate = double (shape.sampleRate);
    const auto channels = static_cast<std::size_t> (shape.channels);
    passes.expect (length, shape, 1 + settings.level.hearings() + (settings.target ? 1 : 0));

    const auto way = wayOf (job, settings, shape);
    std::optional<meter::Listening> measurement;

    if (settings.measure || job.picture.has_value() || settings.target.has_value())
        measurement.emplace (static_cast<int> (job.mode),
                             shape,
                             shapeForPlugin (way),
                             way.voices,
                             job.picture ? meter::Courses::kept : meter::Courses::none);

    const bool probes = settings.measure || job.picture.has_value();
    VoicePath path (library, way, probes ? &measurement->chain : nullptr);
    const auto metadata = source.file().metadata();
    const auto newOutput = [&]
    { return std::make_unique<AudioOutput> (job.output, encodingOf (job, settings), shape, length, metadata); };
    auto output = newOutput();
    std::optional<finish::Finisher> finisher;
    std::optional<PartialFile> picture;

    if (job.picture.has_value())
        picture.emplace (*job.picture);

    if (settings.target.has_value())
        finisher.emplace (shape, *settings.target, job.output);

    const auto gainDb = inputGainDb (
        job.input, settings.level, way, [&] (std::span<const float> samples) { passes.add (samples.size()); });
    const auto gain = static_cast<float> (std::pow (10.0, gainDb / 20.0));
    const auto amplify = [&] (std::span<float> samples)
    {
        if (gain != 1.0f)
            for (auto& sample : samples)
                sample *= gain;
    };

    if (settings.settleSeconds > 0.0)
    {
        const auto ahead = source.readAhead (static_cast<std::size_t> (settings.settleSeconds * rate) * channels);
        std::vector<float> heard (ahead.begin(), ahead.end());
        amplify (heard);
        path.settle (heard);
    }

    const auto write = [&] (std::span<const float> block)
    {
        const auto written = output->write (block);

        if (measurement.has_value())
            measurement->addResult (written);
    };

    const auto pass = [&] (std::span<const float> block)
    {
        if (finisher.has_value())
            finisher->add (block);
        else
            write (block);
    };

    std::vector<float> buffer (static_cast<std::size_t> (settings.blockSize) * channels);
    std::size_t framesDone = 0;

    for (std::size_t count = source.read (buffer); count > 0; count = source.read (buffer))
    {
        const auto block = std::span (buffer).first (count);

        if (probes)
            measurement->addRecording (block);

        amplify (block);
        pass (path.process (block));
        framesDone += count / channels;
        passes.add (count);
    }

    pass (path.end());

    if (finisher.has_value())
    {
        finisher->end();

        for (bool isFirst = true; isFirst || ! finisher->accepts (measurement->analysis().after); isFirst = false)
        {
            if (! isFirst)
            {
                output.reset();
                output = newOutput();
                measurement->beginResultAnew();
            }

            for (std::size_t count = finisher->read (buffer); count > 0; count = finisher->read (buffer))
            {
                write (std::span (buffer).first (count));
                passes.add (isFirst ? count : 0);
            }
        }
    }

    const auto analysis = settings.measure ? std::optional (measurement->analysis()) : std::nullopt;
    output->commit();
    const auto pictureFault = picture ? paint (*measurement, job, *picture) : std::nullopt;
    const auto seconds = double (framesDone) / rate;
    return { .levels = output->levels(),
             .losses = output->losses(),
             .roundedOnReading = source.file().roundedSamples(),
             .truncation = source.file().truncation(),
             .pictureFault = pictureFault,
             .leftBehind = output->leftBehind(),
             .unreadable = metadata.unreadable,
             .shape = shape,
             .seconds = seconds,
             .timesRealTime = seconds / passes.secondsOfWork(),
             .analysis = analysis,
             .inputGainDb = gainDb,
             .finish = finisher ? std::optional (finisher->report()) : std::nullopt };
}

RenderReport
analyse (const Job& job, const RenderSettings& settings, const std::function<void (const RenderProgress&)>& progress)
{
    Passes passes (job, progress);
    Source source (job.input);
    const auto shape = source.file().shape();
    const auto channels = static_cast<std::size_t> (shape.channels);
    const auto tell = [&] (std::span<const float> samples) { passes.add (samples.size()); };
    passes.expect (source.file().length(), shape, 2 + settings.level.hearings());

    const auto way = wayOf (job, settings, shape);
    meter::SoundMeter meter (shape, meter::Courses::none);
    PeakMeter peakMeter;
    std::vector<float> buffer (8192);
    std::size_t framesDone = 0;

    for (std::size_t count = source.read (buffer); count > 0; count = source.read (buffer))
    {
        const auto block = std::span<const float> (buffer).first (count);
        meter.add (block);
        peakMeter.add (block);
        framesDone += count / channels;
        tell (block);
    }

    const auto peak = peakMeter.peak().value_or (0.0);
    const auto gainDb = inputGainDb (job.input, settings.level, way, tell);
    const auto trials = tryOut (job.input, way, trialsForAdvice (job.mode, peak, gainDb), tell);
    return { .roundedOnReading = source.file().roundedSamples(),
             .truncation = source.file().truncation(),
             .shape = shape,
             .seconds = double (framesDone) / shape.sampleRate,
             .analysis =
                 meter::Analysis { .before = meter.figures (meter), .gainsKnown = meter::GainsKnown::noStageRuns },
             .inputGainDb = gainDb,
             .advice = adviceFrom (trials, peak) };
}

} // namespace larkspire::render
