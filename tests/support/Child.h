// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "support/Paths.h"

#include <sys/types.h>

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

/** How a program is called. */
struct Call
{
    std::vector<std::string> arguments;
    std::filesystem::path program = paths::renderer(); // without a slash, one that is found in PATH
    std::map<std::string, std::string> environment {};
    bool inheritsEnvironment = true;             // on top of that it has what the test itself has
    std::filesystem::path folder {};             // to work in; empty is the test's own
    std::optional<unsigned long> largestFile {}; // bytes that a file may have, as on a full disk
    bool onTerminal = false;                     // stderr is a terminal
    unsigned longestRun = 60;                    // seconds, after which it is killed
};

/** What has become of a program. */
struct Outcome
{
    int exitStatus = -1; // -1 where a signal ended it
    int signal = 0;      // that signal
    std::string output;  // what it wrote to stdout
    std::string errors;  // and to stderr
};

/** A program that runs beside the test, with nothing to read from stdin. */
class Child
{
public:
    explicit Child (const Call& call);
    ~Child();

    Child (const Child&) = delete;
    Child& operator= (const Child&) = delete;

    void sendSignal (int signal) const;

    /** Waits for the end. */
    Outcome wait();

private:
    pid_t process = -1;
    int outputFile = -1;
    int errorsFile = -1;
    bool onTerminal = false;
};

/** Calls a program and waits for its end; larkspire-render if there are arguments alone. */
Outcome run (const Call& call);
Outcome run (const std::vector<std::string>& arguments);

/** Calls a program and gives what it wrote to stdout. Throws std::runtime_error, with all that it wrote, if it is not
    there, fails or takes too long. */
std::string outputOf (const Call& call);

/** The lines of a text, without their ends; what follows the last end counts as a line too. */
std::vector<std::string> linesOf (const std::string& text);
