// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "base/FileDescriptor.h"

#include <cstddef>
#include <filesystem>
#include <span>

namespace larkspire
{

/** Numbers that wait on the disk: appended once, then read from front to back as often as wanted.

    The file has no name, so nothing of it stays however the program ends. It lies in the folder of the result that it
    becomes a part of, where there has to be room anyway; the folder for temporary files is often memory. That of
   standard output lies where StandardStreams.h keeps things.
*/
class Spool
{
public:
    /** @param result  beside whose file the spool lies, and which messages name. Throws Failure if that is impossible.
     */
    explicit Spool (const std::filesystem::path& result);

    /** Adds numbers at the end. Throws Failure if the disk does not take them. */
    void append (std::span<const float> numbers);

    /** Goes back to the first number. Nothing is appended from here on. */
    void rewind();

    /** Reads the next numbers, as many as fit, and returns how many those are: 0 is the end. Throws Failure if the disk
        does not give them. */
    std::size_t read (std::span<float> numbers);

private:
    std::filesystem::path shownName;
    FileDescriptor descriptor;
};

} // namespace larkspire
