// SPDX-License-Identifier: AGPL-3.0-only
#include "audio/AudioOutput.h"

#include "audio/FileBytes.h"
#include "audio/FlacBlocks.h"
#include "audio/Id3.h"
#include "audio/Quantiser.h"
#include "audio/TagNames.h"
#include "audio/WavChunks.h"
#include "base/Failure.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace larkspire
{

namespace
{
SplicedFile& splicedFile (void* userData)
{
    return *static_cast<SplicedFile*> (userData);
}

/** libsndfile does not report every write that failed; the partial file does. */
SF_VIRTUAL_IO throughSplicedFile()
{
    return { .get_filelen = [] (void* file) { return splicedFile (file).size(); },
             .seek = [] (sf_count_t offset, int whence, void* file)
             { return splicedFile (file).seek (offset, whence); },
             .read = [] (void* bytes, sf_count_t count, void* file) { return splicedFile (file).read (bytes, count); },
             .write = [] (const void* bytes, sf_count_t count, void* file)
             { return splicedFile (file).write (bytes, count); },
             .tell = [] (void* file) { return splicedFile (file).seek (0, SEEK_CUR); } };
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

int containerFormat (const Encoding& encoding,
                     const AudioShape& shape,
                     std::optional<std::int64_t> frames,
                     std::size_t sizeOfChunks)
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

    const auto isLarge = needsLargeWav (shape, encoding.samples, frames, static_cast<std::int64_t> (sizeOfChunks));
    return isLarge ? SF_FORMAT_RF64 : SF_FORMAT_WAV;
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

bool needsLargeWav (const AudioShape& shape,
                    SampleType samples,
                    std::optional<std::int64_t> frames,
                    std::int64_t sizeOfMetadata)
{
    constexpr std::int64_t roomForHeaders = 4096;
    const std::int64_t largestSize = 0xffffffff - roomForHeaders - sizeOfMetadata;
    const std::int64_t bytesPerFrame = std::int64_t { shape.channels } * (bitsOf (samples) / 8);
    return ! frames.has_value() || *frames > largestSize / bytesPerFrame;
}

AudioOutput::AudioOutput (const std::filesystem::path& path,
                          const Encoding& wanted,
                          const AudioShape& shape,
                          std::optional<std::int64_t> frames,
                          const Metadata& inputMetadata)
    : filePath (path),
      partial (path),
      encoding (wanted)
{
    checkTheRate (path, encoding.container, shape.sampleRate);
    auto metadata = inputMetadata;

    for (auto& chunk : metadata.chunks)
        if (chunk.name == "bext")
            chunk.bytes = broadcastExtensionOfResult (std::move (chunk.bytes), encoding, shape);

    const auto chunks = encoding.container == Container::wav ? chunksOf (metadata, lost) : std::string();
    SF_INFO info {};
    info.samplerate = shape.sampleRate;
    info.channels = shape.channels;
    info.format = containerFormat (encoding, shape, frames, chunks.size()) | sampleFormat (encoding);

    auto access = throughSplicedFile();
    file.reset (sf_open_virtual (&access, SFM_WRITE, &info, &spliced));
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
    if (encoding.container == Container::flac || ! chunks.empty())
        sf_command (file.get(), SFC_UPDATE_HEADER_NOW, nullptr, 0);

    switch (encoding.container)
    {
    case Container::wav:
        putChunks (chunks);
        break;
    case Container::flac:
        putBlocks (metadata, shape, frames);
        break;
    case Container::mp3:
        spliced.splice (0, 0, id3Of (metadata, lost));
        break;
    case Container::opus:
        setTags (metadata);
        break;
    }

    partial.throwOnError();
}

void AudioOutput::putChunks (const std::string& chunks)
{
    constexpr std::int64_t headerOfSound = 8; // the last that is there by now

    if (! chunks.empty())
        spliced.splice (partial.size() - headerOfSound, partial.size() - headerOfSound, chunks);
}

void AudioOutput::putBlocks (const Metadata& metadata, const AudioShape& shape, std::optional<std::int64_t> frames)
{
    constexpr std::int64_t start = 42; // the name and the block that describes the sound

    if (metadata.isEmpty())
        return;

    std::string encodersComments (static_cast<std::size_t> (partial.size() - start), '\0');
    partial.seek (start, SEEK_SET);
    partial.read (encodersComments.data(), std::ssize (encodersComments));
    spliced.splice (start, partial.size(), flacBlocksOf (metadata, encodersComments, encoding, shape, frames));
}

void AudioOutput::setTags (const Metadata& metadata)
{
    std::set<std::string> given;

    for (const auto& [name, text] : metadata.tags)
        if (const auto known = std::ranges::find (tagNames, name, &TagName::name);
            known == tagNames.end() || known->libsndfile == 0 || ! given.insert (name).second
            || sf_set_string (file.get(), known->libsndfile, text.c_str()) != 0)
            lost.push_back ("the tag " + name);

    for (const auto& chunk : metadata.chunks)
        if (! isInfo (chunk))
            lost.push_back (nameOf (chunk));

    for (const auto& block : metadata.blocks)
        lost.push_back (nameOf (block));
}

void AudioOutput::stateWholeSize()
{
    // Of what was put into it the library knows nothing.
    std::array<char, 28> header {};
    partial.seek (0, SEEK_SET);
    partial.read (header.data(), std::ssize (header));
    const std::string_view bytes (header.data(), header.size());
    const auto isLarge = bytes.starts_with ("RF64");
    const auto size = numberIn (bytes, isLarge ? 20 : 4, isLarge ? 8 : 4, false);
    const auto whole = littleEndian (size + static_cast<std::uint64_t> (spliced.growth()), isLarge ? 8 : 4);

    if (numberIn (whole, 0, whole.size(), false) < size)
        throw Failure (filePath,
                       "cannot be written: it is too large for a WAV file by a little; --format flac takes it");

    partial.seek (isLarge ? 20 : 4, SEEK_SET);
    partial.write (whole.data(), std::ssize (whole));
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

    if (encoding.container == Container::wav && spliced.growth() > 0)
        stateWholeSize();

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
        const auto value = quantiser.toWholeNumber (samples[i], encoding.dithered ? dither.next() : 0.0);
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
