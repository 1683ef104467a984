// SPDX-License-Identifier: AGPL-3.0-only
#include "audio/MpegDecoder.h"

#include "audio/FileBytes.h"
#include "audio/FileKind.h"
#include "audio/MpegHeader.h"
#include "base/Failure.h"

#include <algorithm>
#include <string>

namespace larkspire
{

namespace
{
/** Whether a file goes on behind what the encoder's note speaks of, as files do that were joined to one. */
bool goesOnBehind (const MpegInfo& info, int file)
{
    const auto behind = FileBytes (file).at (info.place + info.bytes, 4);
    return info.bytes > 0 && (isMpegHeader (behind) || behind.starts_with ("ID3"));
}
} // namespace

MpegDecoder::MpegDecoder (const std::filesystem::path& path, int descriptor)
    : filePath (path),
      file (descriptor),
      handle (mpg123_new (nullptr, nullptr))
{
    const auto info = findMpegInfo (file);
    const auto tellsAll = info.has_value() && ! goesOnBehind (*info, file);
    const long flags =
        MPG123_QUIET | MPG123_FORCE_FLOAT | MPG123_PICTURE | (tellsAll ? MPG123_GAPLESS : MPG123_IGNORE_INFOFRAME);

    if (handle == nullptr || mpg123_param (handle.get(), MPG123_ADD_FLAGS, flags, 0.0) != MPG123_OK
        || mpg123_param (handle.get(), MPG123_REMOVE_FLAGS, MPG123_AUTO_RESAMPLE, 0.0) != MPG123_OK
        // However long a gap is, what follows it is found, so that the gap is seen.
        || mpg123_param (handle.get(), MPG123_RESYNC_LIMIT, -1, 0.0) != MPG123_OK
        || mpg123_open_fd (handle.get(), file) != MPG123_OK || ! readShape())
        throw Failure (filePath, "cannot be read as audio: no MPEG audio is found in it");

    if (! tellsAll && mpg123_scan (handle.get()) != MPG123_OK)
        throw Failure (filePath, std::string ("cannot be read as audio: ") + mpg123_strerror (handle.get()));

    frames = std::max<std::int64_t> (0, mpg123_length (handle.get()));
}

std::size_t MpegDecoder::read (std::span<float> interleaved)
{
    const auto channels = static_cast<std::size_t> (audioShape.channels);
    std::size_t count = 0;

    while (count < interleaved.size() && (! decoded.empty() || decodeFrame()))
    {
        const auto taken = std::min (decoded.size(), interleaved.size() - count);
        std::ranges::copy (decoded.first (taken), interleaved.begin() + static_cast<std::ptrdiff_t> (count));
        decoded = decoded.subspan (taken);
        count += taken;
    }

    return count / channels;
}

const mpg123_id3v2* MpegDecoder::tags() const noexcept
{
    mpg123_id3v1* old = nullptr;
    mpg123_id3v2* tags = nullptr;
    return mpg123_id3 (handle.get(), &old, &tags) == MPG123_OK ? tags : nullptr;
}

bool MpegDecoder::readShape()
{
    long rate = 0;
    int encoding = 0;

    if (mpg123_getformat (handle.get(), &rate, &audioShape.channels, &encoding) != MPG123_OK)
        return false;

    audioShape.sampleRate = static_cast<int> (rate);
    return encoding == MPG123_ENC_FLOAT_32;
}

bool MpegDecoder::decodeFrame()
{
    // The first frames may give nothing: the encoder added them.
    while (decoded.empty())
    {
        off_t number = 0;
        unsigned char* bytes = nullptr;
        std::size_t count = 0;
        const auto result = mpg123_decode_frame (handle.get(), &number, &bytes, &count);

        if (result == MPG123_DONE)
        {
            lookBehindTheLastFrame();
            return false;
        }

        if (result == MPG123_NEW_FORMAT)
        {
            const auto before = audioShape;

            // Behind a gap whatever looks like a frame may be taken for one.
            if (! followsTheLastFrame())
                return false;

            if (! readShape() || before.channels != audioShape.channels || before.sampleRate != audioShape.sampleRate)
                throw Failure (filePath,
                               "changes its sample rate or its channels on the way; convert it first: "
                                   + conversionOf (filePath));

            continue;
        }

        if (result != MPG123_OK)
            throw Failure (filePath, std::string ("is damaged: ") + mpg123_strerror (handle.get()));

        if (! followsTheLastFrame())
            return false;

        decoded = { reinterpret_cast<const float*> (bytes), count / sizeof (float) };
    }

    return true;
}

bool MpegDecoder::followsTheLastFrame()
{
    mpg123_frameinfo info {};
    mpg123_info (handle.get(), &info);
    const std::int64_t place = mpg123_framepos (handle.get());

    if (endOfLastFrame.has_value() && place > *endOfLastFrame)
    {
        // Among the bytes of a picture in such a tag something may look like a frame.
        const auto between = FileBytes (file).at (*endOfLastFrame, 10);

        if (const auto tag = sizeOfId3 (between); tag > 0 && *endOfLastFrame + tag == place)
        {
            endOfLastFrame = place + info.framesize;
            return true;
        }

        if (between.starts_with ("TAG") || between.starts_with ("APETAGEX") || between.starts_with ("LYRICS"))
            return false;

        throw Failure (filePath,
                       "is damaged: " + std::to_string (place - *endOfLastFrame) + " bytes from byte "
                           + std::to_string (*endOfLastFrame) + " on are no MPEG audio");
    }

    endOfLastFrame = place + info.framesize;
    return true;
}

void MpegDecoder::lookBehindTheLastFrame()
{
    cutOff = isMpegHeader (FileBytes (file).at (endOfLastFrame.value_or (0), 4));
}

} // namespace larkspire
