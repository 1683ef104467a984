// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "measure/Table.h"

#include <map>
#include <string>

namespace larkspire::measure
{

/** Tables under their names. */
using Tables = std::map<std::string, Table, std::less<>>;

/** A document with its tables written anew from measurements. What stands between the lines "<!-- table: NAME -->"
    and "<!-- end of table -->" is replaced, everything else stays. Throws std::runtime_error if a name is not known
    or an end is missing. */
std::string withTables (const std::string& document, const Tables& tables);

/** One of the tables that a document may ask for, in Markdown, with a line end behind its last row. The numbers are as
    exact as the measurements' files are. Throws std::runtime_error for a name that is not known. */
std::string documentTable (const std::string& name, const Tables& tables);

} // namespace larkspire::measure
