// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <chrono>
#include <string>

/** The conversation with an Audacity that takes commands. Its module makes two pipes at fixed places, one pair for each
    user, so only one program of a user can be talked to at a time. Nothing here waits longer than half a minute. */
class ScriptPipe
{
public:
    /** Removes the pipes that an earlier program has left, which a new one would be mistaken for. */
    static void removeStale();

    /** Waits for the pipes and opens them. Throws std::runtime_error if they do not come. */
    ScriptPipe();

    /** Ends the conversation for good, and removes the pipes. */
    ~ScriptPipe();

    ScriptPipe (const ScriptPipe&) = delete;
    ScriptPipe& operator= (const ScriptPipe&) = delete;

    /** Sends one command and gives the answer. Throws std::runtime_error if there is none or it says no. */
    std::string command (const std::string& line);

private:
    std::string answer (std::chrono::steady_clock::time_point deadline);

    int commands = -1;
    int answers = -1;
};
