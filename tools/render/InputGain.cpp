// SPDX-License-Identifier: AGPL-3.0-only
#include "render/InputGain.h"

namespace larkspire::render
{

double inputGainDb (const std::filesystem::path& recording,
                    const InputLevel& level,
                    const VoicePathSettings& way,
                    const Listener& listener)
{
    if (level.hearings() == 0)
        return level.gainDb.value_or (0.0);

    PeakMeter meter;
    hear (recording,
          [&] (std::span<const float> samples)
          {
              meter.add (samples);
              listener (samples);
          });
    const auto peak = meter.peak();

    if (! peak.has_value())
        return 0.0;

    if (level.peakDbfs.has_value())
        return *level.peakDbfs - *peak;

    const auto trials = tryOut (recording, way, trialsOfLevels (way.mode, *peak), listener);
    const auto* const best = bestOf (trials);
    return best != nullptr ? best->gainDb : 0.0;
}

} // namespace larkspire::render
