// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "support/PluginUnderTest.h"
#include "support/Recording.h"
#include "support/TemporaryFolder.h"

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

/** How the plug-in is switched in Ardour. */
enum class PluginSwitch
{
    on,
    off,
    bypassed // by its own bypass, where its format has one
};

/** The DAW Ardour without a window, in a home folder of its own. Each call runs a program of Ardour's and throws
    std::runtime_error, with what it wrote, if it fails or takes longer than a minute. */
class Ardour
{
public:
    /** Lets it scan a library or bundle that is installed where it looks for plug-ins without being told; without one,
        a copy of the built one in a folder beside its home. */
    explicit Ardour (Format format, std::filesystem::path installed = {});

    /** What a scan of the plug-in writes, in a format that has scans: not LV2. */
    std::string scan() const;

    /** What is put on the one track of a session, at 48 kHz. */
    struct Track
    {
        Channels channels;      // of equal length
        float parameter = 0.0f; // of the plug-in
        PluginSwitch position = PluginSwitch::on;
    };

    /** Makes a session of this name with the plug-in on its track, and saves it. */
    void makeSession (const std::string& name, const Track& track) const;

    /** The session as it was saved. */
    std::string sessionPath (const std::string& name) const;

    /** Opens the session and gives what it says of the plug-in: lines of a name, a colon and a value. */
    std::string openSession (const std::string& name) const;

    /** Opens the session and exports it, until an export is right: gives that, or the last, the channels of the main
        output. Of ten exports on a busy machine Ardour 7.3 spoils one, without any plug-in too: it aborts, writes
        blocks of garbage, begins 16 frames late or runs its tracks for a part of a block more ahead of the start. The
        same mistake can come twice in a row. */
    Channels exportSession (const std::string& name, const std::function<bool (const Channels&)>& isRight) const;

private:
    std::filesystem::path installCopy();
    Channels exportOnce (const std::string& name) const;
    std::string run (const std::string& program, const std::vector<std::string>& arguments) const;

    TemporaryFolder folder;
    Format format;
    std::filesystem::path plugin;
    std::map<std::string, std::string> environment;
};
