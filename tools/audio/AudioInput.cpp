// SPDX-License-Identifier: AGPL-3.0-only
#include "audio/AudioInput.h"

#include "audio/FileKind.h"
#include "base/Failure.h"

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

/** Looks at the first bytes. Otherwise libsndfile would try its MPEG decoder on texts and pictures, and that prints to
    the terminal. */
void checkTheKindOfFile (const std::filesystem::path& path, int descriptor)
{
    std::array<char, bytesOfKind> bytes {};
    const auto count = pread (descriptor, bytes.data(), bytes.size(), 0);

    if (count < 0)
        throw Failure (path, "cannot be read: " + systemError (errno));

    const auto kind = kindOf ({ bytes.data(), static_cast<std::size_t> (count) }, path);

    if (kind.content != Content::recording)
        throw Failure (path, "is " + adviceFor (kind));
}

/** Why libsndfile could not open a file. Of what it does not know in an Ogg file it says no more than that. */
std::string reasonOf (int descriptor)
{
    constexpr std::size_t header = 28; // bytes of an Ogg page with one segment
    std::array<char, header + 8> bytes {};
    const auto count = pread (descriptor, bytes.data(), bytes.size(), 0);
    const std::string_view page (bytes.data(), static_cast<std::size_t> (std::max<ssize_t> (count, header)));

    for (const auto& [beginning, name] :
         { std::pair { "\177FLAC", "FLAC" }, { "Speex", "Speex" }, { "\200theora", "a film" } })
        if (page.starts_with ("OggS") && page.substr (header).starts_with (beginning))
            return std::string ("holds ") + name
                   + " in an Ogg file, which cannot be read here: convert it first, for example with ffmpeg";

    return std::string ("cannot be read as audio: ") + sf_strerror (nullptr);
}

bool isOgg (const SF_INFO& info)
{
    return (info.format & SF_FORMAT_TYPEMASK) == SF_FORMAT_OGG;
}
} // namespace

AudioInput::AudioInput (const std::filesystem::path& path)
    : filePath (path),
      // Without O_NONBLOCK a named pipe would hold the program up before it can be refused.
      descriptor (open (path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK))
{
    if (! descriptor.isOpen())
        throw Failure (path, "cannot be read: " + systemError (errno));

    checkThatItCanBeAudio (path, descriptor.get());
    checkTheKindOfFile (path, descriptor.get());

    // One of its own: whatever it is told, libsndfile closes the descriptor of a file that it cannot open.
    const auto itsOwn = fcntl (descriptor.get(), F_DUPFD_CLOEXEC, 0);
    file.reset (sf_open_fd (itsOwn, SFM_READ, &info, SF_TRUE));

    if (file == nullptr)
        throw Failure (path, reasonOf (descriptor.get()));

    if (info.channels > 2)
        throw Failure (path, "has " + std::to_string (info.channels) + " channels; only mono and stereo are rendered");

    audioShape = { .channels = info.channels, .sampleRate = info.samplerate };
    missing = findMissingEnd (descriptor.get());

    if (missing.has_value() && info.frames == 0)
        throw Failure (path,
                       missing->bytesStated == 0
                           ? "is damaged: its header was never completed; repair it first, for example with ffmpeg"
                           : "is damaged: it ends before its first sample");
}

std::optional<std::int64_t> AudioInput::length() const noexcept
{
    if (info.frames == SF_COUNT_MAX)
        return std::nullopt;

    return info.frames;
}

std::optional<Truncation> AudioInput::truncation() const
{
    if (! missing.has_value())
        return std::nullopt;

    Truncation truncation;

    // Every kind of sample in files that state a size takes the same room throughout.
    if (missing->bytesStated.value_or (0) > 0)
        truncation.secondsStated = static_cast<double> (info.frames) / audioShape.sampleRate
                                   * static_cast<double> (*missing->bytesStated)
                                   / static_cast<double> (missing->bytesThere);

    return truncation;
}

std::size_t AudioInput::read (std::span<float> interleaved)
{
    const auto wanted = static_cast<sf_count_t> (interleaved.size()) / info.channels;
    const auto count = holdsMoreThanFloats() ? readRounded (interleaved, wanted)
                                             : sf_readf_float (file.get(), interleaved.data(), wanted);
    framesRead += count;

    if (sf_error (file.get()) != SF_ERR_NO_ERROR)
        throw Failure (filePath, std::string ("cannot be read to its end: ") + sf_strerror (file.get()));

    if (count == 0 && framesRead < length().value_or (0))
        throw Failure (filePath,
                       "is damaged: " + std::to_string (framesRead) + " of " + std::to_string (info.frames)
                           + " samples can be read");

    // An Ogg file without a length has lost its end; one without sound either is nothing but a beginning.
    if (count == 0 && framesRead == 0 && isOgg (info) && ! length().has_value())
        throw Failure (filePath, "is damaged: it ends before its first sample");

    return static_cast<std::size_t> (count);
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
