// SPDX-License-Identifier: AGPL-3.0-only
#include "render/BatchPlan.h"

#include "audio/FileKind.h"
#include "base/Failure.h"
#include "base/FileIdentity.h"
#include "base/PartialFile.h"
#include "base/StandardStreams.h"

#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <map>
#include <string>
#include <thread>
#include <utility>

namespace larkspire::render
{

namespace
{
namespace fs = std::filesystem;

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
    return hasSeveralInputs (call) || name.ends_with ('/') || (! isStandardStream (name) && isFolder (name));
}

/** Refuses a name for the folder that something else has, or that is meant for a single result. */
void refuseFileAsFolder (const CommandLine& call, std::string name)
{
    if (! name.ends_with ('/') && ! isFolder (name) && isNamedAsSound (name))
        throw WrongCall (name + ": is one result, but every recording gets its own; name a folder");

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
    const auto extension = extensionIn (output);

    for (const auto container : { Container::wav, Container::flac, Container::mp3, Container::opus })
        if (extension == extensionOf (container))
            return container;

    if (isNamedAsSound (output) && extension != "bwf")
        throw WrongCall (output.string() + ": results are WAV, FLAC, MP3 or Opus files, not " + extension);

    return std::nullopt;
}

/** Refuses standard input and output where they make no sense. */
void checkDashes (const CommandLine& call)
{
    const auto refuse = [] (const char* reason) { throw WrongCall (std::string ("-: ") + reason); };
    const auto fromStandardInput = std::ranges::find (call.inputs, "-") != call.inputs.end();

    if (call.picture == "-")
        refuse ("a picture is not written to standard output; name a file, ./- for one of this name");

    if (fromStandardInput && (meansFolder (call, call.output) || (call.picture && meansFolder (call, *call.picture))))
        refuse ("standard input has no name that a file in a folder could get; give it alone, and name the result");

    if (fromStandardInput && isatty (STDIN_FILENO) == 1)
        refuse ("standard input is a terminal; send sound to it, or name a file, ./- for one of this name");

    if (! isStandardStream (call.output))
        return;

    if (hasSeveralInputs (call) || call.compare)
        refuse ("standard output takes one result; name a folder");

    if (call.report || call.json || call.stats)
        refuse ("standard output is taken by the sound; --report, --json and --stats need a file as OUT");

    if (isatty (STDOUT_FILENO) == 1)
        refuse ("standard output is a terminal; send it into a file or a program, or name a file");
}

Container chooseContainer (const CommandLine& call, bool intoFolder)
{
    const auto byName = intoFolder ? std::nullopt : containerByName (call.output);

    if (call.container.has_value() && byName.has_value() && *call.container != *byName)
        throw WrongCall (call.output + ": the name contradicts --format " + extensionOf (*call.container));

    return call.container.value_or (byName.value_or (Encoding {}.container));
}

SampleType chooseSamples (const CommandLine& call, Container container)
{
    if (container == Container::flac && call.samples == SampleType::float32)
        throw WrongCall ("--bits 32f: FLAC files hold no floats");

    if (holdsSamples (container))
        return call.samples.value_or (Encoding {}.samples);

    if (call.samples.has_value())
        throw WrongCall (std::string ("--bits: ") + nameOf (container) + " files have no width of samples");

    return SampleType::float32;
}

/** A file that a job writes, with the job's index. */
struct Target
{
    fs::path path;
    std::size_t job;
};

std::vector<Target> targetsOf (const std::vector<Job>& jobs)
{
    std::vector<Target> targets;

    for (std::size_t i = 0; i < jobs.size(); ++i)
    {
        if (! jobs[i].output.empty())
            targets.push_back ({ .path = jobs[i].output, .job = i });

        if (jobs[i].picture.has_value())
            targets.push_back ({ .path = *jobs[i].picture, .job = i });
    }

    return targets;
}

/** The path that a file will have in the end, by whatever links. */
fs::path finalPathOf (const fs::path& target)
{
    std::error_code error;
    const auto path = behindLinks (target);
    auto canonical = fs::weakly_canonical (path, error);
    return error ? path : canonical;
}

/** Refuses jobs of different inputs that would write the same file: both, as nobody can say which one is wanted.
    Throws WrongCall if that happens among the files of one input. */
void refuseSharedResults (BatchPlan& plan)
{
    std::map<fs::path, Target> targets;
    const auto refuse = [&plan] (const Target& refused, const Target& rival)
    {
        plan.jobs[refused.job].refusal =
            printable (plan.jobs[refused.job].input.string() + ": would become " + refused.path.string()
                       + ", and so would " + plan.jobs[rival.job].input.string());
    };

    for (const auto& target : targetsOf (plan.jobs))
    {
        const auto [entry, isNew] = targets.emplace (finalPathOf (target.path), target);
        const auto& other = entry->second;

        if (isNew)
            continue;

        if (target.job / plan.modesPerInput == other.job / plan.modesPerInput)
            throw WrongCall (plan.jobs[target.job].input.string() + ": two of its files would become "
                             + target.path.string());

        refuse (target, other);
        refuse (other, target);
    }
}

void refuseReplacedInputs (const std::vector<Job>& jobs)
{
    std::map<FileIdentity, fs::path> inputs;

    const auto behind = [] (const fs::path& name, const char* stream)
    { return identityOf (isStandardStream (name) ? fs::path (stream) : name); };

    for (const auto& job : jobs)
        if (const auto identity = behind (job.input, "/dev/stdin"))
            inputs.emplace (*identity, job.input);

    for (const auto& [target, job] : targetsOf (jobs))
    {
        const auto identity = behind (target, "/dev/stdout");
        const auto input = identity ? inputs.find (*identity) : inputs.end();

        if (input != inputs.end())
            throw WrongCall (nameOfResult (target) + ": is the same file as the input " + nameOfInput (input->second));
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

    plan.leftOut.insert (plan.leftOut.end(), contents.leftOut.begin(), contents.leftOut.end());
    plan.withoutSound += contents.withoutSound;

    const auto isTheFolder = [&folder] (const LeftOut& left) { return left.path == folder; };

    if (contents.recordings.empty() && std::none_of (contents.leftOut.begin(), contents.leftOut.end(), isTheFolder))
        plan.leftOut.push_back (
            { .path = folder, .reason = std::string ("holds no ") + kindsOfRecording + " file", .isFault = true });
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
    Place (const CommandLine& call, const std::string& wanted, std::string endingInFolder)
        : path (wanted),
          ending (std::move (endingInFolder)),
          isFolder (meansFolder (call, wanted)),
          modeInName (call.compare)
    {
        if (isFolder)
            refuseFileAsFolder (call, wanted);
    }

    fs::path nameFor (const Source& source, KnobMode mode) const
    {
        if (! isFolder && ! modeInName)
            return path;

        auto name = isFolder ? path / source.name : withoutEnding (path);
        name += modeInName ? std::string ("-") + nameOf (mode) : std::string();
        name += isFolder ? ending : path.extension().string();
        return name;
    }

    /** Sees to it that the folder of a name that was given out is made. */
    void makeRoomFor (const fs::path& name, BatchPlan& plan) const
    {
        if (! isFolder)
            return;

        plan.folders.insert (path);

        if (name.parent_path() != path)
            plan.subfolders.insert (name.parent_path());
    }

private:
    fs::path path;
    std::string ending;
    bool isFolder;
    bool modeInName;
};

/** Where pictures go, if any are wanted. A single name for many pictures, or one that does not end in .png, is refused.
 */
std::optional<Place> placeOfPictures (const CommandLine& call)
{
    if (! call.picture.has_value())
        return std::nullopt;

    const auto& name = *call.picture;
    const auto isPng = extensionIn (name) == "png";

    if (hasSeveralInputs (call) && isPng && ! isFolder (name))
        throw WrongCall (name + ": is one picture, but every recording gets its own; name a folder");

    if (! meansFolder (call, name) && ! isPng)
        throw WrongCall (name + ": pictures are PNG files; a folder for them ends with a slash");

    return Place (call, name, ".png");
}

/** What the recordings are brought to. Throws WrongCall for a peak that is none. */
InputLevel inputLevelOf (const CommandLine& call)
{
    InputLevel level { .gainDb = call.gain };

    if (! call.peak.has_value())
        return level;

    if (*call.peak == "best")
    {
        level.best = true;
        return level;
    }

    constexpr double lowest = -60.0;
    double peak = 1.0;
    const auto* const end = call.peak->data() + call.peak->size();
    const auto read = std::from_chars (call.peak->data(), end, peak);

    if (read.ec != std::errc() || read.ptr != end || ! (peak >= lowest && peak <= 0.0))
        throw WrongCall ("--input-peak " + *call.peak + ": is neither a level of -60 to 0 dBFS nor best");

    level.peakDbfs = peak;
    return level;
}

/** Whether a file is there and newer than another. */
bool isNewer (const fs::path& file, const fs::path& other)
{
    std::error_code error;
    std::error_code otherError;
    const auto time = fs::last_write_time (file, error);
    const auto otherTime = fs::last_write_time (other, otherError);
    return ! error && ! otherError && fs::is_regular_file (file, error) && time > otherTime;
}

/** Takes the jobs of recordings out of which all files are there and newer. A result has its name only when it is
    whole. */
void leaveOutDone (BatchPlan& plan)
{
    const auto isDone = [] (const Job& job)
    {
        return ! job.refusal.has_value() && isNewer (job.output, job.input)
               && (! job.picture.has_value() || isNewer (*job.picture, job.input));
    };
    std::vector<Job> left;

    for (auto first = plan.jobs.begin(); first != plan.jobs.end();)
    {
        const auto last = first + static_cast<std::ptrdiff_t> (plan.modesPerInput);

        if (std::all_of (first, last, isDone))
            plan.doneBefore.push_back ({ .path = first->input,
                                         .reason = "was done before: " + first->output.string() + " is newer",
                                         .isFault = false });
        else
            left.insert (left.end(), first, last);

        first = last;
    }

    plan.jobs = std::move (left);
}

unsigned workersFor (const CommandLine& call)
{
    return call.workers > 0 ? static_cast<unsigned> (call.workers) : std::max (1U, std::thread::hardware_concurrency());
}
} // namespace

BatchPlan planBatch (const CommandLine& call)
{
    checkDashes (call);
    const auto container = chooseContainer (call, meansFolder (call, call.output));

    if (call.compare && call.mode.has_value())
        throw WrongCall ("--compare renders every mode, so --mode makes no sense with it");

    std::optional<finish::Target> target;

    if (call.loudness.has_value())
        target = { .lufs = *call.loudness, .ceilingDbtp = call.truePeak.value_or (finish::Target {}.ceilingDbtp) };

    BatchPlan plan;
    plan.settings = { .blockSize = call.blockSize,
                      .encoding = { .container = container, .samples = chooseSamples (call, container) },
                      .measure = call.report || call.json,
                      .allowTruncated = call.allowTruncated,
                      .level = inputLevelOf (call),
                      .settleSeconds = call.settle,
                      .voices = call.split ? meter::Voices::split : meter::Voices::together,
                      .processRate = call.processRate,
                      .target = target };
    plan.outputs = { .stats = call.stats, .report = call.report || call.json, .json = call.json, .quiet = call.quiet };
    plan.hasSeveralInputs = hasSeveralInputs (call);
    plan.workers = workersFor (call);

    const Place results (call, call.output, std::string (".") + extensionOf (container));
    const auto pictures = placeOfPictures (call);
    std::vector<KnobMode> modes { call.mode.value_or (KnobMode::medium) };

    if (call.compare)
        modes.assign (knobModes.begin(), knobModes.end());

    plan.modesPerInput = modes.size();

    for (const auto& source : findSources (call, plan))
        for (const auto mode : modes)
            plan.jobs.push_back (
                { .input = source.input,
                  .output = call.analysesOnly ? fs::path() : results.nameFor (source, mode),
                  .mode = mode,
                  .picture = pictures ? std::optional (pictures->nameFor (source, mode)) : std::nullopt });

    refuseReplacedInputs (plan.jobs);
    refuseSharedResults (plan);

    if (call.skipExisting)
        leaveOutDone (plan);

    for (const auto& job : plan.jobs)
    {
        if (job.refusal.has_value() || call.analysesOnly)
            continue;

        results.makeRoomFor (job.output, plan);

        if (pictures.has_value())
            pictures->makeRoomFor (*job.picture, plan);
    }

    return plan;
}

} // namespace larkspire::render
