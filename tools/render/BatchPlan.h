// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "render/CommandLine.h"
#include "render/FolderScan.h"
#include "render/Renderer.h"

#include <filesystem>
#include <set>
#include <vector>

namespace larkspire::render
{

/** What is printed, on stdout but for the last. */
struct OutputChoice
{
    bool stats = false;
    bool report = false; // as a table, unless json
    bool json = false;
    bool quiet = false; // on stderr nothing but what failed
};

/** All that a call will do. */
struct BatchPlan
{
    RenderSettings settings {};
    OutputChoice outputs;
    std::vector<Job> jobs; // in the order of the inputs, all modes of an input one after the other
    std::size_t modesPerInput = 1;
    unsigned workers = 1;
    std::set<std::filesystem::path> folders;    // to be made ahead of the jobs
    std::set<std::filesystem::path> subfolders; // below those, made if that works
    std::vector<LeftOut> leftOut;               // of the folders, and folders without a recording
    std::vector<LeftOut> doneBefore;            // recordings whose results are there, where those are not made again
    bool hasSeveralInputs = false;
    std::size_t withoutSound = 0; // files in the folders that nobody takes for a recording
};

/** Works out which file goes where. It looks into folders and writes nothing. Inputs whose results would get the same
    name give jobs with a refusal. Throws WrongCall if a result would replace one of the inputs, by whatever path or
    link, if a name is ambiguous or if the options contradict each other. */
BatchPlan planBatch (const CommandLine& call);

} // namespace larkspire::render
