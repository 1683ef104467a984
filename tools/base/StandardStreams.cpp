// SPDX-License-Identifier: AGPL-3.0-only
#include "base/StandardStreams.h"

#include "base/Failure.h"
#include "base/StopSignal.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <span>

namespace larkspire
{

namespace
{
constexpr const char* standardInput = "standard input";
constexpr const char* standardOutput = "standard output";

/** Waits until a stream can be read or written; a signal that asks for an end ends that too. */
void waitFor (int stream, short event, const char* name, const char* extent = "nothing was written")
{
    pollfd waiting { .fd = stream, .events = event, .revents = 0 };

    do
        if (stopRequested())
            throw Interrupted (name, extent);
    while (poll (&waiting, 1, 500) <= 0); // a signal may come ahead of it
}

void writeAll (int file, std::span<const char> bytes, const char* name)
{
    while (! bytes.empty())
    {
        const auto written = write (file, bytes.data(), bytes.size());

        if (written < 0 && errno != EINTR)
            throw Failure (name, "cannot be kept on the disk: " + systemError (errno));

        bytes = bytes.subspan (static_cast<std::size_t> (std::max<ssize_t> (0, written)));
    }
}

bool isFileAtItsBeginning (int stream)
{
    struct stat status = {};
    return fstat (stream, &status) == 0 && S_ISREG (status.st_mode) && lseek (stream, 0, SEEK_CUR) == 0;
}

/** Standard input, or a file with all that came from it. */
FileDescriptor keptInput()
{
    if (isFileAtItsBeginning (STDIN_FILENO))
        return FileDescriptor (fcntl (STDIN_FILENO, F_DUPFD_CLOEXEC, 0));

    auto file = newSpoolFile (standardInput);
    std::array<char, 65536> bytes {};

    while (true)
    {
        waitFor (STDIN_FILENO, POLLIN, standardInput);
        const auto count = read (STDIN_FILENO, bytes.data(), bytes.size());

        if (count == 0)
            return file;

        if (count < 0 && errno != EINTR && errno != EAGAIN)
            throw Failure (standardInput, "cannot be read: " + systemError (errno));

        writeAll (file.get(),
                  std::span (bytes).first (static_cast<std::size_t> (std::max<ssize_t> (0, count))),
                  standardInput);
    }
}
} // namespace

bool isStandardStream (const std::filesystem::path& name)
{
    return name == "-";
}

std::string nameOfInput (const std::filesystem::path& input)
{
    return isStandardStream (input) ? standardInput : input.string();
}

std::string nameOfResult (const std::filesystem::path& result)
{
    return isStandardStream (result) ? standardOutput : result.string();
}

std::filesystem::path pathOfInput (const std::filesystem::path& input)
{
    if (! isStandardStream (input))
        return input;

    static const auto kept = keptInput();
    return "/proc/self/fd/" + std::to_string (kept.get());
}

FileDescriptor newSpoolFile (const std::string& shownName)
{
    const auto* chosen = std::getenv ("TMPDIR"); // NOLINT(concurrency-mt-unsafe): nobody changes the environment
    const std::string folder = chosen != nullptr && *chosen != '\0' ? chosen : "/var/tmp";
    auto name = folder + "/larkspire-render-XXXXXX";
    FileDescriptor file (mkostemp (name.data(), O_CLOEXEC));

    if (! file.isOpen())
        throw Failure (shownName, "cannot be kept in " + folder + ": " + systemError (errno));

    unlink (name.c_str());
    return file;
}

void copyToStandardOutput (int file)
{
    // As much as a pipe that can be written takes without waiting.
    std::array<char, PIPE_BUF> bytes {};
    off_t place = 0;

    while (true)
    {
        const auto count = pread (file, bytes.data(), bytes.size(), place);

        if (count < 0)
            throw Failure (standardOutput, "cannot be written: " + systemError (errno));

        if (count == 0)
            return;

        waitFor (STDOUT_FILENO, POLLOUT, standardOutput, place > 0 ? "not all was written" : "nothing was written");
        const auto written = write (STDOUT_FILENO, bytes.data(), static_cast<std::size_t> (count));

        if (written < 0 && errno != EINTR && errno != EAGAIN)
            throw Failure (standardOutput, "cannot be written: " + systemError (errno));

        place += std::max<ssize_t> (0, written);
    }
}

} // namespace larkspire
