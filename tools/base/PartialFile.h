// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "base/FileDescriptor.h"

#include <cstdint>
#include <filesystem>

namespace larkspire
{

/** The path of the file behind a symbolic link, be it there or still to be made; any other path as it is. */
std::filesystem::path behindLinks (const std::filesystem::path& path);

/** A file that gets its name once it is whole.

    Until then it is a hidden file beside that name, ".<name>.partial-<process>", and is removed if commit is never
    reached. A file that had the name before is replaced in one step, so half a result is never seen. Where the name is
    a symbolic link, the file behind it is made or replaced and the link stays. Where the name is that of standard
    output, all goes there at the end, and nothing before.

    The operations on the content report like the system's own: a count, a position or -1. The first error is kept.
*/
class PartialFile
{
public:
    /** Creates the hidden file. Throws Failure if that is impossible, or if a folder or a device has that name. */
    explicit PartialFile (const std::filesystem::path& name);
    ~PartialFile();

    PartialFile (const PartialFile&) = delete;
    PartialFile& operator= (const PartialFile&) = delete;

    std::int64_t write (const void* bytes, std::int64_t count) noexcept;
    std::int64_t read (void* bytes, std::int64_t count) noexcept;
    std::int64_t seek (std::int64_t offset, int whence) noexcept;
    std::int64_t size() noexcept;

    /** Throws Failure if an operation has failed up to here. */
    void throwOnError() const;

    /** Gives the file its name. Throws Failure if any byte did not reach the disk; the destructor then removes the
        hidden file. */
    void commit();

private:
    /** Passes on what a call of the system returned, and keeps its error if it failed. */
    std::int64_t checked (std::int64_t result) noexcept;

    std::filesystem::path shownName; // as the caller wrote it, for messages
    std::filesystem::path finalPath; // this and the next are empty for standard output
    std::filesystem::path partialPath;
    FileDescriptor descriptor;
    int firstError = 0;
    bool committed = false;
};

} // namespace larkspire
