// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "host/KnobMode.h"

/** The parameter's value at a step of the knob. */
using larkspire::knobPosition;
