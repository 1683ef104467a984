// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/Lanes.h"
#include "chain/PeakingFilter.h"

namespace larkspire
{

/** Two peaking filters that stand side by side while they run: both channels of the first in the lower half of each
    register, both of the second in the upper. Each gives the bits that process gives; the coefficients are normalised
    once, by the same division. */
class RunningFilters
{
public:
    RunningFilters (const PeakingFilter& lower, const PeakingFilter& upper)
        : nb0 (normalised (lower, upper, &PeakingFilter::b0)),
          nb1 (normalised (lower, upper, &PeakingFilter::b1)),
          nb2 (normalised (lower, upper, &PeakingFilter::b2)),
          na1 (normalised (lower, upper, &PeakingFilter::a1)),
          na2 (normalised (lower, upper, &PeakingFilter::a2)),
          x1 (memory (lower, upper, &PeakingFilter::ChannelState::x1)),
          x2 (memory (lower, upper, &PeakingFilter::ChannelState::x2)),
          y1 (memory (lower, upper, &PeakingFilter::ChannelState::y1)),
          y2 (memory (lower, upper, &PeakingFilter::ChannelState::y2))
    {
    }

    /** One sample of each channel, held twice, through both filters.

        @returns  the first filter's pair in the lower half, the second's in the upper
    */
    Lanes process (Lanes x)
    {
        const Lanes y = nb0 * x + nb1 * x1 + nb2 * x2 - na1 * y1 - na2 * y2;
        x2 = x1;
        x1 = x;
        y2 = y1;
        y1 = y;
        return y;
    }

    /** Writes the memories back. Behind a sample the newest input is also the one before the next. */
    void keepIn (PeakingFilter& lower, PeakingFilter& upper) const
    {
        keep (x1, lower, upper, &PeakingFilter::ChannelState::x0);
        keep (x1, lower, upper, &PeakingFilter::ChannelState::x1);
        keep (x2, lower, upper, &PeakingFilter::ChannelState::x2);
        keep (y1, lower, upper, &PeakingFilter::ChannelState::y1);
        keep (y2, lower, upper, &PeakingFilter::ChannelState::y2);
    }

private:
    using Coefficient = float PeakingFilter::*;
    using Memory = float PeakingFilter::ChannelState::*;

    static Lanes normalised (const PeakingFilter& lower, const PeakingFilter& upper, Coefficient coefficient)
    {
        const float l = 1.0f / lower.a0 * (lower.*coefficient);
        const float u = 1.0f / upper.a0 * (upper.*coefficient);
        return Lanes { l, l, u, u };
    }

    static Lanes memory (const PeakingFilter& lower, const PeakingFilter& upper, Memory field)
    {
        return Lanes { lower.left.*field, lower.right.*field, upper.left.*field, upper.right.*field };
    }

    static void keep (Lanes values, PeakingFilter& lower, PeakingFilter& upper, Memory field)
    {
        lower.left.*field = values[0];
        lower.right.*field = values[1];
        upper.left.*field = values[2];
        upper.right.*field = values[3];
    }

    Lanes nb0;
    Lanes nb1;
    Lanes nb2;
    Lanes na1;
    Lanes na2;
    Lanes x1;
    Lanes x2;
    Lanes y1;
    Lanes y2;
};

} // namespace larkspire
