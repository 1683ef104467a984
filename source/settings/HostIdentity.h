// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <juce_core/juce_core.h>

namespace larkspire
{

/** The login name of the user under whom the host runs, asked of the system and not of the environment. Empty where
    the system knows none. */
juce::String loginName();

/** The full path of the executable of the host's process. */
juce::String hostExecutablePath();

} // namespace larkspire
