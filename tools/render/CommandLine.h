// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "Encoding.h"
#include "HostedPlugin.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace larkspire::render
{

/** A call as the person wrote it. */
struct CommandLine
{
    std::vector<std::string> inputs;
    std::string output;
    Mode mode = Mode::medium;
    int blockSize = 4096;
    std::optional<std::string> plugin;
    std::optional<Container> container;
    SampleType samples = SampleType::pcm24;
    bool stats = false;
};

/** Understands a call, or gives the text that it asks for (help, version). Throws WrongCall. */
std::variant<CommandLine, std::string> parseCommandLine (int argumentCount, const char* const* arguments);

} // namespace larkspire::render
