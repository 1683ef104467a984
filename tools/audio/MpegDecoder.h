// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "audio/AudioShape.h"

#include <mpg123.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>

namespace larkspire
{

/** MPEG audio, layers I to III, read from front to back with libmpg123.

    Where an encoder has noted in the file how many samples it added at both ends, they are taken off again, so that a
    recording has the length it had. libsndfile reads such files too, but it prints to the terminal when they are
    damaged, and it takes a guess for the length of those that state none and leaves out what lies behind it. */
class MpegDecoder
{
public:
    /** @param descriptor  of the whole file; it is read through and stays the caller's

        Throws Failure, with the path, if no frame of MPEG audio is found. */
    MpegDecoder (const std::filesystem::path& path, int descriptor);

    const AudioShape& shape() const noexcept { return audioShape; }

    /** The number of sample frames: as stated by the file, or else counted. */
    std::int64_t length() const noexcept { return frames; }

    /** Reads as many frames as fit, channels interleaved, linear full scale 1.0, and returns how many those are: 0 is
        the end. Throws Failure where something lies between two frames of MPEG audio that is none, and where the
        sample rate changes. */
    std::size_t read (std::span<float> interleaved);

    /** Whether the file ends in the middle of a frame of MPEG audio, known once read() has returned 0. */
    bool endsInsideFrame() const noexcept { return cutOff; }

    /** The text tags at the beginning or the end of the file, in UTF-8; null where there are none. Owned by this. */
    const mpg123_id3v2* tags() const noexcept;

private:
    struct Delete
    {
        void operator() (mpg123_handle* opened) const noexcept { mpg123_delete (opened); }
    };

    bool readShape();
    bool decodeFrame();
    bool followsTheLastFrame();
    void lookBehindTheLastFrame();

    std::filesystem::path filePath;
    int file;
    std::unique_ptr<mpg123_handle, Delete> handle;
    AudioShape audioShape;
    std::int64_t frames = 0;
    std::span<const float> decoded; // what is left of the last frame, in the decoder's own memory
    std::optional<std::int64_t> endOfLastFrame;
    bool cutOff = false;
};

} // namespace larkspire
