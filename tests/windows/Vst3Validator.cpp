// SPDX-License-Identifier: AGPL-3.0-only
#include "daws/Vst3Validator.h"

#include "windows/WineHost.h"

Outcome runVst3Validator (const std::vector<std::string>& options)
{
    std::vector<std::string> words { paths::source (".deps/vst3-validator/windows/validator.exe") };
    words.insert (words.end(), options.begin(), options.end());
    words.push_back (WineHost::libraryPath (Format::vst3));
    auto outcome = run (WineHost::call (words));
    std::erase (outcome.output, '\r'); // its lines end as they do on Windows
    return outcome;
}
