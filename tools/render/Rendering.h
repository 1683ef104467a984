// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "render/Renderer.h"

#include <optional>
#include <string>

namespace larkspire::render
{

/** A job and what has become of it. */
struct Rendering
{
    Job job;
    std::optional<RenderReport> report; // there if it was done
    std::string fault;                  // else one line that says why not
};

} // namespace larkspire::render
