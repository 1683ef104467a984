// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/StereoSample.h"

#include <cmath>

namespace larkspire
{

/** v = atan ((air - dry) * 50) * 0.02 + body.

    Only what the air filter adds to its input counts. The arc tangent squeezes that to at most 0.02 * pi / 2, about
    0.0314, however loud the voice is: quiet consonants gain treble, loud ones do not turn sharp.
*/
inline float addSaturatedAir (float body, float air, float dry)
{
    return std::atan ((air - dry) * 50.0f) * 0.02f + body;
}

/** Both channels; all four arguments of a channel are linear, full scale 1.0. */
inline StereoSample addSaturatedAir (StereoSample body, StereoSample air, StereoSample dry)
{
    return { addSaturatedAir (body.first, air.first, dry.first),
             addSaturatedAir (body.second, air.second, dry.second) };
}

} // namespace larkspire
