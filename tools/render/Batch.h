// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "render/BatchPlan.h"

namespace larkspire::render
{

/** What has become of a batch. */
enum class BatchEnd
{
    allDone,
    someFailed,
    interrupted
};

/** Writes one line about a fault to stderr. */
void printError (const std::exception& fault);

/** Does the jobs of a plan, several at once if it says so, and prints what it says. A job that fails is reported on
    stderr and the others go on; an interruption ends them all. Throws Failure if the folder for the results cannot be
    made. */
BatchEnd runBatch (const PluginLibrary& library, const BatchPlan& plan);

} // namespace larkspire::render
