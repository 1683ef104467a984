// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/ModeTable.h"
#include "chain/PeakingFilter.h"
#include "measure/Frequencies.h"

namespace larkspire::measure
{

/** A filter of the chain as its own design code makes it for the usual rate, with nothing heard yet. */
inline PeakingFilter designedPeak (const PeakSettings& peak)
{
    PeakingFilter filter;
    designPeaking (filter, static_cast<float> (usualRate), peak.gainDb, peak.frequency, peak.bandwidth);
    return filter;
}

} // namespace larkspire::measure
