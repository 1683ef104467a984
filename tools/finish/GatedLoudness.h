// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "meter/Decibels.h"

#include <cstddef>
#include <vector>

namespace larkspire::finish
{

/** The integrated loudness of weighted powers, gated as ITU-R BS.1770 has it: over the blocks of 400 ms, 100 ms apart,
    that are above -70 LUFS and not more than 10 LU below the mean of those. It forecasts what a meter will say of a
    sound that is still to be made. */
class GatedLoudness
{
public:
    GatedLoudness (int sampleRate, std::size_t framesPerBin);

    /** Takes the next bin's power, as WeightedPower tells it. */
    void add (double power);

    /** In LUFS; nullopt for less than a block or if none is above -70 LUFS. */
    meter::Figure integrated() const;

private:
    double framesPerStep;
    double framesPerBin;
    double framesHeard = 0.0;
    double energy = 0.0;      // of the step that is being filled
    std::vector<float> steps; // mean powers of 100 ms each
};

} // namespace larkspire::finish
