// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "audio/Encoding.h"
#include "host/HostedPlugin.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace larkspire::render
{

/** A call as the user wrote it. */
struct CommandLine
{
    std::vector<std::string> inputs;
    std::string output;
    bool analysesOnly = false; // no output was named, and only a report is wanted
    std::optional<KnobMode> mode;
    int blockSize = 4096;
    int workers = 1; // 0 is one for each processor core
    std::optional<std::string> plugin;
    std::optional<Container> container;
    std::optional<SampleType> samples;
    std::optional<double> loudness;  // LUFS
    std::optional<double> truePeak;  // dBTP
    std::optional<double> gain;      // dB
    std::optional<std::string> peak; // dBFS, or "best"
    double settle = 0.0;             // seconds
    std::optional<int> processRate;  // Hz
    bool split = false;
    std::optional<std::string> picture;
    bool allowTruncated = false;
    bool compare = false;
    bool stats = false;
    bool report = false;
    bool json = false;
    bool quiet = false;
    bool skipExisting = false;
};

/** Parses a call, or gives the text that it asks for (help, version). Throws WrongCall. */
std::variant<CommandLine, std::string> parseCommandLine (int argumentCount, const char* const* arguments);

} // namespace larkspire::render
