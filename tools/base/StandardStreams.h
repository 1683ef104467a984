// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "base/FileDescriptor.h"

#include <filesystem>
#include <string>

namespace larkspire
{

// "-" as the name of an input is standard input, and as that of a result standard output. Sound is read and written at
// any place, which a pipe does not allow; so both are kept in files without a name, in the folder of TMPDIR or in
// /var/tmp, which need as much room as the sound and are gone with the program.

/** Whether a name means standard input or output. */
bool isStandardStream (const std::filesystem::path& name);

/** What an input is called in messages: "standard input" or its path. */
std::string nameOfInput (const std::filesystem::path& input);

/** What a result is called in messages: "standard output" or its path. */
std::string nameOfResult (const std::filesystem::path& result);

/** A path that opens an input from its beginning, each time anew. All of standard input is read and kept when this is
    first asked for, unless it is a file that can be read at any place. Throws Failure or Interrupted. */
std::filesystem::path pathOfInput (const std::filesystem::path& input);

/** A new file without a name, to be read and written. Throws Failure, for what is called so, if there can be none. */
FileDescriptor newSpoolFile (const std::string& shownName);

/** Writes a whole file to standard output. Throws Failure or Interrupted. */
void copyToStandardOutput (int file);

} // namespace larkspire
