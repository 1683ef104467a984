// SPDX-License-Identifier: AGPL-3.0-only
#include "CommandLine.h"

#include "Failure.h"
#include "HelpText.h"

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

const Choice<Mode> modes {
    { "bypass", Mode::bypass }, { "Gentle", Mode::gentle }, { "Medium", Mode::medium }, { "Powerful", Mode::powerful }
};
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

/** The parser's own help with our usage, which names every option. */
class HelpFormatter : public CLI::Formatter
{
public:
    HelpFormatter() { column_width (34); }

    std::string make_usage (const CLI::App*, std::string) const override { return helpUsage; }
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
    std::string mode = "Medium";
    std::string bits = "24";
    std::string format;
    std::string plugin;

    CLI::App parser (helpExamples, programName);
    parser.footer (helpNotes);
    parser.formatter (std::make_shared<HelpFormatter>());
    parser.set_help_flag ("-h,--help", "Show this text");
    parser.set_version_flag ("--version", std::string (programName) + " " + LARKSPIRE_RELEASE, "Show the version");
    parser.add_option ("IN", call.inputs, "Recordings to render")->required()->option_text ("...");
    parser.add_option ("-o", call.output, "The result, or the folder for the results")->required()->option_text ("OUT");
    parser.add_option ("--mode", mode, "Position of the knob (Medium)")
        ->transform (oneOf (modes))
        ->option_text ("bypass|Gentle|Medium|Powerful");
    parser.add_option ("--format", format, "Kind of the results (what the name of OUT says, or wav)")
        ->transform (oneOf (containers))
        ->option_text ("wav|flac");
    parser.add_option ("--bits", bits, "Width of the results' samples; 32f is floats, in WAV only (24)")
        ->transform (oneOf (sampleTypes))
        ->option_text ("16|24|32f");
    parser.add_option ("--block", call.blockSize, "Sample frames that the plug-in gets at once, 1 to 524288 (4096)")
        ->check (CLI::Range (1, 524288))
        ->option_text ("N");
    parser.add_option ("--plugin", plugin, "The plug-in's library")->option_text ("PATH");
    parser.add_flag ("--stats", call.stats, "Print path, peak, RMS, length and times faster than real time");

    try
    {
        parser.parse (reversedArguments (argumentCount, arguments));
    }
    catch (const CLI::CallForHelp&)
    {
        return parser.help();
    }
    catch (const CLI::CallForVersion&)
    {
        return parser.version() + "\n";
    }
    catch (const CLI::ParseError& error)
    {
        throw WrongCall (std::string (error.what()) + " (--help shows how to call it)");
    }

    call.mode = valueOf (modes, mode);
    call.samples = valueOf (sampleTypes, bits);

    if (! format.empty())
        call.container = valueOf (containers, format);

    if (parser.count ("--plugin") > 0)
        call.plugin = plugin;

    return call;
}

} // namespace larkspire::render
