// SPDX-License-Identifier: AGPL-3.0-only
#include "meter/SoundMeter.h"

#include <algorithm>
#include <cmath>

namespace larkspire::meter
{

SoundMeter::SoundMeter (const AudioShape& shape, Courses courses)
    : channels (static_cast<std::size_t> (shape.channels)),
      wanted (courses),
      loudnessMeter (shape, courses),
      truePeakMeter (shape),
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
    truePeakMeter.add (finiteSamples);
    quietestTenth.add (finiteSamples);

    if (wanted == Courses::none)
        return;

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

    auto truePeak = truePeakMeter; // which may go on
    truePeak.end();
    return { .integratedLufs = loudnessMeter.integrated(),
             .loudnessRangeLu = loudnessMeter.range(),
             .truePeakDbtp = truePeak.peak(),
             .quietestTenthDbfs = quietestTenth.levelWhere (recording.quietestTenth) };
}

} // namespace larkspire::meter
