// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "support/Child.h"
#include "support/TemporaryFolder.h"

#include <map>
#include <string>
#include <vector>

/** A node as PipeWire lists it. */
struct Node
{
    std::string name;
    std::string description;
    std::string mediaClass;
};

/** A user's system as larkspire-microphone sees it: a home folder with the plug-in in ~/.lv2, the basic programs that
    every system has, and stand-ins for PipeWire's and systemd's own, which answer as PipeWire 0.3.65 does and write
   down what they are asked to do. No daemon runs. */
class StandInSystem
{
public:
    StandInSystem();

    /** Calls larkspire-microphone as this user. */
    Outcome call (const std::vector<std::string>& arguments) const;

    /** How that is called; the environment is complete. */
    Call callOf (const std::vector<std::string>& arguments) const;

    /** The file that it writes, while XDG_CONFIG_HOME is not set. */
    std::string file() const;

    /** From now on PipeWire runs, with these nodes. */
    void run (const std::vector<Node>& nodes) const;

    /** From now on the Larkspire microphone is there too, tied to a microphone or, without a name, to the default. */
    void addLarkspire (int mode, const std::string& target = {}) const;

    /** The mode of that node, as PipeWire prints it. */
    std::string runningMode() const;

    /** What PipeWire runs as once it has been restarted: with the Larkspire microphone, or without. */
    void restartWithLarkspire (bool isThere) const;

    /** What was asked of PipeWire and systemd, a line a call, but for what they are only asked to tell. */
    std::vector<std::string> requests() const;

    /** Puts a program in place of a stand-in or a basic one; the text of a shell script without its first line. */
    void putProgram (const std::string& name, const std::string& script) const;

    void removeProgram (const std::string& name) const;

    TemporaryFolder folder;
    std::string home = folder / "home";
    std::map<std::string, std::string> environment;
};
