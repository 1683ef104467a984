// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/StereoSample.h"

namespace larkspire
{

/** Narrows the image towards the middle and lifts it: each output is 1.125 of its own channel and 0.375 of the other.

    A centred signal comes out 1.5 times as loud, one that is out of phase 0.75 times.
*/
inline StereoSample foldTowardsMiddle (StereoSample input)
{
    const float side = (input.first - input.second) * 0.5f;
    const float middle = input.second + input.first;
    return { (side + middle) * 0.75f, (middle - side) * 0.75f };
}

} // namespace larkspire
