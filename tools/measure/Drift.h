// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "measure/Table.h"

#include <string>
#include <string_view>

namespace larkspire::measure
{

/** By how much two measurements of a column may differ and still be the same: 0.05 dB, 1 % and two frames,
    0.002 of full scale. Another compiler's or C library's last bits stay far within.

    @param value  the committed number, for what is compared in proportion
*/
double toleranceOf (std::string_view column, double value);

/** What has changed from a committed table to one that was measured anew, one line a column with the worst row of it;
    empty where all is within the tolerance. */
std::string drift (const Table& committed, const Table& measured);

} // namespace larkspire::measure
