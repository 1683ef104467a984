// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "measure/Document.h"

#include <string>

namespace larkspire::measure
{

/** One of the tables that a document may ask for, in Markdown, with a line end behind its last row. The numbers are as
    exact as the measurements' files are. Throws std::runtime_error for a name that is not known. */
std::string documentTable (const std::string& name, const Tables& tables);

} // namespace larkspire::measure
