// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "support/Child.h"

#include <string>
#include <vector>

/** Runs the VST 3 format's own validator on the bundle that was built for the platform it is itself built for. Each
    program of tests has its own. */
Outcome runVst3Validator (const std::vector<std::string>& options);
