// SPDX-License-Identifier: AGPL-3.0-only
#include "audio/AudioOutput.h"

#include "audio/Quantiser.h"
#include "base/Failure.h"

#include <cmath>
#include <cstdio>
#include <string>
#include <utility>

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

int sampleFormat (SampleType samples)
{
    switch (samples)
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
    if (encoding.container == Container::flac)
        return SF_FORMAT_FLAC;

    return needsLargeWav (shape, encoding.samples, frames) ? SF_FORMAT_RF64 : SF_FORMAT_WAV;
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
    SF_INFO info {};
    info.samplerate = shape.sampleRate;
    info.channels = shape.channels;
    info.format = containerFormat (encoding, shape, frames) | sampleFormat (encoding.samples);

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

    // FLAC gets its header with the first sample, so without this a file without samples would have none.
    if (encoding.container == Container::flac)
        sf_command (file.get(), SFC_UPDATE_HEADER_NOW, nullptr, 0);

    partial.throwOnError();
}

void AudioOutput::write (std::span<const float> interleaved)
{
    if (encoding.samples == SampleType::float32)
        writeFloats (interleaved);
    else
        writeWholeNumbers (interleaved);
}

void AudioOutput::commit()
{
    const auto closed = sf_close (file.release());
    partial.throwOnError();

    if (closed != SF_ERR_NO_ERROR)
        throw Failure (filePath, std::string ("cannot be written: ") + sf_error_number (closed));

    partial.commit();
}

void AudioOutput::writeFloats (std::span<const float> interleaved)
{
    for (const auto sample : interleaved)
        writtenLevels.add (sample);

    checkCount (sf_write_float (file.get(), interleaved.data(), std::ssize (interleaved)), interleaved.size());
}

void AudioOutput::writeWholeNumbers (std::span<const float> interleaved)
{
    const auto bits = bitsOf (encoding.samples);
    const Quantiser quantiser (bits);
    wholeNumbers.resize (interleaved.size());

    for (std::size_t i = 0; i < interleaved.size(); ++i)
    {
        const auto value = quantiser.toWholeNumber (interleaved[i]);
        const auto written = quantiser.toSample (value);
        writtenLevels.add (written);

        if (written != double { interleaved[i] })
            countLoss (interleaved[i]);

        wholeNumbers[i] = value << (32 - bits); // the library takes the uppermost bits
    }

    checkCount (sf_write_int (file.get(), wholeNumbers.data(), std::ssize (wholeNumbers)), wholeNumbers.size());
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

void AudioOutput::checkCount (sf_count_t written, std::size_t wanted)
{
    partial.throwOnError();

    if (! std::cmp_equal (written, wanted))
        throw Failure (filePath, std::string ("cannot be written: ") + sf_strerror (file.get()));
}

} // namespace larkspire
