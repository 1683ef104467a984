// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "support/Child.h"

#include <memory>
#include <string>

/** A machine that is reached by ssh, as far as its user can tell: an sshd on the loopback that takes one key, with a
   home of its own. Everything throws std::runtime_error if a program fails or takes too long. */
class SshMachine
{
public:
    /** Does not start it.

        @param machineName  what ssh calls it, with the configuration that addTo has written
        @param folderOfAll  where it keeps its files, and the key that all machines take */
    SshMachine (const std::string& machineName, const std::string& folderOfAll);

    /** Ends it if it runs. */
    ~SshMachine();

    SshMachine (const SshMachine&) = delete;
    SshMachine& operator= (const SshMachine&) = delete;

    /** Starts it and waits until it can be reached. */
    void start();

    /** Ends it as a power cut does, with every program that runs on it. */
    void end();

    /** Waits until a program of that name runs on it. */
    void waitFor (const std::string& program) const;

    const std::string& name() const { return machine; }
    const std::string& home() const { return homeFolder; }

    /** What ssh has to be told to reach it. */
    std::string sshConfiguration() const;

private:
    std::string machine;
    std::string folder;
    std::string homeFolder;
    int port;
    std::unique_ptr<Child> server;
};
