// SPDX-License-Identifier: AGPL-3.0-only
#include "base/Spool.h"

#include "base/Failure.h"
#include "base/PartialFile.h"
#include "base/StandardStreams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>

namespace larkspire
{

namespace
{
/** Makes a file and takes its name away. */
int openNameless (const std::filesystem::path& folder)
{
    auto name = (folder / ".larkspire-spool-XXXXXX").string();
    const auto opened = mkostemp (name.data(), O_CLOEXEC);

    if (opened >= 0)
        unlink (name.c_str());

    return opened;
}
} // namespace

Spool::Spool (const std::filesystem::path& result)
    : shownName (nameOfResult (result)),
      descriptor (isStandardStream (result) ? newSpoolFile (shownName)
                                            : FileDescriptor (openNameless (behindLinks (result).parent_path())))
{
    if (! descriptor.isOpen())
        throw Failure (shownName, "cannot be written: " + systemError (errno));
}

void Spool::append (std::span<const float> numbers)
{
    auto bytes = std::as_bytes (numbers);

    while (! bytes.empty())
    {
        const auto written = ::write (descriptor.get(), bytes.data(), bytes.size());

        if (written < 0 && errno == EINTR)
            continue;

        if (written <= 0)
            throw Failure (shownName, "cannot be written: " + systemError (written < 0 ? errno : ENOSPC));

        bytes = bytes.subspan (static_cast<std::size_t> (written));
    }
}

void Spool::rewind()
{
    if (lseek (descriptor.get(), 0, SEEK_SET) != 0)
        throw Failure (shownName, "cannot be written: " + systemError (errno));
}

std::size_t Spool::read (std::span<float> numbers)
{
    auto bytes = std::as_writable_bytes (numbers);

    while (! bytes.empty())
    {
        const auto count = ::read (descriptor.get(), bytes.data(), bytes.size());

        if (count < 0 && errno == EINTR)
            continue;

        if (count < 0)
            throw Failure (shownName, "cannot be written: " + systemError (errno));

        if (count == 0)
            break;

        bytes = bytes.subspan (static_cast<std::size_t> (count));
    }

    return numbers.size() - bytes.size() / sizeof (float);
}

} // namespace larkspire
