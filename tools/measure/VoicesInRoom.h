// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "measure/VoiceModes.h"

#include <array>
#include <filesystem>
#include <string>
#include <string_view>

namespace larkspire::measure
{

/** The voices that scripts/voices makes recordings of, by the recordings' names. */
inline constexpr std::array<std::string_view, 5> voiceNames {
    "announcer", "commander", "player", "reader", "operator"
};

/** Where the recording of a voice lies in their folder. */
inline std::filesystem::path recordingOf (const std::filesystem::path& folder, std::string_view voice)
{
    return folder / std::string (voice).append (".wav");
}

/** The column of a mode and a voice, whose name ends so. */
inline std::string voiceColumn (const VoiceMode& mode, std::string_view voice, std::string_view end)
{
    return mode.column (std::string (voice).append (1, '_').append (end));
}

/** How far the room lies below the voice's peak where nothing else is said, in dB. */
inline constexpr int usualRoom = 60;

} // namespace larkspire::measure
