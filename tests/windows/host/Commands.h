// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <string>
#include <vector>

/** What the program can be asked for, each with the library, a VST 2 library or a VST 3 bundle, as the first argument.
    They print what they see in lines of the form "name: value" and throw std::exception where something does not work.
 */
namespace commands
{

using Arguments = std::vector<std::string>;

/** identity LIBRARY: what a host reads first. */
void identity (const Arguments& arguments);

/** properties LIBRARY: what the system shows of the file, of a bundle the one that is loaded. */
void properties (const Arguments& arguments);

/** render LIBRARY POSITION OUT IN...: files of interleaved stereo floats, each in every layout at every rate, one
   behind the other in one file. */
void render (const Arguments& arguments);

/** save LIBRARY POSITION FILE: the state. */
void save (const Arguments& arguments);

/** restore LIBRARY (FILE NEW_FILE)...: takes a state in and saves again, each in an instance of its own. */
void restore (const Arguments& arguments);

/** editor LIBRARY TIMES PICTURE FOLLOWED: loads, opens, looks, drags, closes and unloads so many times. The first
   picture is taken each time before the drag, at "Medium"; the second after it, when the host has set "Powerful". */
void editor (const Arguments& arguments);

/** scale BUNDLE BEFORE WHILE: a window of twice the size, which the host asks for before it opens or while it is open.
 */
void scale (const Arguments& arguments);

} // namespace commands
