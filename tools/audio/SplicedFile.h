// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "base/PartialFile.h"

#include <cstdint>
#include <string>

namespace larkspire
{

/** A file with a piece in it of which whoever writes the rest knows nothing: all places behind it are shifted, and the
    piece itself is at no place. The operations on the content are those of PartialFile, which keeps their errors. */
class SplicedFile
{
public:
    explicit SplicedFile (PartialFile& partial) : file (partial) {}

    /** Puts a piece in the place of the bytes between two places, the second of which is near the end. It can be done
        once. */
    void splice (std::int64_t from, std::int64_t to, const std::string& bytes);

    /** By how many bytes the file is larger than it seems. */
    std::int64_t growth() const noexcept { return shift; }

    std::int64_t write (const void* bytes, std::int64_t count) noexcept;
    std::int64_t read (void* bytes, std::int64_t count) noexcept;
    std::int64_t seek (std::int64_t offset, int whence) noexcept;
    std::int64_t size() noexcept { return file.size() - shift; }

private:
    /** Goes to the place where the next byte is, and gives how many follow it without a piece between. */
    std::int64_t goThere (std::int64_t count) noexcept;

    PartialFile& file;
    std::int64_t position = 0;
    std::int64_t seam = 0; // from here on places are shifted
    std::int64_t shift = 0;
};

} // namespace larkspire
