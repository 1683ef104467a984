// SPDX-License-Identifier: AGPL-3.0-only
#include "meter/SoundMeter.h"

#include <algorithm>
#include <cmath>

namespace larkspire::meter
{

SoundMeter::SoundMeter (const AudioShape& shape)
    : channels (static_cast<std::size_t> (shape.channels)),
      loudnessMeter (shape),
      quietestTenth (shape)
{
}

void SoundMeter::add (std::span<const float> interleaved)
{
    finiteSamples.assign (interleaved.begin(), interleaved.end());

    for (auto& sample : finiteSamples)
    {
        if (! std::isfinite (sample))
        {
            allFinite = false;
            sample = 0.0f;
        }
    }

    loudnessMeter.add (finiteSamples);
    quietestTenth.add (finiteSamples);

    for (std::size_t i = 0; i < finiteSamples.size(); i += channels)
    {
        const auto left = finiteSamples[i];
        const auto right = finiteSamples[i + channels - 1];
        waveformCourse.add (std::min (left, right), std::max (left, right));
    }
}

SoundFigures SoundMeter::figures (const SoundMeter& recording) const
{
    if (! allFinite)
        return {};

    return { .integratedLufs = loudnessMeter.integrated(),
             .loudnessRangeLu = loudnessMeter.range(),
             .truePeakDbtp = loudnessMeter.truePeak(),
             .quietestTenthDbfs = quietestTenth.levelWhere (recording.quietestTenth) };
}

} // namespace larkspire::meter
