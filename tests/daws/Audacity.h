// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "support/PluginUnderTest.h"
#include "support/Recording.h"
#include "support/TemporaryFolder.h"
#include "window/VirtualDisplay.h"

#include <string>

/** The sound editor Audacity on an X server and in a home folder of its own that holds a copy of the plug-in. Each
   start of it takes a minute at most. Everything throws std::runtime_error if Audacity does not do as it is told. */
class Audacity
{
public:
    /** Installs the plug-in for it, as VST 2 or LV2, and lets it scan that. Throws too while the user runs an Audacity:
       a second one would take its pipes. */
    explicit Audacity (Format format);

    /** What the scan has written down of the plug-in: lines of a key, an equals sign and a value. */
    std::string registered() const;

    /** What it is given to do. */
    struct Job
    {
        Channels channels;
        int sampleRate = 44100; // Hz
        int times = 1;          // that the effect is applied
        std::string effect = "QuendalLarkspire";
    };

    /** Imports the recording into an empty project, applies the effect with the parameter as it comes, and exports. */
    Channels applied (const Job& job) const;

private:
    template <typename Work>
    void run (bool scripted, Work&& work) const;

    TemporaryFolder folder;
    std::string plugin; // as the scan calls it
    larkspire::window::VirtualDisplay display;
};
