// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/ArcTangent.h"

namespace larkspire
{

inline constexpr float airDrive = 50.0f;
inline constexpr float airLevel = 0.02f;

/** v = atan ((air - dry) * 50) * 0.02 + body, given what the air filter adds, air - dry.

    Only that counts. The arc tangent squeezes it to at most 0.02 * pi / 2, about 0.0314, however loud the voice is:
    quiet consonants gain treble, loud ones do not turn sharp. All arguments are linear, full scale 1.0.
*/
inline Lanes addSaturatedAir (Lanes body, Lanes addedAir)
{
    return arcTangent (addedAir * broadcast (airDrive)) * broadcast (airLevel) + body;
}

} // namespace larkspire
