// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "render/Renderer.h"

#include <span>
#include <string>

namespace larkspire::render
{

/** The report for reading: a table of one recording's figures, with a column for the recording itself and one for
    each of its renderings, which have been measured. A rendering that failed has no column; if all failed, the text
    is empty. A missing figure is shown as a dash. */
std::string reportTable (std::span<const Rendering> renderings);

} // namespace larkspire::render
