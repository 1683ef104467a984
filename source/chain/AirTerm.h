// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/ArcTangent.h"
#include "chain/LaneConstants.h"

namespace larkspire
{

inline constexpr float airDrive = 50.0f;
inline constexpr float airLevel = 0.02f;

/** v = atan ((air - dry) * 50) * 0.02 + body.

    Only what the air filter adds to its input counts. The arc tangent squeezes that to at most 0.02 * pi / 2, about
    0.0314, however loud the voice is: quiet consonants gain treble, loud ones do not turn sharp. All arguments are
    linear, full scale 1.0.
*/
inline ChannelPair addSaturatedAir (ChannelPair body, ChannelPair air, ChannelPair dry)
{
    return arcTangent ((air - dry) * lanes::airDrive) * lanes::airLevel + body;
}

} // namespace larkspire
