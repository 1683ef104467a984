// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "audio/AudioShape.h"
#include "audio/Dither.h"
#include "audio/Encoding.h"
#include "audio/Levels.h"
#include "audio/Metadata.h"
#include "audio/OggSerialNumber.h"
#include "audio/SplicedFile.h"
#include "base/PartialFile.h"

#include <sndfile.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace larkspire
{

/** Whether that much sound is too long for the 32-bit sizes of an ordinary WAV file. Then, or if the length is not
    known, RF64 is written, which is the same with 64-bit sizes. */
bool needsLargeWav (const AudioShape& shape,
                    SampleType samples,
                    std::optional<std::int64_t> frames,
                    std::int64_t sizeOfMetadata = 0);

/** How many samples a file does not hold as they came. */
struct Losses
{
    std::int64_t clipped = 0;    // beyond full scale, held at it
    std::int64_t rounded = 0;    // to the width of the file's samples
    std::int64_t notNumbers = 0; // NaN, written as 0
};

/** A sound file that is written from front to back and gets its name at the end. */
class AudioOutput
{
public:
    /** @param frames    the length to come, if it is known
        @param metadata  what the file is to say of it beside the sound

        Throws Failure if the file cannot be created or the kind of file has no such sample rate. */
    AudioOutput (const std::filesystem::path& path,
                 const Encoding& wanted,
                 const AudioShape& shape,
                 std::optional<std::int64_t> frames,
                 const Metadata& metadata = {});

    /** What of the metadata this kind of file has no place for, by name. */
    const std::vector<std::string>& leftBehind() const noexcept { return lost; }

    /** Appends whole frames, channels interleaved, linear full scale 1.0. Throws Failure if the disk does not take
        them.

        Gives them as they were written: rounded, and held within full scale unless the file holds floats. MP3 and Opus
        files read back as something like it. Valid until the next call. */
    std::span<const float> write (std::span<const float> interleaved);

    /** What has been written so far. */
    const Levels& levels() const noexcept { return writtenLevels; }

    /** What that lost: nothing in a file of floats. */
    const Losses& losses() const noexcept { return samplesLost; }

    /** Completes the file and gives it its name. Throws Failure if any byte did not get through; then there is none. */
    void commit();

private:
    struct Close
    {
        void operator() (SNDFILE* opened) const noexcept { sf_close (opened); }
    };

    void setTags (const Metadata& metadata);
    void putChunks (const std::string& chunks);
    void putBlocks (const Metadata& metadata, const AudioShape& shape, std::optional<std::int64_t> frames);
    void stateWholeSize();
    void roundToWholeNumbers();
    void holdWithinFullScale();
    void countLoss (float sample);

    std::filesystem::path filePath;
    PartialFile partial;
    SplicedFile spliced { partial };
    Encoding encoding;
    std::vector<std::string> lost;
    std::unique_ptr<SNDFILE, Close> file; // below the partial file: closing still writes to it
    std::vector<float> samples;           // of the last block, as they are written
    std::vector<int> wholeNumbers;
    Dither dither;
    SoundHash hash;
    Levels writtenLevels;
    Losses samplesLost;
};

} // namespace larkspire
