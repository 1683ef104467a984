// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "benchmarks/Results.h"

#include <iosfwd>

/** Writes the costs of a run as a document: where and when it was measured, the bounds, and a table a subject. */
void writeMarkdown (std::ostream& out, const Costs& costs);
