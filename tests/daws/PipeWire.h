// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "support/Child.h"
#include "support/TemporaryFolder.h"

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

/** PipeWire with its session manager and a D-Bus of its own, without a sound card, for a user who has the LV2 plug-in
   in
    ~/.lv2. There are two microphones, desk_mic and other_mic, into which tests play; the first is the default. The
   clock runs at 48 kHz. Everything throws std::runtime_error if a program fails or takes too long. */
class PipeWire
{
public:
    static constexpr std::size_t block =
        8192; // frames of a cycle, as many as there can be, so that programs are seldom late

    /** Does not start it. */
    PipeWire();

    /** Ends the daemons, if they run. */
    ~PipeWire();

    PipeWire (const PipeWire&) = delete;
    PipeWire& operator= (const PipeWire&) = delete;

    /** Starts the daemons and waits until the session manager has chosen a default microphone, and one for the
       Larkspire microphone if that is there. */
    void start();

    /** Asks the daemons to end, and gives what has become of PipeWire's. */
    Outcome stop();

    /** Takes the plug-in out of ~/.lv2. */
    void removePlugin() const;

    /** Calls a program as the user, larkspire-microphone if there are arguments alone; gives what it printed. */
    std::string call (const std::string& program, const std::vector<std::string>& arguments) const;
    std::string microphone (const std::vector<std::string>& arguments) const;

    /** The number by which PipeWire's own programs know a node. */
    std::string idOf (const std::string& node) const;

    /** Records from a node while a sound is played into a microphone, and does something after a quarter of it. Gives
       what was recorded from the first sound on, as long as what was played. Mono, 48 kHz. */
    std::vector<float> record (const std::string& node,
                               const std::string& microphone,
                               const std::vector<float>& played,
                               const std::function<void()>& meanwhile = {}) const;

private:
    Call callOf (const std::string& program, const std::vector<std::string>& arguments) const;
    void waitFor (const std::string& what, const std::function<bool()>& isSo) const;

    TemporaryFolder folder;
    std::map<std::string, std::string> environment;
    std::unique_ptr<Child> bus;
    std::unique_ptr<Child> daemon;
    std::unique_ptr<Child> sessionManager;
};
