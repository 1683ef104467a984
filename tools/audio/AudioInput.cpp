// SPDX-License-Identifier: AGPL-3.0-only
#include "audio/AudioInput.h"

#include "audio/FileKind.h"
#include "base/Failure.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>

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

/** Looks at the first four bytes. Otherwise libsndfile would try its MPEG decoder on texts and pictures, and that
    prints to the terminal. */
void checkTheKindOfFile (const std::filesystem::path& path, int descriptor)
{
    std::array<char, 4> bytes {};
    const auto count = pread (descriptor, bytes.data(), bytes.size(), 0);

    if (count < 0)
        throw Failure (path, "cannot be read: " + systemError (errno));

    if (! mayBeRecording ({ bytes.data(), static_cast<std::size_t> (count) }))
        throw Failure (path, "is not a WAV, FLAC, AIFF or Ogg file");
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

    file.reset (sf_open_fd (descriptor.get(), SFM_READ, &info, SF_FALSE));

    if (file == nullptr)
        throw Failure (path, std::string ("cannot be read as audio: ") + sf_strerror (nullptr));

    if (info.channels > 2)
        throw Failure (path, "has " + std::to_string (info.channels) + " channels; only mono and stereo are rendered");

    audioShape = { .channels = info.channels, .sampleRate = info.samplerate };
}

std::optional<std::int64_t> AudioInput::length() const noexcept
{
    if (info.frames == SF_COUNT_MAX)
        return std::nullopt;

    return info.frames;
}

std::size_t AudioInput::read (std::span<float> interleaved)
{
    const auto wanted = static_cast<sf_count_t> (interleaved.size()) / info.channels;
    const auto count = sf_readf_float (file.get(), interleaved.data(), wanted);
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

} // namespace larkspire
