// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <vector>

/** Where a channel's samples stand. Hosts give a place for a block of no samples too, and JUCE asserts one; an
    empty list has none until memory is reserved. */
inline float* channelPointer (std::vector<float>& samples)
{
    samples.reserve (1);
    return samples.data();
}
