// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "render/Renderer.h"

#include <span>
#include <string>

namespace larkspire::render
{

/** The report for machines: a JSON array with an object for each rendering, in their order, in UTF-8 and with a line
    end behind it. The keys are described in the text of --help; other programs rely on them. A missing figure is null.
    Bytes of a path that are not UTF-8 become U+FFFD.

    @param stats  whether the figures of --stats are wanted as well */
std::string reportDocument (std::span<const Rendering> renderings, bool stats);

} // namespace larkspire::render
