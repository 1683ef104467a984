// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "render/BatchPlan.h"

#include <span>
#include <string>

namespace larkspire::render
{

/** The report for machines: a JSON document in UTF-8 with a line end behind it, with an object for each rendering, in
    their order, and one for each file that was left out. The keys are described in the text of --help; other programs
    rely on them, and on the number of the version to tell them when one has another meaning. A missing figure is null.
    Bytes of a path that are not UTF-8 become U+FFFD, and the path stands there in escaped bytes too. */
std::string reportDocument (std::span<const Rendering> renderings, const BatchPlan& plan);

} // namespace larkspire::render
