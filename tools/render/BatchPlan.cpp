// SPDX-License-Identifier: AGPL-3.0-only
#include "BatchPlan.h"

#include "Failure.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace larkspire::render
{

namespace
{
/** What tells one file from another however it is called: the numbers of its device and of its node. */
using FileIdentity = std::pair<dev_t, ino_t>;

std::optional<FileIdentity> identityOf (const std::filesystem::path& path)
{
    struct stat status = {};

    if (stat (path.c_str(), &status) != 0)
        return std::nullopt;

    return FileIdentity { status.st_dev, status.st_ino };
}

/** The letters behind the last dot of the name, made small. */
std::string extensionIn (const std::filesystem::path& path)
{
    auto extension = path.extension().string();

    for (auto& letter : extension)
        if (letter >= 'A' && letter <= 'Z')
            letter = static_cast<char> (letter - 'A' + 'a');

    return extension.empty() ? extension : extension.substr (1);
}

bool meansFolder (const CommandLine& call)
{
    std::error_code error;
    return call.inputs.size() > 1 || call.output.ends_with ('/') || std::filesystem::is_directory (call.output, error);
}

/** Refuses a name for the folder that something else has. */
void refuseFileAsFolder (const CommandLine& call)
{
    auto name = call.output;

    while (name.size() > 1 && name.ends_with ('/'))
        name.pop_back();

    std::error_code error;

    if (std::filesystem::exists (name, error) && ! std::filesystem::is_directory (name, error))
        throw WrongCall (name + ": is not a folder, as "
                         + (call.inputs.size() > 1 ? "several results need" : "the slash behind it says"));
}

/** What a single result's name says about its kind. Throws WrongCall for a name that promises a kind that is not
    written. */
std::optional<Container> containerByName (const std::filesystem::path& output)
{
    constexpr std::array<std::string_view, 8> others { "aif", "aifc", "aiff", "m4a", "mp3", "oga", "ogg", "opus" };
    const auto extension = extensionIn (output);

    if (extension == "wav")
        return Container::wav;

    if (extension == "flac")
        return Container::flac;

    if (std::find (others.begin(), others.end(), extension) != others.end())
        throw WrongCall (output.string() + ": results are WAV or FLAC files, not " + extension);

    return std::nullopt;
}

Container chooseContainer (const CommandLine& call, bool intoFolder)
{
    const auto byName = intoFolder ? std::nullopt : containerByName (call.output);

    if (call.container.has_value() && byName.has_value() && *call.container != *byName)
        throw WrongCall (call.output + ": the name contradicts --format " + extensionOf (*call.container));

    return call.container.value_or (byName.value_or (Container::wav));
}

void refuseSharedResults (const std::vector<Job>& jobs)
{
    std::map<std::filesystem::path, std::filesystem::path> inputOf;

    for (const auto& job : jobs)
    {
        std::error_code error;
        const auto canonical = std::filesystem::weakly_canonical (job.output, error);
        const auto [entry, isNew] = inputOf.emplace (error ? job.output : canonical, job.input);

        if (! isNew)
            throw WrongCall (entry->second.string() + " and " + job.input.string() + ": both would become "
                             + job.output.string());
    }
}

void refuseReplacedInputs (const std::vector<Job>& jobs)
{
    std::map<FileIdentity, std::filesystem::path> inputs;

    for (const auto& job : jobs)
        if (const auto identity = identityOf (job.input))
            inputs.emplace (*identity, job.input);

    for (const auto& job : jobs)
    {
        const auto identity = identityOf (job.output);
        const auto input = identity ? inputs.find (*identity) : inputs.end();

        if (input != inputs.end())
            throw WrongCall (job.output.string() + ": is the same file as the input " + input->second.string());
    }
}
} // namespace

BatchPlan planBatch (const CommandLine& call)
{
    const auto intoFolder = meansFolder (call);
    const auto container = chooseContainer (call, intoFolder);

    if (container == Container::flac && call.samples == SampleType::float32)
        throw WrongCall ("--bits 32f: FLAC files hold no floats");

    BatchPlan plan { .settings = { .mode = call.mode,
                                   .blockSize = call.blockSize,
                                   .encoding = { .container = container, .samples = call.samples } },
                     .jobs = {},
                     .folder = {} };
    const std::filesystem::path output (call.output);

    if (intoFolder)
    {
        refuseFileAsFolder (call);
        plan.folder = output;
    }

    for (const auto& argument : call.inputs)
    {
        const std::filesystem::path input (argument);
        const auto name = input.stem().string() + "." + extensionOf (container);
        plan.jobs.push_back ({ .input = input, .output = intoFolder ? output / name : output });
    }

    refuseSharedResults (plan.jobs);
    refuseReplacedInputs (plan.jobs);
    return plan;
}

} // namespace larkspire::render
