// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/Expander.h"
#include "chain/FiltersSideBySide.h"
#include "chain/HighPass.h"
#include "chain/Leveller.h"

// The stages that remember, on their records: a run of a single sample.
namespace larkspire
{

inline ChannelPair highPass (HighPassFilter& left, HighPassFilter& right, ChannelPair x)
{
    RunningHighPass running (left, right);
    const auto y = running.process (x);
    running.keepIn (left, right);
    return y;
}

inline ChannelPair expand (LevelRider& rider, ChannelPair x)
{
    RunningRider running (rider);
    const auto y = expand (running, x);
    running.keepIn (rider);
    return y;
}

inline ChannelPair filterSideBySide (PeakingFilter& lower, PeakingFilter& upper, ChannelPair x)
{
    RunningFilters running (lower, upper);
    const auto y = running.process (x);
    running.keepIn (lower, upper);
    return y;
}

inline ChannelPair level (LevelRider& rider, ChannelPair x)
{
    RunningRider running (rider);
    const auto y = level (running, x);
    running.keepIn (rider);
    return y;
}

} // namespace larkspire
