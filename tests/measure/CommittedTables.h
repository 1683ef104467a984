// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "measure/Document.h"

#include <filesystem>
#include <string>
#include <string_view>

/** A measurement as it is committed in docs/sound/data. Throws std::runtime_error if it is not there. */
larkspire::measure::Table committed (std::string_view name);

/** All of them. */
larkspire::measure::Tables allCommitted();
