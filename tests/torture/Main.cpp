// SPDX-License-Identifier: AGPL-3.0-only
// Does to the built library whatever a host can do, in any order, and compares it with a model after every step.
#include "host/NoDisplay.h"
#include "support/Paths.h"
#include "torture/Mismatch.h"
#include "torture/Torture.h"
#include "window/EditorWindow.h"
#include "window/VirtualDisplay.h"

#include <CLI/CLI.hpp>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <iostream>
#include <map>
#include <optional>
#include <random>
#include <unistd.h>
#include <variant>

namespace
{
const Torture* running = nullptr;

/** The library has crashed: says where, so that the same seed leads there again. */
void onCrash (int signal)
{
    constexpr std::string_view text = "torture: CRASH in the operation after the one above\n";

    if (running != nullptr && ! running->history().empty())
    {
        const auto& last = running->history().back();
        (void)! write (STDERR_FILENO, last.data(), last.size());
        (void)! write (STDERR_FILENO, "\n", 1);
    }

    (void)! write (STDERR_FILENO, text.data(), text.size());
    std::signal (signal, SIG_DFL);
    std::raise (signal);
}

struct Options
{
    Format format = Format::vst2;
    std::string library;
    std::optional<std::uint64_t> seed;
    std::uint64_t operations = 0;
    double seconds = 0.0;
    bool withoutWindows = false;
};

int torture (const Options& options)
{
    const std::uint64_t seed = options.seed ? *options.seed : std::random_device {}();
    std::cout << "torture: seed " << seed << std::endl; // at once, in case of a crash

    std::optional<larkspire::window::VirtualDisplay> display;

    if (! options.withoutWindows)
        display.emplace();

    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    const auto elapsed = [&] { return std::chrono::duration<double> (Clock::now() - start).count(); };
    Torture all (options.format, options.library, seed, ! options.withoutWindows);
    running = &all;

    for (const int signal : { SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT })
        std::signal (signal, onCrash);

    try
    {
        while (options.operations > 0 ? all.operations() < options.operations : elapsed() < options.seconds)
            all.doOne();
    }
    catch (const Mismatch& mismatch)
    {
        for (const auto& line : all.history())
            std::cerr << line << "\n";

        std::cerr << "torture: FAILED in the last of these: " << mismatch.what() << "\ntorture: repeat it with --seed "
                  << seed << " --operations " << all.operations() + 1
                  << (options.format == Format::vst3 ? " --format vst3" : "")
                  << (options.withoutWindows ? " --without-windows" : "") << "\n";
        return 1;
    }

    const auto refusals = larkspire::window::EditorWindow::refusals();

    for (const auto& [name, count] : all.counts())
        std::cout << "  " << count << "\t" << name << "\n";

    std::cout << "torture: " << all.operations() << " operations, " << ModelledInstance::processedFrames()
              << " frames, all as the model says, in " << static_cast<int> (elapsed()) << " s\n"
              << "torture: sound hash " << ModelledInstance::soundHash() << "\n";

    for (const auto& refusal : refusals)
        std::cerr << "torture: FAILED: the X server refused: " << refusal << "\n";

    return refusals.empty() ? 0 : 1;
}

/** The options, or the status to end with. */
std::variant<Options, int> readOptions (int argc, char** argv)
{
    Options options;
    CLI::App app { "Does to the built library whatever a host can do, in any order, and compares it with a model." };
    app.add_option ("--format", options.format, "The interface by which it is loaded; vst2 if not given")
        ->transform (CLI::CheckedTransformer (
            std::map<std::string, Format> { { "vst2", Format::vst2 }, { "vst3", Format::vst3 } }));
    app.add_option ("--library", options.library, "Another library, or another bundle");
    app.add_option ("--seed", options.seed, "Repeats a sequence; otherwise chance decides");
    auto* operations =
        app.add_option ("--operations", options.operations, "How many operations")->check (CLI::PositiveNumber);
    auto* seconds = app.add_option ("--seconds", options.seconds, "How long")->check (CLI::PositiveNumber);
    app.add_flag ("--without-windows", options.withoutWindows, "Opens no window and needs no X server");
    operations->excludes (seconds);

    try
    {
        app.parse (argc, argv);

        if (options.operations == 0 && options.seconds <= 0.0)
            throw CLI::RequiredError ("--operations or --seconds");

        if (options.library.empty())
            options.library = options.format == Format::vst2 ? paths::plugin() : paths::vst3();
    }
    catch (const CLI::ParseError& error)
    {
        return app.exit (error) == 0 ? 0 : 2;
    }

    return options;
}
} // namespace

int main (int argc, char** argv)
{
    try
    {
        larkspire::useNoDisplay(); // where windows are wanted, the torture has a display of its own
        const auto options = readOptions (argc, argv);
        const auto* status = std::get_if<int> (&options);
        return status != nullptr ? *status : torture (std::get<Options> (options));
    }
    catch (const std::exception& error)
    {
        std::fprintf (stderr, "torture: %s\n", error.what());
        return 1;
    }
}
