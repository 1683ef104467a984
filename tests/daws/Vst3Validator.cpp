// SPDX-License-Identifier: AGPL-3.0-only
#include "daws/Vst3Validator.h"

Outcome runVst3Validator (const std::vector<std::string>& options)
{
    auto arguments = options;
    arguments.push_back (paths::vst3());
    return run ({ .arguments = arguments,
                  .program = paths::source (".deps/vst3-validator/linux/validator"),
                  .environment = { { "DISPLAY", ":none" } } });
}
