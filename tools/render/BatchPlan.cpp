// SPDX-License-Identifier: AGPL-3.0-only
#include "render/BatchPlan.h"

#include "base/Failure.h"
#include "base/FileIdentity.h"
#include "render/FolderScan.h"

#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

namespace larkspire::render
{

namespace
{
namespace fs = std::filesystem;

/** The letters behind the last dot of the name, made small. */
std::string extensionIn (const fs::path& path)
{
    auto extension = path.extension().string();

    for (auto& letter : extension)
        if (letter >= 'A' && letter <= 'Z')
            letter = static_cast<char> (letter - 'A' + 'a');

    return extension.empty() ? extension : extension.substr (1);
}

bool isFolder (const std::string& path)
{
    std::error_code error;
    return fs::is_directory (path, error);
}

/** Whether there may be results of several inputs. */
bool hasSeveralInputs (const CommandLine& call)
{
    return call.inputs.size() > 1 || std::any_of (call.inputs.begin(), call.inputs.end(), isFolder);
}

/** Whether a name that was given for results or pictures is that of a folder. */
bool meansFolder (const CommandLine& call, const std::string& name)
{
    return hasSeveralInputs (call) || name.ends_with ('/') || isFolder (name);
}

/** Refuses a name for the folder that something else has. */
void refuseFileAsFolder (const CommandLine& call, std::string name)
{
    while (name.size() > 1 && name.ends_with ('/'))
        name.pop_back();

    std::error_code error;

    if (fs::exists (name, error) && ! fs::is_directory (name, error))
        throw WrongCall (name + ": is not a folder, as "
                         + (hasSeveralInputs (call) ? "several results need" : "the slash behind it says"));
}

/** What a single result's name says about its kind. Throws WrongCall for a name that promises a kind that is not
    written. */
std::optional<Container> containerByName (const fs::path& output)
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

    return call.container.value_or (byName.value_or (Encoding {}.container));
}

/** Everything that jobs write, with words for what it comes from. */
std::vector<std::pair<fs::path, std::string>> targetsOf (const std::vector<Job>& jobs)
{
    std::vector<std::pair<fs::path, std::string>> targets;

    for (const auto& job : jobs)
    {
        targets.emplace_back (job.output, job.input.string());

        if (job.picture.has_value())
            targets.emplace_back (*job.picture, "the picture of " + job.input.string());
    }

    return targets;
}

void refuseSharedResults (const std::vector<Job>& jobs)
{
    std::map<fs::path, std::string> originOf;

    for (const auto& [target, origin] : targetsOf (jobs))
    {
        std::error_code error;
        const auto canonical = fs::weakly_canonical (target, error);
        const auto [entry, isNew] = originOf.emplace (error ? target : canonical, origin);

        if (! isNew)
            throw WrongCall (entry->second + " and " + origin + ": both would become " + target.string());
    }
}

void refuseReplacedInputs (const std::vector<Job>& jobs)
{
    std::map<FileIdentity, fs::path> inputs;

    for (const auto& job : jobs)
        if (const auto identity = identityOf (job.input))
            inputs.emplace (*identity, job.input);

    for (const auto& [target, origin] : targetsOf (jobs))
    {
        const auto identity = identityOf (target);
        const auto input = identity ? inputs.find (*identity) : inputs.end();

        if (input != inputs.end())
            throw WrongCall (target.string() + ": is the same file as the input " + input->second.string());
    }
}

/** A recording, and what its results are called in their folder: a path without an ending. */
struct Source
{
    fs::path input;
    fs::path name;
};

fs::path withoutEnding (const fs::path& path)
{
    return path.parent_path() / path.stem();
}

void addFolder (const fs::path& folder, const CommandLine& call, BatchPlan& plan, std::vector<Source>& sources)
{
    const auto results = identityOf (call.output);

    if (results.has_value() && results == identityOf (folder))
        throw WrongCall (call.output + ": is the folder of the recordings; results need another");

    const auto pictures = call.picture ? identityOf (*call.picture) : std::nullopt;
    const auto contents = scanFolder (folder, { results, pictures });

    for (const auto& recording : contents.recordings)
        sources.push_back ({ .input = folder / recording, .name = withoutEnding (recording) });

    if (contents.recordings.empty() && contents.faults.empty())
        plan.faults.emplace_back (folder, "holds no WAV, FLAC, AIFF or Ogg file");
    else if (contents.leftOut > 0)
        plan.notes.push_back (printable (folder.string()) + ": " + std::to_string (contents.leftOut)
                              + (contents.leftOut == 1 ? " file that is no recording was left out"
                                                       : " files that are no recordings were left out"));

    plan.faults.insert (plan.faults.end(), contents.faults.begin(), contents.faults.end());
}

std::vector<Source> findSources (const CommandLine& call, BatchPlan& plan)
{
    std::vector<Source> sources;

    for (const auto& argument : call.inputs)
    {
        const fs::path input (argument);

        if (isFolder (argument))
            addFolder (input, call, plan, sources);
        else
            sources.push_back ({ .input = input, .name = input.stem() });
    }

    return sources;
}

/** Where files of one kind go: one name, or a folder with a name for each source. */
class Place
{
public:
    /** @param endingInFolder  with the dot */
    Place (const CommandLine& call, const std::string& wanted, std::string endingInFolder, BatchPlan& plan)
        : path (wanted),
          ending (std::move (endingInFolder)),
          isFolder (meansFolder (call, wanted)),
          modeInName (call.compare)
    {
        if (isFolder)
        {
            refuseFileAsFolder (call, wanted);
            plan.folders.insert (path);
        }
    }

