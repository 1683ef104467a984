// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "CommandLine.h"
#include "Renderer.h"

#include <filesystem>
#include <optional>
#include <vector>

namespace larkspire::render
{

/** All that a call will do. */
struct BatchPlan
{
    RenderSettings settings;
    std::vector<Job> jobs;
    std::optional<std::filesystem::path> folder; // to be made ahead of the jobs
};

/** Works out which file goes where, without touching any. Throws WrongCall if two results would get the same name, if a
    result would replace one of the inputs, by whatever path or link, or if the options contradict each other. */
BatchPlan planBatch (const CommandLine& call);

} // namespace larkspire::render
