// SPDX-License-Identifier: AGPL-3.0-only
#include "render/CommandLine.h"

#include "base/Failure.h"
#include "base/Texts.h"
#include "render/HelpText.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace larkspire::render
{

namespace
{
constexpr const char* programName = "larkspire-render";

/** The values of a choice by the names that people type. */
template <typename Value>
using Choice = std::vector<std::pair<std::string, Value>>;

/** The modes by the plug-in's own names. */
Choice<KnobMode> namedModes()
{
    Choice<KnobMode> choice;

    for (const auto mode : knobModes)
        choice.emplace_back (nameOf (mode), mode);

    return choice;
}

Choice<Container> namedContainers()
{
    Choice<Container> choice;

    for (const auto container : { Container::wav, Container::flac, Container::mp3, Container::opus })
        choice.emplace_back (extensionOf (container), container);

    return choice;
}

/** Lets an option take the names of a choice and nothing else. A CheckedTransformer alone would take the numbers behind
    the names as well. The parser transforms in the reverse order: the name is checked first. */
template <typename Value>
void takeNames (CLI::Option* option, const Choice<Value>& choice)
{
    option->transform (CLI::Transformer (choice, CLI::ignore_case));
    option->transform (CLI::IsMember (choice, CLI::ignore_case));
}

/** Lets an option take numbers of a range and nothing else. CLI::Range would take NaN too. */
CLI::Validator within (double lowest, double highest)
{
    const auto check = [lowest, highest] (const std::string& text) -> std::string
    {
        double number = 0.0;

        if (CLI::detail::lexical_cast (text, number) && number >= lowest && number <= highest)
            return {};

        return text + " is no number of " + fixed (lowest, 0) + " to " + fixed (highest, 0);
    };

    return { check, "" };
}

/** The parser's own help with our usage ahead of all, and a space between the names of an option. */
class HelpFormatter : public CLI::Formatter
{
public:
    HelpFormatter() { column_width (24); }

    std::string make_description (const CLI::App*) const override { return helpHead; }
    std::string make_usage (const CLI::App*, std::string) const override { return {}; }
    std::string make_footer (const CLI::App*) const override { return helpFoot; }

    std::string make_option_name (const CLI::Option* option, bool isPositional) const override
    {
        auto names = CLI::Formatter::make_option_name (option, isPositional);

        if (const auto comma = names.find (','); comma != std::string::npos)
            names.insert (comma + 1, " ");

        return names;
    }
};

/** The arguments in the order that the parser wants them, the last first. It takes "[a,b]" for a list, so a file of
    such a name is given to it as "./[a,b]". */
std::vector<std::string> reversedArguments (int count, const char* const* arguments)
{
    std::vector<std::string> reversed;

    for (int i = count - 1; i > 0; --i)
    {
        const std::string argument (arguments[i]);
        const auto looksLikeList = argument.size() > 1 && argument.front() == '[' && argument.back() == ']';
        reversed.push_back (looksLikeList ? "./" + argument : argument);
    }

    return reversed;
}

/** Reads a text as a string: as an optional, the parser would take an empty one for none. */
CLI::Option*
addText (CLI::App& parser, const std::string& name, std::optional<std::string>& text, const std::string& description)
{
    return parser.add_option<std::optional<std::string>, std::string> (name, text, description);
}

/** What most calls are made of. */
void addCommonOptions (CLI::App& parser, CommandLine& call)
{
    parser.set_help_flag ("-h,--help", "Show this text");
    parser.set_version_flag ("--version", std::string (programName) + " " + LARKSPIRE_RELEASE, "Show the version");
    parser.add_option ("IN", call.inputs, "Recordings, or folders of recordings")->group ("");
    parser.add_option ("-o", call.output, "The result, or the folder for the results")->option_text ("OUT");
    takeNames (
        parser
            .add_option ("--mode", call.mode, "Position of the knob: bypass, Gentle, Medium (the default) or Powerful")
            ->option_text ("MODE"),
        namedModes());
    parser
        .add_option ("--loudness",
                     call.loudness,
                     "Bring the results to this integrated loudness, -70 to -5, with no true peak above -1 dBTP")
        ->check (within (-70.0, -5.0))
        ->option_text ("LUFS");
    addText (parser,
             "--input-peak",
             call.peak,
             "Peak of the recordings ahead of the plug-in, -60 to 0, or best: the one that suits the mode")
        ->option_text ("DBFS");
    parser.add_flag (
        "--report",
        call.report,
        "Print loudness, true peak and noise before and after, and what each stage did; without -o advice");
    parser.add_flag ("-q,--quiet", call.quiet, "Say on standard error nothing but what failed");
    parser.add_option ("-j,--jobs", call.workers, "Files to render at once, 0 for one on each core; without it 1")
        ->check (CLI::Range (0, 256))
        ->option_text ("N");
}

void addSoundOptions (CLI::App& parser, CommandLine& call)
{
    constexpr const char* group = "Around the plug-in";
    parser
        .add_option (
            "--true-peak", call.truePeak, "With --loudness: what no true peak is above, -20 to 0; without it -1")
        ->check (within (-20.0, 0.0))
        ->needs ("--loudness")
        ->option_text ("DBTP")
        ->group (group);
    parser.add_option ("--gain", call.gain, "Gain ahead of the plug-in, -60 to 60")
        ->check (within (-60.0, 60.0))
        ->excludes ("--input-peak")
        ->option_text ("DB")
        ->group (group);
    parser
        .add_option (
            "--settle", call.settle, "Let the plug-in hear so much of the beginning once before, 0 to 60; without it 0")
        ->check (within (0.0, 60.0))
        ->option_text ("SECONDS")
        ->group (group);
    parser.add_flag ("--split", call.split, "Take left and right for two voices, each through a plug-in of its own")
        ->group (group);
    parser
        .add_option ("--process-rate",
                     call.processRate,
                     "Sample rate that the plug-in runs at, 1000 to 768000; without it the file's own")
        ->check (CLI::Range (1000, 768000))
        ->option_text ("HZ")
        ->group (group);
}

void addFileOptions (CLI::App& parser, CommandLine& call)
{
    constexpr const char* group = "Recordings and results";
    parser.add_flag ("--compare", call.compare, "Render all four modes, with the mode in the name: voice-Medium.wav")
        ->group (group);
    auto* const format =
        parser
            .add_option ("--format",
                         call.container,
                         "Kind of the results, wav, flac, mp3 or opus; without it what the name of OUT says, or wav")
            ->option_text ("KIND");
    format->group (group);
    takeNames (format, namedContainers());
    auto* const bits =
        parser
            .add_option ("--bits",
                         call.samples,
                         "Width of the samples in WAV and FLAC: 16, 24 (the default) or 32f, floats, in WAV only")
            ->option_text ("WIDTH");
    bits->group (group);
    takeNames<SampleType> (
        bits, { { "16", SampleType::pcm16 }, { "24", SampleType::pcm24 }, { "32f", SampleType::float32 } });
    parser
        .add_flag ("--skip-existing",
                   call.skipExisting,
                   "Leave out recordings whose results are there and newer, as make does")
        ->group (group);
    parser
        .add_flag ("--allow-truncated", call.allowTruncated, "Take recordings that were cut off as if they were whole")
        ->group (group);
}

void addFigureOptions (CLI::App& parser, CommandLine& call)
{
    constexpr const char* group = "Figures and pictures";
    parser.add_flag ("--json", call.json, "Print the report as a JSON document and nothing else")->group (group);
    addText (parser, "--plot", call.picture, "Draw waveforms, loudness and gains over time")
        ->option_text ("PNG")
        ->group (group);
    parser.add_flag ("--stats", call.stats, "Print path, peak, RMS, length and times faster than real time")
        ->group (group);
}

void addHostOptions (CLI::App& parser, CommandLine& call)
{
    constexpr const char* group = "The plug-in";
    parser
        .add_option ("--block",
                     call.blockSize,
                     "Sample frames that the plug-in gets at once, 1 to 524288; without it "
                         + std::to_string (call.blockSize))
        ->check (CLI::Range (1, 524288))
        ->option_text ("N")
        ->group (group);
    addText (parser, "--plugin", call.plugin, "The plug-in's library")->option_text ("PATH")->group (group);
}
} // namespace

std::variant<CommandLine, std::string> parseCommandLine (int argumentCount, const char* const* arguments)
{
    CommandLine call;
    CLI::App parser ({}, programName);
    parser.formatter (std::make_shared<HelpFormatter>());
    addCommonOptions (parser, call);
    addSoundOptions (parser, call);
    addFileOptions (parser, call);
    addFigureOptions (parser, call);
    addHostOptions (parser, call);

    try
    {
        parser.parse (reversedArguments (argumentCount, arguments));
    }
    catch (const CLI::CallForHelp&)
    {
        auto text = parser.help();

        // The parser puts two empty lines behind a group of options.
        for (auto gap = text.find ("\n\n\n"); gap != std::string::npos; gap = text.find ("\n\n\n"))
            text.erase (gap, 1);

        return text;
    }
    catch (const CLI::CallForVersion&)
    {
        return parser.version() + "\n";
    }
    catch (const CLI::ParseError& error)
    {
        throw WrongCall (std::string (error.what()) + " (--help shows how to call it)");
    }

    call.analysesOnly =
        parser.count ("-o") == 0 && (call.report || call.json) && ! call.stats && ! call.picture.has_value();

    for (const auto& [isMissing, what] : { std::pair { call.inputs.empty(), "a recording, IN," },
                                           { parser.count ("-o") == 0 && ! call.analysesOnly, "the result, -o OUT," } })
        if (isMissing)
            throw WrongCall (std::string (what) + " is missing: " + usage + " (--help shows more)");

    return call;
}

} // namespace larkspire::render
