// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/Expander.h"
#include "chain/FiltersSideBySide.h"
#include "chain/HighPass.h"
#include "chain/Leveller.h"

// The stages that remember, on their records: a run of a single sample.
namespace larkspire
{

inline Lanes highPass (HighPassFilter& left, HighPassFilter& right, Lanes x)
{
    RunningHighPass running (left, right);
    const auto y = running.process (x);
    running.keepIn (left, right);
    return y;
}

inline Lanes expand (LevelRider& rider, Lanes x)
{
    RunningRider running (rider);
    const auto y = expand (running, x);
    running.keepIn (rider);
    return y;
}

inline Lanes filterSideBySide (PeakingFilter& lower, PeakingFilter& upper, Lanes x)
{
    RunningFilters running (lower, upper);
    const auto y = running.process (x);
    running.keepIn (lower, upper);
    return y;
}

inline Lanes level (LevelRider& rider, Lanes x)
{
    RunningRider running (rider);
    const auto y = level (running, x);
    running.keepIn (rider);
    return y;
}

} // namespace larkspire
