// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <filesystem>

namespace larkspire
{

/** The plug-in's library: beside this program's own executable, in ~/.vst, in the folders of the environment's VST_PATH
    (separated by colons), where cmake --install puts it together with the program, in /usr/lib/vst; the first that is
    there. Throws Failure if none is. */
std::filesystem::path findPlugin();

} // namespace larkspire
