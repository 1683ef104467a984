// SPDX-License-Identifier: AGPL-3.0-only
#include "audio/AudioInput.h"

#include "audio/FileBytes.h"
#include "audio/FileKind.h"
#include "audio/FlacBlocks.h"
#include "audio/Id3.h"
#include "audio/MpegHeader.h"
#include "audio/TagNames.h"
#include "audio/WavChunks.h"
#include "base/Failure.h"
#include "base/StandardStreams.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <string_view>
#include <utility>

namespace larkspire
{

namespace
{
/** Refuses what cannot be audio by its kind and size. */
void checkThatItCanBeAudio (const std::filesystem::path& path, int descriptor)
{
    struct stat status = {};

    if (fstat (descriptor, &status) != 0)
        throw Failure (path, "cannot be read: " + systemError (errno));

    if (S_ISDIR (status.st_mode))
        throw Failure (path, "is a folder, not an audio file");

    if (! S_ISREG (status.st_mode))
        throw Failure (path, "is not a regular file");

    if (status.st_size == 0)
        throw Failure (path, "is empty");
}

/** The kind of a file by its first bytes, or by those behind a tag, which some put in front of files of any kind.
   Throws Failure for what is no recording: libsndfile would try its MPEG decoder on texts and pictures, and that prints
   to the terminal. */
FileKind checkedKind (const std::filesystem::path& path, int descriptor)
{
    std::array<char, bytesOfKind> bytes {};
    const auto count = pread (descriptor, bytes.data(), bytes.size(), 0);

    if (count < 0)
        throw Failure (path, "cannot be read: " + systemError (errno));

    const std::string_view start (bytes.data(), static_cast<std::size_t> (count));
    const auto kind = kindOf (start, path);

    if (kind.content != Content::recording)
        throw Failure (path, "is " + adviceFor (kind, path));

    if (const auto tag = sizeOfId3 (start); tag > 0)
        if (const auto behind = kindOf (FileBytes (descriptor).at (tag, bytesOfKind), path);
            behind.content == Content::recording)
            return behind;

    return kind;
}

/** Why libsndfile could not open a file. Of what it does not know in an Ogg file it says no more than that. */
std::string reasonOf (int descriptor, const std::filesystem::path& path)
{
    constexpr std::size_t header = 28; // bytes of an Ogg page with one segment
    std::array<char, header + 8> bytes {};
    const auto count = pread (descriptor, bytes.data(), bytes.size(), 0);
    const std::string_view page (bytes.data(), static_cast<std::size_t> (std::max<ssize_t> (count, header)));

    for (const auto& [beginning, name] :
         { std::pair { "\177FLAC", "FLAC" }, { "Speex", "Speex" }, { "\200theora", "a film" } })
        if (page.starts_with ("OggS") && page.substr (header).starts_with (beginning))
            return std::string ("holds ") + name
                   + " in an Ogg file, which cannot be read here; convert it first: " + conversionOf (path);

    if (const auto missing = findMissingEnd (descriptor); missing && missing->bytesStated.value_or (0) > 0)
        return "is cut off and cannot be read as it is; repair it first: " + conversionOf (path);

    return std::string ("cannot be read as audio: ") + sf_strerror (nullptr)
           + " Another program may: " + conversionOf (path);
}

bool isOgg (const SF_INFO& info)
{
    return (info.format & SF_FORMAT_TYPEMASK) == SF_FORMAT_OGG;
}
} // namespace

AudioInput::AudioInput (const std::filesystem::path& path)
    : filePath (nameOfInput (path)),
      // Without O_NONBLOCK a named pipe would hold the program up before it can be refused.
      descriptor (open (pathOfInput (path).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK))
{
    if (! descriptor.isOpen())
        throw Failure (filePath, "cannot be read: " + systemError (errno));

    checkThatItCanBeAudio (filePath, descriptor.get());

    if (checkedKind (filePath, descriptor.get()).isMpegAudio)
        openMpeg();
    else
        openOther();

    if (audioShape.channels > 2)
        throw Failure (path,
                       "has " + std::to_string (audioShape.channels) + " channels; only mono and stereo are rendered");

    missing = findMissingEnd (descriptor.get());

    if (missing.has_value() && length() == 0)
        throw Failure (filePath,
                       missing->bytesStated == 0
                           ? "is damaged: its header was never completed; repair it first: " + conversionOf (filePath)
                           : "is damaged: it ends before its first sample");
}

void AudioInput::openMpeg()
{
    mpeg.emplace (filePath, descriptor.get());
    audioShape = mpeg->shape();
    info.frames = mpeg->length();
}

void AudioInput::openOther()
{
    // One of its own: whatever it is told, libsndfile closes the descriptor of a file that it cannot open.
    const auto itsOwn = fcntl (descriptor.get(), F_DUPFD_CLOEXEC, 0);
    file.reset (sf_open_fd (itsOwn, SFM_READ, &info, SF_TRUE));

    if (file == nullptr)
        throw Failure (filePath, reasonOf (descriptor.get(), filePath));

    audioShape = { .channels = info.channels, .sampleRate = info.samplerate };
}

std::optional<std::int64_t> AudioInput::length() const noexcept
{
    if (info.frames == SF_COUNT_MAX)
        return std::nullopt;

    return info.frames;
}

std::optional<Truncation> AudioInput::truncation() const
{
    if (mpeg.has_value() && mpeg->endsInsideFrame() && ! missing.has_value())
        return Truncation {};

    if (! missing.has_value())
        return std::nullopt;

    Truncation truncation;
    const auto seconds = static_cast<double> (info.frames) / audioShape.sampleRate;

    // Every kind of sample in files that state a size in bytes takes the same room throughout; MP3 states its samples.
    if (mpeg.has_value())
        truncation.secondsStated = seconds;
    else if (missing->bytesStated.value_or (0) > 0)
        truncation.secondsStated =
            seconds * static_cast<double> (*missing->bytesStated) / static_cast<double> (missing->bytesThere);

    return truncation;
}

Metadata AudioInput::metadata() const
{
    if (mpeg.has_value())
        return readId3 (descriptor.get(), mpeg->tags());

    switch (info.format & SF_FORMAT_TYPEMASK)
    {
    case SF_FORMAT_FLAC:
        return readFlacMetadata (descriptor.get());
    case SF_FORMAT_WAV:
    case SF_FORMAT_WAVEX:
    case SF_FORMAT_RF64:
        if ((info.format & SF_FORMAT_ENDMASK) != SF_ENDIAN_BIG)
            return readWavMetadata (descriptor.get());

        break;
    default:
        break;
    }

    Metadata metadata;

    for (const auto& tag : tagNames)
        if (const auto* text = tag.libsndfile != 0 ? sf_get_string (file.get(), tag.libsndfile) : nullptr;
            text != nullptr && *text != '\0')
            metadata.tags.push_back ({ .name = std::string (tag.name), .text = asUtf8 (text) });

    return metadata;
}

std::size_t AudioInput::read (std::span<float> interleaved)
{
    const auto count = mpeg.has_value() ? mpeg->read (interleaved) : readOther (interleaved);
    framesRead += static_cast<std::int64_t> (count);

    if (count == 0)
        checkThatAllWasRead();

    return count;
}

std::size_t AudioInput::readOther (std::span<float> interleaved)
{
    const auto wanted = static_cast<sf_count_t> (interleaved.size()) / info.channels;
    const auto count = holdsMoreThanFloats() ? readRounded (interleaved, wanted)
                                             : sf_readf_float (file.get(), interleaved.data(), wanted);

    if (sf_error (file.get()) != SF_ERR_NO_ERROR)
        throw Failure (filePath, std::string ("cannot be read to its end: ") + sf_strerror (file.get()));

    return static_cast<std::size_t> (count);
}

void AudioInput::checkThatAllWasRead() const
{
    // What an MP3 file states of its length holds also where its end is missing.
    const auto isKnownToBeShort = mpeg.has_value() && truncation().has_value();

    if (framesRead < length().value_or (0) && ! isKnownToBeShort)
        throw Failure (filePath,
                       "is damaged: " + std::to_string (framesRead) + " of " + std::to_string (info.frames)
                           + " samples can be read");

    // An Ogg file without a length has lost its end; one without sound either is nothing but a beginning.
    const auto promisedSound = isKnownToBeShort || (isOgg (info) && ! length().has_value());

    if (framesRead == 0 && promisedSound)
        throw Failure (filePath, "is damaged: it ends before its first sample");
}

bool AudioInput::holdsMoreThanFloats() const noexcept
{
    const auto samples = info.format & SF_FORMAT_SUBMASK;
    return samples == SF_FORMAT_PCM_32 || samples == SF_FORMAT_DOUBLE;
}

sf_count_t AudioInput::readRounded (std::span<float> interleaved, sf_count_t frames)
{
    doubles.resize (interleaved.size());
    const auto count = sf_readf_double (file.get(), doubles.data(), frames);

    for (std::size_t i = 0; std::cmp_less (i, count * info.channels); ++i)
    {
        interleaved[i] = static_cast<float> (doubles[i]);
        samplesRounded += std::isnan (doubles[i]) || double { interleaved[i] } == doubles[i] ? 0 : 1;
    }

    return count;
}

} // namespace larkspire
