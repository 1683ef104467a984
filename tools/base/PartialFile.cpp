// SPDX-License-Identifier: AGPL-3.0-only
#include "base/PartialFile.h"

#include "base/Failure.h"
#include "base/StandardStreams.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <string>

namespace larkspire
{

namespace
{
Failure cannotWrite (const std::filesystem::path& path, int errorNumber)
{
    return { path, "cannot be written: " + systemError (errorNumber) };
}

/** What forbids to put a file in this place, null if nothing does. Renaming replaces devices too if one is root. */
const char* obstacleAt (const std::filesystem::path& target)
{
    struct stat status = {};

    if (stat (target.c_str(), &status) != 0 || S_ISREG (status.st_mode))
        return nullptr;

    return S_ISDIR (status.st_mode) ? "it is a folder" : "it is not a regular file";
}

/** The hidden name's attempt-th form. Cut where the whole would be longer than a name may be. */
std::filesystem::path partialNameFor (const std::filesystem::path& target, int attempt)
{
    auto suffix = ".partial-" + std::to_string (getpid());

    if (attempt > 1)
        suffix.append ("-").append (std::to_string (attempt));

    const auto name = std::string (1, '.').append (target.filename().string());
    return target.parent_path() / (name.substr (0, NAME_MAX - suffix.size()) + suffix);
}
} // namespace

std::filesystem::path behindLinks (const std::filesystem::path& path)
{
    constexpr int mostLinks = 40; // as many as the system follows
    std::error_code error;
    auto target = path;

    for (int i = 0; i < mostLinks && std::filesystem::is_symlink (target, error); ++i)
        target = target.parent_path() / std::filesystem::read_symlink (target, error);

    return target;
}

PartialFile::PartialFile (const std::filesystem::path& name)
    : shownName (nameOfResult (name)),
      finalPath (isStandardStream (name) ? std::filesystem::path() : behindLinks (name)),
      descriptor (isStandardStream (name) ? newSpoolFile (shownName) : FileDescriptor (-1))
{
    if (descriptor.isOpen())
        return;

    if (const auto* obstacle = obstacleAt (name))
        throw Failure (shownName, std::string ("cannot be written: ") + obstacle);

    if (std::error_code error; std::filesystem::is_symlink (finalPath, error))
        throw cannotWrite (shownName, ELOOP);

    // The name is taken only if a process with the same number was killed here, or works here from another machine.
    constexpr int mostAttempts = 100;

    for (int attempt = 1; ! descriptor.isOpen(); ++attempt)
    {
        partialPath = partialNameFor (finalPath, attempt);
        descriptor.reset (open (partialPath.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666));

        if (! descriptor.isOpen() && (errno != EEXIST || attempt == mostAttempts))
            throw cannotWrite (shownName, errno);
    }
}

PartialFile::~PartialFile()
{
    if (! committed && ! partialPath.empty())
        unlink (partialPath.c_str());
}

std::int64_t PartialFile::write (const void* bytes, std::int64_t count) noexcept
{
    const auto* next = static_cast<const char*> (bytes);
    std::int64_t written = 0;

    while (written < count)
    {
        const auto result = ::write (descriptor.get(), next + written, static_cast<std::size_t> (count - written));

        if (result < 0 && errno == EINTR)
            continue;

        if (checked (result) < 0)
            break;

        written += result;
    }

    return written;
}

std::int64_t PartialFile::read (void* bytes, std::int64_t count) noexcept
{
    return checked (::read (descriptor.get(), bytes, static_cast<std::size_t> (count)));
}

std::int64_t PartialFile::seek (std::int64_t offset, int whence) noexcept
{
    return checked (lseek (descriptor.get(), offset, whence));
}

std::int64_t PartialFile::size() noexcept
{
    struct stat status = {};
    return checked (fstat (descriptor.get(), &status)) < 0 ? -1 : status.st_size;
}

void PartialFile::throwOnError() const
{
    if (firstError != 0)
        throw cannotWrite (shownName, firstError);
}

void PartialFile::commit()
{
    throwOnError();

    if (finalPath.empty())
        return copyToStandardOutput (descriptor.get());

    // Some file systems notice a full disk only when the data has to go there; some cannot be asked.
    if (fsync (descriptor.get()) != 0 && errno != EINVAL && errno != ENOTSUP)
        throw cannotWrite (shownName, errno);

    if (descriptor.close() != 0 || std::rename (partialPath.c_str(), finalPath.c_str()) != 0)
        throw cannotWrite (shownName, errno);

    committed = true;
}

std::int64_t PartialFile::checked (std::int64_t result) noexcept
{
    if (result < 0 && firstError == 0)
        firstError = errno;

    return result;
}

} // namespace larkspire
