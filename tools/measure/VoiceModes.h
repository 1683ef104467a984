// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/ModeTable.h"
#include "host/HostedPlugin.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace larkspire::measure
{

/** A position of the knob that does something, and what its columns begin with. */
struct VoiceMode
{
    KnobMode position;
    std::string_view name;

    /** What the chain's own table says of it. */
    const larkspire::ModeRow& settings() const { return modeForIndex (static_cast<int> (position)); }

    std::string column (std::string_view end) const { return std::string (name).append (1, '_').append (end); }

    /** How many frames of silence it takes until the leveller's gain does not rise any more. That is minutes in Gentle,
        where it ends 0.5 dB short of 1: its last steps are too small for a 32-bit float. */
    std::size_t framesToRest() const
    {
        constexpr double timeConstants = 8.0;
        return static_cast<std::size_t> (
            std::ceil (timeConstants / static_cast<double> (settings().leveller.releaseRate)));
    }
};

inline constexpr std::array<VoiceMode, 3> voiceModes {
    { { KnobMode::gentle, "gentle" }, { KnobMode::medium, "medium" }, { KnobMode::powerful, "powerful" } }
};

/** One column a mode and ending: all endings of the first mode, then those of the second. */
inline std::vector<std::string> columnsForModes (const std::vector<std::string>& endings)
{
    std::vector<std::string> columns;

    for (const auto& mode : voiceModes)
        for (const auto& ending : endings)
            columns.push_back (mode.column (ending));

    return columns;
}

} // namespace larkspire::measure
