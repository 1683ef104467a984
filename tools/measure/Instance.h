// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "host/HostedPlugin.h"
#include "measure/Frequencies.h"
#include "measure/Measurements.h"
#include "measure/VoiceModes.h"

#include <vector>

namespace larkspire::measure
{

/** One instance of the built library under measurement. */
class Instance
{
public:
    /** As it is when it has been made, or with its gains at rest, which it has after a long silence. */
    enum class Start
    {
        fresh,
        atRest
    };

    /** @param sampleRate  in Hz
        @param channels    1 or 2 */
    Instance (const Subject& subject, const VoiceMode& mode, Start start, int sampleRate = usualRate, int channels = 1);

    /** What comes out for a signal of any length, channels interleaved, linear full scale 1.0. The instance goes on
        from where it stood. */
    std::vector<float> process (std::vector<float> interleaved);

private:
    int channels;
    HostedPlugin plugin;
};

} // namespace larkspire::measure
