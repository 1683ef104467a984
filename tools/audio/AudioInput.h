// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "audio/AudioShape.h"
#include "audio/Metadata.h"
#include "audio/MissingEnd.h"
#include "audio/MpegDecoder.h"
#include "base/FileDescriptor.h"

#include <sndfile.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace larkspire
{

/** What is known of a recording that ends too early. */
struct Truncation
{
    std::optional<double> secondsStated; // how much sound the file promises; Ogg and some MP3 files promise nothing
};

/** A recording with one or two channels, read from front to back. */
class AudioInput
{
public:
    /** Opens the file. Throws Failure for whatever cannot be rendered: no such file, a folder, an empty file, no audio,
        another kind of audio, more than two channels, sound that was cut off before its first sample. */
    explicit AudioInput (const std::filesystem::path& path);

    const AudioShape& shape() const noexcept { return audioShape; }

    /** The number of sample frames that the file states; nullopt if it states none, as streamed FLAC may. */
    std::optional<std::int64_t> length() const noexcept;

    /** Whether the sound was cut off, though all that is there can be read. */
    std::optional<Truncation> truncation() const;

    /** How many of the samples read so far 32-bit floats do not hold as they are in the file. */
    std::int64_t roundedSamples() const noexcept { return samplesRounded; }

    /** What the file says of its recording beside the sound; empty for a kind of file of which that is not known. */
    Metadata metadata() const;

    /** Reads as many frames as fit, channels interleaved, linear full scale 1.0, and returns how many those are: 0 is
        the end. Throws Failure if the file is damaged or holds less than it states. */
    std::size_t read (std::span<float> interleaved);

private:
    struct Close
    {
        void operator() (SNDFILE* opened) const noexcept { sf_close (opened); }
    };

    void openMpeg();
    void openOther();
    std::size_t readOther (std::span<float> interleaved);
    void checkThatAllWasRead() const;
    bool holdsMoreThanFloats() const noexcept;
    sf_count_t readRounded (std::span<float> interleaved, sf_count_t frames);

    std::filesystem::path filePath; // or what standard input is called
    FileDescriptor descriptor;
    SF_INFO info {};
    std::unique_ptr<SNDFILE, Close> file;
    std::optional<MpegDecoder> mpeg; // in place of that for MP3
    AudioShape audioShape;
    std::optional<MissingEnd> missing;
    std::vector<double> doubles;
    std::int64_t framesRead = 0;
    std::int64_t samplesRounded = 0;
};

} // namespace larkspire
