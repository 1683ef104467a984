// SPDX-License-Identifier: AGPL-3.0-only
#include "measure/Measurements.h"

#include <array>

namespace larkspire::measure
{

std::span<const Measurement> measurements()
{
    static constexpr std::array all {
        Measurement { "filters", measureFilters },
        Measurement { "response", measureResponse },
        Measurement { "air", measureAir },
        Measurement { "air-under-voice", measureAirUnderVoice },
        Measurement { "static-level", measureStaticLevel },
        Measurement { "plateau", measurePlateau },
        Measurement { "times", measureTimes },
        Measurement { "opening", measureOpening },
        Measurement { "steps", measureSteps },
        Measurement { "soft-clip", measureSoftClip },
        Measurement { "harmonics", measureHarmonics },
        Measurement { "fold", measureFold },
        Measurement { "image", measureImage },
        Measurement { "image-over-time", measureImageOverTime },
        Measurement { "voice-level", measureVoiceLevel },
        Measurement { "voice-wave", measureVoiceWave },
        Measurement { "voice-summary", measureVoiceSummary },
    };
    return all;
}

} // namespace larkspire::measure
