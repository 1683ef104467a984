// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "BatchPlan.h"

namespace larkspire::render
{

/** Writes one line about a fault to stderr. */
void complain (const std::exception& fault);

/** Does the jobs of a plan one after the other. A job that fails is reported on stderr and the others go on; an
    interruption ends them all. Returns whether every job was done. Throws Failure if the folder cannot be made.

    @param stats  whether to print a line on stdout for every result */
bool runBatch (const PluginLibrary& library, const BatchPlan& plan, bool stats);

} // namespace larkspire::render
