// SPDX-License-Identifier: AGPL-3.0-only
// JUCE writes this name with a capital letter, which only file systems without a difference find.
#pragma once

#include <dbghelp.h>
