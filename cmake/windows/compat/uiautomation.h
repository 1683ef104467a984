// SPDX-License-Identifier: AGPL-3.0-only
// The system's header lacks an enumeration that JUCE's screen-reader support returns. The values are those of the
// Windows interface.
#pragma once

#include_next <uiautomation.h>

enum CaretPosition
{
    CaretPosition_Unknown = 0,
    CaretPosition_EndOfLine = 1,
    CaretPosition_BeginningOfLine = 2
};
