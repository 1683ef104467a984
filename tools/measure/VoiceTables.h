// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "measure/Document.h"

#include <map>
#include <string>

namespace larkspire::measure
{

/** The tables of a document that tell of voices, under their names. */
const std::map<std::string, std::string (*) (const Tables&)>& voiceTables();

} // namespace larkspire::measure
