// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

namespace larkspire
{

/** A text as it may stand in one line of a terminal: control characters, line ends above all, become \xNN. Bytes
    that are not UTF-8 stay, since a path may hold any. */
std::string printable (const std::string& text);

/** Any bytes as ASCII from which they can be had back: all that are not printable ASCII, and the backslash, are \xNN.
 */
std::string escapedBytes (const std::string& text);

/** Work that could not be done: exit status 1. what() is one line: "<path>: <reason>". */
class Failure : public std::runtime_error
{
public:
    Failure (const std::filesystem::path& path, const std::string& reason)
        : std::runtime_error (printable (path.string()) + ": " + printable (reason))
    {
    }
};

/** A call that asks for something impossible: exit status 2. It is thrown before anything is written. what() is one
    line. */
class WrongCall : public std::runtime_error
{
public:
    explicit WrongCall (const std::string& reason) : std::runtime_error (printable (reason)) {}
};

/** The user or the system asked the program to stop. what() is one line: "<path>: <reason>". */
class Interrupted : public Failure
{
public:
    explicit Interrupted (const std::filesystem::path& path, const std::string& extent = "nothing was written")
        : Failure (path, "interrupted, " + extent)
    {
    }
};

/** The system's words for an errno value. */
std::string systemError (int errorNumber);

} // namespace larkspire
