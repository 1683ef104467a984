// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "render/Renderer.h"

#include <string>
#include <vector>

namespace larkspire::render
{

/** What a user has to know of a result that is there: a lost end of the recording, samples that the result does not
    hold as they are, a loudness that it does not reach, a picture that is missing. One line each, which names the file;
   all control characters escaped. */
std::vector<std::string> warningsOf (const Rendering& rendering, const RenderSettings& settings);

/** Whether a job was not done as it was asked for, so that the exit status has to tell. */
bool isFault (const Rendering& rendering, const RenderSettings& settings);

} // namespace larkspire::render
