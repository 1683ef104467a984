// SPDX-License-Identifier: AGPL-3.0-only
// Runs the benchmarks, prints their table and the ratios that are promised, and fails if one of those is broken. Takes
// Google Benchmark's options and --markdown=<file>, which writes the document as well.
#include "benchmarks/Bounds.h"
#include "benchmarks/Markdown.h"
#include "benchmarks/Results.h"
#include "host/NoDisplay.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

int main (int argc, char** argv)
{
    larkspire::useNoDisplay();
    std::string markdownPath;
    std::vector<std::string> words (argv, argv + argc);
    const bool filtered =
        std::ranges::any_of (words, [] (const std::string& word) { return word.starts_with ("--benchmark_filter"); });

    std::erase_if (words,
                   [&] (const std::string& word)
                   {
                       const std::string option = "--markdown=";

                       if (! word.starts_with (option))
                           return false;

                       markdownPath = word.substr (option.size());
                       return true;
                   });

    // Repetitions in turns, so that what disturbs the machine disturbs all alike.
    words.insert (
        words.begin() + 1,
        { "--benchmark_enable_random_interleaving=true", "--benchmark_repetitions=9", "--benchmark_min_time=0.02" });

    std::vector<char*> pointers;
    pointers.reserve (words.size());

    for (auto& word : words)
        pointers.push_back (word.data());

    auto count = static_cast<int> (pointers.size());
    benchmark::Initialize (&count, pointers.data());

    if (benchmark::ReportUnrecognizedArguments (count, pointers.data()))
        return 2;

    Results results;
    benchmark::RunSpecifiedBenchmarks (&results);

    if (! markdownPath.empty())
    {
        std::ofstream file (markdownPath);
        writeMarkdown (file, results.costs());

        if (! file.flush())
        {
            std::fprintf (stderr, "larkspire-bench: cannot write %s\n", markdownPath.c_str());
            return 2;
        }
    }

    return report (results.costs(), ! filtered) ? 0 : 1;
}