    fs::path nameFor (const Source& source, KnobMode mode, BatchPlan& plan) const
    {
        if (! isFolder && ! modeInName)
            return path;

        auto name = isFolder ? path / source.name : withoutEnding (path);
        name += modeInName ? std::string ("-") + nameOf (mode) : std::string();
        name += isFolder ? ending : path.extension().string();

        if (isFolder && source.name.has_parent_path())
            plan.subfolders.insert (name.parent_path());

        return name;
    }

private:
    fs::path path;
    std::string ending;
    bool isFolder;
    bool modeInName;
};

/** Where pictures go, if any are wanted. A single name for many pictures, or one that does not end in .png, is refused.
 */
std::optional<Place> placeOfPictures (const CommandLine& call, BatchPlan& plan)
{
    if (! call.picture.has_value())
        return std::nullopt;

    const auto& name = *call.picture;
    const auto isPng = extensionIn (name) == "png";

    if (hasSeveralInputs (call) && isPng && ! isFolder (name))
        throw WrongCall (name + ": is one picture, but every recording gets its own; name a folder");

    if (! meansFolder (call, name) && ! isPng)
        throw WrongCall (name + ": pictures are PNG files; a folder for them ends with a slash");

    return Place (call, name, ".png", plan);
}

unsigned workersFor (const CommandLine& call)
{
    return call.workers > 0 ? static_cast<unsigned> (call.workers) : std::max (1U, std::thread::hardware_concurrency());
}
} // namespace

BatchPlan planBatch (const CommandLine& call)
{
    const auto container = chooseContainer (call, meansFolder (call, call.output));

    if (container == Container::flac && call.samples == SampleType::float32)
        throw WrongCall ("--bits 32f: FLAC files hold no floats");

    if (call.compare && call.mode.has_value())
        throw WrongCall ("--compare renders every mode, so --mode makes no sense with it");

    BatchPlan plan;
    plan.settings = { .blockSize = call.blockSize,
                      .encoding = { .container = container, .samples = call.samples },
                      .measure = call.report || call.json };
    plan.outputs = { .stats = call.stats, .report = call.report || call.json, .json = call.json };
    plan.workers = workersFor (call);

    const Place results (call, call.output, std::string (".") + extensionOf (container), plan);
    const auto pictures = placeOfPictures (call, plan);
    std::vector<KnobMode> modes { call.mode.value_or (KnobMode::medium) };

    if (call.compare)
        modes.assign (knobModes.begin(), knobModes.end());

    plan.modesPerInput = modes.size();

    for (const auto& source : findSources (call, plan))
        for (const auto mode : modes)
            plan.jobs.push_back (
                { .input = source.input,
                  .output = results.nameFor (source, mode, plan),
                  .mode = mode,
                  .picture = pictures ? std::optional (pictures->nameFor (source, mode, plan)) : std::nullopt });

    refuseSharedResults (plan.jobs);
    refuseReplacedInputs (plan.jobs);
    return plan;
}

} // namespace larkspire::render
