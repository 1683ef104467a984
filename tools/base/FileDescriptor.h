// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <unistd.h>

#include <utility>

namespace larkspire
{

/** Owns an open file of the system. */
class FileDescriptor
{
public:
    /** @param opened  what open() gave; negative owns nothing. */
    explicit FileDescriptor (int opened) noexcept : descriptor (opened) {}

    ~FileDescriptor() { reset (-1); }

    FileDescriptor (FileDescriptor&& other) noexcept : descriptor (std::exchange (other.descriptor, -1)) {}
    FileDescriptor (const FileDescriptor&) = delete;
    FileDescriptor& operator= (const FileDescriptor&) = delete;

    int get() const noexcept { return descriptor; }
    bool isOpen() const noexcept { return descriptor >= 0; }

    /** Closes what is owned and owns another. */
    void reset (int opened) noexcept
    {
        if (isOpen())
            close();

        descriptor = opened;
    }

    /** Closes now, for those who need to know whether that worked. Returns what close() returned. */
    int close() noexcept { return ::close (std::exchange (descriptor, -1)); }

private:
    int descriptor;
};

} // namespace larkspire
