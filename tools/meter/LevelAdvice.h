// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <array>
#include <string>
#include <string_view>

namespace larkspire::meter
{

/** At what level a mode wants a recording, in dBFS: the voice by its peak, the room by its RMS (AES17).

    Between these peaks the mode puts every voice that was measured further from its room, by 1 LU or more, and none
    comes out more than 7 LU softer than a hot one does. Hotter, the leveller brings the room nearer; softer, the voice
    is lost in part. A room above its limit keeps the expander open. docs/sound.md has the measurements, and the tests
    hold these numbers to them; the documents, the report and the page in the browser have them from here.
*/
struct LevelAdvice
{
    std::string_view mode; // as the knob has it
    int lowestPeak;
    int highestPeak;
    int highestRoom;
};

/** One row a mode, in the knob's order behind bypass. web/build.mjs reads the rows as they stand. */
inline constexpr std::array<LevelAdvice, 3> levelAdvice { {
    { .mode = "Gentle", .lowestPeak = -24, .highestPeak = -12, .highestRoom = -67 },
    { .mode = "Medium", .lowestPeak = -27, .highestPeak = -24, .highestRoom = -61 },
    { .mode = "Powerful", .lowestPeak = -27, .highestPeak = -24, .highestRoom = -61 },
} };

/** The same in words, each the rest of a sentence. */
inline std::string adviceOnPeak (const LevelAdvice& advice)
{
    return "let the voice peak between " + std::to_string (advice.lowestPeak) + " and "
           + std::to_string (advice.highestPeak) + " dBFS";
}

inline std::string adviceOnRoom (const LevelAdvice& advice)
{
    return "keep the room below " + std::to_string (advice.highestRoom) + " dBFS";
}

} // namespace larkspire::meter
