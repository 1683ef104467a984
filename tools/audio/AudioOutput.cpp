// SPDX-License-Identifier: AGPL-3.0-only
#include "audio/AudioOutput.h"

#include "audio/Quantiser.h"
#include "base/Failure.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <string>

namespace larkspire
{

namespace
{
PartialFile& partialFile (void* userData)
{
    return *static_cast<PartialFile*> (userData);
}

/** libsndfile does not report every write that failed; PartialFile does. */
SF_VIRTUAL_IO throughPartialFile()
{
    return { .get_filelen = [] (void* file) { return partialFile (file).size(); },
             .seek = [] (sf_count_t offset, int whence, void* file)
             { return partialFile (file).seek (offset, whence); },
             .read = [] (void* bytes, sf_count_t count, void* file) { return partialFile (file).read (bytes, count); },
             .write = [] (const void* bytes, sf_count_t count, void* file)
             { return partialFile (file).write (bytes, count); },
             .tell = [] (void* file) { return partialFile (file).seek (0, SEEK_CUR); } };
}

int sampleFormat (const Encoding& encoding)
{
    if (encoding.container == Container::mp3)
        return SF_FORMAT_MPEG_LAYER_III;

    if (encoding.container == Container::opus)
        return SF_FORMAT_OPUS;

    switch (encoding.samples)
    {
    case SampleType::pcm16:
        return SF_FORMAT_PCM_16;
    case SampleType::pcm24:
        return SF_FORMAT_PCM_24;
    case SampleType::float32:
        break;
    }

    return SF_FORMAT_FLOAT;
}

int containerFormat (const Encoding& encoding, const AudioShape& shape, std::optional<std::int64_t> frames)
{
    switch (encoding.container)
    {
    case Container::flac:
        return SF_FORMAT_FLAC;
    case Container::mp3:
        return SF_FORMAT_MPEG;
    case Container::opus:
        return SF_FORMAT_OGG;
    case Container::wav:
        break;
    }

    return needsLargeWav (shape, encoding.samples, frames) ? SF_FORMAT_RF64 : SF_FORMAT_WAV;
}

/** Refuses a sample rate that a kind of file does not know: Opus has five, MP3 three in each of its three versions. */
void checkTheRate (const std::filesystem::path& path, Container container, int rate)
{
    constexpr std::array opusRates { 8000, 12000, 16000, 24000, 48000 };
    constexpr std::array mp3Rates { 8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000 };
    const auto rates = container == Container::opus  ? std::span<const int> (opusRates)
                       : container == Container::mp3 ? std::span<const int> (mp3Rates)
                                                     : std::span<const int>();

    if (rates.empty() || std::ranges::find (rates, rate) != rates.end())
        return;

    std::string list;

    for (const auto known : rates)
        list += (list.empty() ? "" : known == rates.back() ? " or " : ", ") + std::to_string (known);

    throw Failure (path,
                   std::string ("cannot be written: ") + nameOf (container) + " files have " + list
                       + " Hz, and the recording has " + std::to_string (rate)
                       + "; --format flac takes it as it is, or convert it to 48000 Hz first");
}
} // namespace

bool needsLargeWav (const AudioShape& shape, SampleType samples, std::optional<std::int64_t> frames)
{
    constexpr std::int64_t roomForHeaders = 4096;
    constexpr std::int64_t largestSize = 0xffffffff - roomForHeaders;
    const std::int64_t bytesPerFrame = std::int64_t { shape.channels } * (bitsOf (samples) / 8);
    return ! frames.has_value() || *frames > largestSize / bytesPerFrame;
}

AudioOutput::AudioOutput (const std::filesystem::path& path,
                          const Encoding& wanted,
                          const AudioShape& shape,
                          std::optional<std::int64_t> frames)
    : filePath (path),
      partial (path),
      encoding (wanted)
{
    checkTheRate (path, encoding.container, shape.sampleRate);
    SF_INFO info {};
    info.samplerate = shape.sampleRate;
    info.channels = shape.channels;
    info.format = containerFormat (encoding, shape, frames) | sampleFormat (encoding);

    auto access = throughPartialFile();
    file.reset (sf_open_virtual (&access, SFM_WRITE, &info, &partial));
    partial.throwOnError();

    if (file == nullptr)
        throw Failure (filePath, std::string ("cannot be written: ") + sf_strerror (nullptr));

    // What was prepared for any length and turns out small becomes an ordinary file.
    if (! frames.has_value())
        sf_command (file.get(), SFC_RF64_AUTO_DOWNGRADE, nullptr, SF_TRUE);

    // That chunk holds the time of day, and a result shall depend on nothing but its input.
    sf_command (file.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);

    // LAME's "-V 2": what most people do not tell from the original. Opus is good at what the library has by itself.
    if (double level = 0.2; encoding.container == Container::mp3)
        sf_command (file.get(), SFC_SET_COMPRESSION_LEVEL, &level, sizeof level);

    // FLAC gets its header with the first sample, so without this a file without samples would have none.
    if (encoding.container == Container::flac)
        sf_command (file.get(), SFC_UPDATE_HEADER_NOW, nullptr, 0);

    partial.throwOnError();
}

std::span<const float> AudioOutput::write (std::span<const float> interleaved)
{
    samples.assign (interleaved.begin(), interleaved.end());

    if (! holdsSamples (encoding.container))
        holdWithinFullScale();
    else if (encoding.samples != SampleType::float32)
        roundToWholeNumbers();

    for (const auto sample : samples)
        writtenLevels.add (sample);

    const auto count = std::ssize (samples);
    const auto written = wholeNumbers.empty() ? sf_write_float (file.get(), samples.data(), count)
                                              : sf_write_int (file.get(), wholeNumbers.data(), count);
    partial.throwOnError();

    if (written != count)
        throw Failure (filePath, std::string ("cannot be written: ") + sf_strerror (file.get()));

    return samples;
}

void AudioOutput::commit()
{
    // Of those the library makes files that nothing can read.
    if (! holdsSamples (encoding.container) && writtenLevels.count == 0)
        throw Failure (filePath,
                       std::string ("cannot be written: ") + nameOf (encoding.container)
                           + " files cannot be without sound, and the recording is; --format flac can");

    const auto closed = sf_close (file.release());
    partial.throwOnError();

    if (closed != SF_ERR_NO_ERROR)
        throw Failure (filePath, std::string ("cannot be written: ") + sf_error_number (closed));

    if (encoding.container == Container::opus)
        giveSerialNumber (partial, hash.value());

    partial.commit();
}

void AudioOutput::roundToWholeNumbers()
{
    const auto bits = bitsOf (encoding.samples);
    const Quantiser quantiser (bits);
    wholeNumbers.resize (samples.size());

    for (std::size_t i = 0; i < samples.size(); ++i)
    {
        const auto value = quantiser.toWholeNumber (samples[i]);
        const auto written = static_cast<float> (quantiser.toSample (value));

        if (written != samples[i])
            countLoss (samples[i]);

        samples[i] = written;
        wholeNumbers[i] = value << (32 - bits); // the library takes the uppermost bits
    }
}

void AudioOutput::holdWithinFullScale()
{
    for (auto& sample : samples)
    {
        const auto held = std::isnan (sample) ? 0.0f : std::clamp (sample, -1.0f, 1.0f);

        if (held != sample)
            countLoss (sample);

        sample = held;
        hash.add (held);
    }
}

void AudioOutput::countLoss (float sample)
{
    if (std::isnan (sample))
        ++samplesLost.notNumbers;
    else if (std::abs (sample) > 1.0f)
        ++samplesLost.clipped;
    else
        ++samplesLost.rounded;
}

} // namespace larkspire
