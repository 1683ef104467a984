// SPDX-License-Identifier: AGPL-3.0-only
#include "daws/ScriptPipe.h"

#include <array>
#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace
{
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto patience = 30s;
const std::string success = "BatchCommand finished: OK\n";

std::string pipePath (const std::string& direction)
{
    return "/tmp/audacity_script_pipe." + direction + "." + std::to_string (getuid());
}
} // namespace

void ScriptPipe::removeStale()
{
    for (const auto* direction : { "to", "from" })
        std::filesystem::remove (pipePath (direction));
}

ScriptPipe::ScriptPipe()
{
    const auto deadline = Clock::now() + patience;

    // A command to a program that has ended is an error to report, not the end of this one.
    std::signal (SIGPIPE, SIG_IGN);

    // Opened for writing without blocking, a pipe refuses until somebody reads it.
    while ((commands = open (pipePath ("to").c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC)) < 0)
    {
        if (Clock::now() > deadline)
            throw std::runtime_error ("Audacity opens no pipe for commands");

        std::this_thread::sleep_for (20ms);
    }

    answers = open (pipePath ("from").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);

    if (answers < 0)
    {
        close (commands);
        throw std::runtime_error ("Audacity has no pipe for answers");
    }
}

ScriptPipe::~ScriptPipe()
{
    close (commands);
    close (answers);
    removeStale();
}

std::string ScriptPipe::command (const std::string& line)
{
    const auto sent = line + "\n";

    if (write (commands, sent.data(), sent.size()) != static_cast<ssize_t> (sent.size()))
        throw std::runtime_error ("Audacity does not take " + line);

    auto text = answer (Clock::now() + patience);

    if (! text.ends_with (success))
        throw std::runtime_error (line + ": " + text);

    return text;
}

std::string ScriptPipe::answer (Clock::time_point deadline)
{
    std::string text;

    // The line that says how it went is followed by an empty one, the last of an answer.
    while (text.find ("BatchCommand finished: ") == std::string::npos || ! text.ends_with ("\n\n"))
    {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds> (deadline - Clock::now());
        pollfd ready { .fd = answers, .events = POLLIN, .revents = 0 };
        std::array<char, 4096> part {};

        if (left.count() <= 0 || poll (&ready, 1, static_cast<int> (left.count())) == 0)
            throw std::runtime_error ("no answer; so far: " + text);

        const auto count = read (answers, part.data(), part.size());

        if (count <= 0)
            throw std::runtime_error ("Audacity has ended; so far: " + text);

        text.append (part.data(), static_cast<std::size_t> (count));
    }

    text.pop_back();
    return text;
}
