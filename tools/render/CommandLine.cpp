// SPDX-License-Identifier: AGPL-3.0-only
#include "render/CommandLine.h"

#include "base/Failure.h"
#include "render/HelpText.h"

#include <CLI/CLI.hpp>

#include <algorithm>
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

const Choice<KnobMode> modes = namedModes();
const Choice<Container> containers { { "wav", Container::wav }, { "flac", Container::flac } };
const Choice<SampleType> sampleTypes { { "16", SampleType::pcm16 },
                                       { "24", SampleType::pcm24 },
                                       { "32f", SampleType::float32 } };

template <typename Value>
std::vector<std::string> namesOf (const Choice<Value>& choice)
{
    std::vector<std::string> names;

    for (const auto& [name, value] : choice)
        names.push_back (name);

    return names;
}

template <typename Value>
Value valueOf (const Choice<Value>& choice, const std::string& wanted)
{
    const auto hasName = [&wanted] (const auto& entry) { return entry.first == wanted; };
    return std::find_if (choice.begin(), choice.end(), hasName)->second;
}

template <typename Value>
CLI::IsMember oneOf (const Choice<Value>& choice)
{
    return CLI::IsMember (namesOf (choice), CLI::ignore_case);
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
} // namespace

std::variant<CommandLine, std::string> parseCommandLine (int argumentCount, const char* const* arguments)
{
    CommandLine call;
    std::string mode;
    std::string bits = "24";
    std::string format;
    std::string plugin;
    std::string picture;

    CLI::App parser ({}, programName);
    parser.formatter (std::make_shared<HelpFormatter>());
    parser.set_help_flag ("-h,--help", "Show this text");
    parser.set_version_flag ("--version", std::string (programName) + " " + LARKSPIRE_RELEASE, "Show the version");
    parser.add_option ("IN", call.inputs, "Recordings, or folders of recordings")->required()->group ("");
    parser.add_option ("-o", call.output, "The result, or the folder for the results")->required()->option_text ("OUT");
    parser.add_option ("--mode", mode, "Position of the knob: bypass, Gentle, Medium (the default) or Powerful")
        ->transform (oneOf (modes))
        ->option_text ("MODE");
    parser.add_flag ("--compare", call.compare, "Render all four modes, with the mode in the name: voice-Medium.wav");
    parser
        .add_option (
            "--format", format, "Kind of the results, wav or flac; without it what the name of OUT says, or wav")
        ->transform (oneOf (containers))
        ->option_text ("KIND");
    parser
        .add_option ("--bits", bits, "Width of the results' samples: 16, 24 (the default) or 32f, floats, in WAV only")
        ->transform (oneOf (sampleTypes))
        ->option_text ("WIDTH");
    parser.add_flag (
        "--report", call.report, "Print loudness, true peak and noise before and after, and the stages' gains");
    parser.add_flag ("--json", call.json, "Print the report as a JSON document and nothing else");
    parser.add_option ("--plot", picture, "Draw waveforms, loudness and gains over time")->option_text ("PNG");
    parser.add_flag ("--stats", call.stats, "Print path, peak, RMS, length and times faster than real time");
    parser.add_option ("-j,--jobs", call.workers, "Files to render at once, 0 for one on each core; without it 1")
        ->check (CLI::Range (0, 256))
        ->option_text ("N");
    parser
        .add_option (
            "--block", call.blockSize, "Sample frames that the plug-in gets at once, 1 to 524288; without it 4096")
        ->check (CLI::Range (1, 524288))
        ->option_text ("N");
    parser.add_option ("--plugin", plugin, "The plug-in's library")->option_text ("PATH");

    try
    {
        parser.parse (reversedArguments (argumentCount, arguments));
    }
    catch (const CLI::CallForHelp&)
    {
        auto text = parser.help();

        // The parser puts two empty lines between the options and what follows.
        if (const auto gap = text.find ("\n\n\n"); gap != std::string::npos)
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

    if (! mode.empty())
        call.mode = valueOf (modes, mode);

    call.samples = valueOf (sampleTypes, bits);

    if (! format.empty())
        call.container = valueOf (containers, format);

    if (parser.count ("--plugin") > 0)
        call.plugin = plugin;

    if (parser.count ("--plot") > 0)
        call.picture = picture;

    return call;
}

} // namespace larkspire::render
