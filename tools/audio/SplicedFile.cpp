// SPDX-License-Identifier: AGPL-3.0-only
#include "audio/SplicedFile.h"

#include <algorithm>
#include <cstdio>

namespace larkspire
{

void SplicedFile::splice (std::int64_t from, std::int64_t to, const std::string& bytes)
{
    std::string behind (static_cast<std::size_t> (file.size() - to), '\0');
    file.seek (to, SEEK_SET);
    file.read (behind.data(), std::ssize (behind));
    file.seek (from, SEEK_SET);
    file.write (bytes.data(), std::ssize (bytes));
    file.write (behind.data(), std::ssize (behind));
    seam = to;
    shift = std::ssize (bytes) - (to - from);
}

std::int64_t SplicedFile::write (const void* bytes, std::int64_t count) noexcept
{
    const auto* next = static_cast<const char*> (bytes);
    std::int64_t done = 0;

    while (done < count)
    {
        const auto part = file.write (next + done, goThere (count - done));

        if (part <= 0)
            break;

        done += part;
        position += part;
    }

    return done;
}

std::int64_t SplicedFile::read (void* bytes, std::int64_t count) noexcept
{
    const auto part = file.read (bytes, goThere (count));
    position += std::max<std::int64_t> (0, part);
    return part;
}

std::int64_t SplicedFile::seek (std::int64_t offset, int whence) noexcept
{
    const auto from = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? position : size();
    position = std::max<std::int64_t> (0, from + offset);
    return position;
}

std::int64_t SplicedFile::goThere (std::int64_t count) noexcept
{
    const auto isBehind = position >= seam;
    file.seek (isBehind ? position + shift : position, SEEK_SET);
    return isBehind ? count : std::min (count, seam - position);
}

} // namespace larkspire
