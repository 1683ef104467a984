// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "render/Rendering.h"

#include <span>
#include <string>

namespace larkspire::render
{

/** The report for people: a table of one recording's figures, a column for the recording itself and one for each of its
    renderings, which have been measured. Renderings that failed have no column; without any that was done there is no
    text. A figure that there is not is a dash. */
std::string reportTable (std::span<const Rendering> renderings);

} // namespace larkspire::render
