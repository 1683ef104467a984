// SPDX-License-Identifier: AGPL-3.0-only
#include "chain/VoiceChain.h"

#include "chain/Passes.h"

namespace larkspire
{

void VoiceChain::adopt (const ModeRow& mode, double rate) const
{
    applySettings (leveller, mode.leveller);
    applySettings (expander, mode.expander);

    const auto peakingRate = static_cast<float> (rate);
    designPeaking (airFilter, peakingRate, mode.air.gainDb, mode.air.frequency, mode.air.bandwidth);
    designPeaking (bodyFilter, peakingRate, mode.body.gainDb, mode.body.frequency, mode.body.bandwidth);
    highPassLeft.coefficients = highPassRight.coefficients = designHighPass (rate, mode.highPass);
}

void VoiceChain::process (std::span<StereoSample> frames) const
{
    runPasses (*this, frames, [] (Point, Lanes, std::size_t) {});
}

} // namespace larkspire
