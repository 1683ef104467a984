// SPDX-License-Identifier: AGPL-3.0-only
#include "render/CommandLine.h"

#include "base/Failure.h"
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

/** Lets an option take the names of a choice and nothing else. A CheckedTransformer alone would take the numbers behind
    the names as well. The parser transforms in the reverse order: the name is checked first. */
template <typename Value>
void takeNames (CLI::Option* option, const Choice<Value>& choice)
{
    option->transform (CLI::Transformer (choice, CLI::ignore_case));
    option->transform (CLI::IsMember (choice, CLI::ignore_case));
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
    // Read as a string: as an optional, the parser would take an empty text for none.
    using Text = std::optional<std::string>;

    CommandLine call;
    CLI::App parser ({}, programName);
    parser.formatter (std::make_shared<HelpFormatter>());
    parser.set_help_flag ("-h,--help", "Show this text");
    parser.set_version_flag ("--version", std::string (programName) + " " + LARKSPIRE_RELEASE, "Show the version");
    parser.add_option ("IN", call.inputs, "Recordings, or folders of recordings")->group ("");
    parser.add_option ("-o", call.output, "The result, or the folder for the results")->option_text ("OUT");
    takeNames (
        parser
            .add_option ("--mode", call.mode, "Position of the knob: bypass, Gentle, Medium (the default) or Powerful")
            ->option_text ("MODE"),
        namedModes());
    parser.add_flag ("--compare", call.compare, "Render all four modes, with the mode in the name: voice-Medium.wav");
    takeNames<Container> (
        parser
            .add_option ("--format",
                         call.container,
                         "Kind of the results, wav or flac; without it what the name of OUT says, or wav")
            ->option_text ("KIND"),
        { { "wav", Container::wav }, { "flac", Container::flac } });
    takeNames<SampleType> (
        parser
            .add_option ("--bits",
                         call.samples,
                         "Width of the results' samples: 16, 24 (the default) or 32f, floats, in WAV only")
            ->option_text ("WIDTH"),
        { { "16", SampleType::pcm16 }, { "24", SampleType::pcm24 }, { "32f", SampleType::float32 } });
    parser.add_flag (
        "--report", call.report, "Print loudness, true peak and noise before and after, and the stages' gains");
    parser.add_flag ("--json", call.json, "Print the report as a JSON document and nothing else");
    parser.add_option<Text, std::string> ("--plot", call.picture, "Draw waveforms, loudness and gains over time")
        ->option_text ("PNG");
    parser.add_flag (
        "--allow-truncated", call.allowTruncated, "Take recordings that were cut off as if they were whole");
    parser.add_flag ("--stats", call.stats, "Print path, peak, RMS, length and times faster than real time");
    parser.add_option ("-j,--jobs", call.workers, "Files to render at once, 0 for one on each core; without it 1")
        ->check (CLI::Range (0, 256))
        ->option_text ("N");
    parser
        .add_option ("--block",
                     call.blockSize,
                     "Sample frames that the plug-in gets at once, 1 to 524288; without it "
                         + std::to_string (call.blockSize))
        ->check (CLI::Range (1, 524288))
        ->option_text ("N");
    parser.add_option<Text, std::string> ("--plugin", call.plugin, "The plug-in's library")->option_text ("PATH");

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

    for (const auto& [isMissing, what] :
         { std::pair { call.inputs.empty(), "a recording, IN," }, { parser.count ("-o") == 0, "the result, -o OUT," } })
        if (isMissing)
            throw WrongCall (std::string (what) + " is missing: " + usage + " (--help shows more)");

    return call;
}

} // namespace larkspire::render
